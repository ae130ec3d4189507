#pragma once

#include <maya/MPointArray.h>

#include <cstddef>
#include <vector>

#include "quaddraw/drawnMesh.h"
#include "quaddraw/screenIndex.h"

class M3dView;

/// Finds what the hand means by a pixel: the loose point or the border vertex near it, and the quad
/// through the four that are nearest. It keeps where all of them show until points, mesh, camera or
/// port change, and answers as if it had looked at everything anew.
class quadFinder {
 public:
  /// Brings what is kept up to date. Free when nothing changed.
  /// @param looseRevision another one than the last time when the loose points may have changed
  void refresh(const M3dView& view, const drawnMesh& mesh, const MPointArray& loose,
               unsigned int looseRevision);
  void clear();

  /// The place of the loose point or border vertex nearest to a pixel. @return false for none
  bool nearest(const M3dView& view, int x, int y, MPoint& place) const;
  /// The loose point nearest to a pixel, nearer than `pixels`; -1 for none.
  int looseNear(const M3dView& view, int x, int y, double pixels) const;
  /// The quad through the four nearest, going round as the faces do that it joins, else as the
  /// viewer sees it go counter-clockwise. Empty with fewer than four, when two of them coincide,
  /// when they stand on a line, and where a polygon has three of them already.
  MPointArray quadAt(const M3dView& view, int x, int y, const drawnMesh& mesh) const;

 private:
  screenIndex index;
  std::vector<drawCandidate> candidates;  ///< loose points first
  std::ptrdiff_t looseCount = 0;

  // What they were gathered from.
  bool isGathered = false;
  unsigned int looseRead = 0, meshRead = 0;
  viewSight sightRead;
};
