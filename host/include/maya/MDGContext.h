#pragma once

#include <maya/MStatus.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>

/// The moment at which the graph is read: the current one, or a given time.
class MDGContext {
 public:
  /// The normal context: whatever the current time is.
  MDGContext() = default;
  MDGContext(const MTime& when) : isNormal_(false), time_(when) {}

  bool isNormal(MStatus* status = nullptr) const;
  MStatus getTime(MTime& time) const;

  static MDGContext fsNormal;

 private:
  friend struct host::api::Access;
  bool isNormal_ = true;
  MTime time_;
};
