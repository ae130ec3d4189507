#pragma once

#include <maya/MObject.h>
#include <maya/MString.h>

#include <vector>

#include "modeling/vertexPush.h"

/// Slides a component: each of its vertices along the adjacent edge that runs most nearly with the
/// drag on screen, no farther than the next vertex; or, with the soft option, the region around it
/// along a surface.
class vertexSlide {
 public:
  /// Tells of vertices that have a neighbour in the same place.
  /// @param surface what the soft selection slides on; null: the mesh as it is now
  bool begin(const M3dView& view, const pickedComponent& picked, const gestureSettings& settings,
             const MDagPath& surface, pointEdit& edit);
  void drag(const M3dView& view, const portPlace& press, const portPlace& current, pointEdit& edit);
  const movingVertices& moving() const { return vertices; }
  MPoint anchorPoint() const { return anchor; }
  /// "slid 0.25".
  MString sentence() const;

 private:
  /// One way that a vertex can go: the begin point, the end point and the edge as it shows.
  struct way {
    MPoint begin, end;
    double x = 0.0, y = 0.0;                  ///< pixels from begin to end
    double beginDepth = 0.0, endDepth = 0.0;  ///< cm in front of the camera
    bool isShown = false;
  };
  void findWays(const M3dView& view, const MIntArray& picked);
  static const way* nearestWay(const std::vector<way>& ways, double dx, double dy);
  static double shareOf(const way& taken, double dx, double dy, bool isOrthographic);
  std::vector<MVector> alongEdges(const M3dView& view, double dx, double dy);
  std::vector<MVector> onSurface(const M3dView& view, const portPlace& press,
                                 const portPlace& current, const pointEdit& edit);
  MPoint nearestOnSurface(const MPoint& point) const;

  MDagPath path, surfacePath;
  MObject surfaceCopy;  ///< the mesh as it was; null when it slides on another
  gestureSettings settings;
  movingVertices vertices;
  std::vector<std::vector<way>> ways;  ///< by vertex of the region
  std::size_t lead = 0;                ///< the vertex nearest to where it was picked
  MPoint anchor;
  double distance = 0.0;
};
