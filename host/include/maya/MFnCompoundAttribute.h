#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MTypes.h>

/// Works on attributes that are made of other attributes.
class MFnCompoundAttribute : public MFnAttribute {
 public:
  MFnCompoundAttribute() = default;
  MFnCompoundAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kCompoundAttribute; }

  MObject create(const MString& fullName, const MString& briefName, MStatus* status = nullptr);
  MStatus addChild(const MObject& child);
  MStatus removeChild(const MObject& child);
  unsigned int numChildren(MStatus* status = nullptr) const;
  MObject child(unsigned int index, MStatus* status = nullptr) const;
};
