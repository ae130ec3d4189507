#pragma once

#include <maya/MFnData.h>
#include <maya/MMatrixArray.h>
#include <maya/MTypes.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds matrices.
class MFnMatrixArrayData : public MFnData {
 public:
  MFnMatrixArrayData() = default;
  MFnMatrixArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kMatrixArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MMatrixArray& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  const MMatrix& operator[](unsigned int index) const;
  host::api::ArrayElement<MFnMatrixArrayData, MMatrix> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(const MMatrix& element, unsigned int index);
  MStatus set(const MMatrixArray& newArray);
  MStatus copyTo(MMatrixArray& array) const;
  /// Returns a copy of the values.
  MMatrixArray array(MStatus* status = nullptr);
};
