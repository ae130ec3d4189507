#pragma once

#include <maya/MFnAttribute.h>
#include <maya/MFnData.h>
#include <maya/MFnNumericData.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>

/// Works on attributes that accept several kinds of data.
class MFnGenericAttribute : public MFnAttribute {
 public:
  MFnGenericAttribute() = default;
  MFnGenericAttribute(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kGenericAttribute; }

  MObject create(const MString& fullName, const MString& briefName, MStatus* status = nullptr);
  MStatus addDataAccept(MFnData::Type type);
  MStatus addNumericDataAccept(MFnNumericData::Type type);
  MStatus addTypeId(const MTypeId& id);
  MStatus addAccept(MFnData::Type type) { return addDataAccept(type); }
  MStatus addAccept(MFnNumericData::Type type) { return addNumericDataAccept(type); }
  MStatus addAccept(const MTypeId& id) { return addTypeId(id); }
  MStatus removeDataAccept(MFnData::Type type);
  MStatus removeNumericDataAccept(MFnNumericData::Type type);
  MStatus removeTypeId(const MTypeId& id);
};
