#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MFnData.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>

/// Works on attributes that hold data objects.
class MFnTypedAttribute : public MFnAttribute {
 public:
  MFnTypedAttribute() = default;
  MFnTypedAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kTypedAttribute; }

  MObject create(const MString& fullName, const MString& briefName, const MTypeId& id,
                 const MObject& defaultData = MObject::kNullObj, MStatus* status = nullptr);
  MObject create(const MString& fullName, const MString& briefName, const MTypeId& id,
                 MStatus* status);
  MObject create(const MString& fullName, const MString& briefName, MFnData::Type type,
                 const MObject& defaultData = MObject::kNullObj, MStatus* status = nullptr);
  MObject create(const MString& fullName, const MString& briefName, MFnData::Type type,
                 MStatus* status);
  MFnData::Type attrType(MStatus* status = nullptr) const;
  MStatus getDefault(MObject& defaultData) const;
  MStatus setDefault(const MObject& defaultData);
};
