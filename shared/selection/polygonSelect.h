#pragma once

#include <maya/MDagPath.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>

#include <cstdint>

class M3dView;

/// A component that a question to a mesh found.
struct closestComponentRecord {
  int type = 0;             ///< as asked for: 1 vertex, 2 face, 3 edge
  std::int32_t index = -1;  ///< -1 when nothing was found
  MPoint point;             ///< world
};

/// Which component of a mesh is meant: the one closest to a place, or the one under the cursor. It
/// keeps nothing; make one where it is used.
class polygonSelect {
 public:
  enum pickType { kAnyType = 0, kVertexType = 1, kFaceType = 2, kEdgeType = 3 };
  static constexpr double kVertexTolerance =
      10.0;  ///< pixels from the cursor to a vertex, inclusive
  static constexpr double kEdgeTolerance =
      8.0;  ///< pixels from the cursor to the nearest place of an edge

  polygonSelect() = default;
  virtual ~polygonSelect();

  /// The component of the face nearest to a world point that is closest to where the surface is
  /// nearest to it.
  ///
  /// A vertex by its distance, the first of equally near ones in the face's order; an edge by that
  /// of its midpoint. The record's point is the vertex, the midpoint, or for a face the surface
  /// point. Logarithmic, once the mesh's accelerator is built.
  /// @param type kVertexType, kFaceType or kEdgeType; others fail with kInvalidParameter
  /// @return failure, with an index of -1, for a mesh without faces and a path that is gone
  MStatus closestComponent(const MDagPath& mesh, const MPoint& worldPoint, int type,
                           closestComponentRecord& found) const;

  /// The component of a mesh under a pixel of a view.
  ///
  /// A vertex within kVertexTolerance comes before an edge within kEdgeTolerance, and that before
  /// the face the pixel lies on; `type` narrows that to one kind. Among several vertices or edges
  /// the nearest in depth wins; depths that differ by less than the tolerance shows there count as
  /// one, and then the nearest to the pixel wins, then the lower index. In a shaded view what the
  /// mesh itself or another mesh hides is not picked, unless the view sees through them. Components
  /// without faces are not found.
  ///
  /// Looks along some forty rays around the pixel, for faces alone along one, so it costs the
  /// logarithm of the mesh, and in a shaded view a box for each mesh of the scene: good for every
  /// step of a hover. Vertices and edges that lie between the rays, of faces narrower than 3 pixels
  /// that stand alone, may be missed.
  /// @param found the edge's point is its place nearest to the pixel; nothing under the cursor
  /// leaves an index of -1
  /// @return failure for a view without a camera and a path that is gone; nothing under the cursor
  /// is a success
  MStatus componentUnderCursor(const M3dView& view, int x, int y, const MDagPath& mesh, int type,
                               closestComponentRecord& found) const;
};
