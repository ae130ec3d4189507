#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct RemeshOptions {
  double longest = 1;          ///< edges longer than this are split, cm
  double collapseShare = 0.6;  ///< edges shorter than this share of `longest` are collapsed
  double smoothing = 1;        ///< share of the way to the middle that vertices relax, 0 to 1
  int rounds = 8;
  bool keepsBorders = false;  ///< edges around the faces are not split either
  Index mostTriangles = 10'000'000;
};

/// Replaces faces by triangles of even size that follow the same surface.
///
/// Edges that are too long are split, short ones collapsed, others flipped towards six edges a
/// vertex, and vertices relax in the surface and go back to it, in turns (Botsch and Kobbelt 2004).
/// What must stay does: borders, hard edges, creases, edges of other than two of the faces, and
/// borders of UV maps; they are split and on straight runs collapsed, but never left.
///
/// Vertices outside keep their ids; vertices and triangles that are new follow. UVs, colours and
/// locked normals are those of the nearest place. Near linear in the triangles made and replaced.
/// @return the new faces, or an error for bad ids or options or when there would be too many
/// triangles, with `mesh` untouched.
[[nodiscard]] Result<std::vector<FaceId>> remeshFaces(Mesh& mesh, std::span<const FaceId> faces,
                                                      const RemeshOptions& options = {});

}  // namespace host::ops
