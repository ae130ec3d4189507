#include <maya/MFloatVectorArray.h>
#include <maya/MFnMesh.h>

#include "host/api/mesh/derived.h"
#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/normal_table.h"

namespace host::api {

std::shared_ptr<const ops::CornerTangents> tangentsOf(const scene::MeshDataPtr& data, int uvSet) {
  static LatestDerived<ops::CornerTangents> latest;
  return latest.of(data, uvSet,
                   [uvSet](const mesh::Mesh& mesh) { return ops::computeTangents(mesh, uvSet); });
}

namespace {

/// What the calls below work with; empty `tangents` when the mesh, the set or the space is missing.
struct Frames {
  scene::MeshDataPtr data;
  std::shared_ptr<const ops::CornerTangents> tangents;
  std::optional<math::Matrix4> toSpace;

  [[nodiscard]] MVector tangent(std::size_t corner) const {
    const math::Vec3 t(tangents->tangents[corner]);
    return toMVector(math::normalized(toSpace ? math::transformVector(t, *toSpace) : t));
  }
  [[nodiscard]] MVector binormal(std::size_t corner) const {
    const math::Vec3 across = math::cross(math::Vec3(data->mesh.cornerNormals()[corner]),
                                          math::Vec3(tangents->tangents[corner]));
    const math::Vec3 b = tangents->isRightHanded[corner] ? across : -across;
    return toMVector(math::normalized(toSpace ? math::transformVector(b, *toSpace) : b));
  }
};

MStatus framesOf(const MFnMesh& set, MSpace::Space space, const MString* uvSet, Frames& frames) {
  MStatus status;
  frames.data = readMesh(set, &status);
  if (!frames.data) return status;
  const int index = uvSetIndex(frames.data->mesh, uvSet);
  if (index < 0) return MStatus::kInvalidParameter;
  if (frames.data->mesh.uvSet(index).cornerIds.empty()) {
    rememberError(Error{"Tangents need UVs, and the UV set has none"});
    return MStatus::kFailure;
  }
  status = targetOf(set).spaceMatrix(space, frames.toSpace);
  if (status) frames.tangents = tangentsOf(frames.data, index);
  return status;
}

template <class Get>
MStatus listFrames(const MFnMesh& set, MSpace::Space space, const MString* uvSet,
                   MFloatVectorArray& vectors, Get get) {
  Frames frames;
  const MStatus status = framesOf(set, space, uvSet, frames);
  if (!status) return status;
  const std::size_t count = frames.tangents->tangents.size();
  auto* out = Access::overwrite(vectors, static_cast<unsigned int>(count));
  for (std::size_t c = 0; c < count; ++c) out[c] = MFloatVector((frames.*get)(c));
  return MStatus::kSuccess;
}

template <class Get>
MStatus oneFrame(const MFnMesh& set, int face, int vertex, MSpace::Space space,
                 const MString* uvSet, MVector& vector, Get get) {
  Frames frames;
  const MStatus status = framesOf(set, space, uvSet, frames);
  if (!status) return status;
  const CornerId corner =
      isFace(frames.data->mesh, face) ? cornerAt(frames.data->mesh, face, vertex) : kNone;
  if (corner == kNone) return MStatus::kInvalidParameter;
  vector = (frames.*get)(at(corner));
  return MStatus::kSuccess;
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::Frames;

MStatus MFnMesh::getTangents(MFloatVectorArray& tangents, MSpace::Space space,
                             const MString* uvSet) const {
  return api::listFrames(*this, space, uvSet, tangents, &Frames::tangent);
}
MStatus MFnMesh::getBinormals(MFloatVectorArray& binormals, MSpace::Space space,
                              const MString* uvSet) const {
  return api::listFrames(*this, space, uvSet, binormals, &Frames::binormal);
}
MStatus MFnMesh::getFaceVertexTangent(int faceIndex, int vertexIndex, MVector& tangent,
                                      MSpace::Space space, const MString* uvSet) const {
  return api::oneFrame(*this, faceIndex, vertexIndex, space, uvSet, tangent, &Frames::tangent);
}
MStatus MFnMesh::getFaceVertexBinormal(int faceIndex, int vertexIndex, MVector& binormal,
                                       MSpace::Space space, const MString* uvSet) const {
  return api::oneFrame(*this, faceIndex, vertexIndex, space, uvSet, binormal, &Frames::binormal);
}
int MFnMesh::getTangentId(int faceIndex, int vertexIndex, MStatus* status) const {
  const auto data = api::readMesh(*this, status);
  if (!data) return -1;
  const CornerId corner = api::isFace(data->mesh, faceIndex)
                              ? api::cornerAt(data->mesh, faceIndex, vertexIndex)
                              : kNone;
  if (corner == kNone) api::setStatus(status, MStatus::kInvalidParameter);
  return corner;
}
bool MFnMesh::isRightHandedTangent(int tangentId, const MString* uvSetName, MStatus* status) const {
  Frames frames;
  MStatus code = api::framesOf(*this, MSpace::kObject, uvSetName, frames);
  if (code && (tangentId < 0 || tangentId >= frames.data->mesh.cornerCount()))
    code = MStatus::kInvalidParameter;
  api::setStatus(status, code.statusCode());
  return code && frames.tangents->isRightHanded[at(tangentId)] != 0;
}
