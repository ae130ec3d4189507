#pragma once

#include <maya/MFnData.h>
#include <maya/MIntArray.h>
#include <maya/MTypes.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds integers.
class MFnIntArrayData : public MFnData {
 public:
  MFnIntArrayData() = default;
  MFnIntArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kIntArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MIntArray& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  int operator[](unsigned int index) const;
  host::api::ArrayElement<MFnIntArrayData, int> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(int element, unsigned int index);
  MStatus set(const MIntArray& newArray);
  MStatus copyTo(MIntArray& array) const;
  /// Returns a copy of the values.
  MIntArray array(MStatus* status = nullptr);
};
