#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct WedgeFacesOptions {
  double angle = 0;   ///< radians; positive lifts faces along their normals
  int divisions = 1;  ///< steps of the turn, at least 1
  /// Edges that faces turn about. A connected patch turns about the lowest listed edge on its rim,
  /// and along all listed ones on that line the patch stays joined.
  std::vector<EdgeId> edges;
  /// For patches without a listed edge, in `mesh` space; patches stay as they are when it is zero.
  math::Vec3 axis;
  math::Vec3 center;
};

/// Turns connected patches of faces about an edge or an axis; faces join their rim to what they
/// came from.
///
/// The faces keep their ids and end at the last step; the sides follow all faces, rim edge after
/// rim edge and along each from the start to the end: quads, and triangles where an end lies on the
/// edge turned about. Sides take the corner data of the rim, so they have no room in a map; side
/// edges along the turn are smooth, the rims keep theirs. Linear in the mesh.
/// @return the sides, or an error for bad ids or divisions, with `mesh` untouched.
[[nodiscard]] Result<std::vector<FaceId>> wedgeFaces(Mesh& mesh, std::span<const FaceId> faces,
                                                     const WedgeFacesOptions& options);

}  // namespace host::ops
