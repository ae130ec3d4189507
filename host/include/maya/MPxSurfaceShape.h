#pragma once

#include <maya/MAttributeSpecArray.h>
#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MMatrix.h>
#include <maya/MObjectArray.h>
#include <maya/MPointArray.h>
#include <maya/MPxNode.h>
#include <maya/MSelectionList.h>
#include <maya/MSelectionMask.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

class MArrayDataHandle;
class MPxGeometryIterator;

/// Base of the shapes that a plug-in adds, registered by `MFnPlugin::registerShape`.
///
/// Such a shape is a node below its transform with a box, drawn by the geometry or draw override
/// that is registered for its classification or by its class of `MPxSurfaceShapeUI`, and picked,
/// moved, hidden, instanced, framed and saved as others are.
///
/// Components: `matchComponent` says what "vtx[0:3]" after the shape's name stands for,
/// `geometryIteratorSetup` (or else `componentToPlugs`) where the points are, `transformUsing`
/// moves them. Components are of the kinds of meshes: vertices, edges, faces, UVs.
class MPxSurfaceShape : public MPxNode {
 public:
  /// What `transformUsing` does with the places from before. To save: the points before the change
  /// are added to the cache. To restore: those in the cache come back, the matrix doesn't count.
  enum MVertexCachingMode { kNoPointCaching, kSavePoints, kRestorePoints, kUpdatePoints };
  enum MVertexOffsetMode { kNormal, kUTangent, kVTangent, kUVNTriad };
  enum MChildChanged { kObjectChanged, kBoundingBoxChanged };
  enum MatchResult {
    kMatchOk,
    kMatchNone,
    kMatchTooMany,
    kMatchInvalidName,
    kMatchInvalidAttribute,
    kMatchInvalidAttributeIndex,
    kMatchInvalidAttributeRange,
    kMatchInvalidAttributeDim
  };

  MPxSurfaceShape();
  ~MPxSurfaceShape() override;

  virtual bool isBounded() const;
  virtual MBoundingBox boundingBox() const;
  virtual MSelectionMask getShapeSelectionMask() const;
  virtual MSelectionMask getComponentSelectionMask() const;
  virtual bool excludeAsPluginShape() const;
  virtual bool canMakeLive() const;

  bool isRenderable() const { return isRenderable_; }
  void setRenderable(bool on) { isRenderable_ = on; }
  /// Whether components of this shape are selected, and which, one object a kind.
  bool hasActiveComponents() const;
  MObjectArray activeComponents() const;
  /// Has views show the shape anew: of what changed that is no attribute.
  void childChanged(MChildChanged state = kObjectChanged);
  void signalDirtyToViewport() { childChanged(); }
  MMatrix getWorldMatrix(MDataBlock& block, unsigned int instance) const;

  // Components.
  /// What a written component stands for. `item` is the shape; what it names goes into `list`.
  /// As inherited: "vtx" with a range, where the shape has points.
  virtual MatchResult matchComponent(const MSelectionList& item, const MAttributeSpecArray& spec,
                                     MSelectionList& list);
  /// Whether components may be picked under a mask.
  virtual bool match(const MSelectionMask& mask, const MObjectArray& componentList) const;
  virtual MObject createFullVertexGroup() const;
  virtual MObject createFullRenderGroup() const;
  /// The attributes behind components: a plug a point, with its three coordinates as children.
  virtual void componentToPlugs(MObject& component, MSelectionList& list) const;
  /// Makes what reads the points, or moves them, of some components or, without any, of the whole.
  /// The host deletes it.
  virtual MPxGeometryIterator* geometryIteratorSetup(MObjectArray& componentList,
                                                     MObject& components, bool forReadOnly = false);
  virtual bool acceptsGeometryIterator(bool writeable = true);
  virtual bool acceptsGeometryIterator(MObject& object, bool writeable = true,
                                       bool forReadOnly = false);
  /// Moves components by a matrix of object space. As inherited by the plugs of
  /// `componentToPlugs`, or else by a geometry iterator.
  virtual void transformUsing(const MMatrix& matrix, const MObjectArray& components);
  virtual void transformUsing(const MMatrix& matrix, const MObjectArray& components,
                              MVertexCachingMode cachingMode, MPointArray* pointCache);
  /// The same where something feeds `localShapeInAttr`: the changes go beside it, as tweaks, into
  /// the handle of the control points.
  virtual void tweakUsing(const MMatrix& matrix, const MObjectArray& components,
                          MVertexCachingMode cachingMode, MPointArray* pointCache,
                          MArrayDataHandle& handle);
  virtual bool deleteComponents(const MObjectArray& components, MDoubleArray& undoInfo);
  virtual bool undeleteComponents(const MObjectArray& components, MDoubleArray& undoInfo);
  virtual bool vertexOffsetDirection(MObject& component, MVectorArray& direction,
                                     MVertexOffsetMode mode, bool normalize);

  virtual MObject localShapeInAttr() const;
  virtual MObject localShapeOutAttr() const;
  virtual MObject worldShapeOutAttr() const;
  virtual MObject cachedShapeAttr() const;
  virtual MObject geometryData() const;
  virtual void closestPoint(const MPoint& toThisPoint, MPoint& theClosestPoint,
                            double tolerance = 0.1) const;

  /// Points of the shape's own, kept in the file: an array of triples of lengths.
  static MObject mControlPoints, mControlValueX, mControlValueY, mControlValueZ;

  static MObject nodeBoundingBox, nodeBoundingBoxMin, nodeBoundingBoxMax;
  static MObject center;
  static MObject matrix, inverseMatrix, worldMatrix, worldInverseMatrix;
  static MObject parentMatrix, parentInverseMatrix;
  static MObject visibility, intermediateObject, instObjGroups;

 private:
  bool isRenderable_ = false;
};
