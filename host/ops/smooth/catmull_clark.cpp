#include "host/ops/smooth/catmull_clark.h"

#include <algorithm>
#include <array>

#include "host/base/cancel_poll.h"

namespace host::ops {
namespace {

template <std::size_t N>
using Point = std::array<double, N>;

Point<2> widened(const math::Vec2f& p) {
  return {static_cast<double>(p.u), static_cast<double>(p.v)};
}
Point<3> widened(const math::Vec3f& p) {
  return {static_cast<double>(p.x), static_cast<double>(p.y), static_cast<double>(p.z)};
}
math::Vec2f narrowed(const Point<2>& p) {
  return {static_cast<float>(p[0]), static_cast<float>(p[1])};
}
math::Vec3f narrowed(const Point<3>& p) {
  return {static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2])};
}

template <std::size_t N>
void add(Point<N>& sum, const Point<N>& p, double weight = 1) {
  for (std::size_t i = 0; i < N; ++i) sum[i] += p[i] * weight;
}
template <std::size_t N>
Point<N> blend(const Point<N>& a, const Point<N>& b, double t) {
  Point<N> p;
  for (std::size_t i = 0; i < N; ++i) p[i] = a[i] + (b[i] - a[i]) * t;
  return p;
}

float childSharpness(float sharpness) {
  return std::max(0.0F, sharpness - 1);
}

enum class Rule { Smooth, Crease, Corner };

template <class Value>
class Step {
  using Place = decltype(widened(Value()));

 public:
  Step(std::span<const Value> points, const SubdivisionChannel& channel)
      : points_(points),
        channel_(channel),
        edgeFaces_(channel.edges.size(), 0),
        facePointSums_(channel.edges.size()),
        around_(points.size()),
        out_(points.size() + channel.edges.size() + channel.faceOffsets.size() - 1) {}

  std::vector<Value> run() {
    placeFacePoints();
    placeEdgePoints();
    for (std::size_t p = 0; p < points_.size() && !isCancelledAt(p); ++p) out_[p] = placePoint(p);
    return std::move(out_);
  }

 private:
  // What gathers at a point from the edges and faces around it.
  struct Around {
    Place sum{};  // neighbours and face points
    int edgeCount = 0, faceCount = 0, borderCount = 0;
    Index crease = kNone;
  };
  // The same from its sharp edges, which most points have none of.
  struct Crease {
    Place now{}, then{};
    int sharpNow = 0, sharpThen = 0;  // edges that are sharp in this step, and still in the next
    double fading = 0;                // sharpness of those that are not
    int fadingCount = 0;
  };

  [[nodiscard]] std::size_t facePoint(std::size_t f) const {
    return points_.size() + channel_.edges.size() + f;
  }
  [[nodiscard]] float sharpnessOf(std::size_t e) const {
    if (edgeFaces_[e] != 2) return kInfinitelySharp;
    return channel_.edgeSharpness.empty() ? 0.0F : channel_.edgeSharpness[e];
  }
  [[nodiscard]] float pointSharpness(std::size_t p) const {
    return channel_.pointSharpness.empty() ? 0.0F : channel_.pointSharpness[p];
  }

  void placeFacePoints() {
    for (std::size_t f = 0; f + 1 < channel_.faceOffsets.size() && !isCancelledAt(f); ++f) {
      const auto first = at(channel_.faceOffsets[f]), end = at(channel_.faceOffsets[f + 1]);
      if (channel_.isDivided[f] == 0 || channel_.cornerPoints[first] < 0) continue;
      Place mean{};
      for (std::size_t c = first; c < end; ++c)
        add(mean, widened(points_[at(channel_.cornerPoints[c])]));
      for (double& x : mean) x /= static_cast<double>(end - first);
      out_[facePoint(f)] = narrowed(mean);
      for (std::size_t c = first; c < end; ++c) {
        Around& around = around_[at(channel_.cornerPoints[c])];
        add(around.sum, mean);
        ++around.faceCount;
        const auto e = at(channel_.cornerEdges[c]);
        add(facePointSums_[e], mean);
        ++edgeFaces_[e];
      }
    }
  }

  void placeEdgePoints() {
    for (std::size_t e = 0; e < channel_.edges.size() && !isCancelledAt(e); ++e) {
      const auto [a, b] = channel_.edges[e];
      const Place p = widened(points_[at(a)]), q = widened(points_[at(b)]);
      Place place = blend(p, q, 0.5);
      if (edgeFaces_[e] != 0) {
        const float sharpness = sharpnessOf(e);
        gather(at(a), q, e, sharpness);
        gather(at(b), p, e, sharpness);
        if (sharpness < 1) {
          Place smooth{};
          add(smooth, place, 0.5);
          add(smooth, facePointSums_[e], 0.25);
          place = blend(place, smooth, channel_.weight * (1 - static_cast<double>(sharpness)));
        }
      }
      out_[points_.size() + e] = narrowed(place);
    }
  }

  void gather(std::size_t point, const Place& neighbour, std::size_t e, float sharpness) {
    Around& around = around_[point];
    add(around.sum, neighbour);
    ++around.edgeCount;
    if (edgeFaces_[e] != 2) around.borderCount += edgeFaces_[e] == 1 ? 1 : 100;
    if (sharpness <= 0) return;
    if (around.crease == kNone) {
      around.crease = static_cast<Index>(creases_.size());
      creases_.emplace_back();
    }
    Crease& crease = creases_[at(around.crease)];
    add(crease.now, neighbour);
    ++crease.sharpNow;
    if (childSharpness(sharpness) > 0) {
      add(crease.then, neighbour);
      ++crease.sharpThen;
    } else {
      crease.fading += static_cast<double>(sharpness);
      ++crease.fadingCount;
    }
  }

  static Rule ruleOf(int sharpEdges, float sharpness) {
    if (sharpness > 0 || sharpEdges > 2) return Rule::Corner;
    return sharpEdges == 2 ? Rule::Crease : Rule::Smooth;
  }

  Place mask(Rule rule, std::size_t p, const Place& creaseNeighbours) const {
    if (rule == Rule::Corner) return widened(points_[p]);
    Place place{};
    if (rule == Rule::Crease) {
      add(place, widened(points_[p]), 0.75);
      add(place, creaseNeighbours, 0.125);
      return place;
    }
    const double n = around_[p].edgeCount;
    add(place, widened(points_[p]), (n - 2) / n);
    add(place, around_[p].sum, 1 / (n * n));
    return place;
  }

  // One closed fan of faces, or one open one.
  static bool isRegular(const Around& around) {
    return (around.borderCount == 0 && around.edgeCount == around.faceCount) ||
           (around.borderCount == 2 && around.edgeCount == around.faceCount + 1);
  }

  Value placePoint(std::size_t p) const {
    const Around& around = around_[p];
    if (around.faceCount == 0 || channel_.isPinned[p] != 0 || !isRegular(around)) return points_[p];
    static const Crease none;
    const Crease& crease = around.crease == kNone ? none : creases_[at(around.crease)];
    const float sharpness = pointSharpness(p);
    const Rule now = ruleOf(crease.sharpNow, sharpness);
    const Rule then = ruleOf(crease.sharpThen, childSharpness(sharpness));
    Place place = mask(now, p, crease.now);
    if (now != then) {
      double fading = crease.fading;
      int count = crease.fadingCount;
      if (sharpness > 0 && childSharpness(sharpness) <= 0) {
        fading += static_cast<double>(sharpness);
        ++count;
      }
      const double share = count > 0 ? std::min(1.0, fading / count) : 0;
      place = blend(mask(then, p, crease.then), place, share);
    }
    return narrowed(blend(widened(points_[p]), place, channel_.weight));
  }

  std::span<const Value> points_;
  const SubdivisionChannel& channel_;
  std::vector<int> edgeFaces_;
  std::vector<Place> facePointSums_;
  std::vector<Around> around_;
  std::vector<Crease> creases_;
  std::vector<Value> out_;
};

}  // namespace

template <class Value>
std::vector<Value> catmullClarkPoints(std::span<const Value> points,
                                      const SubdivisionChannel& channel) {
  return Step<Value>(points, channel).run();
}

template std::vector<math::Vec2f> catmullClarkPoints<math::Vec2f>(std::span<const math::Vec2f>,
                                                                  const SubdivisionChannel&);
template std::vector<math::Vec3f> catmullClarkPoints<math::Vec3f>(std::span<const math::Vec3f>,
                                                                  const SubdivisionChannel&);

}  // namespace host::ops
