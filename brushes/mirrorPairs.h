#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include "brushes/vertexSlots.h"

class brushSurface;

/// Which vertices move alike on the two sides of a mesh's mirror plane. A pair is found when the
/// stroke first comes to one of its vertices and holds to the stroke's end, wherever both have gone
/// by then.
///
/// The rule is the one of all tools: a vertex's counterpart is the vertex nearest to its mirrored
/// place, no farther than a thousandth of the mesh's diagonal, when that one's counterpart is the
/// first again. A vertex near enough to the plane is its own.
class mirrorPairs {
 public:
  /// Begins a stroke. The surface must be placed in the world.
  /// @param axis 0 x, 1 y, 2 z
  void begin(const brushSurface& surface, int axis, bool inWorldSpace);
  /// The counterpart, which may be the vertex itself; -1 for none. Costs the logarithm of the mesh,
  /// once a stroke.
  int partner(int vertex);
  /// A displacement in object space as the other side makes it.
  MVector reflect(const MVector& objectVector) const;
  /// The part of it that stays in the plane.
  MVector alongPlane(const MVector& objectVector) const;
  /// The coordinate that is 0 on the plane in object space, -1 when the plane is the world's.
  int objectAxis() const { return inObjectSpace ? static_cast<int>(axis) : -1; }

 private:
  int counterpart(int vertex) const;
  MPoint mirrored(const MPoint& worldPoint) const;

  const brushSurface* surface = nullptr;
  unsigned int axis = 0;
  bool inObjectSpace = true;
  double reach = 0.0;
  vertexSlots known;
};
