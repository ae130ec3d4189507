#pragma once

#include <maya/MFnData.h>
#include <maya/MTypeId.h>
#include <maya/MTypes.h>

class MPxData;

/// Works on data of a plug-in's own type.
class MFnPluginData : public MFnData {
 public:
  MFnPluginData() = default;
  MFnPluginData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kPluginData; }

  MObject create(const MTypeId& id, MStatus* status = nullptr);
  MTypeId typeId(MStatus* status = nullptr) const;
  const MPxData* constData(MStatus* status = nullptr) const;
  MPxData* data(MStatus* status = nullptr);
};
