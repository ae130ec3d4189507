#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct SubdivideFacesOptions {
  enum class Mode { Quads, Triangles };
  Mode mode =
      Mode::Quads;    ///< a quad for each corner, or a triangle for each edge around a new centre
  int divisions = 1;  ///< how often the faces are divided, 1 to 8
};

struct FacesResult {
  std::vector<FaceId> faces;       ///< what the listed faces became, ascending
  std::vector<VertexId> vertices;  ///< new vertices, ascending
};

/// Divides faces around their centres.
///
/// Quads: edges of listed faces are cut in the middle, and each corner gets a quad; neighbours get
/// more corners. Triangles: edges stay whole. The piece at a face's first corner keeps its id, the
/// others follow the old faces, face by face. New vertices: middles of edges in ascending order,
/// then centres. UVs and colours are interpolated; pieces of an edge keep its smoothness and
/// crease, new edges are smooth. Linear in the mesh for each division.
/// @return an error for a bad id or number, with `mesh` untouched.
[[nodiscard]] Result<FacesResult> subdivideFaces(Mesh& mesh, std::span<const FaceId> faces,
                                                 const SubdivideFacesOptions& options = {});

/// Replaces each face by a fan of triangles around a new centre vertex.
///
/// Rim corners keep their UVs and colours; the centre takes the mean, per UV set. A face listed
/// twice is poked once. The triangle at the first corner keeps the face's id, the others follow the
/// old faces, face by face. Linear.
/// @return new faces and centres in input order of the ids, or an error naming the bad face with
/// `mesh` untouched.
[[nodiscard]] Result<FacesResult> pokeFaces(Mesh& mesh, std::span<const FaceId> faces);

}  // namespace host::ops
