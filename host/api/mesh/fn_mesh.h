#pragma once

#include "host/api/mesh/mesh_target.h"

namespace host::api {

/// The target of a function set; null when nothing is attached.
[[nodiscard]] MeshTarget targetOf(const MFnMesh& set);

/// The mesh of a function set for one read; the status says why there is none.
[[nodiscard]] scene::MeshDataPtr readMesh(const MFnMesh& set, MStatus* status = nullptr);

[[nodiscard]] inline bool isVertex(const mesh::Mesh& mesh, int id) { return id >= 0 && id < mesh.vertexCount(); }
[[nodiscard]] inline bool isEdge(const mesh::Mesh& mesh, int id) { return id >= 0 && id < mesh.edgeCount(); }
[[nodiscard]] inline bool isFace(const mesh::Mesh& mesh, int id) { return id >= 0 && id < mesh.faceCount(); }

/// Corner of a face that stands at a vertex; kNone when the face has none there.
[[nodiscard]] CornerId cornerAt(const mesh::Mesh& mesh, FaceId face, VertexId vertex);

}  // namespace host::api
