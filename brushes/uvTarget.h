#pragma once

#include <maya/MDagPath.h>
#include <maya/MIntArray.h>

#include <memory>
#include <vector>

#include "brushes/brushRecord.h"
#include "brushes/uvLayout.h"

/// What a UV brush reads from and writes to while a stroke goes on: the UVs of one mesh, wherever
/// they are kept. Places are two numbers a UV, in a unit and space of the target's own.
class uvTarget {
 public:
  virtual ~uvTarget();

  /// The UVs and what joins them.
  struct content {
    std::vector<float> places;
    MIntArray counts, ids;   ///< of each polygon's corners; a count of 0: a polygon without UVs
    std::vector<char> pins;  ///< one a UV, 1 for a pinned one; empty: none is pinned
  };
  /// Reads all there is. @return false, after an error that says why, when it can't be brushed
  virtual bool read(content& read) = 0;

  enum state { kSame, kMoved, kGone };
  /// Looks whether others have changed the UVs since they were read or written. Where they have
  /// moved some, `places` gets all as they are now and what is recorded begins anew.
  virtual state keepUp(std::vector<float>& places) = 0;
  /// Writes some UVs as a layout has them. @return false, after an error, when they can't be
  virtual bool write(const std::vector<int>& uvs, const uvLayout& layout) = 0;
  /// What has been written since the beginning or the last change by others; null for nothing.
  virtual std::shared_ptr<brushRecord> record() const = 0;

  /// The stroke is over: the record holds what it needs and no more.
  virtual void settle() {}

  /// How many of the target's numbers are one UV unit.
  virtual double unit() const { return 1.0; }
};
