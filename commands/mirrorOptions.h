#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>

class MDagPath;
class MIntArray;
class MPointArray;

/// How the reshaping commands treat the two sides of a symmetric selection.
struct mirrorOptions {
  static constexpr int kNoMirrorOption = 3;  ///< `axis` when the window's mirror box is off

  int axis = kNoMirrorOption;  ///< 0 x, 1 y, 2 z, anything else: no split
  int inObjectSpace = 1;       ///< 0: the side test is made in object space; 1: in world space

  /// Whether `axis` names an axis.
  bool isOn() const { return axis >= 0 && axis <= 2; }

  /// Reads the mirror space from the toolkit's window; world space while the window is closed. An answer that is
  /// neither space leaves `current`.
  static int spaceFromWindow(int current);
  /// Reads mirror box, axis and space from the toolkit's window; no mirror, world space while it is closed.
  static mirrorOptions fromWindow();
};

/// The mirror plane of a mesh, for points in world space: an axis of the world or of the mesh's own space is 0 on it. A mesh
/// whose transform can't be inverted is judged by its untransformed space.
class mirrorPlane {
 public:
  mirrorPlane(const MDagPath& mesh, const mirrorOptions& options);
  /// Which side a point lies on; the plane itself counts as positive.
  bool isPositive(const MPoint& worldPoint) const;
  MPoint reflect(const MPoint& worldPoint) const;

 private:
  unsigned int axis;
  bool inObjectSpace;
  MMatrix toObject, toWorld;
};

/// Splits `vertexIds` (any order) by the side of the mirror plane. When both sides have the same number of vertices the
/// ids become the negative side followed by the positive side, each in the order it had, and the answer is true; else
/// they stay as they are.
bool splitByMirror(MIntArray& vertexIds, const MPointArray& worldPoints, const MDagPath& mesh,
                   const mirrorOptions& options);
