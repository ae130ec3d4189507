#pragma once

#include <maya/MArrayDataBuilder.h>
#include <maya/MDataHandle.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

/// Walks the elements of an array attribute inside a data block.
class MArrayDataHandle {
 public:
  MArrayDataHandle(const MDataHandle& handle, MStatus* status = nullptr);

  unsigned int elementCount(MStatus* status = nullptr) const;
  /// Returns the logical index of the current element.
  unsigned int elementIndex(MStatus* status = nullptr) const;
  MStatus next();
  MStatus jumpToElement(unsigned int logicalIndex);
  MStatus jumpToArrayElement(unsigned int physicalIndex);
  MDataHandle inputValue(MStatus* status = nullptr);
  MDataHandle outputValue(MStatus* status = nullptr);
  MArrayDataHandle inputArrayValue(MStatus* status = nullptr);
  MArrayDataHandle outputArrayValue(MStatus* status = nullptr);
  MArrayDataBuilder builder(MStatus* status = nullptr);
  MStatus set(const MArrayDataBuilder& builder);
  MStatus setClean();
  MStatus setAllClean();

 private:
  friend struct host::api::Access;
  explicit MArrayDataHandle(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
