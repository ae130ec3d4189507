#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MFloatVector.h>
#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/Handle.h>

class MAngle;
class MDataBlock;
class MDistance;
class MPlug;
class MPxData;
class MTime;

/// Reads and writes the value of one attribute inside a data block.
class MDataHandle {
 public:
  MDataHandle() = default;

  MFnData::Type type() const;
  MTypeId typeId() const;
  bool isNumeric() const;
  MFnNumericData::Type numericType() const;
  bool isGeneric(bool& isNumeric, bool& isNull) const;
  MDataHandle child(const MPlug& plug) const;
  MDataHandle child(const MObject& attribute) const;
  MObject attribute() const;
  bool datablock(MDataBlock& block) const;
  void setClean();
  MStatus copy(const MDataHandle& source);
  /// Replaces the data by a copy that is this handle's own, so that it can be changed.
  MStatus copyWritable(const MDataHandle& source);
  bool acceptedTypeIds(class MUintArray& ids) const;

  MObject data() const;
  MPxData* asPluginData() const;
  bool& asBool() const;
  char& asChar() const;
  unsigned char& asUChar() const;
  short& asShort() const;
  int& asLong() const;
  int& asInt() const;
  MInt64& asInt64() const;
  void*& asAddr() const;
  float& asFloat() const;
  double& asDouble() const;
  short2& asShort2() const;
  short3& asShort3() const;
  int2& asLong2() const;
  int3& asLong3() const;
  int2& asInt2() const;
  int3& asInt3() const;
  float2& asFloat2() const;
  float3& asFloat3() const;
  double2& asDouble2() const;
  double3& asDouble3() const;
  double4& asDouble4() const;
  MVector& asVector() const;
  MFloatVector& asFloatVector() const;
  MMatrix& asMatrix() const;
  MFloatMatrix& asFloatMatrix() const;
  MString& asString() const;
  MDistance asDistance() const;
  MAngle asAngle() const;
  MTime asTime() const;
  /// These return data objects for the geometry function sets.
  MObject asMesh() const;
  MObject asMeshTransformed() const;
  MObject asNurbsCurve() const;
  MObject asNurbsCurveTransformed() const;
  MObject asNurbsSurface() const;
  MObject asSubdSurface() const;
  const MMatrix& geometryTransformMatrix() const;
  bool asGenericBool() const;
  int asGenericInt() const;
  double asGenericDouble() const;

  void set(bool value);
  void set(char value);
  void set(short value);
  void set(int value);
  void set(MInt64 value);
  void set(float value);
  void set(double value);
  void set(const MVector& value);
  void set(const MFloatVector& value);
  void set(const MMatrix& value);
  void set(const MFloatMatrix& value);
  void set(const MString& value);
  void set(const MDistance& value);
  void set(const MAngle& value);
  void set(const MTime& value);
  MStatus set(const MObject& data);
  void set(MPxData* data);
  void set(short x, short y);
  void set(int x, int y);
  void set(float x, float y);
  void set(double x, double y);
  void set(short x, short y, short z);
  void set(int x, int y, int z);
  void set(float x, float y, float z);
  void set(double x, double y, double z);
  void set(double x, double y, double z, double w);
  void set2Short(short x, short y);
  void set2Int(int x, int y);
  void set2Float(float x, float y);
  void set2Double(double x, double y);
  void set3Short(short x, short y, short z);
  void set3Int(int x, int y, int z);
  void set3Float(float x, float y, float z);
  void set3Double(double x, double y, double z);
  void set4Double(double x, double y, double z, double w);
  void setBool(bool value);
  void setChar(char value);
  void setShort(short value);
  void setInt(int value);
  void setInt64(MInt64 value);
  void setFloat(float value);
  void setDouble(double value);
  void setString(const MString& value);
  void setMVector(const MVector& value);
  void setMFloatVector(const MFloatVector& value);
  void setMMatrix(const MMatrix& value);
  void setMFloatMatrix(const MFloatMatrix& value);
  void setMDistance(const MDistance& value);
  void setMAngle(const MAngle& value);
  void setMTime(const MTime& value);
  void setMPxData(MPxData* value);
  MStatus setMObject(const MObject& data);
  void setGenericBool(bool value, bool setNumeric);
  void setGenericInt(int value, bool setNumeric);
  void setGenericDouble(double value, bool setNumeric);

 private:
  friend struct host::api::Access;
  explicit MDataHandle(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
