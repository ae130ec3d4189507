#include "shared/selection/sightBlockers.h"

#include <maya/MBoundingBox.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>
#include <maya/MItDag.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "shared/mesh/shownMesh.h"

namespace {

/// Whether a line passes a box made larger by `reach` on all sides.
bool meets(const sightLine& line, const MBoundingBox& box, double reach) {
  const MPoint low = box.min(), high = box.max();
  double from = 0.0, to = line.length;
  for (unsigned int k = 0; k < 3; ++k) {
    const double speed = line.direction[k];
    double in = low[k] - reach - line.start[k], out = high[k] + reach - line.start[k];
    if (speed == 0.0) {
      if (in > 0.0 || out < 0.0) return false;
      continue;
    }
    in /= speed;
    out /= speed;
    if (in > out) std::swap(in, out);
    from = std::max(from, in);
    to = std::min(to, out);
  }
  return from <= to;
}

MBoundingBox worldBox(const MDagPath& mesh) {
  MBoundingBox box = MFnDagNode(mesh).boundingBox();
  box.transformUsing(mesh.inclusiveMatrix());
  return box;
}

}  // namespace

sightBlockers::sightBlockers(const MDagPath& mesh, const sightLine& line, double reach) {
  MDagPath shape = mesh;
  extendToShownMesh(shape);
  for (MItDag item(MItDag::kDepthFirst, MFn::kMesh); !item.isDone(); item.next()) {
    MDagPath other;
    if (item.getPath(other) != MS::kSuccess || other == shape) continue;
    if (MFnDagNode(other).isIntermediateObject() || !meets(line, worldBox(other), reach)) continue;
    if (other.isVisible() && !other.isTemplated()) near.push_back(other);
  }
}

bool sightBlockers::block(const sightLine& line) const {
  const MFloatPoint source(static_cast<float>(line.start.x), static_cast<float>(line.start.y),
                           static_cast<float>(line.start.z));
  const MFloatVector way(static_cast<float>(line.direction.x), static_cast<float>(line.direction.y),
                         static_cast<float>(line.direction.z));
  MMeshIsectAccelParams accelerator = MFnMesh::autoUniformGridParams();
  MFloatPoint hit;
  return std::any_of(near.begin(), near.end(), [&](const MDagPath& path) {
    return MFnMesh(path).anyIntersection(source, way, nullptr, nullptr, false, MSpace::kWorld,
                                         static_cast<float>(line.length), false, &accelerator, hit,
                                         nullptr, nullptr, nullptr, nullptr, nullptr);
  });
}
