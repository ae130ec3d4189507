#include "host/workspace/lights.h"

#include <algorithm>
#include <cmath>

#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"

namespace host::workspace {

namespace {

using math::Vec3;
using scene::DagPath;
using viewport::Light;

bool isSelected(const scene::Document& document, const DagPath& path) {
  return std::ranges::any_of(document.selection().items(), [&](const scene::SelectionItem& item) {
    return item.isDag() && (item.path == path || item.path.isAncestorOf(path));
  });
}

/// Calls `visit` with the paths of all visible shapes.
template <class Visit>
void forEachShape(scene::Document& document, Visit visit) {
  for (dg::Node* top : document.worldChildren()) {
    scene::PathWalk walk(DagPath({top}));
    while (!walk.isDone()) {
      if (!scene::isShown(walk.node()) || scene::isIntermediate(walk.node())) {
        walk.skipBelow();
        continue;
      }
      if (scene::isShape(walk.node())) visit(walk.path());
      walk.next();
    }
  }
}

Light lightAt(const DagPath& path) {
  dg::Node& node = *path.node();
  const math::Matrix4 world = path.inclusiveMatrix();
  Light light;
  light.position = math::transformPoint(Vec3{}, world);
  light.direction = math::normalized(math::transformVector(Vec3{0, 0, -1}, world));
  const double intensity = scene::numberOr(node, "intensity", 1);
  light.color = Vec3{scene::numberOr(node, "colorR", 1), scene::numberOr(node, "colorG", 1),
                     scene::numberOr(node, "colorB", 1)} *
                intensity;
  light.decay = scene::numberOr(node, "decayRate", 0);
  const dg::NodeType& type = node.type();
  if (type.isA("ambientLight")) {
    light.kind = Light::Kind::Ambient;
    light.ambientShade = scene::numberOr(node, "ambientShade", 0.45);
  } else if (type.isA("pointLight") || type.isA("areaLight")) {
    light.kind = Light::Kind::Point;
  } else if (type.isA("spotLight")) {
    light.kind = Light::Kind::Spot;
    const double half = 0.5 * scene::numberOr(node, "coneAngle", 0.7);
    const double penumbra = scene::numberOr(node, "penumbraAngle", 0);
    light.cosInner = std::cos(std::min(half, half + penumbra));
    light.cosOuter = std::cos(std::max(half, half + penumbra));
    light.dropoff = scene::numberOr(node, "dropoff", 0);
  }
  return light;
}

}  // namespace

std::vector<Light> gatherLights(scene::Document& document, const std::string& which) {
  std::vector<Light> lights;
  const bool onlySelected = which == "selected" || which == "active";
  if (which != "all" && !onlySelected) return lights;
  forEachShape(document, [&](const DagPath& path) {
    if (!path.node()->type().isA("light")) return;
    if (!onlySelected || isSelected(document, path)) lights.push_back(lightAt(path));
  });
  return lights;
}

}  // namespace host::workspace
