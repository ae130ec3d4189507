#include "shared/selection/mirrorLookup.h"

#include <maya/MBoundingBox.h>
#include <maya/MItMeshVertex.h>

#include <algorithm>
#include <vector>

namespace {

std::vector<int> sorted(const MIntArray& values) {
  std::vector<int> result(values.length());
  for (unsigned int i = 0; i < values.length(); ++i) result[i] = values[i];
  std::sort(result.begin(), result.end());
  return result;
}

}  // namespace

mirrorLookup::mirrorLookup(const MDagPath& meshPath, int axisIn, bool inWorldSpace)
    : path(meshPath),
      mesh(meshPath),
      polygon(meshPath),
      axis(static_cast<unsigned int>(std::clamp(axisIn, 0, 2))),
      inObjectSpace(!inWorldSpace) {
  if (inObjectSpace) {
    toPlane = path.inclusiveMatrixInverse();
    fromPlane = path.inclusiveMatrix();
  }
}

double mirrorLookup::reach() const {
  if (tolerance >= 0.0) return tolerance;
  MBoundingBox box = MFnDagNode(path).boundingBox();
  box.transformUsing(path.inclusiveMatrix());
  return tolerance = 1e-3 * box.min().distanceTo(box.max());
}

MPoint mirrorLookup::mirrored(const MPoint& point) const {
  MPoint there = point * toPlane;
  there[axis] = -there[axis];
  return there * fromPlane;
}

MVector mirrorLookup::reflect(const MVector& vector) const {
  MVector there = vector * toPlane;
  there[axis] = -there[axis];
  return there * fromPlane;
}

MPoint mirrorLookup::onPlane(const MPoint& point) const {
  MPoint there = point * toPlane;
  there[axis] = 0.0;
  return there * fromPlane;
}

int mirrorLookup::nearestVertex(const MPoint& place) const {
  MPoint surface;
  int face = -1;
  if (mesh.getClosestPoint(place, surface, MSpace::kWorld, &face) != MS::kSuccess || face < 0)
    return -1;
  if (surface.distanceTo(place) > reach()) return -1;
  int before = 0;
  MIntArray faces;
  if (polygon.setIndex(face, before) != MS::kSuccess) return -1;
  polygon.getConnectedFaces(faces);
  faces.append(face);
  int nearest = -1;
  double best = reach() * (1.0 + 1e-9);
  MIntArray corners;
  for (unsigned int i = 0; i < faces.length(); ++i) {
    mesh.getPolygonVertices(faces[i], corners);
    for (unsigned int k = 0; k < corners.length(); ++k) {
      MPoint point;
      mesh.getPoint(corners[k], point, MSpace::kWorld);
      const double distance = point.distanceTo(place);
      if (distance > best || (distance == best && nearest >= 0 && corners[k] >= nearest)) continue;
      best = distance;
      nearest = corners[k];
    }
  }
  return nearest;
}

int mirrorLookup::vertex(int index) const {
  MPoint point, back;
  if (mesh.getPoint(index, point, MSpace::kWorld) != MS::kSuccess) return -1;
  const int there = nearestVertex(mirrored(point));
  if (there < 0 || there == index) return there;
  mesh.getPoint(there, back, MSpace::kWorld);
  return nearestVertex(mirrored(back)) == index ? there : -1;
}

bool mirrorLookup::counterparts(const MIntArray& vertices, MIntArray& found) const {
  for (unsigned int i = 0; i < vertices.length(); ++i) {
    const int there = vertex(vertices[i]);
    if (there < 0) return false;
    found.append(there);
  }
  return vertices.length() > 0;
}

int mirrorLookup::edge(int index) const {
  pickedComponent component;
  component.kind = kEdgeKind;
  component.index = index;
  component.mesh = path;
  MIntArray ends, around;
  if (!counterparts(verticesOf(component), ends)) return -1;
  MItMeshVertex spokes(path);
  int before = 0;
  if (spokes.setIndex(ends[0], before) != MS::kSuccess) return -1;
  spokes.getConnectedEdges(around);
  for (unsigned int i = 0; i < around.length(); ++i) {
    int other = -1;
    if (spokes.getOppositeVertex(other, around[i]) == MS::kSuccess && other == ends[1])
      return around[i];
  }
  return -1;
}

int mirrorLookup::face(int index) const {
  pickedComponent component;
  component.kind = kFaceKind;
  component.index = index;
  component.mesh = path;
  MIntArray corners, around;
  if (!counterparts(verticesOf(component), corners)) return -1;
  MItMeshVertex vertexAt(path);
  int before = 0;
  if (vertexAt.setIndex(corners[0], before) != MS::kSuccess) return -1;
  vertexAt.getConnectedFaces(around);
  const std::vector<int> wanted = sorted(corners);
  for (unsigned int i = 0; i < around.length(); ++i) {
    MIntArray vertices;
    mesh.getPolygonVertices(around[i], vertices);
    if (sorted(vertices) == wanted) return around[i];
  }
  return -1;
}

int mirrorLookup::counterpart(int kind, int index) const {
  if (kind == kVertexKind) return vertex(index);
  if (kind == kEdgeKind) return edge(index);
  return kind == kFaceKind ? face(index) : -1;
}
