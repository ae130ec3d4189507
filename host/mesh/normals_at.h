#pragma once

#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// Where the normals at some vertices go.
struct NormalsAt {
  std::vector<CornerId> corners;     ///< all corners at the vertices
  std::vector<Vec3f> cornerNormals;  ///< one each, locked ones as set: as Mesh::cornerNormals()
  std::vector<Vec3f> vertexNormals;  ///< one a vertex, as computeVertexNormals()
};

/// The normals at some vertices alone, to the bit as they come out for the whole mesh. Linear in
/// the faces there.
void computeNormalsAt(const Mesh& mesh, std::span<const VertexId> vertices, NormalsAt& out);

}  // namespace host::mesh
