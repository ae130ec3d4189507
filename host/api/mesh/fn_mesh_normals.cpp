#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>

#include "host/api/mesh/fn_mesh.h"
#include "host/base/parallel.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"

namespace host::api {
namespace {

MFloatVector toMFloatVector(const MVector& v) {
  return MFloatVector(static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
}

/// The mesh and the way into `space` for one normal query.
scene::MeshDataPtr prepare(const MFnMesh& set, MSpace::Space space,
                           std::optional<math::Matrix4>& toSpace, MStatus& status) {
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
  return math::Vec3(mesh.cornerNormals()[at(corner)]);
}

/// The vertex normals of all vertices, each face's own worked out once.
std::vector<math::Vec3f> vertexNormals(const mesh::Mesh& mesh, bool angleWeighted) {
  if (angleWeighted) return mesh::computeVertexNormals(mesh);
  const std::vector<math::Vec3f> ofFaces = mesh::computeFaceNormals(mesh);
  const mesh::Adjacency& adjacency = mesh.adjacency();
  PerElement<VertexId, math::Vec3f> normals(mesh.vertexCount());
  parallelFor(normals.size(), 20'000, [&](std::size_t begin, std::size_t end) {
    for (std::size_t v = begin; v < end; ++v) {
      math::Vec3 sum;
      for (const FaceId f : adjacency.vertexFaces(static_cast<VertexId>(v)))
        sum += math::Vec3(ofFaces[at(f)]);
      normals[v] = math::normalized(sum).toFloat();
    }
  });
  return normals;
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

MStatus MFnMesh::getVertexNormal(int vertexId, bool angleWeighted, MVector& normal,
                                 MSpace::Space space) const {
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

MStatus MFnMesh::getVertexNormals(bool angleWeighted, MFloatVectorArray& normals,
                                  MSpace::Space space) const {
  MStatus status;
  std::optional<math::Matrix4> toSpace;
  const auto data = prepare(*this, space, toSpace, status);
  if (!data) return status;
  const std::vector<math::Vec3f> own = api::vertexNormals(data->mesh, angleWeighted);
  auto* out = api::Access::overwrite(normals, static_cast<unsigned int>(own.size()));
  for (std::size_t v = 0; v < own.size(); ++v)
    out[v] = toSpace ? api::toMFloatVector(api::normalIn(math::Vec3(own[v]), toSpace))
                     : MFloatVector(own[v].x, own[v].y, own[v].z);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getFaceVertexNormal(int faceIndex, int vertexIndex, MVector& normal,
                                     MSpace::Space space) const {
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

MStatus MFnMesh::getFaceVertexNormals(int faceIndex, MFloatVectorArray& normals,
                                      MSpace::Space space) const {
  MStatus status;
  std::optional<math::Matrix4> toSpace;
  const auto data = prepare(*this, space, toSpace, status);
  if (!data) return status;
  if (!api::isFace(data->mesh, faceIndex)) return MStatus::kInvalidParameter;
  normals.clear();
  for (Index i = 0; i < data->mesh.faceSize(faceIndex); ++i)
    normals.append(api::toMFloatVector(api::normalIn(
        api::cornerNormal(data->mesh, data->mesh.firstCorner(faceIndex) + i), toSpace)));
  return MStatus::kSuccess;
}
