#pragma once

#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/detail/Handle.h>

class MArrayDataHandle;
class MDataBlock;

/// Builds the elements of an array attribute before they replace the present ones.
class MArrayDataBuilder {
 public:
  MArrayDataBuilder(const MObject& attribute, unsigned int numElements, MStatus* status = nullptr);
  MArrayDataBuilder(MDataBlock* block, const MObject& attribute, unsigned int numElements,
                    MStatus* status = nullptr);

  MDataHandle addElement(unsigned int index, MStatus* status = nullptr);
  MDataHandle addLast(MStatus* status = nullptr);
  MArrayDataHandle addElementArray(unsigned int index, MStatus* status = nullptr);
  MArrayDataHandle addLastArray(MStatus* status = nullptr);
  MStatus removeElement(unsigned int index);
  unsigned int elementCount(MStatus* status = nullptr) const;
  MStatus growArray(unsigned int amount);
  MStatus setGrowSize(unsigned int size);

 private:
  friend struct host::api::Access;
  friend class MArrayDataHandle;
  explicit MArrayDataBuilder(host::api::Handle handle) : handle_(std::move(handle)) {}
  host::api::Handle handle_;
};
