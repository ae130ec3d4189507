#pragma once

#include <maya/MDGContext.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MEvaluationNode;

/// Base of the node types that a plug-in adds.
class MPxNode {
 public:
  enum Type {
    kDependNode,
    kLocatorNode,
    kDeformerNode,
    kManipContainer,
    kSurfaceShape,
    kFieldNode,
    kEmitterNode,
    kSpringNode,
    kIkSolverNode,
    kHardwareShader,
    kHwShaderNode,
    kTransformNode,
    kObjectSet,
    kFluidEmitterNode,
    kImagePlaneNode,
    kParticleAttributeMapperNode,
    kCameraSetNode,
    kConstraintNode,
    kManipulatorNode,
    kClientDeviceNode,
    kThreadedDeviceNode,
    kAssembly,
    kSkinCluster,
    kGeometryFilter,
    kBlendShape,
    kLast
  };
  enum SchedulingType {
    kParallel,
    kSerial,
    kGloballySerial,
    kUntrusted,
    kDefaultScheduling = kSerial
  };

  MPxNode();
  virtual ~MPxNode();
  MPxNode(const MPxNode&) = delete;
  MPxNode& operator=(const MPxNode&) = delete;

  /// Called once the node exists in the graph; attributes and `thisMObject` work from here on.
  virtual void postConstructor();
  /// Fills the output that `plug` names from the inputs; `kUnknownParameter` leaves it to the host.
  virtual MStatus compute(const MPlug& plug, MDataBlock& block);
  virtual bool getInternalValue(const MPlug& plug, MDataHandle& handle);
  virtual bool setInternalValue(const MPlug& plug, const MDataHandle& handle);
  virtual bool getInternalValueInContext(const MPlug& plug, MDataHandle& handle,
                                         MDGContext& context);
  virtual bool setInternalValueInContext(const MPlug& plug, const MDataHandle& handle,
                                         MDGContext& context);
  virtual int internalArrayCount(const MPlug& plug, const MDGContext& context) const;
  virtual void copyInternalData(MPxNode* node);
  virtual MStatus legalConnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc,
                                  bool& isLegal) const;
  virtual MStatus legalDisconnection(const MPlug& plug, const MPlug& otherPlug, bool asSrc,
                                     bool& isLegal) const;
  virtual MStatus connectionMade(const MPlug& plug, const MPlug& otherPlug, bool asSrc);
  virtual MStatus connectionBroken(const MPlug& plug, const MPlug& otherPlug, bool asSrc);
  virtual MStatus dependsOn(const MPlug& plug, const MPlug& otherPlug, bool& depends) const;
  /// Adds plugs that a change of `plug` dirties, beyond those that `attributeAffects` declared.
  virtual MStatus setDependentsDirty(const MPlug& plug, MPlugArray& plugArray);
  virtual MStatus preEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode);
  enum PostEvaluationType { kEvaluatedIndirectly, kEvaluatedDirectly, kLeftDirty };
  virtual MStatus postEvaluation(const MDGContext& context, const MEvaluationNode& evaluationNode,
                                 PostEvaluationType evalType);
  virtual SchedulingType schedulingType() const;
  virtual bool isAbstractClass() const;
  virtual MStatus shouldSave(const MPlug& plug, bool& result);
  virtual bool isPassiveOutput(const MPlug& plug) const;
  virtual MPlug passThroughToOne(const MPlug& plug) const;
  virtual bool passThroughToMany(const MPlug& plug, MPlugArray& plugArray) const;
  virtual void getCacheSetup(const MEvaluationNode& evaluationNode,
                             class MNodeCacheDisablingInfo& disablingInfo,
                             class MNodeCacheSetupInfo& cacheSetupInfo,
                             MObjectArray& monitoredAttributes) const;

  MObject thisMObject() const;
  MTypeId typeId() const;
  MString typeName() const;
  MString name() const;
  Type type() const;
  MStatus setDoNotWrite(bool flag);
  bool doNotWrite(MStatus* status = nullptr) const;
  MStatus setExistWithoutInConnections(bool flag);
  bool existWithoutInConnections(MStatus* status = nullptr) const;
  MStatus setExistWithoutOutConnections(bool flag);
  bool existWithoutOutConnections(MStatus* status = nullptr) const;
  void setMPSafe(bool flag);

  /// For the initialize function: adds an attribute to the type that is being registered.
  static MStatus addAttribute(const MObject& attribute);
  /// For the initialize function: says that the second attribute is computed from the first.
  static MStatus attributeAffects(const MObject& whenChanges, const MObject& isAffected);
  static MStatus inheritAttributesFrom(const MString& parentClassName);

  static MObject message;
  static MObject isHistoricallyInteresting;
  static MObject caching;
  static MObject state;
  static MObject frozen;

 protected:
  MDataBlock forceCache(MDGContext& context = MDGContext::fsNormal);

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
