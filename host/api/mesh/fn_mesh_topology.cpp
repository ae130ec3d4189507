#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MUintArray.h>

#include <algorithm>

#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/id_arrays.h"
#include "host/mesh/adjacency.h"

using namespace host;
using api::isEdge;
using api::isFace;
using api::readMesh;
using api::setStatus;
using api::targetOf;

int MFnMesh::numVertices(MStatus* status) const {
  const auto data = readMesh(*this, status);
  return data ? data->mesh.vertexCount() : 0;
}
int MFnMesh::numEdges(MStatus* status) const {
  const auto data = readMesh(*this, status);
  return data ? data->mesh.edgeCount() : 0;
}
int MFnMesh::numPolygons(MStatus* status) const {
  const auto data = readMesh(*this, status);
  return data ? data->mesh.faceCount() : 0;
}
int MFnMesh::numFaceVertices(MStatus* status) const {
  const auto data = readMesh(*this, status);
  return data ? data->mesh.cornerCount() : 0;
}

int MFnMesh::polygonVertexCount(int polygonId, MStatus* status) const {
  const auto data = readMesh(*this, status);
  if (!data) return 0;
  if (!isFace(data->mesh, polygonId)) {
    setStatus(status, MStatus::kInvalidParameter);
    return 0;
  }
  return data->mesh.faceSize(polygonId);
}

bool MFnMesh::isEdgeSmooth(int edgeId, MStatus* status) const {
  const auto data = readMesh(*this, status);
  if (!data) return false;
  if (!isEdge(data->mesh, edgeId)) {
    setStatus(status, MStatus::kInvalidParameter);
    return false;
  }
  return data->mesh.isEdgeSmooth(edgeId);
}

MStatus MFnMesh::getVertices(MIntArray& vertexCount, MIntArray& vertexList) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  const mesh::Topology& topology = data->mesh.topology();
  vertexCount.setLength(static_cast<unsigned int>(data->mesh.faceCount()));
  for (unsigned int f = 0; f < vertexCount.length(); ++f)
    vertexCount[f] = topology.faceOffsets[f + 1] - topology.faceOffsets[f];
  vertexList = api::toArray(topology.cornerVertices);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getPolygonVertices(int polygonId, MIntArray& vertexList) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (!isFace(data->mesh, polygonId)) return MStatus::kInvalidParameter;
  const auto vertices = data->mesh.faceVertices(polygonId);
  vertexList = api::toArray(vertices);
  return MStatus::kSuccess;
}

MStatus MFnMesh::getEdgeVertices(int edgeId, int2& vertexList) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (!isEdge(data->mesh, edgeId)) return MStatus::kInvalidParameter;
  const mesh::EdgeVertices ends = data->mesh.edge(edgeId);
  vertexList[0] = ends.a;
  vertexList[1] = ends.b;
  return MStatus::kSuccess;
}

MStatus MFnMesh::setEdgeSmoothing(int edgeId, bool smooth) {
  MIntArray ids(1, edgeId), flags(1, smooth ? 1 : 0);
  return setEdgeSmoothings(ids, flags);
}

MStatus MFnMesh::setEdgeSmoothings(const MIntArray& edgeIds, const MIntArray& smooths) {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (edgeIds.length() != smooths.length()) return MStatus::kInvalidParameter;
  for (unsigned int i = 0; i < edgeIds.length(); ++i)
    if (!isEdge(data->mesh, edgeIds[i])) return MStatus::kInvalidParameter;
  mesh::Mesh mesh = data->mesh;
  for (unsigned int i = 0; i < edgeIds.length(); ++i)
    mesh.setEdgeSmooth(edgeIds[i], smooths[i] != 0);
  return targetOf(*this).writeAttributes(std::move(mesh));
}

MStatus MFnMesh::cleanupEdgeSmoothing() {
  // Flags and normals are kept consistent by every edit, so there is nothing left over to clean.
  return readMesh(*this) ? MStatus::kSuccess : MStatus::kFailure;
}

bool MFnMesh::onBoundary(int polygonId, MStatus* status) const {
  const auto data = readMesh(*this, status);
  if (!data) return false;
  if (!isFace(data->mesh, polygonId)) {
    setStatus(status, MStatus::kInvalidParameter);
    return false;
  }
  const mesh::Adjacency& adjacency = data->mesh.adjacency();
  const auto edges = data->mesh.faceEdges(polygonId);
  return std::any_of(edges.begin(), edges.end(),
                     [&](EdgeId e) { return adjacency.isBorderEdge(e); });
}

MUintArray MFnMesh::getInvisibleFaces(MStatus* status) const {
  MUintArray ids;
  const auto data = readMesh(*this, status);
  if (data)
    for (const FaceId face : data->mesh.invisibleFaces())
      ids.append(static_cast<unsigned int>(face));
  return ids;
}

MStatus MFnMesh::setInvisibleFaces(const MUintArray& faceIds, bool makeVisible) {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  PerElement<FaceId, char> isHidden(data->mesh.faceCount(), 0);
  for (const FaceId face : data->mesh.invisibleFaces()) isHidden[face] = 1;
  for (unsigned int i = 0; i < faceIds.length(); ++i) {
    if (faceIds[i] >= isHidden.size()) return MStatus::kInvalidParameter;
    isHidden[faceIds[i]] = makeVisible ? 0 : 1;
  }
  std::vector<FaceId> faces;
  for (std::size_t f = 0; f < isHidden.size(); ++f)
    if (isHidden[f]) faces.push_back(static_cast<FaceId>(f));
  mesh::Mesh mesh = data->mesh;
  mesh.setInvisibleFaces(std::move(faces));
  return targetOf(*this).writeAttributes(std::move(mesh));
}

MStatus MFnMesh::getCreaseEdges(MUintArray& edgeIds, MDoubleArray& creaseData) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  edgeIds.clear();
  creaseData.clear();
  const auto& weights = data->mesh.creases().edges;
  for (std::size_t e = 0; e < weights.size(); ++e) {
    if (weights[e] == 0.0f) continue;
    edgeIds.append(static_cast<unsigned int>(e));
    creaseData.append(weights[e]);
  }
  return edgeIds.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MFnMesh::setCreaseEdges(const MUintArray& edgeIds, const MDoubleArray& creaseData) {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (edgeIds.length() != creaseData.length()) return MStatus::kInvalidParameter;
  mesh::Mesh mesh = data->mesh;
  auto& weights = mesh.editCreases().edges;
  weights.resize(at(mesh.edgeCount()), 0.0f);
  for (unsigned int i = 0; i < edgeIds.length(); ++i) {
    if (edgeIds[i] >= weights.size()) return MStatus::kInvalidParameter;
    weights[edgeIds[i]] = static_cast<float>(creaseData[i]);
  }
  return targetOf(*this).writeAttributes(std::move(mesh));
}

MStatus MFnMesh::getCreaseVertices(MUintArray& vertexIds, MDoubleArray& creaseData) const {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  vertexIds.clear();
  creaseData.clear();
  const auto& weights = data->mesh.creases().vertices;
  for (std::size_t v = 0; v < weights.size(); ++v) {
    if (weights[v] == 0.0f) continue;
    vertexIds.append(static_cast<unsigned int>(v));
    creaseData.append(weights[v]);
  }
  return vertexIds.length() > 0 ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MFnMesh::setCreaseVertices(const MUintArray& vertexIds, const MDoubleArray& creaseData) {
  MStatus status;
  const auto data = readMesh(*this, &status);
  if (!data) return status;
  if (vertexIds.length() != creaseData.length()) return MStatus::kInvalidParameter;
  mesh::Mesh mesh = data->mesh;
  auto& weights = mesh.editCreases().vertices;
  weights.resize(at(mesh.vertexCount()), 0.0f);
  for (unsigned int i = 0; i < vertexIds.length(); ++i) {
    if (vertexIds[i] >= weights.size()) return MStatus::kInvalidParameter;
    weights[vertexIds[i]] = static_cast<float>(creaseData[i]);
  }
  return targetOf(*this).writeAttributes(std::move(mesh));
}
