#pragma once

#include "shared/mesh/mirrorPlane.h"

class MDagPath;
class MIntArray;
class MPointArray;

/// How the reshaping commands treat the two sides of a symmetric selection.
struct mirrorOptions {
  static constexpr int kNoMirrorOption = 3;  ///< `axis` when the window's mirror box is off

  int axis = kNoMirrorOption;  ///< 0 x, 1 y, 2 z, anything else: no split
  bool inWorldSpace = true;    ///< else the side test is made in the mesh's object space

  /// Whether `axis` names an axis.
  bool isOn() const { return axis >= 0 && axis <= 2; }

  /// Whether the toolkit's window says world space; so it does while it is closed. An answer that
  /// is neither space leaves `current`.
  static bool worldSpaceFromWindow(bool current);
  /// Reads mirror box, axis and space from the toolkit's window; no mirror, world space while it is
  /// closed.
  static mirrorOptions fromWindow();

  /// The plane that they mean for a mesh; only while they are on.
  mirrorPlane plane(const MDagPath& mesh) const { return mirrorPlane(mesh, axis, inWorldSpace); }
};

/// Splits `vertexIds` (any order) by the side of the mirror plane. When both sides have the same
/// number of vertices the ids become the negative side followed by the positive side, each in the
/// order it had, and the answer is true; else they stay as they are.
bool splitByMirror(MIntArray& vertexIds, const MPointArray& worldPoints, const MDagPath& mesh,
                   const mirrorOptions& options);
