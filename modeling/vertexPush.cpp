#include "modeling/vertexPush.h"

#include <maya/M3dView.h>
#include <maya/MFnCamera.h>
#include <maya/MFnMesh.h>
#include <maya/MItMeshVertex.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "shared/mesh/mathHelper.h"
#include "shared/selection/mirrorLookup.h"
#include "shared/view/viewProjector.h"

double distanceFollowing(const M3dView& view, const MPoint& anchor, const MVector& direction,
                         const portPlace& from, const portPlace& to) {
  MStatus status;
  const viewProjector projector(view, &status);
  if (status != MS::kSuccess) return 0.0;
  const viewPlace here = projector.project(anchor);
  const double perPixel = projector.worldPerPixel(here.depth);
  if (here.isClipped || !(perPixel > 0.0)) return 0.0;
  const double dx = to.x - from.x, dy = to.y - from.y;
  // The direction's picture: how far a pixel's worth of it goes on the screen.
  const viewPlace there = projector.project(anchor + direction * perPixel);
  const double stepX = there.x - here.x, stepY = there.y - here.y;
  const double slant = std::hypot(stepX, stepY);  // 1 across the view, 0 towards the viewer
  constexpr double kAcross = 0.35;
  if (!(slant >= kAcross)) return dy * perPixel;
  const double wanted = (dx * stepX + dy * stepY) / slant;  // pixels along the picture
  // Perspective bends the relation: a few secant steps find the point whose picture is there.
  const auto shown = [&](double length) {
    const viewPlace at = projector.project(anchor + direction * length);
    if (at.isClipped) return wanted;
    return ((at.x - here.x) * stepX + (at.y - here.y) * stepY) / slant;
  };
  double previous = 0.0, previousShown = 0.0;
  double length = wanted * perPixel / slant;
  for (int i = 0; i < 8; ++i) {
    const double now = shown(length);
    if (std::fabs(now - wanted) < 1e-3 || now == previousShown) break;
    const double next = length + (wanted - now) * (length - previous) / (now - previousShown);
    previous = length;
    previousShown = now;
    length = next;
  }
  return std::isfinite(length) ? length : 0.0;
}

std::vector<int> counterpartsOf(const MDagPath& mesh, const std::vector<int>& vertices,
                                const gestureSettings& settings) {
  std::vector<int> found(vertices.size(), -1);
  if (!settings.mirror) return found;
  const mirrorLookup mirror(mesh, settings.mirrorAxis, settings.mirrorWorldSpace);
  for (std::size_t i = 0; i < vertices.size(); ++i) found[i] = mirror.vertex(vertices[i]);
  return found;
}

void moveWithMirror(const movingVertices& vertices, const std::vector<MVector>& by,
                    const gestureSettings& settings, pointEdit& edit) {
  std::vector<int> ids = vertices.region.vertices;
  std::vector<MPoint> places;
  places.reserve(ids.size());
  for (std::size_t i = 0; i < ids.size(); ++i) places.push_back(edit.startOf(ids[i]) + by[i]);
  if (settings.mirror) {
    const mirrorLookup mirror(edit.mesh(), settings.mirrorAxis, settings.mirrorWorldSpace);
    std::unordered_map<int, std::size_t> own;
    for (std::size_t i = 0; i < ids.size(); ++i) own.emplace(ids[i], i);
    const std::size_t count = vertices.region.vertices.size();
    for (std::size_t i = 0; i < count; ++i) {
      const int other = vertices.counterparts[i];
      if (other < 0) continue;
      if (other == ids[i]) {
        // Half of what it does across the plane is done by the other side.
        const MVector across = by[i] + mirror.reflect(by[i]);
        places[i] = edit.startOf(other) + across * 0.5;
        continue;
      }
      const auto both = own.find(other);
      const bool isStronger =
          both == own.end() || vertices.region.weights[i] > vertices.region.weights[both->second];
      if (!isStronger) continue;
      const MPoint there = edit.startOf(other) + mirror.reflect(by[i]);
      if (both != own.end()) {
        places[both->second] = there;
      } else {
        ids.push_back(other);
        places.push_back(there);
      }
    }
  }
  edit.move(ids, places);
}

bool vertexPush::begin(const M3dView& view, const pickedComponent& picked,
                       const gestureSettings& settingsIn, pointEdit& edit) {
  const MIntArray ids = verticesOf(picked);
  if (ids.length() == 0 || !edit.begin(picked.mesh, settingsIn)) return false;
  path = picked.mesh;
  settings = settingsIn;
  anchor = picked.point;
  distance = 0.0;
  const double smoothness = std::clamp(settings.smoothIntensity, 0, 100) / 100.0;
  vertices.region = settings.softSelect
                        ? regionAround(path, ids, softRadius(path, settings.intensity), smoothness)
                        : pickedOnly(ids);
  vertices.counterparts = counterpartsOf(path, vertices.region.vertices, settings);
  findDirections(view, ids);
  return along.length() > 0.0;
}

void vertexPush::findDirections(const M3dView& view, const MIntArray& picked) {
  constexpr int kTowardsViewer = 1;
  vertices.directions.clear();
  along = MVector();
  if (settings.normalDirection == kTowardsViewer) {
    MDagPath camera;
    if (M3dView(view).getCamera(camera) != MS::kSuccess) return;
    along = -MFnCamera(camera).viewDirection(MSpace::kWorld);
    vertices.directions.assign(vertices.region.vertices.size(), along);
    return;
  }
  const MFnMesh mesh(path);
  for (const int id : vertices.region.vertices) {
    MVector normal;
    mesh.getVertexNormal(id, false, normal, MSpace::kWorld);
    vertices.directions.push_back(normal.normal());
  }
  for (unsigned int i = 0; i < picked.length(); ++i) along += vertices.directions[i];
  along.normalize();
}

std::vector<MVector> vertexPush::displacements() const {
  std::vector<MVector> by;
  by.reserve(vertices.directions.size());
  for (std::size_t i = 0; i < vertices.directions.size(); ++i)
    by.push_back(vertices.directions[i] * (distance * vertices.region.weights[i]));
  return by;
}

/// Blends every displacement with the mean of its neighbours', those that don't move included.
void vertexPush::smooth(std::vector<MVector>& by) const {
  const double share = std::clamp(settings.smoothPush, 0, 100) / 100.0;
  if (share == 0.0) return;
  std::unordered_map<int, std::size_t> own;
  for (std::size_t i = 0; i < by.size(); ++i) own.emplace(vertices.region.vertices[i], i);
  const std::vector<MVector> before = by;
  MItMeshVertex vertex(path);
  MIntArray around;
  for (std::size_t i = 0; i < by.size(); ++i) {
    int previous = 0;
    if (vertex.setIndex(vertices.region.vertices[i], previous) != MS::kSuccess) continue;
    vertex.getConnectedVertices(around);
    if (around.length() == 0) continue;
    MVector sum;
    for (unsigned int k = 0; k < around.length(); ++k)
      if (const auto found = own.find(around[k]); found != own.end()) sum += before[found->second];
    by[i] = before[i] * (1.0 - share) + sum * (share / around.length());
  }
}

void vertexPush::drag(const M3dView& view, const portPlace& press, const portPlace& current,
                      pointEdit& edit) {
  distance = distanceFollowing(view, anchor, along, press, current);
  std::vector<MVector> by = displacements();
  smooth(by);
  moveWithMirror(vertices, by, settings, edit);
}

MString vertexPush::sentence() const {
  return MString("pushed ") +
         shortNumber(distance * static_cast<double>(mathHelper().unitsPerCentimetre()));
}
