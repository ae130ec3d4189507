#pragma once

#include <maya/MFnData.h>
#include <maya/MPointArray.h>
#include <maya/MTypes.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds points.
class MFnPointArrayData : public MFnData {
 public:
  MFnPointArrayData() = default;
  MFnPointArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kPointArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MPointArray& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  const MPoint& operator[](unsigned int index) const;
  host::api::ArrayElement<MFnPointArrayData, MPoint> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(const MPoint& element, unsigned int index);
  MStatus set(const MPointArray& newArray);
  MStatus copyTo(MPointArray& array) const;
  /// Returns a copy of the values.
  MPointArray array(MStatus* status = nullptr);
};
