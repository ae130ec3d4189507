#pragma once

#include <maya/MFnData.h>
#include <maya/MTypes.h>
#include <maya/MUint64Array.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds unsigned 64-bit integers.
class MFnUInt64ArrayData : public MFnData {
 public:
  MFnUInt64ArrayData() = default;
  MFnUInt64ArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kUint64ArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MUint64Array& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  MUint64 operator[](unsigned int index) const;
  host::api::ArrayElement<MFnUInt64ArrayData, MUint64> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(MUint64 element, unsigned int index);
  MStatus set(const MUint64Array& newArray);
  MStatus copyTo(MUint64Array& array) const;
  /// Returns a copy of the values.
  MUint64Array array(MStatus* status = nullptr);
};
