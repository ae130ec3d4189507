#pragma once

#include <maya/MFloatArray.h>
#include <maya/MFnData.h>
#include <maya/MTypes.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds single-precision numbers.
class MFnFloatArrayData : public MFnData {
 public:
  MFnFloatArrayData() = default;
  MFnFloatArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kFloatArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MFloatArray& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  float operator[](unsigned int index) const;
  host::api::ArrayElement<MFnFloatArrayData, float> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(float element, unsigned int index);
  MStatus set(const MFloatArray& newArray);
  MStatus copyTo(MFloatArray& array) const;
  /// Returns a copy of the values.
  MFloatArray array(MStatus* status = nullptr);
};
