#pragma once

#include <numbers>
#include <span>

#include "host/math/matrix4.h"
#include "host/math/plane.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct MirrorOptions {
  enum class Join {
    Apart,   ///< the copy is a piece of its own
    Weld,    ///< border vertices within `distance` of the plane become one with their copies
    Bridge,  ///< border edges near the plane are joined to their copies by quads
  };
  math::Vec3 origin;           ///< a point of the mirror plane, in the space below, cm
  math::Vec3 normal{1, 0, 0};  ///< towards the side that the copy is made on
  bool cut = false;            ///< first cut the mesh at the plane and drop what lies on that side
  Join join = Join::Weld;
  double distance = 0.001;  ///< of border vertices from the plane that count as on it, cm; with
                            ///< Bridge a negative one joins all borders
  enum class FlipUvs { None, U, V };
  FlipUvs flipUvs = FlipUvs::None;  ///< mirror the copy's UVs within the unit square
  math::Matrix4 space;              ///< from object space to the one of the lengths here
  double smoothingAngle = std::numbers::pi / 6;  ///< of edges along the join, radians
};

struct MirrorResult {
  EditMaps maps;                ///< of the components before; cut faces map to what is left
  std::vector<FaceId> copies;   ///< the mirrored faces, in the order of those they copy
  std::vector<FaceId> bridges;  ///< new faces that join them
};

/// Adds the mirror image of a mesh to it.
///
/// The copy's components follow the old ones in their order, wound so that the copy is not inside
/// out. UVs, colours, smoothness, creases and hidden faces are copied, locked normals mirrored; the
/// copy's UVs are its own points unless they are welded with those at the plane: UVs are shared
/// there where both sides have the same. Welded vertices move onto the plane. A cut interpolates
/// UVs and colours along the edges it divides, and the new edges are smooth. Linear in the mesh.
/// @return what became of components, or an error for a bad number, a normal of no length, a space
/// without inverse or when the cut leaves no face, with `mesh` untouched.
[[nodiscard]] Result<MirrorResult> mirrorMesh(Mesh& mesh, const MirrorOptions& options = {});

}  // namespace host::ops
