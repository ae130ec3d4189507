#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>

#include "host/api/mesh/fn_mesh.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"

namespace host::api {
namespace {

MFloatVector toMFloatVector(const MVector& v) {
  return MFloatVector(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
}

/// The mesh and the way into `space` for one normal query.
scene::MeshDataPtr prepare(const MFnMesh& set, MSpace::Space space, std::optional<math::Matrix4>& toSpace,
                           MStatus& status) {
  auto data = readMesh(set, &status);
  if (data) status = targetOf(set).spaceMatrix(space, toSpace);
  return status ? data : nullptr;
}

/// The plain mean of the normals of the faces at a vertex: what "not angle weighted" asks for.
math::Vec3 plainVertexNormal(const mesh::Mesh& mesh, VertexId v) {
  math::Vec3 sum;
  for (const FaceId f : mesh.adjacency().vertexFaces(v)) sum += mesh::faceNormal(mesh, f);
  return math::normalized(sum);
}

math::Vec3 vertexNormal(const mesh::Mesh& mesh, VertexId v, bool angleWeighted) {
  return angleWeighted ? mesh::vertexNormal(mesh, v) : plainVertexNormal(mesh, v);
}

math::Vec3 cornerNormal(const mesh::Mesh& mesh, CornerId corner) {
  return math::Vec3(mesh.cornerNormals()[static_cast<std::size_t>(corner)]);
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::prepare;

MStatus MFnMesh::getPolygonNormal(int polygonId, MVector& normal, MSpace::Space space) const {
  MStatus status;
  std::optional<math::Matrix4> toSpace;
  const auto data = prepare(*this, space, toSpace, status);
  if (!data) return status;
  if (!api::isFace(data->mesh, polygonId)) return MStatus::kInvalidParameter;
  normal = api::normalIn(mesh::faceNormal(data->mesh, polygonId), toSpace);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getVertexNormal(int vertexId, bool angleWeighted, MVector& normal, MSpace::Space space) const {
  MStatus status;
  std::optional<math::Matrix4> toSpace;
  const auto data = prepare(*this, space, toSpace, status);
  if (!data) return status;
  if (!api::isVertex(data->mesh, vertexId)) return MStatus::kInvalidParameter;
  normal = api::normalIn(api::vertexNormal(data->mesh, vertexId, angleWeighted), toSpace);
  return MStatus::kSuccess;
}
MStatus MFnMesh::getVertexNormal(int vertexId, MVector& normal, MSpace::Space space) const {
  return getVertexNormal(vertexId, false, normal, space);
}

MStatus MFnMesh::getVertexNormals(bool angleWeighted, MFloatVectorArray& normals, MSpace::Space space) const {
  MStatus status;
  std::optional<math::Matrix4> toSpace;
  const auto data = prepare(*this, space, toSpace, status);
  if (!data) return status;
  const mesh::Mesh& mesh = data->mesh;
  normals.setLength(static_cast<unsigned int>(mesh.vertexCount()));
  for (VertexId v = 0; v < mesh.vertexCount(); ++v)
    normals[static_cast<unsigned int>(v)] =
        api::toMFloatVector(api::normalIn(api::vertexNormal(mesh, v, angleWeighted), toSpace));
  return MStatus::kSuccess;
}

MStatus MFnMesh::getFaceVertexNormal(int faceIndex, int vertexIndex, MVector& normal, MSpace::Space space) const {
  MStatus status;
  std::optional<math::Matrix4> toSpace;
  const auto data = prepare(*this, space, toSpace, status);
  if (!data) return status;
  if (!api::isFace(data->mesh, faceIndex)) return MStatus::kInvalidParameter;
  const CornerId corner = api::cornerAt(data->mesh, faceIndex, vertexIndex);
  if (corner == kNone) return MStatus::kInvalidParameter;
  normal = api::normalIn(api::cornerNormal(data->mesh, corner), toSpace);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getFaceVertexNormals(int faceIndex, MFloatVectorArray& normals, MSpace::Space space) const {
  MStatus status;
  std::optional<math::Matrix4> toSpace;
  const auto data = prepare(*this, space, toSpace, status);
  if (!data) return status;
  if (!api::isFace(data->mesh, faceIndex)) return MStatus::kInvalidParameter;
  normals.clear();
  for (Index i = 0; i < data->mesh.faceSize(faceIndex); ++i)
    normals.append(api::toMFloatVector(
        api::normalIn(api::cornerNormal(data->mesh, data->mesh.firstCorner(faceIndex) + i), toSpace)));
  return MStatus::kSuccess;
}
