#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MTypes.h>

/// Works on attributes that only connect and hold no value.
class MFnMessageAttribute : public MFnAttribute {
 public:
  MFnMessageAttribute() = default;
  MFnMessageAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kMessageAttribute; }

  MObject create(const MString& fullName, const MString& briefName, MStatus* status = nullptr);
};
