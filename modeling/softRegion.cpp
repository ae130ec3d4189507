#include "modeling/softRegion.h"

#include <maya/MBoundingBox.h>
#include <maya/MFnMesh.h>
#include <maya/MItMeshVertex.h>
#include <maya/MPoint.h>

#include <algorithm>
#include <functional>
#include <queue>
#include <unordered_map>
#include <utility>

namespace {

/// Walks over a mesh from vertices outwards, nearest first (Dijkstra 1959).
class surfaceWalk {
 public:
  surfaceWalk(const MDagPath& path, double radiusIn) : mesh(path), vertex(path), radius(radiusIn) {}

  void start(int id) {
    if (!reach(id, 0.0)) return;
  }

  /// The next vertex and its distance; false when there is none within the radius.
  bool next(int& id, double& distance) {
    while (!open.empty()) {
      const auto [far, at] = open.top();
      open.pop();
      place& known = places[at];
      if (known.isSettled) continue;
      known.isSettled = true;
      id = at;
      distance = far;
      spread(at, far);
      return true;
    }
    return false;
  }

 private:
  struct place {
    MPoint point;
    double distance = 0.0;
    bool isKnown = false, isSettled = false;
  };

  bool reach(int id, double distance) {
    place& there = places[id];
    if (there.isKnown && there.distance <= distance) return false;
    if (!there.isKnown && mesh.getPoint(id, there.point, MSpace::kWorld) != MS::kSuccess)
      return false;
    there.isKnown = true;
    there.distance = distance;
    open.emplace(distance, id);
    return true;
  }

  void spread(int from, double distance) {
    const MPoint here = places[from].point;
    int before = 0;
    if (vertex.setIndex(from, before) != MS::kSuccess) return;
    vertex.getConnectedFaces(faces);
    for (unsigned int i = 0; i < faces.length(); ++i) {
      mesh.getPolygonVertices(faces[i], corners);
      for (unsigned int k = 0; k < corners.length(); ++k) {
        if (corners[k] == from) continue;
        MPoint point;
        place& there = places[corners[k]];
        if (there.isSettled) continue;
        if (there.isKnown)
          point = there.point;
        else if (mesh.getPoint(corners[k], point, MSpace::kWorld) != MS::kSuccess)
          continue;
        const double far = distance + here.distanceTo(point);
        if (far < radius) reach(corners[k], far);
      }
    }
  }

  MFnMesh mesh;
  MItMeshVertex vertex;
  double radius;
  MIntArray faces, corners;
  std::unordered_map<int, place> places;
  using entry = std::pair<double, int>;
  std::priority_queue<entry, std::vector<entry>, std::greater<>> open;
};

}  // namespace

softRegion pickedOnly(const MIntArray& picked) {
  softRegion region;
  for (unsigned int i = 0; i < picked.length(); ++i) region.vertices.push_back(picked[i]);
  region.weights.assign(region.vertices.size(), 1.0);
  return region;
}

double falloff(double share, double smoothness) {
  const double t = std::clamp(1.0 - share, 0.0, 1.0);
  return t + (t * t * (3.0 - 2.0 * t) - t) * smoothness;
}

softRegion regionAround(const MDagPath& mesh, const MIntArray& picked, double radius,
                        double smoothness) {
  softRegion region = pickedOnly(picked);
  if (!(radius > 0.0) || !mesh.isValid()) return region;
  region.radius = radius;
  surfaceWalk walk(mesh, radius);
  for (unsigned int i = 0; i < picked.length(); ++i) walk.start(picked[i]);
  int id = 0;
  double distance = 0.0;
  while (walk.next(id, distance)) {
    if (distance == 0.0 &&
        std::find(region.vertices.begin(), region.vertices.begin() + picked.length(), id) !=
            region.vertices.begin() + picked.length())
      continue;
    region.vertices.push_back(id);
    region.weights.push_back(falloff(distance / radius, smoothness));
  }
  return region;
}

double softRadius(const MDagPath& mesh, int intensityPerCent) {
  constexpr double kWidest = 0.5;
  MBoundingBox box = MFnDagNode(mesh).boundingBox();
  box.transformUsing(mesh.inclusiveMatrix());
  return kWidest * box.min().distanceTo(box.max()) * std::clamp(intensityPerCent, 0, 100) / 100.0;
}
