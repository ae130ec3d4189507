#include "host/edits/support_box.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "host/nodes/curve/surface_nodes.h"
#include "host/nodes/dag_node.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"

namespace host::edits {

namespace {

using math::Box;
using math::Matrix4;
using math::Vec3;
using scene::Node;

constexpr double kNowhere = -std::numeric_limits<double>::infinity();

/// How far p reaches along `direction` once a matrix took it there is how far it reaches along this
/// before, plus `shift`.
Vec3 before(const Vec3& direction, const Matrix4& matrix) {
  Vec3 result;
  for (int row = 0; row < 3; ++row)
    result[row] = matrix[row][0] * direction.x + matrix[row][1] * direction.y +
                  matrix[row][2] * direction.z + 0.0;  // no two zeros
  return result;
}
double shift(const Vec3& direction, const Matrix4& matrix) {
  return math::dot(direction, {matrix[3][0], matrix[3][1], matrix[3][2]});
}

std::array<Vec3, 8> cornersOf(const Box& box) {
  std::array<Vec3, 8> corners;
  for (std::size_t i = 0; i < corners.size(); ++i)
    corners[i] = {(i & 1) != 0 ? box.max.x : box.min.x, (i & 2) != 0 ? box.max.y : box.min.y,
                  (i & 4) != 0 ? box.max.z : box.min.z};
  return corners;
}

bool isBoxOfPlugIn(const Node& shape) {
  return !shape.type().pluginName.empty() && shape.type().isA("surfaceShape");
}

/// The points of a shape: of its mesh, or the corners of what a plug-in says it fills.
std::vector<Vec3> pointsOf(Node& shape) {
  std::vector<Vec3> points;
  if (scene::isIntermediate(shape)) return points;
  if (shape.plug("outMesh"))
    if (const auto mesh = nodes::evaluatedMesh(shape))
      for (const math::Vec3f& point : mesh->points()) points.emplace_back(point);
  if (shape.type().isA("nurbsCurve") || shape.type().isA("nurbsSurface"))
    if (const Box own = nodes::boundsOfCurved(shape, {}); !own.isEmpty())
      for (const Vec3& corner : cornersOf(own)) points.push_back(corner);
  if (!isBoxOfPlugIn(shape)) return points;
  if (const Box own = nodes::boundingBoxOf(shape); !own.isEmpty())
    for (const Vec3& corner : cornersOf(own)) points.push_back(corner);
  return points;
}

struct OneNode {
  Matrix4 local;
  bool isShape = false, inherits = true;
  std::vector<Vec3> points;
  std::vector<std::size_t> children;  ///< by their place in the order
  std::vector<Vec3> directions;
  std::map<std::array<double, 3>, std::size_t> known;
  /// For each direction and child the child's direction, child by child.
  std::vector<std::size_t> asked;
  std::vector<double> reach;
  Box box;  ///< of what is below, in its own space

  std::size_t ask(const Vec3& direction) {
    const auto [at, isNew] =
        known.try_emplace({direction.x, direction.y, direction.z}, directions.size());
    if (isNew) directions.push_back(direction);
    return at->second;
  }
};

class Nested {
 public:
  explicit Nested(Node& top) { collect(top); }

  /// The box of the top and of all below that inherits, and of each that does not by itself.
  NestedBox box(const Matrix4& matrix, const Matrix4& outer) {
    NestedBox result;
    add(0, matrix, result);
    for (std::size_t i = 1; i < nodes_.size(); ++i)
      if (!nodes_[i].inherits) add(i, nodes_[i].local * outer, result);
    return result;
  }

 private:
  /// Each node once, before all that are below it.
  void collect(Node& top) {
    std::vector<Node*> order;
    std::unordered_set<const Node*> seen{&top};
    std::vector<std::pair<Node*, std::size_t>> open{{&top, 0}};
    while (!open.empty()) {
      auto& [node, next] = open.back();
      const std::vector<Node*>& children = scene::dagLinks(*node).children;
      if (next == children.size()) {
        order.push_back(node);
        open.pop_back();
      } else if (Node* child = children[next++]; seen.insert(child).second) {
        open.emplace_back(child, 0);
      }
    }
    std::ranges::reverse(order);
    std::unordered_map<const Node*, std::size_t> places;
    for (std::size_t i = 0; i < order.size(); ++i) places[order[i]] = i;
    nodes_.resize(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
      OneNode& node = nodes_[i];
      node.isShape = scene::isShape(*order[i]);
      if (node.isShape) node.points = pointsOf(*order[i]);
      if (!scene::isTransform(*order[i])) continue;
      node.local = scene::localMatrix(*order[i]);
      node.inherits = scene::numberOr(*order[i], "inheritsTransform", 1) != 0;
      for (const Node* child : scene::dagLinks(*order[i]).children)
        node.children.push_back(places[child]);
    }
  }

  void add(std::size_t top, const Matrix4& matrix, NestedBox& result) {
    if (findReach(top, matrix)) {
      const OneNode& node = nodes_[top];
      Vec3 low, high;
      for (int axis = 0; axis < 3; ++axis) {
        Vec3 along;
        along[axis] = 1;
        const auto reach = [&](const Vec3& direction) {
          return node.reach[node.known.at(key(before(direction, matrix)))] +
                 shift(direction, matrix);
        };
        high[axis] = reach(along);
        low[axis] = -reach(-along);
      }
      if (!(high.x > kNowhere)) return;
      result.box.add(low);
      result.box.add(high);
      return;
    }
    findBoxes();
    if (nodes_[top].box.isEmpty()) return;
    result.box.add(nodes_[top].box.transformed(matrix));
    result.isExact = false;
  }

  static std::array<double, 3> key(const Vec3& direction) {
    return {direction.x, direction.y, direction.z};
  }

  /// Whether the directions were few enough to answer.
  bool findReach(std::size_t top, const Matrix4& matrix) {
    constexpr std::size_t kMostWork = 30'000'000;
    for (OneNode& node : nodes_) {
      node.directions.clear();
      node.known.clear();
      node.asked.clear();
    }
    for (int axis = 0; axis < 3; ++axis)
      for (const double sign : {1.0, -1.0}) {
        Vec3 along;
        along[axis] = sign;
        nodes_[top].ask(before(along, matrix));
      }
    std::size_t work = 0;
    for (std::size_t i = top; i < nodes_.size(); ++i) {
      OneNode& node = nodes_[i];
      for (std::size_t d = 0; d < node.directions.size(); ++d) {
        work += node.points.size() + 8 * node.children.size() + 1;
        if (work > kMostWork) return false;
        for (const std::size_t child : node.children)
          node.asked.push_back(askChild(nodes_[child], node.directions[d]));
      }
    }
    for (std::size_t i = nodes_.size(); i-- > top;) answer(nodes_[i]);
    return true;
  }

  static std::size_t askChild(OneNode& child, const Vec3& direction) {
    if (!child.inherits) return 0;
    return child.ask(child.isShape ? direction : before(direction, child.local));
  }

  void answer(OneNode& node) const {
    node.reach.assign(node.directions.size(), kNowhere);
    for (std::size_t d = 0; d < node.directions.size(); ++d) {
      double& reach = node.reach[d];
      for (const Vec3& point : node.points)
        reach = std::max(reach, math::dot(point, node.directions[d]));
      for (std::size_t c = 0; c < node.children.size(); ++c) {
        const OneNode& child = nodes_[node.children[c]];
        if (!child.inherits) continue;
        const double own = child.reach[node.asked[d * node.children.size() + c]];
        reach = std::max(reach, child.isShape ? own : own + shift(node.directions[d], child.local));
      }
    }
  }

  void findBoxes() {
    if (hasBoxes_) return;
    hasBoxes_ = true;
    for (std::size_t i = nodes_.size(); i-- > 0;) {
      OneNode& node = nodes_[i];
      for (const Vec3& point : node.points) node.box.add(point);
      for (const std::size_t c : node.children) {
        const OneNode& child = nodes_[c];
        if (child.box.isEmpty() || !child.inherits) continue;
        node.box.add(child.isShape ? child.box : child.box.transformed(child.local));
      }
    }
  }

  std::vector<OneNode> nodes_;
  bool hasBoxes_ = false;
};

}  // namespace

std::uint64_t pointsBelow(Node& top) {
  constexpr std::uint64_t kCountless = std::uint64_t{1} << 62;
  std::unordered_map<const Node*, std::uint64_t> known;
  std::vector<Node*> open{&top};
  while (!open.empty()) {
    Node* node = open.back();
    std::uint64_t points = 1;
    if (scene::isShape(*node) && node->plug("outMesh"))
      if (const auto mesh = nodes::evaluatedMesh(*node)) points += mesh->points().size();
    bool isReady = true;
    for (Node* child : scene::dagLinks(*node).children) {
      const auto below = known.find(child);
      if (below == known.end()) {
        open.push_back(child);
        isReady = false;
      } else {
        points = std::min(points + below->second, kCountless);
      }
    }
    if (!isReady) continue;
    known[node] = points;
    open.pop_back();
  }
  return known[&top];
}

NestedBox nestedBox(Node& top, const Matrix4& matrix, const Matrix4& outer) {
  return Nested(top).box(matrix, outer);
}

}  // namespace host::edits
