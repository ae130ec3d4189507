#pragma once

#include <maya/MAngle.h>
#include <maya/MDistance.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/Handle.h>

class MDoubleArray;
class MIntArray;
class MPointArray;
class MVectorArray;

/// The words of a command call.
class MArgList {
 public:
  enum { kInvalidArgIndex = 0xFFFFFFFF };

  MArgList() = default;

  unsigned int length(MStatus* status = nullptr) const;
  /// Returns where the flag stands, in its short or long form; `kInvalidArgIndex` if it does not.
  unsigned int flagIndex(const MString& shortFlag, const MString& longFlag = MString()) const;
  unsigned int flagIndex(const char* shortFlag, const char* longFlag = nullptr) const;

  bool asBool(unsigned int index, MStatus* status = nullptr) const;
  int asInt(unsigned int index, MStatus* status = nullptr) const;
  double asDouble(unsigned int index, MStatus* status = nullptr) const;
  MString asString(unsigned int index, MStatus* status = nullptr) const;
  MDistance asDistance(unsigned int index, MStatus* status = nullptr) const;
  MAngle asAngle(unsigned int index, MStatus* status = nullptr) const;
  MTime asTime(unsigned int index, MStatus* status = nullptr) const;
  /// These read several words and move `index` to the last one read.
  MPoint asPoint(unsigned int& index, unsigned int numElements = 3,
                 MStatus* status = nullptr) const;
  MVector asVector(unsigned int& index, unsigned int numElements = 3,
                   MStatus* status = nullptr) const;
  MIntArray asIntArray(unsigned int& index, MStatus* status = nullptr) const;
  MDoubleArray asDoubleArray(unsigned int& index, MStatus* status = nullptr) const;
  MStringArray asStringArray(unsigned int& index, MStatus* status = nullptr) const;
  MPointArray asPointArray(unsigned int& index, unsigned int numElements = 3,
                           MStatus* status = nullptr) const;
  MVectorArray asVectorArray(unsigned int& index, unsigned int numElements = 3,
                             MStatus* status = nullptr) const;

  MStatus get(unsigned int index, bool& value) const;
  MStatus get(unsigned int index, int& value) const;
  MStatus get(unsigned int index, double& value) const;
  MStatus get(unsigned int index, MString& value) const;
  MStatus get(unsigned int index, MDistance& value) const;
  MStatus get(unsigned int index, MAngle& value) const;
  MStatus get(unsigned int index, MTime& value) const;
  MStatus get(unsigned int& index, MPoint& value, unsigned int numElements = 3) const;
  MStatus get(unsigned int& index, MVector& value, unsigned int numElements = 3) const;
  MStatus get(unsigned int& index, MIntArray& value) const;
  MStatus get(unsigned int& index, MDoubleArray& value) const;
  MStatus get(unsigned int& index, MStringArray& value) const;
  MStatus get(unsigned int& index, MPointArray& value, unsigned int numElements = 3) const;
  MStatus get(unsigned int& index, MVectorArray& value, unsigned int numElements = 3) const;

  MStatus addArg(bool arg);
  MStatus addArg(int arg);
  MStatus addArg(double arg);
  MStatus addArg(const char* arg) { return addArg(MString(arg)); }
  MStatus addArg(const MString& arg);
  MStatus addArg(const MDistance& arg);
  MStatus addArg(const MAngle& arg);
  MStatus addArg(const MTime& arg);
  MStatus addArg(const MPoint& arg);
  MStatus addArg(const MVector& arg);
  MStatus addArg(const MIntArray& arg);
  MStatus addArg(const MDoubleArray& arg);
  MStatus addArg(const MStringArray& arg);
  MStatus addArg(const MPointArray& arg);
  MStatus addArg(const MVectorArray& arg);

 private:
  friend struct host::api::Access;
  explicit MArgList(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
