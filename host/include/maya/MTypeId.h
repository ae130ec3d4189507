#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// Identifies a node or data type in files and at run time.
class MTypeId {
 public:
  MTypeId() = default;
  MTypeId(unsigned int id) : id_(id) {}
  /// Joins a block number handed out to a maker with an id of the maker's own.
  MTypeId(unsigned int prefix, unsigned int id) : id_((prefix << 8) + id) {}

  bool operator==(const MTypeId& other) const { return id_ == other.id_; }
  bool operator!=(const MTypeId& other) const { return id_ != other.id_; }
  unsigned int id() const { return id_; }

 private:
  unsigned int id_ = 0;
};

std::ostream& operator<<(std::ostream& os, const MTypeId& typeId);
