#include "host/ops/uv/layout_contacts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace host::ops::flat {
namespace {

/// The edges that bound a shape, each as often as triangles lie on one side more than on the other.
std::vector<PackBody::Edge> outlineOf(const PackShape& shape) {
  std::map<std::array<double, 4>, int> sides;
  for (const auto& t : shape.triangles) {
    const bool isLeft = doubleArea(t[0], t[1], t[2]) >= 0;
    for (std::size_t k = 0; k < 3; ++k) {
      Point a = t[k], b = t[(k + 1) % 3];
      if (a == b) continue;
      if (!isLeft) std::swap(a, b);
      const bool isForward = a.x < b.x || (a.x == b.x && a.y < b.y);
      if (!isForward) std::swap(a, b);
      sides[{a.x, a.y, b.x, b.y}] += isForward ? 1 : -1;
    }
  }
  std::vector<PackBody::Edge> edges;
  for (const auto& [ends, side] : sides) {
    Point from{ends[0], ends[1]}, to{ends[2], ends[3]};
    if (side < 0) std::swap(from, to);
    const Point along = to - from;
    const Point outward = (1 / length(along)) * Point{along.y, -along.x};
    edges.insert(edges.end(), static_cast<std::size_t>(std::abs(side)), {from, to, outward});
  }
  return edges;
}

struct Box {
  double left = 1e300, low = 1e300, right = -1e300, high = -1e300;
  void add(Point p) {
    left = std::min(left, p.x);
    low = std::min(low, p.y);
    right = std::max(right, p.x);
    high = std::max(high, p.y);
  }
  [[nodiscard]] bool isWithin(double distance, const Box& o) const {
    return left <= o.right + distance && o.left <= right + distance && low <= o.high + distance &&
           o.low <= high + distance;
  }
};

struct Boxes {
  std::vector<std::vector<Box>> edges;
  std::vector<Box> bodies;
};
Boxes boxesOf(std::span<const PackBody> bodies, std::span<const PackPose> poses) {
  Boxes boxes;
  boxes.edges.resize(bodies.size());
  boxes.bodies.resize(bodies.size());
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    boxes.edges[i].reserve(bodies[i].edges.size());
    for (const PackBody::Edge& edge : bodies[i].edges) {
      Box box;
      box.add(poses[i].of(edge.from));
      box.add(poses[i].of(edge.to));
      boxes.edges[i].push_back(box);
      boxes.bodies[i].add({box.left, box.low});
      boxes.bodies[i].add({box.right, box.high});
    }
  }
  return boxes;
}

/// Calls `meet(a, b)` for bodies of which one can move and whose boxes are near each other.
template <class Meet>
void forNearBodies(std::span<const PackBody> bodies, const std::vector<Box>& boxes, double within,
                   Meet&& meet) {
  std::vector<std::uint32_t> order(bodies.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<std::uint32_t>(i);
  std::sort(order.begin(), order.end(), [&](std::uint32_t a, std::uint32_t b) {
    return boxes[a].left != boxes[b].left ? boxes[a].left < boxes[b].left : a < b;
  });
  for (std::size_t i = 0; i < order.size(); ++i)
    for (std::size_t j = i + 1; j < order.size(); ++j) {
      const std::uint32_t a = order[i], b = order[j];
      if (boxes[b].left > boxes[a].right + within) break;
      if (bodies[a].ease == 0 && bodies[b].ease == 0) continue;
      if (boxes[a].isWithin(within, boxes[b])) meet(a, b);
    }
}

/// The positions of two edges and what separates them, if anything.
struct Facing {
  Point a0, a1, b0, b1, outA, outB;
  double right, left, up, down;  ///< depths along the axes
  double fromA, fromB;           ///< depths outward from the edges
  bool isApart;
};
Facing facingOf(const PackBody::Edge& a, const PackPose& poseA, const PackBody::Edge& b,
                const PackPose& poseB, double gap) {
  Facing f;
  f.isApart = true;
  f.a0 = poseA.of(a.from);
  f.a1 = poseA.of(a.to);
  f.b0 = poseB.of(b.from);
  f.b1 = poseB.of(b.to);
  f.right = gap - (std::min(f.b0.x, f.b1.x) - std::max(f.a0.x, f.a1.x));
  f.left = gap - (std::min(f.a0.x, f.a1.x) - std::max(f.b0.x, f.b1.x));
  if (f.right <= 0 || f.left <= 0) return f;
  f.up = gap - (std::min(f.b0.y, f.b1.y) - std::max(f.a0.y, f.a1.y));
  f.down = gap - (std::min(f.a0.y, f.a1.y) - std::max(f.b0.y, f.b1.y));
  if (f.up <= 0 || f.down <= 0) return f;
  // How far the square of half-side `gap` reaches along a normal.
  const auto reach = [gap](Point n) { return gap * (std::abs(n.x) + std::abs(n.y)); };
  f.outA = poseA.turned(a.outward);
  const double overA = reach(f.outA);
  const double b0 = dot(f.outA, f.b0 - f.a0), b1 = dot(f.outA, f.b1 - f.a0);
  f.fromA = overA - std::min(b0, b1);
  if (f.fromA <= 0 || std::max(b0, b1) <= -overA) return f;
  f.outB = poseB.turned(b.outward);
  const double overB = reach(f.outB);
  const double a0 = dot(f.outB, f.a0 - f.b0), a1 = dot(f.outB, f.a1 - f.b0);
  f.fromB = overB - std::min(a0, a1);
  if (f.fromB <= 0 || std::max(a0, a1) <= -overB) return f;
  f.isApart = false;
  return f;
}

/// How often an outline winds around a point.
int windings(const PackBody& body, const PackPose& pose, Point p) {
  int count = 0;
  for (const PackBody::Edge& edge : body.edges) {
    const Point a = pose.of(edge.from), b = pose.of(edge.to);
    if ((a.y <= p.y) == (b.y <= p.y)) continue;
    const double side = doubleArea(a, b, p);
    if (b.y > a.y && side > 0) ++count;
    if (b.y < a.y && side < 0) --count;
  }
  return count;
}

}  // namespace

PackBody PackBody::of(const PackShape& shape) {
  PackBody body;
  body.edges = outlineOf(shape);
  double sum = 0;
  Point centre;
  for (const auto& t : shape.triangles) {
    const double area = std::abs(doubleArea(t[0], t[1], t[2]));
    sum += area;
    centre = centre + (area / 3) * (t[0] + t[1] + t[2]);
  }
  body.centre = sum > 0 ? (1 / sum) * centre : shape.triangles[0][0];
  body.area = 0.5 * sum;
  for (const auto& t : shape.triangles) {
    const double area = std::abs(doubleArea(t[0], t[1], t[2]));
    for (std::size_t k = 0; k < 3 && sum > 0; ++k) {
      const Point middle = 0.5 * (t[k] + t[(k + 1) % 3]) - body.centre;
      body.gyration += area / (3 * sum) * dot(middle, middle);
    }
  }
  for (Edge& edge : body.edges) {
    edge.from = edge.from - body.centre;
    edge.to = edge.to - body.centre;
    body.reach = std::max({body.reach, length(edge.from), length(edge.to)});
  }
  return body;
}

EdgeContact contactOf(const PackBody::Edge& a, const PackPose& poseA, const PackBody::Edge& b,
                      const PackPose& poseB, double gap) {
  const Facing f = facingOf(a, poseA, b, poseB, gap);
  if (f.isApart) return {};
  const Point across = f.b0 + f.b1 - f.a0 - f.a1;
  if (dot(f.outA, across) <= 0 && dot(f.outB, across) >= 0) return {};
  EdgeContact best;
  best = {f.fromA, f.outA, dot(f.outA, f.b0 - f.b1) < 0 ? f.b0 : f.b1};
  if (f.fromB < best.depth)
    best = {f.fromB, -1.0 * f.outB, dot(f.outB, f.a0 - f.a1) < 0 ? f.a0 : f.a1};
  const auto tryAxis = [&](double depth, Point n) {
    if (depth >= best.depth || dot(n, f.outA) < 0 || dot(n, f.outB) > 0) return;
    // In the middle of where the edges lie beside each other.
    const Point t{n.y, n.x};
    const auto [a0, a1] = std::minmax(dot(t, f.a0), dot(t, f.a1));
    const auto [b0, b1] = std::minmax(dot(t, f.b0), dot(t, f.b1));
    const double front = std::max(dot(n, f.a0), dot(n, f.a1));
    const double back = std::min(dot(n, f.b0), dot(n, f.b1));
    best = {depth, n, 0.5 * (front + back) * n + 0.5 * (std::max(a0, b0) + std::min(a1, b1)) * t};
  };
  tryAxis(f.right, {1, 0});
  tryAxis(f.left, {-1, 0});
  tryAxis(f.up, {0, 1});
  tryAxis(f.down, {0, -1});
  return best;
}

std::vector<EdgePair> nearEdges(std::span<const PackBody> bodies, std::span<const PackPose> poses,
                                double within, std::uint64_t& work) {
  const Boxes boxes = boxesOf(bodies, poses);
  std::vector<EdgePair> pairs;
  std::vector<std::uint32_t> near;
  forNearBodies(bodies, boxes.bodies, within, [&](std::uint32_t a, std::uint32_t b) {
    near.clear();
    for (std::uint32_t k = 0; k < boxes.edges[b].size(); ++k)
      if (boxes.edges[b][k].isWithin(within, boxes.bodies[a])) near.push_back(k);
    work += boxes.edges[b].size() + boxes.edges[a].size();
    for (std::uint32_t k = 0; k < boxes.edges[a].size(); ++k) {
      if (!boxes.edges[a][k].isWithin(within, boxes.bodies[b])) continue;
      for (const std::uint32_t l : near)
        if (boxes.edges[a][k].isWithin(within, boxes.edges[b][l])) pairs.push_back({a, b, k, l});
      work += near.size();
    }
  });
  return pairs;
}

bool areApart(std::span<const PackBody> bodies, std::span<const PackPose> poses, double gap,
              double width, double height) {
  const Boxes boxes = boxesOf(bodies, poses);
  for (std::size_t i = 0; i < bodies.size(); ++i) {
    const Box& box = boxes.bodies[i];
    if (bodies[i].ease != 0 && !(box.left >= gap && box.low >= gap && box.right <= width - gap &&
                                 box.high <= height - gap))
      return false;
  }
  std::uint64_t work = 0;
  for (const EdgePair& p : nearEdges(bodies, poses, gap, work))
    if (!facingOf(bodies[p.a].edges[p.edgeA], poses[p.a], bodies[p.b].edges[p.edgeB], poses[p.b],
                  gap)
             .isApart)
      return false;
  bool isApart = true;
  forNearBodies(bodies, boxes.bodies, 0, [&](std::uint32_t a, std::uint32_t b) {
    const Point inA = poses[a].of(bodies[a].edges[0].from);
    const Point inB = poses[b].of(bodies[b].edges[0].from);
    isApart = isApart && windings(bodies[b], poses[b], inA) == 0 &&
              windings(bodies[a], poses[a], inB) == 0;
  });
  return isApart;
}

}  // namespace host::ops::flat
