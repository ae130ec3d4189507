#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MTypes.h>

/// Works on attributes that hold one of several named values.
class MFnEnumAttribute : public MFnAttribute {
 public:
  MFnEnumAttribute() = default;
  MFnEnumAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kEnumAttribute; }

  MObject create(const MString& fullName, const MString& briefName, short defaultValue = 0,
                 MStatus* status = nullptr);
  MStatus addField(const MString& name, short index);
  MString fieldName(short index, MStatus* status = nullptr) const;
  short fieldIndex(const MString& field, MStatus* status = nullptr) const;
  MStatus getMin(short& minValue) const;
  MStatus getMax(short& maxValue) const;
  MStatus getDefault(short& defaultValue) const;
  MStatus getDefault(MString& defaultName) const;
  MStatus setDefault(short defaultValue);
  MStatus setDefault(const MString& defaultName);
};
