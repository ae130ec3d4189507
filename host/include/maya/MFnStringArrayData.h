#pragma once

#include <maya/MFnData.h>
#include <maya/MStringArray.h>
#include <maya/MTypes.h>
#include <maya/detail/ArrayElement.h>

#include <utility>

/// Works on data that holds texts.
class MFnStringArrayData : public MFnData {
 public:
  MFnStringArrayData() = default;
  MFnStringArrayData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kStringArrayData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MStringArray& in, MStatus* status = nullptr);
  unsigned int length(MStatus* status = nullptr) const;
  const MString& operator[](unsigned int index) const;
  host::api::ArrayElement<MFnStringArrayData, MString> operator[](unsigned int index) {
    return {*this, index, std::as_const(*this)[index]};
  }
  MStatus set(const MString& element, unsigned int index);
  MStatus set(const MStringArray& newArray);
  MStatus copyTo(MStringArray& array) const;
  /// Returns a copy of the values.
  MStringArray array(MStatus* status = nullptr);
};
