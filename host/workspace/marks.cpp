#include "host/workspace/marks.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_set>

#include "host/nodes/curve/curve_nodes.h"
#include "host/nodes/curve/surface_nodes.h"
#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"
#include "host/viewport/display_colors.h"
#include "host/viewport/scene_gather.h"
#include "host/workspace/views.h"

namespace host::workspace {

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
  void moveBy(const math::Matrix4& matrix) {
    for (Vec3& point : points) point = math::transformPoint(point, matrix);
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

class Marks {
 public:
  Marks(scene::Document& document, const View& view, viewport::SceneView& scene)
      : view_(view), scene_(scene) {
    if (!scene.options.showSelection) return;
    for (const scene::SelectionItem& item : document.selection().items())
      if (item.isDag() && item.isObject()) chosen_.insert(item.path.node());
    selection_ = &document.selection();
  }

  void visit(const DagPath& top) {
    std::vector<Above> levels;  // of the nodes from the top to the one visited
    scene::PathWalk walk(top);
    while (!walk.isDone()) {
      dg::Node& node = walk.node();
      if (!scene::isShown(node) || scene::isIntermediate(node)) {
        walk.skipBelow();
        continue;
      }
      levels.resize(walk.depth());
      Above here{isChosen(walk.path()), scene::isTemplate(node), viewport::lineLooks(node)};
      if (!levels.empty()) {
        here.isChosen |= levels.back().isChosen;
        here.isTemplate |= levels.back().isTemplate;
        if (!here.looks) here.looks = levels.back().looks;
      }
      levels.push_back(here);
      if (Strokes strokes = strokesOf(walk.path()); !strokes.points.empty())
        if (isolationShows(view_, walk.path())) draw(strokes, here, node);
      walk.next();
    }
  }

 private:
  struct Above {
    bool isChosen = false, isTemplate = false;
    std::optional<viewport::LineLooks> looks;
  };

  [[nodiscard]] bool isChosen(const DagPath& path) const {
    return chosen_.contains(path.node()) &&
           std::ranges::any_of(selection_->items(), [&](const scene::SelectionItem& item) {
             return item.isDag() && item.path == path;
           });
  }

  /// What a flag of the view's editor says; true when it was never given.
  [[nodiscard]] bool shows(std::string_view flag) const {
    const auto found = view_.editorFlags.find(flag);
    return found == view_.editorFlags.end() || found->second;
  }
  [[nodiscard]] Strokes strokesOf(const DagPath& path) const {
    dg::Node& node = *path.node();
    const dg::NodeType& type = node.type();
    const viewport::ViewOptions& options = scene_.options;
    if (type.isA("joint")) return options.showJoints ? bonesOf(path) : Strokes();
    Strokes strokes;
    if (type.name == "locator" && options.showLocators) strokes = crossOf(node);
    if (type.isA("light") && options.showLights) strokes = signOfLight(type);
    if (type.isA("nurbsCurve") && options.showCurves) strokes = wayOf(node);
    if (type.isA("nurbsSurface") && shows("nurbsSurfaces")) strokes = isoparmsOf(node);
    if (!strokes.points.empty()) strokes.moveBy(path.inclusiveMatrix());
    return strokes;
  }

  void draw(const Strokes& strokes, const Above& how, const dg::Node& node) {
    const viewport::DisplayColors& colors = viewport::displayColors();
    std::vector<math::Vec3f> points;
    points.reserve(strokes.points.size());
    for (const Vec3& each : strokes.points) points.push_back(each.toFloat());
    viewport::DrawItem& item =
        scene_.extra.add(viewport::Primitive::Lines, viewport::Pass::Wire, std::move(points));
    const bool isFaint = how.isTemplate || (how.looks && how.looks->isTemplate);
    item.color = how.isChosen                    ? colors.wireLead
                 : isFaint                       ? colors.wireTemplate
                 : how.looks && how.looks->color ? *how.looks->color
                                                 : colors.wireOnly;
    item.width = 1.5f;
    if (scene_.options.jointXray && node.type().isA("joint"))
      item.depthTest = viewport::DepthTest::Always;
  }

  const View& view_;
  viewport::SceneView& scene_;
  const scene::SelectionList* selection_ = nullptr;
  std::unordered_set<const dg::Node*> chosen_;
};

}  // namespace

void drawMarks(scene::Document& document, const View& view, viewport::SceneView& scene) {
  Marks marks(document, view, scene);
  for (dg::Node* top : document.worldChildren()) marks.visit(DagPath({top}));
}

}  // namespace host::workspace
