#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MDoubleArray;
class MIntArray;
class MMatrix;
class MStringArray;
class MVector;
class MVectorArray;

/// What a command returned, with its type.
class MCommandResult {
 public:
  enum Type {
    kInvalid,
    kInt,
    kInt64,
    kIntArray,
    kInt64Array,
    kDouble,
    kDoubleArray,
    kString,
    kStringArray,
    kVector,
    kVectorArray,
    kMatrix,
    kMatrixArray
  };

  MCommandResult(MStatus* status = nullptr);

  Type resultType(MStatus* status = nullptr) const;
  MString stringResult(MStatus* status = nullptr) const;
  MStatus getResult(int& result) const;
  MStatus getResult(MIntArray& result) const;
  MStatus getResult(double& result) const;
  MStatus getResult(MDoubleArray& result) const;
  MStatus getResult(MString& result) const;
  MStatus getResult(MStringArray& result) const;
  MStatus getResult(MVector& result) const;
  MStatus getResult(MVectorArray& result) const;
  MStatus getResult(MDoubleArray& result, int& numRows, int& numColumns) const;

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
