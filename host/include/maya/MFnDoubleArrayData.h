#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MFnData.h>
#include <maya/MTypes.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds numbers.
class MFnDoubleArrayData : public MFnData {
 public:
  MFnDoubleArrayData() = default;
  MFnDoubleArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kDoubleArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MDoubleArray& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  double operator[](unsigned int index) const;
  host::api::ArrayElement<MFnDoubleArrayData, double> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(double element, unsigned int index);
  MStatus set(const MDoubleArray& newArray);
  MStatus copyTo(MDoubleArray& array) const;
  /// Returns a copy of the values.
  MDoubleArray array(MStatus* status = nullptr);
};
