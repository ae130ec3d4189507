#include "host/spatial/triangle_bvh.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <thread>

#include "host/math/ray.h"

namespace host::spatial {

using math::Box;
using math::Vec3;
using math::Vec3f;

namespace {

constexpr int kBins = 16;
constexpr Index kLeafSize = 4;
constexpr Index kParallelItems = 50'000;
constexpr int kStackSize = 128;

struct FloatBox {
  float min[3] = {INFINITY, INFINITY, INFINITY};
  float max[3] = {-INFINITY, -INFINITY, -INFINITY};
  void add(const float* p) {
    for (int k = 0; k < 3; ++k) {
      min[k] = std::min(min[k], p[k]);
      max[k] = std::max(max[k], p[k]);
    }
  }
  void add(const FloatBox& o) {
    for (int k = 0; k < 3; ++k) {
      min[k] = std::min(min[k], o.min[k]);
      max[k] = std::max(max[k], o.max[k]);
    }
  }
  /// Half the surface, 0 when empty.
  [[nodiscard]] float area() const {
    const float x = max[0] - min[0], y = max[1] - min[1], z = max[2] - min[2];
    return x < 0 ? 0 : x * y + y * z + z * x;
  }
};

}  // namespace

/// What the builder sorts: a triangle's box; twice the centre is min + max.
struct TriangleBvh::Reference {
  FloatBox box;
  Index triangle;
  [[nodiscard]] float center(int axis) const { return box.min[axis] + box.max[axis]; }
};

class TriangleBvh::Builder {
 public:
  Builder(std::vector<Node>& nodes, std::vector<Reference>& references)
      : nodes_(nodes), references_(references) {
    nodes_.resize(std::max<std::size_t>(1, 2 * references.size()));
  }

  void run() {
    build(0, 0, static_cast<Index>(references_.size()), 0);
    nodes_.resize(static_cast<std::size_t>(used_));
    nodes_.shrink_to_fit();
  }

 private:
  struct Split {
    int axis = -1;
    float low = 0, scale = 0;  // bin = (center - low) * scale
    int bin = 0;               // items in bins below it go left
    [[nodiscard]] int binOf(const Reference& r) const {
      return std::min(kBins - 1, static_cast<int>((r.center(axis) - low) * scale));
    }
  };

  void build(Index node, Index begin, Index end, int depth) {
    FloatBox box, centers;
    for (Index i = begin; i < end; ++i) {
      const Reference& r = references_[at(i)];
      box.add(r.box);
      const float center[3] = {r.center(0), r.center(1), r.center(2)};
      centers.add(center);
    }
    Node& out = nodes_[at(node)];
    std::copy_n(box.min, 3, out.min);
    std::copy_n(box.max, 3, out.max);
    out.first = begin;
    out.count = end - begin;
    if (end - begin <= kLeafSize) return;
    const Index mid = part(begin, end, centers, depth);
    const Index children = used_.fetch_add(2);
    out.first = children;
    out.count = 0;
    const auto left = [=, this] { build(children, begin, mid, depth + 1); };
    if (end - begin > kParallelItems && (1u << std::min(depth, 8)) < cores_) {
      std::thread other(left);
      build(children + 1, mid, end, depth + 1);
      other.join();
    } else {
      left();
      build(children + 1, mid, end, depth + 1);
    }
  }

  /// Reorders a range and returns where its second half begins; neither half is empty.
  Index part(Index begin, Index end, const FloatBox& centers, int depth) {
    const auto first = references_.begin() + begin, last = references_.begin() + end;
    // Past this depth, which only contrived input reaches, halves keep the stacks of searches
    // short.
    const Split split = depth < kStackSize / 2 ? findSplit(begin, end, centers) : Split{};
    if (split.axis >= 0) {
      const auto mid = std::partition(
          first, last, [&split](const Reference& r) { return split.binOf(r) < split.bin; });
      if (mid != first && mid != last) return static_cast<Index>(mid - references_.begin());
    }
    const Index mid = begin + (end - begin) / 2;
    int axis = 0;
    for (int k : {1, 2})
      if (centers.max[k] - centers.min[k] > centers.max[axis] - centers.min[axis]) axis = k;
    std::nth_element(
        first, references_.begin() + mid, last,
        [axis](const Reference& a, const Reference& b) { return a.center(axis) < b.center(axis); });
    return mid;
  }

  [[nodiscard]] Split findSplit(Index begin, Index end, const FloatBox& centers) const {
    Split split;
    int axis = 0;
    for (int k : {1, 2})
      if (centers.max[k] - centers.min[k] > centers.max[axis] - centers.min[axis]) axis = k;
    const float width = centers.max[axis] - centers.min[axis];
    if (!(width > 0) || !std::isfinite(kBins / width)) return split;
    split.axis = axis;
    split.low = centers.min[axis];
    split.scale = kBins / width;
    std::array<FloatBox, kBins> boxes;
    std::array<Index, kBins> counts{};
    for (Index i = begin; i < end; ++i) {
      const Reference& r = references_[at(i)];
      const auto bin = at(split.binOf(r));
      boxes[bin].add(r.box);
      ++counts[bin];
    }
    std::array<float, kBins> rightCost{};
    FloatBox box;
    Index count = 0;
    for (std::size_t b = kBins - 1; b > 0; --b) {
      box.add(boxes[b]);
      count += counts[b];
      rightCost[b] = box.area() * static_cast<float>(count);
    }
    box = {};
    count = 0;
    float best = INFINITY;
    for (std::size_t b = 1; b < kBins; ++b) {
      box.add(boxes[b - 1]);
      count += counts[b - 1];
      const float cost = box.area() * static_cast<float>(count) + rightCost[b];
      if (count > 0 && count < end - begin && cost < best) {
        best = cost;
        split.bin = static_cast<int>(b);
      }
    }
    return split;
  }

  std::vector<Node>& nodes_;
  std::vector<Reference>& references_;
  std::atomic<Index> used_{1};
  unsigned cores_ = std::max(1u, std::thread::hardware_concurrency());
};

TriangleBvh::TriangleBvh(std::span<const Triangle> triangles) : triangles_(triangles) {
  std::vector<Reference> references;
  references.reserve(triangles.size());
  for (std::size_t t = 0; t < triangles.size(); ++t) {
    if (!triangles[t].isFinite) continue;
    Reference r{{}, static_cast<Index>(t)};
    for (const Vec3f* p : {&triangles[t].a, &triangles[t].b, &triangles[t].c}) {
      const float xyz[3] = {p->x, p->y, p->z};
      r.box.add(xyz);
    }
    references.push_back(r);
  }
  Builder(nodes_, references).run();
  items_.reserve(references.size());
  for (const Reference& r : references) items_.push_back(r.triangle);
}

double TriangleBvh::squaredDistance(const Node& node, const Vec3& p) {
  const double x = std::max({node.min[0] - p.x, 0.0, p.x - node.max[0]});
  const double y = std::max({node.min[1] - p.y, 0.0, p.y - node.max[1]});
  const double z = std::max({node.min[2] - p.z, 0.0, p.z - node.max[2]});
  return x * x + y * y + z * z;
}

TriangleBvh::Nearest TriangleBvh::nearest(const Vec3& p, double maxSquared) const {
  Nearest best;
  best.squared = maxSquared;
  if (items_.empty() || !isFinite(p)) return best;
  struct Pending {
    Index node;
    double squared;
  };
  std::array<Pending, kStackSize> stack;
  int top = 0;
  Pending now{0, squaredDistance(nodes_[0], p)};
  while (true) {
    if (now.squared <= best.squared) {
      const Node& node = nodes_[at(now.node)];
      if (node.count == 0) {
        Pending near{node.first, squaredDistance(nodes_[at(node.first)], p)};
        Pending far{node.first + 1, squaredDistance(nodes_[at(node.first) + 1], p)};
        if (far.squared < near.squared) std::swap(near, far);
        if (far.squared <= best.squared) stack[at(top++)] = far;
        now = near;
        continue;
      }
      for (Index i = node.first; i < node.first + node.count; ++i) {
        const Index triangle = items_[at(i)];
        const Triangle& item = triangles_[at(triangle)];
        const Vec3 a(item.a), b(item.b), c(item.c);
        const auto [u, v] = math::closestOnTriangle(a, b, c, p);
        const Vec3 point = a * (1 - u - v) + b * u + c * v;
        const double squared = lengthSquared(point - p);
        const bool isNearer = squared < best.squared;
        const bool isTie =
            squared == best.squared && (best.triangle == kNone || triangle < best.triangle);
        if (isNearer || isTie) best = {triangle, u, v, point, squared};
      }
    }
    if (top == 0) return best;
    now = stack[at(--top)];
  }
}

}  // namespace host::spatial
