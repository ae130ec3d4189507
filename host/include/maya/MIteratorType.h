#pragma once

#include <maya/MFn.h>
#include <maya/MIntArray.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// What an iterator starts from and which types it stops at.
class MIteratorType {
 public:
  enum objFilterType { kMObject, kMDagPathObject, kMPlugObject };

  MIteratorType() = default;

  MFn::Type getFilterType(MStatus* status = nullptr) const;
  MStatus getFilterList(MIntArray& filterList) const;
  objFilterType getObjectType(MStatus* status = nullptr) const;
  bool filterListEnabled(MStatus* status = nullptr) const;
  MStatus setFilterType(MFn::Type filter);
  MStatus setFilterList(const MIntArray& filterList);
  MStatus setObjectType(objFilterType type);

 private:
  MFn::Type type_ = MFn::kInvalid;
  MIntArray list_;
  bool usesList_ = false;
  objFilterType objectType_ = kMObject;
};
