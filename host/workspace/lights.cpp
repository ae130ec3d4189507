#include "host/workspace/lights.h"

#include <algorithm>
#include <cmath>

#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"
#include "host/viewport/display_colors.h"

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

/// Lines of a light's sign around its place: rays for a sun, a star for a point, a cone for a spot.
std::vector<Vec3> signOf(const dg::NodeType& type) {
  std::vector<Vec3> lines;
  const auto line = [&](Vec3 a, Vec3 b) {
    lines.push_back(a);
    lines.push_back(b);
  };
  if (type.isA("directionalLight")) {
    for (const Vec3& at :
         {Vec3{0, 0, 0}, Vec3{0.4, 0.4, 0}, Vec3{-0.4, 0.4, 0}, Vec3{0, -0.4, 0}}) {
      const Vec3 tip = at + Vec3{0, 0, -1};
      line(at, tip);
      line(tip, tip + Vec3{0.08, 0, 0.2});
      line(tip, tip + Vec3{-0.08, 0, 0.2});
    }
    return lines;
  }
  constexpr int kSteps = 12;
  if (type.isA("spotLight")) {
    for (int i = 0; i < kSteps; ++i) {
      const auto at = [](int step) {
        const double angle = step * 6.283185307179586 / kSteps;
        return Vec3{0.36 * std::cos(angle), 0.36 * std::sin(angle), -1};
      };
      line(at(i), at(i + 1));
      if (i % 3 == 0) line({}, at(i));
    }
    return lines;
  }
  for (const Vec3& way : {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}, Vec3{0.6, 0.6, 0.6},
                          Vec3{-0.6, 0.6, 0.6}, Vec3{0.6, -0.6, 0.6}, Vec3{0.6, 0.6, -0.6}})
    line(way * -0.4, way * 0.4);
  return lines;
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

void drawMarks(scene::Document& document, viewport::SceneView& scene) {
  const viewport::DisplayColors& colors = viewport::displayColors();
  forEachShape(document, [&](const DagPath& path) {
    dg::Node& node = *path.node();
    std::vector<Vec3> lines;
    if (node.type().name == "locator" && scene.options.showLocators) {
      const Vec3 center{scene::numberOr(node, "localPositionX", 0),
                        scene::numberOr(node, "localPositionY", 0),
                        scene::numberOr(node, "localPositionZ", 0)};
      const Vec3 size{scene::numberOr(node, "localScaleX", 1),
                      scene::numberOr(node, "localScaleY", 1),
                      scene::numberOr(node, "localScaleZ", 1)};
      for (const Vec3& arm : {Vec3{size.x, 0, 0}, Vec3{0, size.y, 0}, Vec3{0, 0, size.z}}) {
        lines.push_back(center - arm);
        lines.push_back(center + arm);
      }
    } else if (node.type().isA("light") && scene.options.showLights) {
      lines = signOf(node.type());
    }
    if (lines.empty()) return;
    std::vector<math::Vec3f> points;
    const math::Matrix4 world = path.inclusiveMatrix();
    for (const Vec3& p : lines) points.push_back(math::transformPoint(p, world).toFloat());
    viewport::DrawItem& item =
        scene.extra.add(viewport::Primitive::Lines, viewport::Pass::Wire, std::move(points));
    const bool isChosen = scene.options.showSelection && isSelected(document, path);
    item.color = isChosen ? colors.wireLead : colors.wireOnly;
    item.width = 1.5f;
  });
}

}  // namespace host::workspace
