#pragma once

#include <maya/MAngle.h>
#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MPlugArray;

/// An attribute of a node, or one element or child of such an attribute.
class MPlug {
 public:
  enum MValueSelector { kAll, kNonDefault, kChanged, kLastAttrSelector };
  enum FreeToChangeState { kFreeToChange, kNotFreeToChange, kChildrenNotFreeToChange };

  MPlug() = default;
  MPlug(const MObject& node, const MObject& attribute);

  MString name(MStatus* status = nullptr) const;
  /// Returns the name of the plug without its node, or with it; short or long names, with or
  /// without indices.
  MString partialName(bool includeNodeName = false, bool includeNonMandatoryIndices = false,
                      bool includeInstancedIndices = false, bool useAlias = false,
                      bool useFullAttributePath = false, bool useLongNames = false,
                      MStatus* status = nullptr) const;
  MString info(MStatus* status = nullptr) const;
  MObject node(MStatus* status = nullptr) const;
  MObject attribute(MStatus* status = nullptr) const;
  MStatus setAttribute(const MObject& attribute);
  bool isNull(MStatus* status = nullptr) const;

  bool isArray(MStatus* status = nullptr) const;
  bool isElement(MStatus* status = nullptr) const;
  bool isCompound(MStatus* status = nullptr) const;
  bool isChild(MStatus* status = nullptr) const;
  bool isIgnoredWhenRendering(MStatus* status = nullptr) const;
  unsigned int logicalIndex(MStatus* status = nullptr) const;
  MStatus selectAncestorLogicalIndex(unsigned int index,
                                     const MObject& attribute = MObject::kNullObj);
  unsigned int getExistingArrayAttributeIndices(MIntArray& indices,
                                                MStatus* status = nullptr) const;
  unsigned int numElements(MStatus* status = nullptr) const;
  unsigned int evaluateNumElements(MStatus* status = nullptr) const;
  unsigned int evaluateNumElements(MDGContext& context, MStatus* status = nullptr) const;
  unsigned int numConnectedElements(MStatus* status = nullptr) const;
  unsigned int numChildren(MStatus* status = nullptr) const;
  unsigned int numConnectedChildren(MStatus* status = nullptr) const;
  MStatus setNumElements(unsigned int elements);
  MPlug elementByLogicalIndex(unsigned int index, MStatus* status = nullptr) const;
  MPlug elementByPhysicalIndex(unsigned int index, MStatus* status = nullptr) const;
  MPlug connectionByPhysicalIndex(unsigned int index, MStatus* status = nullptr) const;
  MPlug operator[](unsigned int physicalIndex) const {
    return elementByPhysicalIndex(physicalIndex);
  }
  MPlug parent(MStatus* status = nullptr) const;
  MPlug array(MStatus* status = nullptr) const;
  MPlug child(const MObject& attribute, MStatus* status = nullptr) const;
  MPlug child(unsigned int index, MStatus* status = nullptr) const;

  bool isConnected(MStatus* status = nullptr) const;
  /// Lists the plugs at the other ends: sources with `asDestination`, destinations with `asSource`.
  bool connectedTo(MPlugArray& plugs, bool asDestination, bool asSource,
                   MStatus* status = nullptr) const;
  bool isSource(MStatus* status = nullptr) const;
  bool isDestination(MStatus* status = nullptr) const;
  MPlug source(MStatus* status = nullptr) const;
  bool destinations(MPlugArray& plugs, MStatus* status = nullptr) const;

  bool isKeyable(MStatus* status = nullptr) const;
  MStatus setKeyable(bool keyable);
  bool isLocked(MStatus* status = nullptr) const;
  MStatus setLocked(bool locked);
  bool isCachingFlagSet(MStatus* status = nullptr) const;
  MStatus setCaching(bool caching);
  bool isChannelBoxFlagSet(MStatus* status = nullptr) const;
  MStatus setChannelBox(bool shown);
  bool isProcedural(MStatus* status = nullptr) const;
  bool isDynamic(MStatus* status = nullptr) const;
  bool isFromReferencedFile(MStatus* status = nullptr) const;
  bool isNetworked(MStatus* status = nullptr) const;
  bool isExactlyEqual(const MPlug& other, MStatus* status = nullptr) const;
  bool isDefaultValue(MStatus* status = nullptr) const;
  bool isDefaultValue(bool forceEval, MStatus* status = nullptr) const;
  FreeToChangeState isFreeToChange(bool checkParents = true, bool checkChildren = true,
                                   MStatus* status = nullptr) const;
  MStatus getSetAttrCmds(MStringArray& commands, MValueSelector selector = kAll,
                         bool useLongNames = false) const;

  MStatus getValue(MObject& value) const;
  MStatus getValue(double& value) const;
  MStatus getValue(float& value) const;
  MStatus getValue(MInt64& value) const;
  MStatus getValue(int& value) const;
  MStatus getValue(short& value) const;
  MStatus getValue(char& value) const;
  MStatus getValue(bool& value) const;
  MStatus getValue(MString& value) const;
  MStatus getValue(MDistance& value) const;
  MStatus getValue(MAngle& value) const;
  MStatus getValue(MTime& value) const;
  MObject asMObject(MStatus* status = nullptr) const;
  MObject asMObject(MDGContext& context, MStatus* status = nullptr) const;
  double asDouble(MStatus* status = nullptr) const;
  double asDouble(MDGContext& context, MStatus* status = nullptr) const;
  float asFloat(MStatus* status = nullptr) const;
  float asFloat(MDGContext& context, MStatus* status = nullptr) const;
  MInt64 asInt64(MStatus* status = nullptr) const;
  int asInt(MStatus* status = nullptr) const;
  int asInt(MDGContext& context, MStatus* status = nullptr) const;
  short asShort(MStatus* status = nullptr) const;
  short asShort(MDGContext& context, MStatus* status = nullptr) const;
  char asChar(MStatus* status = nullptr) const;
  bool asBool(MStatus* status = nullptr) const;
  bool asBool(MDGContext& context, MStatus* status = nullptr) const;
  MString asString(MStatus* status = nullptr) const;
  MString asString(MDGContext& context, MStatus* status = nullptr) const;
  MDistance asMDistance(MStatus* status = nullptr) const;
  MAngle asMAngle(MStatus* status = nullptr) const;
  MTime asMTime(MStatus* status = nullptr) const;
  MDataHandle asMDataHandle(MStatus* status = nullptr) const;
  MDataHandle asMDataHandle(MDGContext& context, MStatus* status = nullptr) const;
  void destructHandle(MDataHandle& handle) const;
  MDataHandle constructHandle(class MDataBlock& block) const;

  MStatus setValue(const MObject& value) const;
  MStatus setValue(MDataHandle& value) const;
  MStatus setValue(double value) const;
  MStatus setValue(float value) const;
  MStatus setValue(MInt64 value) const;
  MStatus setValue(int value) const;
  MStatus setValue(short value) const;
  MStatus setValue(char value) const;
  MStatus setValue(bool value) const;
  MStatus setValue(const char* value) const;
  MStatus setValue(const MString& value) const;
  MStatus setValue(const MDistance& value) const;
  MStatus setValue(const MAngle& value) const;
  MStatus setValue(const MTime& value) const;
  MStatus setMObject(const MObject& value) const;
  MStatus setMDataHandle(const MDataHandle& value) const;
  MStatus setDouble(double value) const;
  MStatus setFloat(float value) const;
  MStatus setInt64(MInt64 value) const;
  MStatus setInt(int value) const;
  MStatus setShort(short value) const;
  MStatus setChar(char value) const;
  MStatus setBool(bool value) const;
  MStatus setString(const MString& value) const;
  MStatus setMDistance(const MDistance& value) const;
  MStatus setMAngle(const MAngle& value) const;
  MStatus setMTime(const MTime& value) const;

  /// Same node, attribute and indices; comparing with an attribute ignores node and indices.
  bool operator==(const MPlug& other) const;
  bool operator!=(const MPlug& other) const { return !(*this == other); }
  bool operator==(const MObject& attribute) const;
  bool operator!=(const MObject& attribute) const { return !(*this == attribute); }

 private:
  friend struct host::api::Access;
  explicit MPlug(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};

std::ostream& operator<<(std::ostream& os, const MPlug& plug);

#include <maya/MPlugArray.h>
