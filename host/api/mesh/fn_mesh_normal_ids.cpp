#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MVectorArray.h>

#include <algorithm>

#include "host/api/mesh/derived.h"
#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/normal_table.h"
#include "host/mesh/adjacency.h"

namespace host::api {

std::shared_ptr<const ops::NormalIds> normalIdsOf(const scene::MeshDataPtr& data) {
  static LatestDerived<ops::NormalIds> latest;
  return latest.of(data, 0, [](const mesh::Mesh& mesh) { return ops::numberNormals(mesh); });
}

namespace {

math::Vec3 normalAt(const mesh::Mesh& mesh, CornerId corner) {
  return math::Vec3(mesh.cornerNormals()[at(corner)]);
}

/// A normal given in a space, as the mesh stores it. Normals go into a space by its inverse
/// transpose, so they come back by the transpose, which is the way that a matrix' inverse takes
/// them.
math::Vec3f storedNormal(const MVector& normal, const std::optional<math::Matrix4>& fromSpace) {
  const math::Vec3 n = toVec3(normal);
  return math::normalized(fromSpace ? math::transformNormal(n, *fromSpace) : n).toFloat();
}

/// The way from a space back to the mesh, when they differ; fails when there is none.
MStatus wayBack(const MFnMesh& set, MSpace::Space space, std::optional<math::Matrix4>& fromSpace) {
  std::optional<math::Matrix4> toSpace;
  const MStatus status = targetOf(set).spaceMatrix(space, toSpace);
  if (!status || !toSpace) return status;
  fromSpace = math::inverse(*toSpace);
  return fromSpace ? MStatus::kSuccess : MStatus::kFailure;
}

/// Sets and locks normals corner by corner.
class NormalEdit {
 public:
  explicit NormalEdit(mesh::Mesh& mesh) : mesh_(mesh), now_(mesh.lockedNormals()) {
    const auto count = at(mesh.cornerCount());
    now_.normals.resize(count);
    now_.locked.resize(count, 0);
  }
  void set(CornerId corner, const math::Vec3f& normal) {
    now_.normals[at(corner)] = normal;
    now_.locked[at(corner)] = 1;
  }
  /// Locks a corner at the normal that it shows, or gives it back to its face.
  void lock(CornerId corner, bool isLocked) {
    const auto c = at(corner);
    if (isLocked && !now_.locked[c]) now_.normals[c] = mesh_.cornerNormals()[c];
    if (!isLocked) now_.normals[c] = {};
    now_.locked[c] = isLocked ? 1 : 0;
  }
  void finish() {
    const bool isAny =
        std::any_of(now_.locked.begin(), now_.locked.end(), [](auto flag) { return flag != 0; });
    mesh_.setLockedNormals(isAny ? std::move(now_) : mesh::LockedNormals());
  }

 private:
  mesh::Mesh& mesh_;
  mesh::LockedNormals now_;
};

MStatus lockAtVertices(const MFnMesh& set, const MIntArray& vertices, bool isLocked) {
  return editAttributes(set, nullptr, [&](mesh::Mesh& mesh) -> MStatus {
    NormalEdit edit(mesh);
    for (const int v : vertices) {
      if (!isVertex(mesh, v)) return MStatus::kInvalidParameter;
      for (const CornerId corner : mesh.adjacency().vertexCorners(v)) edit.lock(corner, isLocked);
    }
    edit.finish();
    return MStatus::kSuccess;
  });
}

MStatus lockAtCorners(const MFnMesh& set, const MIntArray& faces, const MIntArray& vertices,
                      bool isLocked) {
  if (faces.length() != vertices.length()) return MStatus::kInvalidParameter;
  return editAttributes(set, nullptr, [&](mesh::Mesh& mesh) -> MStatus {
    NormalEdit edit(mesh);
    for (unsigned int i = 0; i < faces.length(); ++i) {
      const CornerId corner =
          isFace(mesh, faces[i]) ? cornerAt(mesh, faces[i], vertices[i]) : kNone;
      if (corner == kNone) return MStatus::kInvalidParameter;
      edit.lock(corner, isLocked);
    }
    edit.finish();
    return MStatus::kSuccess;
  });
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::editAttributes;
using api::readMesh;
using api::setStatus;

unsigned int MFnMesh::numNormals(MStatus* status) const {
  const auto data = readMesh(*this, status);
  return data ? static_cast<unsigned int>(api::normalIdsOf(data)->count()) : 0;
}

MStatus MFnMesh::getNormals(MFloatVectorArray& normals, MSpace::Space space) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  std::optional<math::Matrix4> toSpace;
  status = api::targetOf(*this).spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto ids = api::normalIdsOf(data);
  auto* out = api::Access::overwrite(normals, static_cast<unsigned int>(ids->count()));
  for (const CornerId corner : ids->corners)
    *out++ = MFloatVector(api::normalIn(api::normalAt(data->mesh, corner), toSpace));
  return MStatus::kSuccess;
}

MStatus MFnMesh::setNormals(const MFloatVectorArray& normals, MSpace::Space space) {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  const auto ids = api::normalIdsOf(data);
  if (normals.length() != static_cast<unsigned int>(ids->count()))
    return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> fromSpace;
  status = api::wayBack(*this, space, fromSpace);
  if (!status) return status;
  return editAttributes(*this, nullptr, [&](mesh::Mesh& mesh) -> MStatus {
    api::NormalEdit edit(mesh);
    for (std::size_t c = 0; c < ids->ofCorner.size(); ++c)
      edit.set(static_cast<CornerId>(c),
               api::storedNormal(MVector(normals[static_cast<unsigned int>(ids->ofCorner[c])]),
                                 fromSpace));
    edit.finish();
    return MStatus::kSuccess;
  });
}

const float* MFnMesh::getRawNormals(MStatus* status) const {
  const auto data = readMesh(*this, status);
  if (!data) return nullptr;
  // Kept for the caller until the normals of another mesh are asked for.
  static api::LatestDerived<std::vector<math::Vec3f>> latest;
  const auto raw = latest.of(data, 0, [&](const mesh::Mesh& mesh) {
    std::vector<math::Vec3f> normals;
    for (const CornerId corner : api::normalIdsOf(data)->corners)
      normals.push_back(mesh.cornerNormals()[at(corner)]);
    return normals;
  });
  return raw->empty() ? nullptr : &raw->data()->x;
}

MStatus MFnMesh::getNormalIds(MIntArray& normalIdCounts, MIntArray& normals) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  const auto ids = api::normalIdsOf(data);
  int* count =
      api::Access::overwrite(normalIdCounts, static_cast<unsigned int>(data->mesh.faceCount()));
  for (FaceId f = 0; f < data->mesh.faceCount(); ++f) *count++ = data->mesh.faceSize(f);
  normals = MIntArray(ids->ofCorner.data(), static_cast<unsigned int>(ids->ofCorner.size()));
  return MStatus::kSuccess;
}

MStatus MFnMesh::getFaceNormalIds(int faceIndex, MIntArray& normals) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (!api::isFace(data->mesh, faceIndex)) return MStatus::kInvalidParameter;
  const auto ids = api::normalIdsOf(data);
  normals = MIntArray(ids->ofCorner.data() + data->mesh.firstCorner(faceIndex),
                      static_cast<unsigned int>(data->mesh.faceSize(faceIndex)));
  return MStatus::kSuccess;
}

MStatus MFnMesh::setVertexNormal(const MVector& normal, int vertexId, MSpace::Space space,
                                 MDGModifier* modifier) {
  MVectorArray normals(1, normal);
  MIntArray vertices(1, vertexId);
  return setVertexNormals(normals, vertices, space, modifier);
}
MStatus MFnMesh::setVertexNormals(MVectorArray& normals, MIntArray& vertexList, MSpace::Space space,
                                  MDGModifier* modifier) {
  if (normals.length() != vertexList.length()) return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> fromSpace;
  const MStatus status = api::wayBack(*this, space, fromSpace);
  if (!status) return status;
  return editAttributes(*this, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    api::NormalEdit edit(mesh);
    for (unsigned int i = 0; i < vertexList.length(); ++i) {
      if (!api::isVertex(mesh, vertexList[i])) return MStatus::kInvalidParameter;
      const math::Vec3f normal = api::storedNormal(normals[i], fromSpace);
      for (const CornerId corner : mesh.adjacency().vertexCorners(vertexList[i]))
        edit.set(corner, normal);
    }
    edit.finish();
    return MStatus::kSuccess;
  });
}

namespace {

MStatus setCornerNormals(const MFnMesh& set, const MVectorArray& normals, const MIntArray& faces,
                         const MIntArray& vertices, MSpace::Space space, MDGModifier* modifier) {
  if (normals.length() != faces.length() || normals.length() != vertices.length())
    return MStatus::kInvalidParameter;
  std::optional<math::Matrix4> fromSpace;
  const MStatus status = api::wayBack(set, space, fromSpace);
  if (!status) return status;
  return editAttributes(set, modifier, [&](mesh::Mesh& mesh) -> MStatus {
    api::NormalEdit edit(mesh);
    for (unsigned int i = 0; i < faces.length(); ++i) {
      const CornerId corner =
          api::isFace(mesh, faces[i]) ? api::cornerAt(mesh, faces[i], vertices[i]) : kNone;
      if (corner == kNone) return MStatus::kInvalidParameter;
      edit.set(corner, api::storedNormal(normals[i], fromSpace));
    }
    edit.finish();
    return MStatus::kSuccess;
  });
}

}  // namespace

MStatus MFnMesh::setFaceVertexNormal(const MVector& normal, int faceId, int vertexId,
                                     MSpace::Space space, MDGModifier* modifier) {
  return setCornerNormals(*this, MVectorArray(1, normal), MIntArray(1, faceId),
                          MIntArray(1, vertexId), space, modifier);
}
MStatus MFnMesh::setFaceVertexNormals(MVectorArray& normals, MIntArray& faceList,
                                      MIntArray& vertexList, MSpace::Space space) {
  return setCornerNormals(*this, normals, faceList, vertexList, space, nullptr);
}

bool MFnMesh::isNormalLocked(int normalId, MStatus* status) const {
  const auto data = readMesh(*this, status);
  if (!data) return false;
  const auto ids = api::normalIdsOf(data);
  if (normalId < 0 || normalId >= ids->count()) {
    setStatus(status, MStatus::kInvalidParameter);
    return false;
  }
  return data->mesh.isNormalLocked(ids->corners[at(normalId)]);
}
MStatus MFnMesh::lockVertexNormals(MIntArray& vertexList) {
  return api::lockAtVertices(*this, vertexList, true);
}
MStatus MFnMesh::unlockVertexNormals(MIntArray& vertexList) {
  return api::lockAtVertices(*this, vertexList, false);
}
MStatus MFnMesh::lockFaceVertexNormals(MIntArray& faceList, MIntArray& vertexList) {
  return api::lockAtCorners(*this, faceList, vertexList, true);
}
MStatus MFnMesh::unlockFaceVertexNormals(MIntArray& faceList, MIntArray& vertexList) {
  return api::lockAtCorners(*this, faceList, vertexList, false);
}
