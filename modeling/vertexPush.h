#pragma once

#include <maya/MIntArray.h>
#include <maya/MPoint.h>
#include <maya/MString.h>
#include <maya/MVector.h>

#include <vector>

#include "modeling/pointEdit.h"
#include "modeling/softRegion.h"
#include "modeling/toolState.h"

class M3dView;

/// Vertices that move together, each with its own direction and share.
struct movingVertices {
  softRegion region;
  std::vector<MVector> directions;  ///< world, unit
  /// For each one its counterpart on the other side of the mirror plane, that moves alike; -1:
  /// none; itself: it lies on the plane and stays there.
  std::vector<int> counterparts;
};

/// How far a drag from (x, y) by (dx, dy) pixels moves a point along a direction so that it stays
/// under the cursor; cm. A direction that nearly faces the viewer shows too short for that: then
/// upward motion goes along it as fast as the cursor goes across the surface there.
double distanceFollowing(const M3dView& view, const MPoint& anchor, const MVector& direction,
                         const portPlace& from, const portPlace& to);

/// Pushes a component along its vertex normals, or towards the viewer, as far as the cursor goes.
class vertexPush {
 public:
  /// @return false when there is nothing to push
  bool begin(const M3dView& view, const pickedComponent& picked, const gestureSettings& settings,
             pointEdit& edit);
  void drag(const M3dView& view, const portPlace& press, const portPlace& current, pointEdit& edit);
  const movingVertices& moving() const { return vertices; }
  MPoint anchorPoint() const { return anchor; }
  /// "pushed 0.4".
  MString sentence() const;

 private:
  void findDirections(const M3dView& view, const MIntArray& picked);
  std::vector<MVector> displacements() const;
  void smooth(std::vector<MVector>& by) const;

  MDagPath path;
  gestureSettings settings;
  movingVertices vertices;
  MPoint anchor;
  MVector along;
  double distance = 0.0;
};

/// Moves vertices by their displacements, and their counterparts by the mirrored ones.
void moveWithMirror(const movingVertices& vertices, const std::vector<MVector>& by,
                    const gestureSettings& settings, pointEdit& edit);

/// The counterparts of vertices, as movingVertices has them; all -1 with the mirror option off.
std::vector<int> counterpartsOf(const MDagPath& mesh, const std::vector<int>& vertices,
                                const gestureSettings& settings);
