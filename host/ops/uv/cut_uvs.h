#pragma once

#include <span>

#include "host/mesh/mesh.h"

namespace host::ops {

struct CutUvsOptions {
  double gap = 0;  ///< how far the sides part, as a fraction of the way to their neighbours' middle
};

struct CutUvsResult {
  Index cut = 0;     ///< edges that were no borders of the map and are now
  Index closed = 0;  ///< edges that stayed closed: a way of one edge that meets no border parts
                     ///< nothing
};

/// Cuts a UV set along edges of the mesh, which become borders of the map.
///
/// At every end of an edge, the faces around it that no way leads to across uncut edges get a UV of
/// their own, in place of the shared one and at its place; the ones of the lowest corner keep the
/// old UV. A way that ends inside the map is open up to its last vertex but one, which is all that
/// UVs can say. New UVs follow in vertex and corner order. Edges of faces without UVs, borders and
/// edges that are cut already don't change. Costs what is around the edges, and the copying of a
/// set that is shared.
CutUvsResult cutUvs(mesh::Mesh& mesh, int uvSet, std::span<const EdgeId> edges,
                    const CutUvsOptions& options = {});

/// Gives each fan of faces at the vertices a UV of its own, where fans that no face edge of the map
/// joins share one: what meets in a point only can't lie flat together. The first fan at a vertex
/// keeps the UV; new ones follow behind the others.
void partFans(mesh::Mesh& mesh, int uvSet, std::span<const VertexId> vertices);

}  // namespace host::ops
