#pragma once

#include <maya/MStatus.h>

#include <cstddef>

/// What a stroke has changed, and nothing else: both sides of it. It is handed to the undo queue
/// with the stroke's first change and filled while the stroke goes on.
class brushRecord {
 public:
  virtual ~brushRecord();
  /// Puts things as they were before the stroke or as they are after it.
  virtual MStatus show(bool after) = 0;
  /// Whether everything is where it was before the stroke.
  virtual bool changesNothing() const = 0;
  /// Memory that it holds on to.
  virtual std::size_t bytes() const = 0;

  bool isUndone = false;   ///< the queue has taken it back; kept by the tool command
  bool isEmptied = false;  ///< the stroke was given up: it changes nothing any more
};
