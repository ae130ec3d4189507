#include "host/ops/topology/delete_faces.h"

#include "host/mesh/rebuild.h"

namespace host::ops {

Result<EditMaps> deleteFaces(Mesh& mesh, std::span<const FaceId> faces) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  PerElement<FaceId, std::uint8_t> keep(mesh.faceCount(), 1);
  for (const FaceId f : faces) keep[f] = 0;
  EditMaps maps;
  FaceId next = 0;
  for (const std::uint8_t isKept : keep) maps.faces.push_back(isKept != 0 ? next++ : kNone);
  mesh::Rebuilt rebuilt = mesh::keepFaces(mesh, keep);
  maps.vertices = std::move(rebuilt.vertexMap);
  maps.edges = std::move(rebuilt.edgeMap);
  mesh = std::move(rebuilt.mesh);
  return maps;
}

}  // namespace host::ops
