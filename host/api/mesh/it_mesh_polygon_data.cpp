#include <maya/MColorArray.h>
#include <maya/MFloatArray.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MStringArray.h>

#include "host/api/mesh/color_edit.h"
#include "host/api/mesh/mesh_walk.h"
#include "host/api/mesh/normal_table.h"
#include "host/ops/query/uv_place.h"

// UVs, colours and normal numbers of a face. Corners are addressed by their place in the face.

using namespace host;
using api::cornerColor;
using api::MeshWalk;
using api::setStatus;
using api::standing;
using api::walkOf;

namespace {

/// A corner of the current face; kNone when it has none of that place.
CornerId cornerOf(const MeshWalk& walk, int local) {
  if (local < 0 || local >= walk.mesh().faceSize(walk.current())) return kNone;
  return walk.mesh().firstCorner(walk.current()) + local;
}
Index size(const MeshWalk& walk) {
  return walk.mesh().faceSize(walk.current());
}

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
bool hasUvsIn(const MeshWalk& walk, int set) {
  return walk.mesh().cornerUv(set, cornerOf(walk, 0)) != kNone;
}

math::Vec3 directionIn(const math::Vec3& v, const std::optional<math::Matrix4>& toSpace) {
  return math::normalized(toSpace ? math::transformVector(v, *toSpace) : v);
}

unsigned int refuse(MStatus* status) {
  setStatus(status, MStatus::kInvalidParameter);
  return ~0u;
}

}  // namespace

unsigned int MItMeshPolygon::normalIndex(int localVertexIndex, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  const CornerId corner = walk ? cornerOf(*walk, localVertexIndex) : kNone;
  if (corner == kNone) return walk ? refuse(status) : ~0u;
  return static_cast<unsigned int>(api::normalIdsOf(walk->data())->ofCorner[at(corner)]);
}
unsigned int MItMeshPolygon::tangentIndex(int localVertexIndex, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  const CornerId corner = walk ? cornerOf(*walk, localVertexIndex) : kNone;
  if (corner == kNone) return walk ? refuse(status) : ~0u;
  return static_cast<unsigned int>(corner);
}

bool MItMeshPolygon::hasUVs(MStatus* status) const {
  return hasUVs(MString(), status);
}
bool MItMeshPolygon::hasUVs(const MString& uvSet, MStatus* status) const {
  MStatus code;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, &uvSet, set, code);
  setStatus(status, code.statusCode());
  return walk && hasUvsIn(*walk, set);
}
MStatus MItMeshPolygon::getUVIndex(int vertexId, int& uvIndex, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  const CornerId corner = cornerOf(*walk, vertexId);
  if (corner == kNone) return MStatus::kInvalidParameter;
  const UvId id = walk->mesh().cornerUv(set, corner);
  if (id == kNone) return MStatus::kFailure;
  uvIndex = id;
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getUVIndex(int vertexId, int& uvIndex, float& u, float& v,
                                   const MString* uvSet) const {
  const MStatus status = getUVIndex(vertexId, uvIndex, uvSet);
  if (!status) return status;
  const mesh::Mesh& mesh = walkOf(handle_)->mesh();
  const auto& uv = mesh.uvSet(api::uvSetIndex(mesh, uvSet)).points[at(uvIndex)];
  u = uv.u;
  v = uv.v;
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getUV(int vertexId, float2& uvPoint, const MString* uvSet) const {
  int id = -1;
  return getUVIndex(vertexId, id, uvPoint[0], uvPoint[1], uvSet);
}
MStatus MItMeshPolygon::getUVs(MFloatArray& uArray, MFloatArray& vArray,
                               const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  if (!hasUvsIn(*walk, set)) return MStatus::kFailure;
  uArray.clear();
  vArray.clear();
  for (Index i = 0; i < size(*walk); ++i) {
    const UvId id = walk->mesh().cornerUv(set, cornerOf(*walk, i));
    const auto& uv = walk->mesh().uvSet(set).points[at(id)];
    uArray.append(uv.u);
    vArray.append(uv.v);
  }
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::setUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet) {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  if (uArray.length() != static_cast<unsigned int>(size(*walk)) ||
      vArray.length() != uArray.length())
    return MStatus::kInvalidParameter;
  if (!hasUvsIn(*walk, set)) return MStatus::kFailure;
  mesh::Mesh mesh = walk->mesh();
  mesh::UvSet& uvs = mesh.editUvSet(set);
  for (Index i = 0; i < size(*walk); ++i) {
    const UvId id = uvs.cornerIds[cornerOf(*walk, i)];
    uvs.points[at(id)] = {uArray[static_cast<unsigned int>(i)],
                          vArray[static_cast<unsigned int>(i)]};
  }
  return walkOf(handle_)->writeAttributes(std::move(mesh));
}
MStatus MItMeshPolygon::setUV(int vertexId, float2& uvPoint, const MString* uvSet) {
  int id = -1;
  const MStatus status = getUVIndex(vertexId, id, uvSet);
  if (!status) return status;
  mesh::Mesh mesh = walkOf(handle_)->mesh();
  mesh.editUvSet(api::uvSetIndex(mesh, uvSet)).points[at(id)] = {uvPoint[0], uvPoint[1]};
  return walkOf(handle_)->writeAttributes(std::move(mesh));
}

MStatus MItMeshPolygon::getPointAtUV(MPoint& point, float2& uvPoint, MSpace::Space space,
                                     const MString* uvSet, float tolerance) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto place = ops::placeAtUv(walk->mesh(), set, walk->current(), {uvPoint[0], uvPoint[1]},
                                    static_cast<double>(tolerance));
  if (!place) return MStatus::kFailure;
  const math::Vec3 p = ops::pointAt(walk->mesh(), *place);
  point = api::toMPoint(toSpace ? math::transformPoint(p, *toSpace) : p);
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getUVAtPoint(MPoint& point, float2& uvPoint, MSpace::Space space,
                                     const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto fromSpace = toSpace ? math::inverse(*toSpace) : std::nullopt;
  if (toSpace && !fromSpace) return MStatus::kFailure;
  const math::Vec3 p = api::toVec3(point);
  const auto place = ops::closestOnFace(walk->mesh(), walk->current(),
                                        fromSpace ? math::transformPoint(p, *fromSpace) : p);
  const auto uv = ops::uvAt(walk->mesh(), set, place);
  if (!uv) return MStatus::kFailure;
  uvPoint[0] = uv->u;
  uvPoint[1] = uv->v;
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getAxisAtUV(MVector& normal, MVector& uDir, MVector& vDir, float2& uvPoint,
                                    MSpace::Space space, const MString* uvSet,
                                    float tolerance) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  std::optional<math::Matrix4> toSpace;
  status = walk->target().spaceMatrix(space, toSpace);
  if (!status) return status;
  const auto place = ops::placeAtUv(walk->mesh(), set, walk->current(), {uvPoint[0], uvPoint[1]},
                                    static_cast<double>(tolerance));
  const auto axes = place ? ops::uvAxesAt(walk->mesh(), set, *place) : std::nullopt;
  if (!axes) return MStatus::kFailure;
  normal = api::normalIn(axes->normal, toSpace);
  uDir = api::toMVector(directionIn(axes->u, toSpace));
  vDir = api::toMVector(directionIn(axes->v, toSpace));
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getUVArea(double& area, const MString* uvSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, uvSet, set, status);
  if (!walk) return status;
  if (!hasUvsIn(*walk, set)) return MStatus::kFailure;
  const double twisted = ops::uvArea(walk->mesh(), set, walk->current());
  area = twisted < 0 ? -twisted : twisted;
  return MStatus::kSuccess;
}
bool MItMeshPolygon::zeroUVArea(MStatus* status) const {
  return zeroUVArea(MString(), status);
}
bool MItMeshPolygon::zeroUVArea(const MString& uvSet, MStatus* status) const {
  double area = 0;
  const MStatus code = getUVArea(area, &uvSet);
  setStatus(status, code.statusCode());
  return code && area <= 0;
}
bool MItMeshPolygon::isUVReversed(MStatus* status) const {
  return isUVReversed(MString(), status);
}
bool MItMeshPolygon::isUVReversed(const MString& uvSet, MStatus* status) const {
  MStatus code;
  int set = -1;
  const MeshWalk* walk = atUvSet(handle_, &uvSet, set, code);
  setStatus(status, code.statusCode());
  return walk && hasUvsIn(*walk, set) && ops::uvArea(walk->mesh(), set, walk->current()) < 0;
}
MStatus MItMeshPolygon::getUVSetNames(MStringArray& setNames) const {
  MStatus status;
  const MeshWalk* walk = standing(handle_, &status);
  if (!walk) return status;
  setNames.clear();
  for (int i = 0; i < walk->mesh().uvSetCount(); ++i)
    if (hasUvsIn(*walk, i)) setNames.append(api::toMString(walk->mesh().uvSet(i).name));
  return MStatus::kSuccess;
}

bool MItMeshPolygon::hasColor(MStatus* status) const {
  int count = 0;
  const MStatus code = numColors(count);
  setStatus(status, standing(handle_, nullptr) ? MStatus::kSuccess : MStatus::kFailure);
  return code && count > 0;
}
bool MItMeshPolygon::hasColor(int localVertexIndex, MStatus* status) const {
  const MeshWalk* walk = standing(handle_, status);
  if (!walk) return false;
  const CornerId corner = cornerOf(*walk, localVertexIndex);
  if (corner == kNone) setStatus(status, MStatus::kInvalidParameter);
  return corner != kNone &&
         cornerColor(walk->mesh(), walk->mesh().currentColorSet(), corner) != kNone;
}
MStatus MItMeshPolygon::getColor(MColor& color, const MString* colorSet) const {
  MColorArray colors;
  const MStatus status = getColors(colors, colorSet);
  if (!status) return status;
  return api::meanColor(colors, color);
}
MStatus MItMeshPolygon::getColor(MColor& color, int vertexIndex) const {
  MColorArray colors;
  const MStatus status = getColors(colors);
  if (!status) return status;
  if (vertexIndex < 0 || static_cast<unsigned int>(vertexIndex) >= colors.length())
    return MStatus::kInvalidParameter;
  color = colors[static_cast<unsigned int>(vertexIndex)];
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getColors(MColorArray& colors, const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atColorSet(handle_, colorSet, set, status);
  if (!walk) return status;
  colors.clear();
  for (Index i = 0; i < size(*walk); ++i) {
    const Index id = cornerColor(walk->mesh(), set, cornerOf(*walk, i));
    colors.append(id == kNone ? api::unsetColor(nullptr)
                              : api::toMColor(walk->mesh().colorSet(set).colors[at(id)]));
  }
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::numColors(int& count, const MString* colorSet) const {
  MIntArray indices;
  const MStatus status = getColorIndices(indices, colorSet);
  if (!status) return status;
  count = 0;
  for (const int id : indices) count += id != kNone ? 1 : 0;
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getColorIndex(int vertexIndex, int& colorIndex,
                                      const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atColorSet(handle_, colorSet, set, status);
  if (!walk) return status;
  const CornerId corner = cornerOf(*walk, vertexIndex);
  if (corner == kNone) return MStatus::kInvalidParameter;
  colorIndex = cornerColor(walk->mesh(), set, corner);
  return MStatus::kSuccess;
}
MStatus MItMeshPolygon::getColorIndices(MIntArray& colorIndices, const MString* colorSet) const {
  MStatus status;
  int set = -1;
  const MeshWalk* walk = atColorSet(handle_, colorSet, set, status);
  if (!walk) return status;
  colorIndices.clear();
  for (Index i = 0; i < size(*walk); ++i)
    colorIndices.append(cornerColor(walk->mesh(), set, cornerOf(*walk, i)));
  return MStatus::kSuccess;
}
