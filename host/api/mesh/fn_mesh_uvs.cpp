#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>

#include <algorithm>

#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/id_arrays.h"

namespace host::api {
namespace {

/// The mesh and the index of the UV set that a query names.
scene::MeshDataPtr readUvSet(const MFnMesh& set, const MString* name, int& index, MStatus& status) {
  auto data = readMesh(set, &status);
  if (!data) return nullptr;
  index = uvSetIndex(data->mesh, name);
  if (index >= 0) return data;
  status = MStatus::kInvalidParameter;
  return nullptr;
}

/// Edits one UV set of the mesh: `change(mesh, uvs)` with the set unshared.
template <class Change>
MStatus editUvSet(const MFnMesh& set, const MString* name, Change change) {
  return editAttributes(set, nullptr, [&](mesh::Mesh& mesh) -> MStatus {
    const int index = uvSetIndex(mesh, name);
    return index < 0 ? MStatus(MStatus::kInvalidParameter) : change(mesh, mesh.editUvSet(index));
  });
}

bool isUv(const mesh::UvSet& uvs, int id) {
  return id >= 0 && at(id) < uvs.points.size();
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::editUvSet;
using api::isUv;
using api::readUvSet;

int MFnMesh::numUVs(MStatus* status) const {
  return numUVs(MString(), status);
}
int MFnMesh::numUVs(const MString& uvSet, MStatus* status) const {
  MStatus code;
  int set = -1;
  const auto data = readUvSet(*this, &uvSet, set, code);
  api::setStatus(status, code.statusCode());
  return data ? static_cast<int>(data->mesh.uvSet(set).points.size()) : 0;
}

MStatus MFnMesh::getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const auto data = readUvSet(*this, uvSet, set, status);
  if (!data) return status;
  const auto& points = data->mesh.uvSet(set).points;
  float* u = api::Access::overwrite(uArray, static_cast<unsigned int>(points.size()));
  float* v = api::Access::overwrite(vArray, static_cast<unsigned int>(points.size()));
  for (std::size_t i = 0; i < points.size(); ++i) {
    u[i] = points[i].u;
    v[i] = points[i].v;
  }
  return MStatus::kSuccess;
}

MStatus MFnMesh::setUVs(const MFloatArray& uArray, const MFloatArray& vArray,
                        const MString* uvSet) {
  if (uArray.length() != vArray.length()) return MStatus::kInvalidParameter;
  return editUvSet(*this, uvSet, [&](mesh::Mesh&, mesh::UvSet& uvs) -> MStatus {
    // More UVs than before are added; fewer would leave corners without theirs.
    if (uArray.length() < uvs.points.size()) return MStatus::kInvalidParameter;
    uvs.points.resize(uArray.length());
    for (unsigned int i = 0; i < uArray.length(); ++i) uvs.points[i] = {uArray[i], vArray[i]};
    return MStatus::kSuccess;
  });
}

MStatus MFnMesh::getUV(int uvId, float& u, float& v, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const auto data = readUvSet(*this, uvSet, set, status);
  if (!data) return status;
  const mesh::UvSet& uvs = data->mesh.uvSet(set);
  if (!isUv(uvs, uvId)) return MStatus::kInvalidParameter;
  u = uvs.points[at(uvId)].u;
  v = uvs.points[at(uvId)].v;
  return MStatus::kSuccess;
}

MStatus MFnMesh::setUV(int uvId, float u, float v, const MString* uvSet) {
  return editUvSet(*this, uvSet, [&](mesh::Mesh&, mesh::UvSet& uvs) -> MStatus {
    if (uvId < 0) return MStatus::kInvalidParameter;
    // One past the last adds a UV; that is how meshes get theirs one by one.
    if (at(uvId) > uvs.points.size()) return MStatus::kInvalidParameter;
    if (at(uvId) == uvs.points.size()) uvs.points.emplace_back();
    uvs.points[at(uvId)] = {u, v};
    return MStatus::kSuccess;
  });
}

MStatus MFnMesh::getPolygonUV(int polygonId, int vertexIndex, float& u, float& v,
                              const MString* uvSet) const {
  int id = -1;
  const MStatus status = getPolygonUVid(polygonId, vertexIndex, id, uvSet);
  return status ? getUV(id, u, v, uvSet) : status;
}
MStatus MFnMesh::getPolygonUVid(int polygonId, int vertexIndex, int& uvId,
                                const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const auto data = readUvSet(*this, uvSet, set, status);
  if (!data) return status;
  const CornerId corner = api::localCorner(data->mesh, polygonId, vertexIndex);
  if (corner == kNone) return MStatus::kInvalidParameter;
  const UvId id = data->mesh.cornerUv(set, corner);
  if (id == kNone) return MStatus::kFailure;
  uvId = id;
  return MStatus::kSuccess;
}

MStatus MFnMesh::assignUV(int polygonId, int vertexIndex, int uvId, const MString* uvSet) {
  return editUvSet(*this, uvSet, [&](mesh::Mesh& mesh, mesh::UvSet& uvs) -> MStatus {
    const CornerId corner = api::localCorner(mesh, polygonId, vertexIndex);
    if (corner == kNone || !isUv(uvs, uvId)) return MStatus::kInvalidParameter;
    uvs.cornerIds.resize(at(mesh.cornerCount()), kNone);
    // A face has UVs at all corners or at none, so the first assignment holds for all of its
    // corners.
    const CornerId first = mesh.firstCorner(polygonId);
    for (CornerId c = first; c < first + mesh.faceSize(polygonId); ++c)
      if (UvId& id = uvs.cornerIds[c]; id == kNone || c == corner) id = uvId;
    return MStatus::kSuccess;
  });
}

MStatus MFnMesh::assignUVs(const MIntArray& uvCounts, const MIntArray& uvIds,
                           const MString* uvSet) {
  return editUvSet(*this, uvSet, [&](mesh::Mesh& mesh, mesh::UvSet& uvs) -> MStatus {
    if (uvCounts.length() != static_cast<unsigned int>(mesh.faceCount()))
      return MStatus::kInvalidParameter;
    for (const int id : uvIds)
      if (!isUv(uvs, id)) return MStatus::kInvalidParameter;
    PerElement<CornerId, UvId> ids(mesh.cornerCount(), kNone);
    const int* next = uvIds.begin();
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      const int count = uvCounts[static_cast<unsigned int>(f)];
      if (count == 0) continue;
      if (count != mesh.faceSize(f) || uvIds.end() - next < count)
        return MStatus::kInvalidParameter;
      std::copy(next, next + count, ids.begin() + mesh.firstCorner(f));
      next += count;
    }
    if (next != uvIds.end()) return MStatus::kInvalidParameter;
    if (uvIds.length() == 0) ids.clear();  // as where no face ever had any
    uvs.cornerIds = std::move(ids);
    return MStatus::kSuccess;
  });
}

MStatus MFnMesh::getAssignedUVs(MIntArray& uvCounts, MIntArray& uvIds, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const auto data = readUvSet(*this, uvSet, set, status);
  if (!data) return status;
  const mesh::Mesh& mesh = data->mesh;
  int* counts = api::Access::overwrite(uvCounts, static_cast<unsigned int>(mesh.faceCount()));
  std::vector<UvId> ids;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f);
    const bool hasUvs = mesh.cornerUv(set, first) != kNone;
    counts[f] = hasUvs ? mesh.faceSize(f) : 0;
    const auto& all = mesh.uvSet(set).cornerIds;
    if (hasUvs) ids.insert(ids.end(), all.begin() + first, all.begin() + first + mesh.faceSize(f));
  }
  uvIds = api::toArray(ids);
  return MStatus::kSuccess;
}

MStatus MFnMesh::clearUVs(const MString* uvSet) {
  return editUvSet(*this, uvSet, [](mesh::Mesh&, mesh::UvSet& uvs) {
    uvs.points.clear();
    uvs.cornerIds.clear();
    return MStatus::kSuccess;
  });
}
