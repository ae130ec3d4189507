#pragma once

#include <maya/MDagPath.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <vector>

/// A piece of a line of sight.
struct sightLine {
  MPoint start;
  MVector direction;  ///< unit
  double length = 0.0;
};

/// The other objects that stand in the way of what is looked at: visible meshes, in all their
/// instances, that show near a line of sight. Which they are is found by their boxes, once; costs a
/// box for each mesh of the scene.
class sightBlockers {
 public:
  sightBlockers() = default;
  /// @param mesh the one that is looked at, which does not count
  /// @param reach how far from the line, in world units, others still count
  sightBlockers(const MDagPath& mesh, const sightLine& line, double reach);
  /// Whether one of them is met on a line of sight.
  bool block(const sightLine& line) const;

 private:
  std::vector<MDagPath> near;
};
