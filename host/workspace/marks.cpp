#include "host/workspace/marks.h"

#include <algorithm>
#include <cmath>

#include "host/nodes/curve/curve_nodes.h"
#include "host/nodes/curve/surface_nodes.h"
#include "host/nodes/history/lattice.h"
#include "host/scene/display_rules.h"
#include "host/viewport/display_colors.h"

namespace host::workspace {

/// What stands for an object.
enum class Mark : std::uint8_t {
  None,
  Joint,
  Locator,
  Light,
  Curve,
  Surface,
  ClusterHandle,
  Lattice,
  BaseLattice
};

namespace {

using math::Vec3;
using scene::DagPath;

constexpr double kFullTurn = 6.283185307179586;

/// Line segments, two points each.
struct Strokes {
  std::vector<Vec3> points;
  void line(const Vec3& a, const Vec3& b) {
    points.push_back(a);
    points.push_back(b);
  }
  void circle(const Vec3& center, const Vec3& x, const Vec3& y, int steps) {
    const auto at = [&](int step) {
      const double angle = step * kFullTurn / steps;
      return center + x * std::cos(angle) + y * std::sin(angle);
    };
    for (int i = 0; i < steps; ++i) line(at(i), at(i + 1));
  }
};

/// A light's sign around its place: rays for a sun, a star for a point, a cone for a spot.
Strokes signOfLight(const dg::NodeType& type) {
  Strokes sign;
  if (type.isA("directionalLight")) {
    for (const Vec3& at :
         {Vec3{0, 0, 0}, Vec3{0.4, 0.4, 0}, Vec3{-0.4, 0.4, 0}, Vec3{0, -0.4, 0}}) {
      const Vec3 tip = at + Vec3{0, 0, -1};
      sign.line(at, tip);
      sign.line(tip, tip + Vec3{0.08, 0, 0.2});
      sign.line(tip, tip + Vec3{-0.08, 0, 0.2});
    }
    return sign;
  }
  if (type.isA("spotLight")) {
    sign.circle({0, 0, -1}, {0.36, 0, 0}, {0, 0.36, 0}, 12);
    for (const Vec3& rim :
         {Vec3{0.36, 0, -1}, Vec3{0, 0.36, -1}, Vec3{-0.36, 0, -1}, Vec3{0, -0.36, -1}})
      sign.line({}, rim);
    return sign;
  }
  for (const Vec3& way : {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}, Vec3{0.6, 0.6, 0.6},
                          Vec3{-0.6, 0.6, 0.6}, Vec3{0.6, -0.6, 0.6}, Vec3{0.6, 0.6, -0.6}})
    sign.line(way * -0.4, way * 0.4);
  return sign;
}

Strokes crossOf(dg::Node& locator) {
  const auto triple = [&](const std::string& name, double otherwise) {
    return Vec3{scene::numberOr(locator, name + "X", otherwise),
                scene::numberOr(locator, name + "Y", otherwise),
                scene::numberOr(locator, name + "Z", otherwise)};
  };
  const Vec3 center = triple("localPosition", 0), size = triple("localScale", 1);
  Strokes cross;
  for (const Vec3& arm : {Vec3{size.x, 0, 0}, Vec3{0, size.y, 0}, Vec3{0, 0, size.z}})
    cross.line(center - arm, center + arm);
  return cross;
}

/// A letter C where the handle's points turn, of one size in every view, in world space.
Strokes signOfHandle(const viewport::ShownPlace& place, const viewport::SceneView& scene) {
  const auto origin = [&](const char* axis) { return scene::numberOr(place.node, axis, 0); };
  const Vec3 at =
      math::transformPoint({origin("originX"), origin("originY"), origin("originZ")}, place.world);
  const viewport::ViewProjection view(scene.camera, scene.port);
  constexpr double kPixels = 8, kOpening = 0.7;  // half the height; radians above and below
  const double size = kPixels * view.worldPerPixel(view.worldToView(at).depth);
  const Vec3 x = scene.camera.right() * size * 0.8, y = scene.camera.up() * size;
  Strokes letter;
  constexpr int kSteps = 16;
  const auto on = [&](int step) {
    const double angle = kOpening + (kFullTurn - 2 * kOpening) * step / kSteps;
    return at + x * std::cos(angle) + y * std::sin(angle);
  };
  for (int i = 0; i < kSteps; ++i) letter.line(on(i), on(i + 1));
  return letter;
}

/// The lines between the points of a lattice.
Strokes cageOf(const nodes::LatticePoints& lattice) {
  Strokes cage;
  const auto& [s, t, u] = lattice.divisions;
  const auto line = [&](std::size_t from, std::size_t to) {
    cage.line(lattice.points[from], lattice.points[to]);
  };
  for (int k = 0; k < u; ++k)
    for (int j = 0; j < t; ++j)
      for (int i = 0; i < s; ++i) {
        const std::size_t from = lattice.index(i, j, k);
        if (i + 1 < s) line(from, lattice.index(i + 1, j, k));
        if (j + 1 < t) line(from, lattice.index(i, j + 1, k));
        if (k + 1 < u) line(from, lattice.index(i, j, k + 1));
      }
  return cage;
}

Strokes wayOf(dg::Node& curveShape) {
  Strokes way;
  const auto curve = nodes::evaluatedCurve(curveShape);
  if (!curve || curve->points.empty() || curve->spans() < 1) return way;
  const int steps = curve->spans() * (curve->degree == 1 ? 1 : 12);
  Vec3 last = curve->at(curve->first());
  for (int i = 1; i <= steps; ++i) {
    const double share = static_cast<double>(i) / steps;
    const Vec3 next = curve->at(curve->first() + share * (curve->last() - curve->first()));
    way.line(last, next);
    last = next;
  }
  return way;
}

/// Lines of a surface's parameters: where patches meet, and others between them.
Strokes isoparmsOf(dg::Node& shape) {
  Strokes lines;
  const auto surface = nodes::evaluatedSurface(shape);
  if (!surface) return lines;
  constexpr int kBetween = 2, kSteps = 8;
  const auto stepsOf = [](int degree) { return degree == 1 ? 1 : kSteps; };
  const std::vector<double> us = math::breaksU(*surface), vs = math::breaksV(*surface);
  const auto run = [&](const std::vector<double>& across, const std::vector<double>& along,
                       const auto& place) {
    for (const double fixed : across) {
      Vec3 last = place(fixed, along.front());
      for (std::size_t i = 1; i < along.size(); ++i) {
        const Vec3 next = place(fixed, along[i]);
        lines.line(last, next);
        last = next;
      }
    }
  };
  run(math::spread(us, kBetween), math::spread(vs, stepsOf(surface->degreeV)),
      [&](double u, double v) { return surface->at(u, v); });
  run(math::spread(vs, kBetween), math::spread(us, stepsOf(surface->degreeU)),
      [&](double v, double u) { return surface->at(u, v); });
  return lines;
}

/// A joint's ball, or its box where that stands for several bones, and a pyramid to each joint
/// below it, in world space. The ball is as large as the joint's radius, whatever scales it.
Strokes bonesOf(const DagPath& path) {
  enum Style { Bone, MultiChildAsBox, None };
  dg::Node& joint = *path.node();
  Strokes bones;
  const auto style = static_cast<int>(scene::numberOr(joint, "drawStyle", Bone));
  if (style == None) return bones;
  const double radius = 0.5 * std::max(0.0, scene::numberOr(joint, "radius", 1));
  const math::Matrix4 world = path.inclusiveMatrix();
  const auto axis = [&](const Vec3& way) {
    return math::normalized(math::transformVector(way, world)) * radius;
  };
  const Vec3 at = math::transformPoint(Vec3{}, world);
  const Vec3 x = axis({1, 0, 0}), y = axis({0, 1, 0}), z = axis({0, 0, 1});
  std::vector<Vec3> ends;
  for (dg::Node* child : scene::dagLinks(joint).children)
    if (child->type().isA("joint") && scene::isShown(*child))
      ends.push_back(math::transformPoint(Vec3{}, path.child(child).inclusiveMatrix()));
  if (style == MultiChildAsBox && ends.size() > 1) {
    for (int corner = 0; corner < 8; ++corner)
      for (int bit = 1; bit < 8; bit *= 2) {
        if ((corner & bit) != 0) continue;
        const auto place = [&](int c) {
          return at + x * ((c & 1) != 0 ? 1 : -1) + y * ((c & 2) != 0 ? 1 : -1) +
                 z * ((c & 4) != 0 ? 1 : -1);
        };
        bones.line(place(corner), place(corner | bit));
      }
    return bones;
  }
  constexpr int kSteps = 20;
  bones.circle(at, x, y, kSteps);
  bones.circle(at, y, z, kSteps);
  bones.circle(at, z, x, kSteps);
  for (const Vec3& end : ends) {
    const Vec3 way = end - at;
    const double length = math::length(way);
    if (length <= radius) continue;
    const Vec3 along = way * (1 / length);
    const Vec3 other = std::abs(along.y) < 0.9 ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
    const Vec3 side = math::normalized(math::cross(along, other)) * radius;
    const Vec3 up = math::normalized(math::cross(side, along)) * radius;
    const Vec3 base[] = {at + side, at + up, at - side, at - up};
    for (int i = 0; i < 4; ++i) {
      bones.line(base[i], end);
      bones.line(base[i], base[(i + 1) % 4]);
    }
  }
  return bones;
}

Mark markOf(const dg::NodeType& type, const viewport::ViewOptions& options, MarkKinds kinds) {
  if (type.isA("joint")) return options.showJoints ? Mark::Joint : Mark::None;
  if (type.name == "locator") return options.showLocators ? Mark::Locator : Mark::None;
  if (type.isA("light")) return options.showLights ? Mark::Light : Mark::None;
  if (type.isA("nurbsCurve")) return options.showCurves ? Mark::Curve : Mark::None;
  if (type.isA("nurbsSurface")) return kinds.surfaces ? Mark::Surface : Mark::None;
  if (!kinds.deformers) return Mark::None;
  if (type.isA("clusterHandle")) return Mark::ClusterHandle;
  if (type.isA("lattice")) return Mark::Lattice;
  return type.isA("baseLattice") ? Mark::BaseLattice : Mark::None;
}

viewport::VertexDataPtr verticesOf(const Strokes& strokes) {
  auto data = std::make_shared<viewport::VertexData>();
  data->positions.reserve(strokes.points.size());
  for (const Vec3& each : strokes.points) data->positions.push_back(each.toFloat());
  return data;
}

}  // namespace

void MarkGatherer::visit(const viewport::ShownPlace& place) {
  if (!place.isListed) return;
  const auto [known, isNew] = marks_.try_emplace(&place.node.type(), Mark::None);
  if (isNew) known->second = markOf(place.node.type(), options_, kinds_);
  const Mark mark = known->second;
  if (mark == Mark::None) return;
  // Bones lead to other places, and a ball is round whatever scales it: in world space.
  if (mark == Mark::Joint) return draw(place, verticesOf(bonesOf(place.path)), {});
  if (mark == Mark::ClusterHandle) {
    // Most stand inside of what follows them.
    draw(place, verticesOf(signOfHandle(place, scene_)), {});
    list.items.back().depthTest = viewport::DepthTest::Always;
    return;
  }
  if (mark == Mark::Lattice) return drawLattice(place);
  if (mark == Mark::BaseLattice) {
    // In the way until somebody looks for it.
    if (place.selected == viewport::ObjectState::Dormant) return;
    return draw(place, verticesOf(cageOf(nodes::LatticePoints::atRest({2, 2, 2}))), place.world);
  }
  viewport::VertexDataPtr strokes = place.isShared ? shared_[&place.node] : nullptr;
  if (!strokes) {
    strokes = verticesOf(mark == Mark::Locator   ? crossOf(place.node)
                         : mark == Mark::Light   ? signOfLight(place.node.type())
                         : mark == Mark::Surface ? isoparmsOf(place.node)
                                                 : wayOf(place.node));
    if (place.isShared) shared_[&place.node] = strokes;
  }
  draw(place, std::move(strokes), place.world);
}

void MarkGatherer::drawLattice(const viewport::ShownPlace& place) {
  const auto lattice = nodes::evaluatedLattice(place.node);
  if (!lattice) return;
  if (scene::numberOr(place.node, "dispLattice", 1) != 0)
    draw(place, verticesOf(cageOf(*lattice)), place.world);
  const auto count = static_cast<Index>(lattice->points.size());
  const auto placesOf = [&](const std::vector<Index>& points) {
    std::vector<math::Vec3f> places;
    for (const Index point : points)
      if (point < count)
        places.push_back(math::transformPoint(lattice->points[at(point)], place.world).toFloat());
    return places;
  };
  const viewport::DisplayColors& colors = viewport::displayColors();
  const auto items = states_.componentsOf(place.path);
  if (!items.empty() || scene::numberOr(place.node, "dispPoints", 0) != 0)
    drawPoints(placesOf(scene::Component::all(scene::ComponentType::Vertex).expanded(count)),
               colors.wireOnly);
  for (const scene::SelectionItem* item : items)
    if (const scene::Component* chosen = item->component(scene::ComponentType::Vertex))
      drawPoints(placesOf(chosen->expanded(count)), colors.vertexSelected);
}

void MarkGatherer::drawPoints(std::vector<math::Vec3f> points, const viewport::Rgba& color) {
  if (points.empty()) return;
  viewport::DrawItem& item =
      list.add(viewport::Primitive::Points, viewport::Pass::Wire, std::move(points));
  item.color = color;
  item.width = 6;
}

void MarkGatherer::draw(const viewport::ShownPlace& place, viewport::VertexDataPtr strokes,
                        const math::Matrix4& world) {
  if (strokes->positions.empty()) return;
  const viewport::DisplayColors& colors = viewport::displayColors();
  viewport::DrawItem& item = list.add(viewport::Primitive::Lines, viewport::Pass::Wire, {});
  item.vertices = std::move(strokes);
  item.world = world;
  using Type = viewport::DrawOverride::Type;
  const bool isChosen = options_.showSelection && place.selected != viewport::ObjectState::Dormant;
  const bool isFaint = place.isTemplate || (place.looks && place.looks->type == Type::Template);
  item.color = isChosen                            ? colors.wireLead
               : isFaint                           ? colors.wireTemplate
               : place.looks && place.looks->color ? *place.looks->color
                                                   : colors.wireOnly;
  item.width = 1.5f;
  if (options_.jointXray && place.node.type().isA("joint"))
    item.depthTest = viewport::DepthTest::Always;
  viewport::DrawnObject object;
  object.path = place.path;
  object.firstItem = list.items.size() - 1;
  object.itemCount = 1;
  object.state = isFaint ? viewport::ObjectState::Template
                 : place.looks && place.looks->type == Type::Reference
                     ? viewport::ObjectState::Reference
                     : place.selected;
  objects.push_back(std::move(object));
}

}  // namespace host::workspace
