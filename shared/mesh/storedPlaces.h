#pragma once

#include <maya/MFloatPointArray.h>
#include <maya/MMatrix.h>
#include <maya/MSpace.h>
#include <maya/MStatus.h>

#include <vector>

#include "shared/mesh/vertexTweaks.h"

class MDagPath;
class MIntArray;
class MPointArray;

/// Remembers vertices as their mesh stores them, points and offsets. Their world positions alone,
/// taken back through a turned or scaled transform, come back rounded, and an offset that was
/// written as a position is another number; these come back bit for bit. Of a mesh that stands
/// untransformed no points are kept: its world positions are the stored ones.
class storedPlaces {
 public:
  /// Takes the places of `vertexIds`, which must be in range.
  MStatus take(const MDagPath& mesh, const MIntArray& vertexIds);
  /// Takes the places of all vertices.
  MStatus takeAll(const MDagPath& mesh);

  /// Puts the vertices of `take` back where they were in the world; `worldPositions` say where that
  /// is once the mesh has been transformed since.
  /// @return failure, with nothing changed, when the path is no longer valid or the mesh has lost
  /// one of the vertices
  MStatus putBack(const MDagPath& mesh, const MIntArray& vertexIds,
                  const MPointArray& worldPositions) const;
  /// The same for all vertices of `takeAll`, with `positions` in `space`.
  MStatus putAllBack(const MDagPath& mesh, const MPointArray& positions,
                     MSpace::Space space = MSpace::kWorld) const;
  /// Puts all vertices back to `points` of the object's own space, wherever it has been moved
  /// since.
  MStatus putAllBackInObject(const MDagPath& mesh, const MFloatPointArray& points) const;

 private:
  bool standsStill(const MDagPath& mesh) const;
  /// Gives back the offsets that were there; what points are written then finds nothing to change
  /// in them.
  MStatus restoreTweaks(const MDagPath& mesh) const;

  MMatrix toWorld;                  ///< of the mesh, when the places were taken
  MFloatPointArray places;          ///< object space; empty for a mesh that stands untransformed
  std::vector<vertexTweak> tweaks;  ///< that the vertices had
};
