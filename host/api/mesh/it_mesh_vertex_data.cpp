#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MItMeshVertex.h>

#include <algorithm>

#include "host/api/mesh/color_edit.h"
#include "host/api/mesh/mesh_walk.h"
#include "host/api/mesh/normal_table.h"

// UVs, colours and normal numbers at a vertex.

using namespace host;
using api::cornerColor;
using api::MeshWalk;
using api::setStatus;
using api::standing;
using api::walkOf;

namespace {

std::span<const CornerId> corners(const MeshWalk& walk) {
  return walk.adjacency().vertexCorners(walk.current());
}

/// The walk where it stands, and the UV set that a query names.
const MeshWalk* atUvSet(const api::Handle& handle, const MString* name, int& set, MStatus& status) {
  const MeshWalk* walk = standing(handle, &status);
  if (!walk) return nullptr;
  set = api::uvSetIndex(walk->mesh(), name);
  if (set >= 0) return walk;
  status = MStatus::kInvalidParameter;
  return nullptr;
}
const MeshWalk* atColorSet(const api::Handle& handle, const MString* name, int& set,
                           MStatus& status) {
  const MeshWalk* walk = standing(handle, &status);
  if (!walk) return nullptr;
  set = api::colorSetIndex(walk->mesh(), name);
  if (set >= 0) return walk;
  status = MStatus::kInvalidParameter;
  return nullptr;
}

CornerId cornerInFace(const MeshWalk& walk, int face) {
  for (const CornerId corner : corners(walk))
    if (walk.adjacency().cornerFace(corner) == face) return corner;
  return kNone;
}

/// The UV ids at the vertex, each once, in the order of the corners.
std::vector<UvId> uvIds(const MeshWalk& walk, int set) {
  std::vector<UvId> ids;
  for (const CornerId corner : corners(walk)) {
    const UvId id = walk.mesh().cornerUv(set, corner);
    if (id != kNone && std::find(ids.begin(), ids.end(), id) == ids.end()) ids.push_back(id);
  }
  return ids;
}

}  // namespace

MStatus MItMeshVertex::getNormalIndices(MIntArray& normals) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  const auto ids = api::normalIdsOf(walk->data());
  normals.clear();
  for (const CornerId corner : corners(*walk)) normals.append(ids->ofCorner[at(corner)]);
  return status;
}

MStatus MItMeshVertex::getUV(float2& uvPoint, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  const auto ids = uvIds(*walk, set);
  if (ids.empty()) return MStatus::kFailure;
  const auto& uv = walk->mesh().uvSet(set).points[at(ids.front())];
  uvPoint[0] = uv.u;
  uvPoint[1] = uv.v;
  return MStatus::kSuccess;
}
MStatus MItMeshVertex::setUV(float2& uvPoint, const MString* uvSet) {
  // All corners at the vertex come to share one UV.
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  mesh::Mesh mesh = walk->mesh();
  const auto ids = uvIds(*walk, set);
  if (ids.empty()) return MStatus::kFailure;
  mesh::UvSet& uvs = mesh.editUvSet(set);
  uvs.points[at(ids.front())] = {uvPoint[0], uvPoint[1]};
  for (const CornerId corner : corners(*walk))
    if (UvId& id = uvs.cornerIds[corner]; id != kNone) id = ids.front();
  return walkOf(handle_)->writeAttributes(std::move(mesh));
}
MStatus MItMeshVertex::getUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds,
                              const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  uArray.clear();
  vArray.clear();
  faceIds.clear();
  for (const CornerId corner : corners(*walk)) {
    const UvId id = walk->mesh().cornerUv(set, corner);
    if (id == kNone) continue;
    const auto& uv = walk->mesh().uvSet(set).points[at(id)];
    uArray.append(uv.u);
    vArray.append(uv.v);
    faceIds.append(walk->adjacency().cornerFace(corner));
  }
  return faceIds.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MItMeshVertex::setUVs(MFloatArray& uArray, MFloatArray& vArray, MIntArray& faceIds,
                              const MString* uvSet) {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  if (uArray.length() != vArray.length() || uArray.length() != faceIds.length())
    return MStatus::kInvalidParameter;
  mesh::Mesh mesh = walk->mesh();
  mesh::UvSet& uvs = mesh.editUvSet(set);
  for (unsigned int i = 0; i < faceIds.length(); ++i) {
    const CornerId corner = cornerInFace(*walk, faceIds[i]);
    if (corner == kNone || mesh.cornerUv(set, corner) == kNone) return MStatus::kInvalidParameter;
    uvs.points[at(uvs.cornerIds[corner])] = {uArray[i], vArray[i]};
  }
  return walkOf(handle_)->writeAttributes(std::move(mesh));
}
MStatus MItMeshVertex::getUVIndices(MIntArray& uvIndices, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  uvIndices.clear();
  for (const CornerId corner : corners(*walk))
    if (const UvId id = walk->mesh().cornerUv(set, corner); id != kNone) uvIndices.append(id);
  return uvIndices.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MItMeshVertex::numUVs(int& uvCount, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (walk) uvCount = static_cast<int>(uvIds(*walk, set).size());
  return status;
}

bool MItMeshVertex::hasColor(MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const auto all = corners(*walk);
  return std::any_of(all.begin(), all.end(), [walk](CornerId corner) {
    return cornerColor(walk->mesh(), walk->mesh().currentColorSet(), corner) != kNone;
  });
}
bool MItMeshVertex::hasColor(int faceIndex, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  const CornerId corner = walk ? cornerInFace(*walk, faceIndex) : kNone;
  if (walk && corner == kNone) setStatus(status, MStatus::kInvalidParameter);
  return corner != kNone &&
         cornerColor(walk->mesh(), walk->mesh().currentColorSet(), corner) != kNone;
}
MStatus MItMeshVertex::getColor(MColor& color, const MString* colorSet) const {
  MColorArray colors;
  const MStatus status = getColors(colors, colorSet);
  if (!status) return status;
  return api::meanColor(colors, color);
}
MStatus MItMeshVertex::getColor(MColor& color, int faceIndex, const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atColorSet(handle_, colorSet, set, status);
  if (!walk) return status;
  const CornerId corner = cornerInFace(*walk, faceIndex);
  if (corner == kNone) return MStatus::kInvalidParameter;
  const Index id = cornerColor(walk->mesh(), set, corner);
  if (id == kNone) return MStatus::kFailure;
  color = api::toMColor(walk->mesh().colorSet(set).colors[at(id)]);
  return MStatus::kSuccess;
}
MStatus MItMeshVertex::getColors(MColorArray& colors, const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atColorSet(handle_, colorSet, set, status);
  if (!walk) return status;
  colors.clear();
  for (const CornerId corner : corners(*walk)) {
    const Index id = cornerColor(walk->mesh(), set, corner);
    colors.append(id == kNone ? api::unsetColor(nullptr)
                              : api::toMColor(walk->mesh().colorSet(set).colors[at(id)]));
  }
  return MStatus::kSuccess;
}
MStatus MItMeshVertex::getColorIndices(MIntArray& colorIndices, const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atColorSet(handle_, colorSet, set, status);
  if (!walk) return status;
  colorIndices.clear();
  for (const CornerId corner : corners(*walk))
    colorIndices.append(cornerColor(walk->mesh(), set, corner));
  return MStatus::kSuccess;
}
