#include "host/workspace/lights.h"

#include <algorithm>
#include <cmath>

#include "host/scene/dag_paths.h"
#include "host/viewport/display_colors.h"

namespace host::workspace {

namespace {

using math::Vec3;
using scene::DagPath;
using viewport::Light;

double numberOf(dg::Node& node, const char* attribute, double otherwise) {
  const dg::Plug plug = node.plug(attribute);
  if (!plug) return otherwise;
  const Result<dg::Value> value = node.graph().get(plug);
  if (!value) return otherwise;
  if (const auto* real = std::get_if<double>(&*value)) return *real;
  if (const auto* whole = std::get_if<std::int64_t>(&*value)) return static_cast<double>(*whole);
  return otherwise;
}

bool isShown(dg::Node& node) {
  const bool overridden = numberOf(node, "overrideEnabled", 0) != 0;
  return numberOf(node, "visibility", 1) != 0 && numberOf(node, "lodVisibility", 1) != 0 &&
         numberOf(node, "intermediateObject", 0) == 0 &&
         (!overridden || numberOf(node, "overrideVisibility", 1) != 0);
}

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
      if (!isShown(walk.node())) {
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
  const double intensity = numberOf(node, "intensity", 1);
  light.color =
      Vec3{numberOf(node, "colorR", 1), numberOf(node, "colorG", 1), numberOf(node, "colorB", 1)} *
      intensity;
  light.decay = numberOf(node, "decayRate", 0);
  const dg::NodeType& type = node.type();
  if (type.isA("ambientLight")) {
    light.kind = Light::Kind::Ambient;
    light.ambientShade = numberOf(node, "ambientShade", 0.45);
  } else if (type.isA("pointLight") || type.isA("areaLight")) {
    light.kind = Light::Kind::Point;
  } else if (type.isA("spotLight")) {
    light.kind = Light::Kind::Spot;
    const double half = 0.5 * numberOf(node, "coneAngle", 0.7);
    const double penumbra = numberOf(node, "penumbraAngle", 0);
    light.cosInner = std::cos(std::min(half, half + penumbra));
    light.cosOuter = std::cos(std::max(half, half + penumbra));
    light.dropoff = numberOf(node, "dropoff", 0);
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
      const Vec3 center{numberOf(node, "localPositionX", 0), numberOf(node, "localPositionY", 0),
                        numberOf(node, "localPositionZ", 0)};
      const Vec3 size{numberOf(node, "localScaleX", 1), numberOf(node, "localScaleY", 1),
                      numberOf(node, "localScaleZ", 1)};
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
