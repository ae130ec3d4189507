#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <vector>

class M3dView;

/// The way from the world to a view's pixels as it stood when it was read.
struct viewSight {
  explicit viewSight(const M3dView& view);
  viewSight() = default;
  bool operator==(const viewSight& other) const {
    return toClip == other.toClip && width == other.width && height == other.height;
  }
  MMatrix toClip;
  int width = 0, height = 0;
};

/// A place that a corner of the next quad may take.
struct drawCandidate {
  MPoint place;           ///< world
  MVector normal;         ///< world; of border vertices
  bool isBorder = false;  ///< a border vertex; else a loose point
};

/// Where candidates show in a view, so that those near a pixel are found without looking at the
/// others. Built anew when candidates, camera or port change; linear in the candidates.
class screenIndex {
 public:
  /// @return how many candidates can't be shown at all, since their places are not numbers; they
  ///     and those behind the camera are never found
  unsigned int build(const std::vector<drawCandidate>& candidates, const viewSight& sight);

  struct found {
    int candidate = -1;
    double distance = 0.0;  ///< pixels
  };
  /// The nearest candidates to a pixel, nearest first, at most `count`; of equally near ones the
  /// earlier candidate. Candidates farther than 10000 pixels don't count.
  ///
  /// @param ray border vertices whose normal points along it don't count; null: all count
  std::vector<found> nearest(int x, int y, unsigned int count, const MVector* ray) const;
  /// The same by looking at every candidate: for tests.
  std::vector<found> nearestOfAll(int x, int y, unsigned int count, const MVector* ray) const;

 private:
  struct entry {
    int candidate;
    short x, y;
  };
  bool counts(int candidate, const MVector* ray) const;
  int cellOf(int pixel) const;
  void consider(const entry& at, int x, int y, unsigned int count, const MVector* ray,
                std::vector<found>& best) const;

  std::vector<drawCandidate> all;
  std::vector<entry> entries;  ///< sorted by cell
  std::vector<int> firstOfCell;
  int lowX = 0, lowY = 0, columns = 0, rows = 0;  ///< of the cells that hold something
};
