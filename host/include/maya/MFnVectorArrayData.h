#pragma once

#include <maya/MFnData.h>
#include <maya/MTypes.h>
#include <maya/MVectorArray.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds vectors.
class MFnVectorArrayData : public MFnData {
 public:
  MFnVectorArrayData() = default;
  MFnVectorArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kVectorArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MVectorArray& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  const MVector& operator[](unsigned int index) const;
  host::api::ArrayElement<MFnVectorArrayData, MVector> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(const MVector& element, unsigned int index);
  MStatus set(const MVectorArray& newArray);
  MStatus copyTo(MVectorArray& array) const;
  /// Returns a copy of the values.
  MVectorArray array(MStatus* status = nullptr);
};
