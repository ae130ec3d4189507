#include "quaddraw/drawnMesh.h"

#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MNodeMessage.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "shared/mesh/shownMesh.h"

namespace {

bool isAt(const MPoint& a, const MPoint& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}

std::size_t bucketOf(const MPoint& point, std::size_t buckets) {
  std::uint64_t hash = 0;
  for (const double value : {point.x, point.y, point.z}) {
    const double sameZero = value + 0.0;  // both zeros are equal
    std::uint64_t bits = 0;
    std::memcpy(&bits, &sameZero, sizeof bits);
    hash = (hash ^ bits) * 0x9e3779b97f4a7c15U;
    hash ^= hash >> 29;
  }
  return static_cast<std::size_t>(hash) & (buckets - 1);
}

MDagPath firstSelectedMesh() {
  MSelectionList selection;
  MGlobal::getActiveSelectionList(selection);
  MDagPath path;
  if (selection.length() == 0 || selection.getDagPath(0, path) != MS::kSuccess) return MDagPath();
  return extendToShownMesh(path) == MS::kSuccess ? path : MDagPath();
}

}  // namespace

void drawnMesh::onDirty(MObject&, MPlug&, void* self) {
  static_cast<drawnMesh*>(self)->isStale = true;
}

void drawnMesh::clear() {
  callbacks.removeAll();
  mesh = MDagPath();
  borders.clear();
  for (std::vector<int>* list :
       {&firstAtPlace, &nextAtPlace, &firstFace, &faces, &firstCorner, &corners})
    list->clear();  // they name entries of the places
  places.clear();
  isStale = true;
  ++reads;
}

void drawnMesh::takeSelected() {
  const MDagPath selected = firstSelectedMesh();
  if (!selected.isValid()) {
    if (mesh.isValid() || !places.empty() || !callbacks.isEmpty()) clear();
    return;
  }
  if (!(mesh.isValid() && mesh == selected)) {
    clear();
    mesh = selected;
    MObject shape = mesh.node();
    callbacks.add(MNodeMessage::addNodeDirtyPlugCallback(shape, onDirty, this));
  }
  const MMatrix now = mesh.inclusiveMatrix();
  if (!(now == matrix)) isStale = true;
  if (!isStale) return;
  matrix = now;
  read();
}

void drawnMesh::read() {
  isStale = false;
  ++reads;
  const MFnMesh fn(mesh);
  MPointArray points;
  MIntArray counts, vertices;
  fn.getPoints(points, MSpace::kWorld);
  fn.getVertices(counts, vertices);
  places.resize(points.length());
  for (unsigned int i = 0; i < points.length(); ++i) places[i] = points[i];
  corners.resize(vertices.length());
  for (unsigned int i = 0; i < vertices.length(); ++i) corners[i] = vertices[i];
  firstCorner.assign(1, 0);
  firstCorner.reserve(counts.length() + 1);
  for (unsigned int i = 0; i < counts.length(); ++i)
    firstCorner.push_back(firstCorner.back() + counts[i]);
  gatherFacesAround();
  gatherPlaces();
  gatherBorders();
  isStale = false;  // reading brings the mesh up to date, which may have told of it once more
}

void drawnMesh::gatherFacesAround() {
  firstFace.assign(places.size() + 1, 0);
  for (const int vertex : corners) ++firstFace[static_cast<std::size_t>(vertex) + 1];
  for (std::size_t i = 1; i < firstFace.size(); ++i) firstFace[i] += firstFace[i - 1];
  faces.assign(corners.size(), 0);
  std::vector<int> next(firstFace.begin(), firstFace.end() - 1);
  for (std::size_t face = 0; face + 1 < firstCorner.size(); ++face)
    for (int c = firstCorner[face]; c < firstCorner[face + 1]; ++c)
      faces[static_cast<std::size_t>(
          next[static_cast<std::size_t>(corners[static_cast<std::size_t>(c)])]++)] =
          static_cast<int>(face);
}

void drawnMesh::gatherPlaces() {
  std::size_t buckets = 64;
  while (buckets < places.size()) buckets *= 2;
  firstAtPlace.assign(buckets, -1);
  nextAtPlace.assign(places.size(), -1);
  for (std::size_t i = places.size(); i-- > 0;) {  // so that lower vertices come first
    int& first = firstAtPlace[bucketOf(places[i], buckets)];
    nextAtPlace[i] = first;
    first = static_cast<int>(i);
  }
}

/// A vertex is on the border when an edge at it has one face: when it has a neighbour that one
/// corner of the faces around it leads to or comes from.
bool drawnMesh::isOnBorder(std::size_t vertex, std::vector<int>& neighbours) const {
  neighbours.clear();
  int lastFace = -1;
  for (int i = firstFace[vertex]; i < firstFace[vertex + 1]; ++i) {
    const auto face = static_cast<std::size_t>(faces[static_cast<std::size_t>(i)]);
    if (static_cast<int>(face) == lastFace) continue;  // a polygon that meets the vertex twice
    lastFace = static_cast<int>(face);
    const int begin = firstCorner[face], end = firstCorner[face + 1];
    for (int c = begin; c < end; ++c) {
      if (corners[static_cast<std::size_t>(c)] != static_cast<int>(vertex)) continue;
      for (const int beside : {c + 1 < end ? c + 1 : begin, c > begin ? c - 1 : end - 1})
        neighbours.push_back(corners[static_cast<std::size_t>(beside)]);
    }
  }
  // There are few; sorting them takes longer.
  for (std::size_t i = 0; i < neighbours.size(); ++i) {
    bool isMet = false;
    for (std::size_t j = 0; j < neighbours.size() && !isMet; ++j)
      isMet = j != i && neighbours[j] == neighbours[i];
    if (!isMet) return true;
  }
  return false;
}

void drawnMesh::gatherBorders() {
  borders.clear();
  const MFnMesh fn(mesh);
  std::vector<int> neighbours;
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (!isOnBorder(i, neighbours)) continue;
    borderVertex border;
    border.place = places[i];
    border.index = static_cast<int>(i);
    fn.getVertexNormal(border.index, true, border.normal, MSpace::kWorld);
    borders.push_back(border);
  }
}

template <class Call>
void drawnMesh::eachVertexAt(const MPoint& point, Call call) const {
  if (point.w != 1.0 || firstAtPlace.empty()) return;
  for (int v = firstAtPlace[bucketOf(point, firstAtPlace.size())]; v >= 0;
       v = nextAtPlace[static_cast<std::size_t>(v)])
    if (isAt(places[static_cast<std::size_t>(v)], point)) call(v);
}

unsigned int drawnMesh::mostCornersOfOnePolygon(const MPointArray& points) const {
  std::vector<int> touched;  // each polygon once a point
  for (unsigned int i = 0; i < points.length(); ++i) {
    std::vector<int> around;
    eachVertexAt(points[i], [&](int vertex) {
      const auto v = static_cast<std::size_t>(vertex);
      around.insert(around.end(), faces.begin() + firstFace[v], faces.begin() + firstFace[v + 1]);
    });
    std::sort(around.begin(), around.end());
    around.erase(std::unique(around.begin(), around.end()), around.end());
    touched.insert(touched.end(), around.begin(), around.end());
  }
  std::sort(touched.begin(), touched.end());
  unsigned int most = 0;
  for (std::size_t i = 0; i < touched.size();) {
    std::size_t end = i;
    while (end < touched.size() && touched[end] == touched[i]) ++end;
    most = std::max(most, static_cast<unsigned int>(end - i));
    i = end;
  }
  return most;
}

int drawnMesh::borderVertexAt(const MPoint& point) const {
  int found = -1;
  eachVertexAt(point, [&](int vertex) {
    const auto isBorder = std::binary_search(
        borders.begin(), borders.end(), borderVertex{MPoint(), MVector(), vertex},
        [](const borderVertex& a, const borderVertex& b) { return a.index < b.index; });
    if (found < 0 && isBorder) found = vertex;
  });
  return found;
}

bool drawnMesh::hasCornerRun(int from, int to) const {
  const auto v = static_cast<std::size_t>(from);
  if (from < 0 || v >= places.size()) return false;
  for (int i = firstFace[v]; i < firstFace[v + 1]; ++i) {
    const auto face = static_cast<std::size_t>(faces[static_cast<std::size_t>(i)]);
    const int begin = firstCorner[face], end = firstCorner[face + 1];
    for (int c = begin; c < end; ++c) {
      const int after = c + 1 < end ? c + 1 : begin;
      if (corners[static_cast<std::size_t>(c)] == from &&
          corners[static_cast<std::size_t>(after)] == to)
        return true;
    }
  }
  return false;
}
