#include "brushes/brushSurface.h"

#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>

#include <algorithm>
#include <cmath>
#include <cstring>

// Reading a mesh into arrays and keeping them up to date; what a dab asks is in
// brushSurfaceGather.cpp.

namespace {

std::size_t at(int index) {
  return static_cast<std::size_t>(index);
}

bool isSameList(const std::vector<int>& mine, const MIntArray& theirs) {
  return mine.size() == theirs.length() &&
         (mine.empty() || std::equal(mine.begin(), mine.end(), &theirs[0]));
}

}  // namespace

void dabRegion::clear() {
  vertices.clear();
  shares.clear();
  weights.clear();
  stamp.clear();
}

MStatus brushSurface::read(const MDagPath& mesh) {
  path = mesh;
  arrays = faceArrays();
  MStatus status = readTopology();
  if (status != MS::kSuccess) return status;
  const MFnMesh meshFn(path, &status);
  const float* points = meshFn.getRawPoints(&status);
  if (status != MS::kSuccess) return status;
  const auto count = at(meshFn.numVertices());
  arrays.points.assign(points, points + 3 * count);
  findFaces();
  findNeighbours();
  areas.assign(3 * at(arrays.faceCount()), 0.0F);
  for (int face = 0; face < arrays.faceCount(); ++face) measure(face);
  tree.build(arrays);
  seen.assign(count, 0);
  seenFaces.assign(at(arrays.faceCount()), 0);
  search = 0;
  for (int k = 0; k < 3; ++k) {
    extentLow[k] = HUGE_VAL;
    extentHigh[k] = -HUGE_VAL;
  }
  for (std::size_t i = 0; i < arrays.points.size(); ++i) {
    const double value = static_cast<double>(arrays.points[i]);
    if (!std::isfinite(value)) continue;
    extentLow[i % 3] = std::min(extentLow[i % 3], value);
    extentHigh[i % 3] = std::max(extentHigh[i % 3], value);
  }
  placeInWorld();
  return MS::kSuccess;
}

MStatus brushSurface::readTopology() {
  MStatus status;
  const MFnMesh meshFn(path, &status);
  if (status != MS::kSuccess) return status;
  MIntArray counts, connects;
  if ((status = meshFn.getVertices(counts, connects)) != MS::kSuccess) return status;
  arrays.offsets.assign(1, 0);
  arrays.offsets.reserve(counts.length() + 1);
  for (unsigned int i = 0; i < counts.length(); ++i)
    arrays.offsets.push_back(arrays.offsets.back() + counts[i]);
  arrays.corners.clear();
  if (connects.length() > 0) arrays.corners.assign(&connects[0], &connects[0] + connects.length());
  return MS::kSuccess;
}

void brushSurface::findFaces() {
  const auto count = at(arrays.vertexCount());
  faceOffsets.assign(count + 1, 0);
  for (const int vertex : arrays.corners) ++faceOffsets[at(vertex) + 1];
  for (std::size_t v = 0; v < count; ++v) faceOffsets[v + 1] += faceOffsets[v];
  vertexFaces.resize(arrays.corners.size());
  std::vector<int> next(faceOffsets.begin(), faceOffsets.end() - 1);
  for (int face = 0; face < arrays.faceCount(); ++face)
    for (int c = arrays.offsets[at(face)]; c < arrays.offsets[at(face) + 1]; ++c)
      vertexFaces[at(next[at(arrays.corners[at(c)])]++)] = face;
}

/// An edge that only one face has is told by both its ends as seen once, from that face.
void brushSurface::findNeighbours() {
  const auto count = at(arrays.vertexCount());
  borders.assign(count, 0);
  neighbourOffsets.assign(1, 0);
  neighbourOffsets.reserve(count + 1);
  neighbours.clear();
  neighbours.reserve(arrays.corners.size() + arrays.corners.size() / 8);
  std::vector<int> around;
  for (std::size_t v = 0; v < count; ++v) {
    around.clear();
    for (int i = faceOffsets[v]; i < faceOffsets[v + 1]; ++i) {
      const auto face = at(vertexFaces[at(i)]);
      const int first = arrays.offsets[face], last = arrays.offsets[face + 1] - 1;
      for (int c = first; c <= last; ++c) {
        if (at(arrays.corners[at(c)]) != v) continue;
        around.push_back(arrays.corners[at(c == last ? first : c + 1)]);
        around.push_back(arrays.corners[at(c == first ? last : c - 1)]);
      }
    }
    std::sort(around.begin(), around.end());
    for (std::size_t i = 0; i < around.size();) {
      std::size_t end = i + 1;
      while (end < around.size() && around[end] == around[i]) ++end;
      if (end == i + 1) borders[v] = 1;
      neighbours.push_back(around[i]);
      i = end;
    }
    neighbourOffsets.push_back(static_cast<int>(neighbours.size()));
  }
}

/// Newell's sum: right for faces that are bent or not convex.
void brushSurface::measure(int face) {
  const auto first = at(arrays.offsets[at(face)]), last = at(arrays.offsets[at(face) + 1]);
  const float* origin = arrays.point(arrays.corners[first]);
  double sum[3] = {0.0, 0.0, 0.0}, before[3] = {0.0, 0.0, 0.0};
  for (std::size_t c = first + 1; c < last; ++c) {
    const float* p = arrays.point(arrays.corners[c]);
    const double here[3] = {static_cast<double>(p[0]) - static_cast<double>(origin[0]),
                            static_cast<double>(p[1]) - static_cast<double>(origin[1]),
                            static_cast<double>(p[2]) - static_cast<double>(origin[2])};
    if (c > first + 1) {
      sum[0] += before[1] * here[2] - before[2] * here[1];
      sum[1] += before[2] * here[0] - before[0] * here[2];
      sum[2] += before[0] * here[1] - before[1] * here[0];
    }
    std::copy(here, here + 3, before);
  }
  for (std::size_t k = 0; k < 3; ++k) areas[3 * at(face) + k] = static_cast<float>(sum[k]);
}

bool brushSurface::refresh(std::vector<int>* moved) {
  MStatus status;
  if (!path.isValid()) return false;
  const MFnMesh meshFn(path, &status);
  if (status != MS::kSuccess || meshFn.numVertices() != vertexCount() ||
      meshFn.numPolygons() != faceCount())
    return false;
  MIntArray counts, connects;
  if (meshFn.getVertices(counts, connects) != MS::kSuccess || !isSameList(arrays.corners, connects))
    return false;
  for (unsigned int i = 0; i < counts.length(); ++i)
    if (counts[i] != arrays.offsets[i + 1] - arrays.offsets[i]) return false;
  const float* points = meshFn.getRawPoints(&status);
  if (status != MS::kSuccess) return false;
  std::vector<int> changed;
  std::vector<float> places;
  for (int v = 0; v < vertexCount(); ++v) {
    const float* now = points + 3 * at(v);
    if (std::memcmp(now, arrays.point(v), 3 * sizeof(float)) == 0) continue;
    changed.push_back(v);
    places.insert(places.end(), now, now + 3);
  }
  move(changed, places);
  if (moved) *moved = std::move(changed);
  return true;
}

bool brushSurface::placeInWorld() {
  if (!path.isValid()) return false;
  const MMatrix now = path.inclusiveMatrix();
  if (now.isSingular()) return false;
  worldMatrix = now;
  objectMatrix = now.inverse();
  normalMatrix = objectMatrix.transpose();
  return true;
}

double brushSurface::mirrorReach() const {
  double low[3] = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, high[3] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
  for (int corner = 0; corner < 8; ++corner) {
    MPoint point;
    for (unsigned int k = 0; k < 3; ++k)
      point[k] = (corner >> k & 1) != 0 ? extentHigh[k] : extentLow[k];
    point = point * worldMatrix;
    for (unsigned int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], point[k]);
      high[k] = std::max(high[k], point[k]);
    }
  }
  const double size = std::hypot(high[0] - low[0], high[1] - low[1], high[2] - low[2]);
  return std::isfinite(size) ? 1e-3 * size : 0.0;
}

MPoint brushSurface::objectPoint(int vertex) const {
  const float* p = arrays.point(vertex);
  return MPoint(static_cast<double>(p[0]), static_cast<double>(p[1]), static_cast<double>(p[2]));
}

MVector brushSurface::worldFaceNormal(int face) const {
  const float* area = &areas[3 * at(face)];
  const MVector normal = MVector(area[0], area[1], area[2]) * normalMatrix;
  const double length = normal.length();
  return length > 0.0 && std::isfinite(length) ? normal / length : MVector();
}

MVector brushSurface::worldNormal(int vertex) const {
  double sum[3] = {0.0, 0.0, 0.0};
  for (const int* face = facesBegin(vertex); face != facesEnd(vertex); ++face)
    for (std::size_t k = 0; k < 3; ++k) sum[k] += static_cast<double>(areas[3 * at(*face) + k]);
  const MVector normal = MVector(sum[0], sum[1], sum[2]) * normalMatrix;
  const double length = normal.length();
  return length > 0.0 && std::isfinite(length) ? normal / length : MVector();
}

void brushSurface::move(const std::vector<int>& vertices, const std::vector<float>& places) {
  if (vertices.empty()) return;
  newSearch();
  std::vector<int> touched;
  for (std::size_t i = 0; i < vertices.size(); ++i)
    std::copy(&places[3 * i], &places[3 * i] + 3, &arrays.points[3 * at(vertices[i])]);
  for (const int vertex : vertices)
    for (const int* face = facesBegin(vertex); face != facesEnd(vertex); ++face) {
      if (seenFaces[at(*face)] == search) continue;
      seenFaces[at(*face)] = search;
      touched.push_back(*face);
    }
  for (const int face : touched) measure(face);
  tree.mend(arrays, touched);
}

const int* brushSurface::neighboursBegin(int vertex) const {
  return neighbours.data() + neighbourOffsets[at(vertex)];
}
const int* brushSurface::neighboursEnd(int vertex) const {
  return neighbours.data() + neighbourOffsets[at(vertex) + 1];
}
const int* brushSurface::facesBegin(int vertex) const {
  return vertexFaces.data() + faceOffsets[at(vertex)];
}
const int* brushSurface::facesEnd(int vertex) const {
  return vertexFaces.data() + faceOffsets[at(vertex) + 1];
}

std::size_t brushSurface::bytes() const {
  return sizeof(float) * (arrays.points.size() + areas.size()) +
         sizeof(int) * (arrays.offsets.size() + arrays.corners.size() + neighbourOffsets.size() +
                        neighbours.size() + faceOffsets.size() + vertexFaces.size() + seen.size() +
                        seenFaces.size()) +
         borders.size() + tree.bytes();
}
