#include "shared/selection/polygonSelect.h"

#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshPolygon.h>

namespace {

MPoint midpoint(const MFnMesh& mesh, int edge) {
  int2 ends = {0, 0};
  MPoint a, b;
  mesh.getEdgeVertices(edge, ends);
  mesh.getPoint(ends[0], a, MSpace::kWorld);
  mesh.getPoint(ends[1], b, MSpace::kWorld);
  return MPoint((a.x + b.x) / 2.0, (a.y + b.y) / 2.0, (a.z + b.z) / 2.0);
}

/// Keeps the candidate nearest to a place, the first of equally near ones.
class nearestOf {
 public:
  explicit nearestOf(const MPoint& placeIn) : place(placeIn) {}
  void consider(int index, const MPoint& point, closestComponentRecord& found) {
    const double distance = point.distanceTo(place);
    if (best != kUnset && !(distance < best)) return;
    best = distance;
    found.index = index;
    found.point = point;
  }

 private:
  static constexpr double kUnset = -1.0;
  MPoint place;
  double best = kUnset;
};

}  // namespace

polygonSelect::~polygonSelect() = default;

MStatus polygonSelect::closestComponent(const MDagPath& mesh, const MPoint& worldPoint, int type,
                                        closestComponentRecord& found) const {
  found = closestComponentRecord();
  found.type = type;
  if (type != kVertexType && type != kFaceType && type != kEdgeType) return MS::kInvalidParameter;
  if (!mesh.isValid()) return MS::kFailure;
  MStatus status;
  const MFnMesh meshFn(mesh, &status);
  if (status != MS::kSuccess) return status;
  MPoint surface;
  int face = -1;
  status = meshFn.getClosestPoint(worldPoint, surface, MSpace::kWorld, &face);
  if (status != MS::kSuccess) return status;
  found.point = surface;
  if (type == kFaceType) {
    found.index = face;
    return status;
  }
  nearestOf nearest(surface);
  MIntArray ids;
  if (type == kVertexType) {
    meshFn.getPolygonVertices(face, ids);
    for (unsigned int i = 0; i < ids.length(); ++i) {
      MPoint point;
      meshFn.getPoint(ids[i], point, MSpace::kWorld);
      nearest.consider(ids[i], point, found);
    }
    return status;
  }
  MItMeshPolygon polygon(mesh);
  int before = 0;
  polygon.setIndex(face, before);
  polygon.getEdges(ids);
  for (unsigned int i = 0; i < ids.length(); ++i)
    nearest.consider(ids[i], midpoint(meshFn, ids[i]), found);
  return status;
}
