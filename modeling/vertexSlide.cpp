#include "modeling/vertexSlide.h"

#include <maya/M3dView.h>
#include <maya/MFnMesh.h>
#include <maya/MFnMeshData.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshVertex.h>

#include <algorithm>
#include <cmath>

#include "shared/mesh/mathHelper.h"
#include "shared/view/viewProjector.h"

namespace {

bool contains(const MIntArray& ids, int id) {
  for (unsigned int i = 0; i < ids.length(); ++i)
    if (ids[i] == id) return true;
  return false;
}

void tellOverlapping(const std::vector<int>& vertices) {
  if (vertices.empty()) return;
  MString text("Overlapping Vert:");
  for (const int vertex : vertices) {
    text += " ";
    text += vertex;
  }
  MGlobal::displayInfo(text);
}

}  // namespace

bool vertexSlide::begin(const M3dView& view, const pickedComponent& picked,
                        const gestureSettings& settingsIn, const MDagPath& surface,
                        pointEdit& edit) {
  const MIntArray ids = verticesOf(picked);
  if (ids.length() == 0 || !edit.begin(picked.mesh, settingsIn)) return false;
  path = picked.mesh;
  settings = settingsIn;
  anchor = picked.point;
  distance = 0.0;
  surfacePath = MDagPath();
  surfaceCopy = MObject();
  if (settings.softSelect) {
    const double smoothness = std::clamp(settings.smoothIntensity, 0, 100) / 100.0;
    vertices.region = regionAround(path, ids, softRadius(path, settings.intensity), smoothness);
    if (surface.isValid() && !settings.slideOnItself) {
      surfacePath = surface;
    } else {
      surfaceCopy = MFnMeshData().create();
      MFnMesh().copy(path.node(), surfaceCopy);
    }
  } else {
    vertices.region = pickedOnly(ids);
    findWays(view, ids);
  }
  vertices.counterparts = counterpartsOf(path, vertices.region.vertices, settings);
  return true;
}

void vertexSlide::findWays(const M3dView& view, const MIntArray& picked) {
  ways.assign(picked.length(), {});
  MStatus status;
  const viewProjector projector(view, &status);
  if (status != MS::kSuccess) return;
  const MFnMesh mesh(path);
  MItMeshVertex vertex(path);
  std::vector<int> overlapping;
  double nearest = HUGE_VAL;
  for (unsigned int i = 0; i < picked.length(); ++i) {
    MPoint begin;
    MIntArray around;
    int before = 0;
    mesh.getPoint(picked[i], begin, MSpace::kWorld);
    if (begin.distanceTo(anchor) < nearest) {
      nearest = begin.distanceTo(anchor);
      lead = i;
    }
    if (vertex.setIndex(picked[i], before) != MS::kSuccess) continue;
    vertex.getConnectedVertices(around);
    bool isOverlapping = false;
    for (unsigned int k = 0; k < around.length(); ++k) {
      way to;
      to.begin = begin;
      mesh.getPoint(around[k], to.end, MSpace::kWorld);
      if (to.end == to.begin) {
        isOverlapping = true;
        continue;
      }
      if (contains(picked, around[k])) continue;
      const viewPlace a = projector.project(to.begin), b = projector.project(to.end);
      to.isShown = !a.isClipped && !b.isClipped;
      to.x = b.x - a.x;
      to.y = b.y - a.y;
      to.beginDepth = a.depth;
      to.endDepth = b.depth;
      ways[i].push_back(to);
    }
    if (isOverlapping) overlapping.push_back(picked[i]);
  }
  tellOverlapping(overlapping);
}

const vertexSlide::way* vertexSlide::nearestWay(const std::vector<way>& ways, double dx,
                                                double dy) {
  const way* best = nullptr;
  double bestCosine = 0.0;
  for (const way& each : ways) {
    const double length = std::hypot(each.x, each.y);
    if (!each.isShown || length < 0.5) continue;
    const double cosine = (each.x * dx + each.y * dy) / length;
    if (cosine <= bestCosine) continue;
    bestCosine = cosine;
    best = &each;
  }
  return best;
}

/// Where on the edge what is shown under the moved cursor lies, 0 to 1 of it in the world.
double vertexSlide::shareOf(const way& taken, double dx, double dy, bool isOrthographic) {
  const double squared = taken.x * taken.x + taken.y * taken.y;
  const double shown = std::clamp((taken.x * dx + taken.y * dy) / squared, 0.0, 1.0);
  if (isOrthographic) return shown;
  // Equal steps on the screen are no equal steps along an edge that leads away.
  return shown * taken.beginDepth / ((1.0 - shown) * taken.endDepth + shown * taken.beginDepth);
}

std::vector<MVector> vertexSlide::alongEdges(const M3dView& view, double dx, double dy) {
  std::vector<MVector> by(vertices.region.vertices.size());
  distance = 0.0;
  const way* const leading = lead < ways.size() ? nearestWay(ways[lead], dx, dy) : nullptr;
  if (!leading) return by;
  const double share = shareOf(*leading, dx, dy, viewProjector(view).isOrthographic());
  for (std::size_t i = 0; i < by.size(); ++i)
    if (const way* own = nearestWay(ways[i], dx, dy)) by[i] = (own->end - own->begin) * share;
  distance = by[lead].length();
  return by;
}

MPoint vertexSlide::nearestOnSurface(const MPoint& point) const {
  MPoint nearest;
  if (surfacePath.isValid()) {
    const MFnMesh surface(surfacePath);
    return surface.getClosestPoint(point, nearest, MSpace::kWorld) == MS::kSuccess ? nearest
                                                                                   : point;
  }
  const MFnMesh surface(surfaceCopy);
  const MPoint inside = point * path.inclusiveMatrixInverse();
  if (surface.getClosestPoint(inside, nearest, MSpace::kObject) != MS::kSuccess) return point;
  return nearest * path.inclusiveMatrix();
}

std::vector<MVector> vertexSlide::onSurface(const M3dView& view, const portPlace& press,
                                            const portPlace& current, const pointEdit& edit) {
  std::vector<MVector> by(vertices.region.vertices.size());
  const mathHelper math;
  MPoint from, to;
  if (math.viewToWorldAtDepth(view, press.x, press.y, anchor, from) != MS::kSuccess ||
      math.viewToWorldAtDepth(view, current.x, current.y, anchor, to) != MS::kSuccess)
    return by;
  const MVector carried = to - from;
  distance = carried.length();
  for (std::size_t i = 0; i < by.size(); ++i) {
    const MPoint start = edit.startOf(vertices.region.vertices[i]);
    by[i] = nearestOnSurface(start + carried * vertices.region.weights[i]) - start;
  }
  return by;
}

void vertexSlide::drag(const M3dView& view, const portPlace& press, const portPlace& current,
                       pointEdit& edit) {
  const double dx = current.x - press.x, dy = current.y - press.y;
  const std::vector<MVector> by =
      settings.softSelect ? onSurface(view, press, current, edit) : alongEdges(view, dx, dy);
  moveWithMirror(vertices, by, settings, edit);
}

MString vertexSlide::sentence() const {
  return MString("slid ") +
         shortNumber(distance * static_cast<double>(mathHelper().unitsPerCentimetre()));
}
