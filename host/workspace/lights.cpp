#include "host/workspace/lights.h"

#include <algorithm>
#include <cmath>

#include "host/scene/display_rules.h"

namespace host::workspace {

namespace {

using math::Vec3;
using viewport::Light;

Light lightAt(dg::Node& node, const math::Matrix4& world) {
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

LightGatherer::LightGatherer(const std::string& which)
    : onlySelected_(which == "selected" || which == "active"),
      isOff_(which != "all" && !onlySelected_) {}

void LightGatherer::visit(const viewport::ShownPlace& place) {
  if (isOff_ || !scene::isShape(place.node) || !place.node.type().isA("light")) return;
  if (onlySelected_ && place.selected == viewport::ObjectState::Dormant) return;
  // More are not drawn by: those of nested instances would be countless.
  if (lights.size() < viewport::Lighting::kMaxLights)
    lights.push_back(lightAt(place.node, place.world));
}

}  // namespace host::workspace
