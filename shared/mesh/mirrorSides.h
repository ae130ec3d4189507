#pragma once

#include <maya/MPointArray.h>

#include "shared/settings/mirrorOptions.h"

class MDagPath;
class MIntArray;

/// On which side of its mirror plane each vertex of a mesh lies. In object space that is told by
/// the points as the mesh stores them: taken from the world back through a turned transform, an
/// exact 0 would come out on either side.
class mirrorSides {
 public:
  /// @param options must be on
  /// @param worldPoints all points of the mesh; they must outlive this
  mirrorSides(const MDagPath& mesh, const mirrorOptions& options, const MPointArray& worldPoints);
  /// The plane itself counts as positive.
  bool isPositive(int vertex) const { return coordinate(vertex) >= 0.0; }
  /// The same for the mean of `count` vertices.
  bool isMeanPositive(const MIntArray& vertices, unsigned int first, unsigned int count) const;

 private:
  double coordinate(int vertex) const { return (*points)[static_cast<unsigned int>(vertex)][axis]; }

  unsigned int axis;
  MPointArray stored;  ///< in object space, when that decides
  const MPointArray* points;
};

/// Splits `vertexIds` (any order) by side. When both sides have the same number of vertices the ids
/// become the negative side followed by the positive side, each in the order it had, and the answer
/// is true; else they stay as they are.
bool splitByMirror(MIntArray& vertexIds, const mirrorSides& sides);
