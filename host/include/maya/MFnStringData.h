#pragma once

#include <maya/MFnData.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// Works on data that holds a text.
class MFnStringData : public MFnData {
 public:
  MFnStringData() = default;
  MFnStringData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kStringData; }

  MObject create(MStatus* status = nullptr);
  MObject create(const MString& text, MStatus* status = nullptr);
  MString string(MStatus* status = nullptr) const;
  MStatus set(const MString& text);
};
