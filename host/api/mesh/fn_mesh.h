#pragma once

#include <maya/MDGModifier.h>

#include "host/api/mesh/mesh_target.h"
#include "host/spatial/surface.h"

namespace host::api {

/// The mesh of mesh data, kept alive by whoever has the pointer.
[[nodiscard]] inline std::shared_ptr<const mesh::Mesh> sharedMesh(const scene::MeshDataPtr& data) {
  return {data, &data->mesh};
}

/// The target of a function set; null when nothing is attached. Kept in the set's handle until it
/// is attached elsewhere.
[[nodiscard]] const MeshTarget& targetOf(const MFnMesh& set);

/// The surface of a function set's mesh in a space, for ray and closest-point questions; null, with
/// the status saying why, when there is none. Kept in the set's handle, so that many questions cost
/// little more than their answers: it is made anew when another mesh arrives or the space has
/// moved. Good until the next question to the set.
[[nodiscard]] const spatial::Surface* surfaceOf(const MFnMesh& set, MSpace::Space space,
                                                MStatus& status);
/// Lets go of the accelerators that the set's surface holds.
void forgetSurface(const MFnMesh& set);

/// The mesh of a function set for one read; the status says why there is none.
[[nodiscard]] scene::MeshDataPtr readMesh(const MFnMesh& set, MStatus* status = nullptr);

/// Writes a mesh whose corner data, flags or creases were changed. With a modifier a shape's edit
/// is done through it, so that its `undoIt` takes it back.
[[nodiscard]] MStatus writeAttributes(const MFnMesh& set, mesh::Mesh mesh,
                                      MDGModifier* modifier = nullptr);
/// The same for a mesh with other faces.
[[nodiscard]] MStatus writeMesh(const MFnMesh& set, mesh::Mesh mesh,
                                MDGModifier* modifier = nullptr);

/// Lets `change(mesh)` edit a copy of the mesh and writes it when the status that comes back is
/// good.
template <class Change>
[[nodiscard]] MStatus editAttributes(const MFnMesh& set, MDGModifier* modifier, Change change) {
  MStatus status;
  const auto data = readMesh(set, &status);
  if (!data) return status;
  mesh::Mesh mesh = data->mesh;
  status = change(mesh);
  return status ? writeAttributes(set, std::move(mesh), modifier) : status;
}

/// The same for an operation on the whole mesh that gives a Result.
template <class Operation>
[[nodiscard]] MStatus editMesh(const MFnMesh& set, MDGModifier* modifier, Operation operation) {
  MStatus status;
  const auto data = readMesh(set, &status);
  if (!data) return status;
  mesh::Mesh mesh = data->mesh;
  status = toStatus(operation(mesh), MStatus::kInvalidParameter);
  return status ? writeMesh(set, std::move(mesh), modifier) : status;
}

[[nodiscard]] inline bool isVertex(const mesh::Mesh& mesh, int id) {
  return id >= 0 && id < mesh.vertexCount();
}
[[nodiscard]] inline bool isEdge(const mesh::Mesh& mesh, int id) {
  return id >= 0 && id < mesh.edgeCount();
}
[[nodiscard]] inline bool isFace(const mesh::Mesh& mesh, int id) {
  return id >= 0 && id < mesh.faceCount();
}

/// Corner of a face that stands at a vertex; kNone when the face has none there.
[[nodiscard]] CornerId cornerAt(const mesh::Mesh& mesh, FaceId face, VertexId vertex);
/// Corner number `local` of a face; kNone when there is no such face or corner.
[[nodiscard]] inline CornerId localCorner(const mesh::Mesh& mesh, int face, int local) {
  if (!isFace(mesh, face) || local < 0 || local >= mesh.faceSize(face)) return kNone;
  return mesh.firstCorner(face) + local;
}

}  // namespace host::api
