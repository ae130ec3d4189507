#pragma once

#include <maya/MArrayDataHandle.h>
#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// The values of a node while it computes.
class MDataBlock {
 public:
  MDataBlock() = default;

  /// Brings the attribute up to date first.
  MDataHandle inputValue(const MPlug& plug, MStatus* status = nullptr);
  MDataHandle inputValue(const MObject& attribute, MStatus* status = nullptr);
  /// Gives access for writing, without bringing anything up to date.
  MDataHandle outputValue(const MPlug& plug, MStatus* status = nullptr);
  MDataHandle outputValue(const MObject& attribute, MStatus* status = nullptr);
  MArrayDataHandle inputArrayValue(const MPlug& plug, MStatus* status = nullptr);
  MArrayDataHandle inputArrayValue(const MObject& attribute, MStatus* status = nullptr);
  MArrayDataHandle outputArrayValue(const MPlug& plug, MStatus* status = nullptr);
  MArrayDataHandle outputArrayValue(const MObject& attribute, MStatus* status = nullptr);
  MStatus setClean(const MPlug& plug);
  MStatus setClean(const MObject& attribute);
  bool isClean(const MPlug& plug, MStatus* status = nullptr) const;
  bool isClean(const MObject& attribute, MStatus* status = nullptr) const;
  MDGContext context(MStatus* status = nullptr) const;
  MStatus setContext(const MDGContext& context);

 private:
  friend struct host::api::Access;
  explicit MDataBlock(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
