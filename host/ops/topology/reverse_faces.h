#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Turns faces over: their loops run the other way, from the same first corner.
///
/// Ids, edges and points stay; UVs, colours stay with their vertices; locked normals of the faces
/// point the other way. Linear in the mesh.
/// @return an error for a bad id, with `mesh` untouched.
[[nodiscard]] Result<void> reverseFaces(Mesh& mesh, std::span<const FaceId> faces);

/// Turns faces over so that the listed ones wind alike across the edges they share.
///
/// In each piece the smaller part is turned (the one without the lowest face, if both are equal). A
/// piece that cannot be wound alike, like a Moebius strip, keeps a seam. Other data as in
/// reverseFaces().
/// @return the faces turned, ascending, or an error for a bad id with `mesh` untouched.
[[nodiscard]] Result<std::vector<FaceId>> conformFaces(Mesh& mesh, std::span<const FaceId> faces);

}  // namespace host::ops
