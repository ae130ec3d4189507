#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MObjectArray.h>

#include "host/api/mesh/derived.h"
#include "host/api/mesh/fn_mesh.h"
#include "host/mesh/triangulate.h"

using namespace host;
using api::readMesh;

namespace {

/// Lists the triangles of all faces: how many each face has, and `valueOf(corner)` for each of
/// their corners.
template <class ValueOf>
MStatus listTriangles(const mesh::Mesh& mesh, MIntArray& counts, MIntArray& values,
                      ValueOf valueOf) {
  const mesh::Triangulation triangulation = mesh::triangulate(mesh);
  int* count = api::Access::overwrite(counts, static_cast<unsigned int>(mesh.faceCount()));
  for (FaceId f = 0; f < mesh.faceCount(); ++f) *count++ = mesh.faceSize(f) - 2;
  int* value =
      api::Access::overwrite(values, static_cast<unsigned int>(3 * triangulation.triangles.size()));
  for (const auto& triangle : triangulation.triangles)
    for (const CornerId corner : triangle) *value++ = valueOf(corner);
  return MStatus::kSuccess;
}

}  // namespace

MStatus MFnMesh::getTriangles(MIntArray& triangleCounts, MIntArray& triangleVertices) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  return listTriangles(data->mesh, triangleCounts, triangleVertices,
                       [&](CornerId corner) { return data->mesh.cornerVertex(corner); });
}

MStatus MFnMesh::getTriangleOffsets(MIntArray& triangleCounts, MIntArray& triangleIndices) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  return listTriangles(data->mesh, triangleCounts, triangleIndices,
                       [](CornerId corner) { return corner; });
}

MStatus MFnMesh::getPolygonTriangleVertices(int polygonId, int triangleId,
                                            int vertexList[3]) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (!api::isFace(data->mesh, polygonId)) return MStatus::kInvalidParameter;
  const auto triangles = mesh::triangulateFace(data->mesh, polygonId);
  if (triangleId < 0 || at(triangleId) >= triangles.size()) return MStatus::kInvalidParameter;
  const auto vertices = data->mesh.faceVertices(polygonId);
  for (std::size_t i = 0; i < 3; ++i) vertexList[i] = vertices[at(triangles[at(triangleId)][i])];
  return MStatus::kSuccess;
}

bool MFnMesh::isPolygonConvex(int faceIndex, MStatus* status) const {
  MItMeshPolygon face(object_, status);
  int previous = 0;
  const MStatus found = face.setIndex(faceIndex, previous);
  api::setStatus(status, found.statusCode());
  return found && face.isConvex(status);
}

int MFnMesh::getHoles(MIntArray& holeInfo, MIntArray& holeVertices, MStatus* status) const {
  // A face is one loop here, so none has holes.
  holeInfo.clear();
  holeVertices.clear();
  api::setStatus(status, readMesh(*this) ? MStatus::kSuccess : MStatus::kFailure);
  return 0;
}

MStatus MFnMesh::syncObject() {
  // Every write goes to the node or value at once; there is nothing to catch up with.
  return readMesh(*this) ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MFnMesh::updateSurface() {
  return syncObject();
}

bool MFnMesh::isBlindDataTypeUsed(int, MStatus* status) const {
  (void)readMesh(*this, status);
  return false;  // meshes carry no blind data, so no type of it is in use
}
