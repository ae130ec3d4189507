#include "quaddraw/drawnMesh.h"

#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MNodeMessage.h>
#include <maya/MPlug.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <tuple>

#include "shared/mesh/shownMesh.h"

namespace {

std::tuple<double, double, double> key(const MPoint& point) {
  return std::make_tuple(point.x, point.y, point.z);
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
  for (std::vector<int>* list : {&byPlace, &firstFace, &faces, &firstCorner, &corners})
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
  borders.clear();
  places.clear();
  firstCorner.assign(1, 0);
  corners.clear();
  for (MItMeshVertex vertex(mesh); !vertex.isDone(); vertex.next()) {
    const MPoint place = vertex.position(MSpace::kWorld);
    places.push_back(place);
    if (!vertex.onBoundary()) continue;
    borderVertex border;
    border.place = place;
    vertex.getNormal(border.normal, MSpace::kWorld);
    border.index = vertex.index();
    borders.push_back(border);
  }
  for (MItMeshPolygon polygon(mesh); !polygon.isDone(); polygon.next()) {
    MIntArray vertices;
    polygon.getVertices(vertices);
    for (unsigned int i = 0; i < vertices.length(); ++i) corners.push_back(vertices[i]);
    firstCorner.push_back(static_cast<int>(corners.size()));
  }
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
  byPlace.resize(places.size());
  for (std::size_t i = 0; i < byPlace.size(); ++i) byPlace[i] = static_cast<int>(i);
  std::sort(byPlace.begin(), byPlace.end(), [this](int a, int b) {
    return std::make_tuple(key(places[static_cast<std::size_t>(a)]), a) <
           std::make_tuple(key(places[static_cast<std::size_t>(b)]), b);
  });
  isStale = false;  // reading brings the mesh up to date, which may have told of it once more
}

template <class Call>
void drawnMesh::eachVertexAt(const MPoint& point, Call call) const {
  if (point.w != 1.0) return;
  auto at = std::lower_bound(
      byPlace.begin(), byPlace.end(), key(point),
      [this](int v, auto wanted) { return key(places[static_cast<std::size_t>(v)]) < wanted; });
  for (; at != byPlace.end() && key(places[static_cast<std::size_t>(*at)]) == key(point); ++at)
    call(*at);
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
