#include "host/ops/smooth/catmull_clark.h"

#include <algorithm>

namespace host::ops {
namespace {

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

template <int N>
using Point = std::array<double, N>;

template <int N>
void add(Point<N>& sum, const Point<N>& p, double weight = 1) {
  for (std::size_t i = 0; i < N; ++i) sum[i] += p[i] * weight;
}

template <int N>
Point<N> blend(const Point<N>& a, const Point<N>& b, double t) {
  Point<N> p;
  for (std::size_t i = 0; i < N; ++i) p[i] = a[i] + (b[i] - a[i]) * t;
  return p;
}

float childSharpness(float sharpness) {
  return std::max(0.0F, sharpness - 1);
}

enum class Rule { Smooth, Crease, Corner };

// What gathers at a point from the edges and faces around it.
template <int N>
struct Around {
  Point<N> neighbours{}, faces{}, creaseNow{}, creaseThen{};
  int edgeCount = 0, faceCount = 0, borderCount = 0;
  int sharpNow = 0, sharpThen = 0;  // edges that are sharp in this step, and still in the next
  double fading = 0;                // sharpness of those that are not
  int fadingCount = 0;
};

template <int N>
class Step {
 public:
  Step(std::span<const Point<N>> points, const SubdivisionChannel& channel)
      : points_(points),
        channel_(channel),
        edgeFaces_(channel.edges.size(), 0),
        facePointSums_(channel.edges.size()),
        around_(points.size()),
        out_(points.size() + channel.edges.size() + channel.faceOffsets.size() - 1) {}

  std::vector<Point<N>> run() {
    placeFacePoints();
    placeEdgePoints();
    for (std::size_t p = 0; p < points_.size(); ++p) out_[p] = placePoint(p);
    return std::move(out_);
  }

 private:
  [[nodiscard]] std::size_t facePoint(std::size_t f) const {
    return points_.size() + channel_.edges.size() + f;
  }
  [[nodiscard]] std::size_t edgePoint(std::size_t e) const { return points_.size() + e; }
  [[nodiscard]] float sharpnessOf(std::size_t e) const {
    return edgeFaces_[e] == 2 ? channel_.edgeSharpness[e] : kInfinitelySharp;
  }

  void placeFacePoints() {
    for (std::size_t f = 0; f + 1 < channel_.faceOffsets.size(); ++f) {
      const auto first = at(channel_.faceOffsets[f]), end = at(channel_.faceOffsets[f + 1]);
      if (channel_.isDivided[f] == 0 || channel_.cornerPoints[first] < 0) continue;
      Point<N> mean{};
      for (std::size_t c = first; c < end; ++c) add<N>(mean, points_[at(channel_.cornerPoints[c])]);
      for (double& x : mean) x /= static_cast<double>(end - first);
      out_[facePoint(f)] = mean;
      for (std::size_t c = first; c < end; ++c) {
        Around<N>& around = around_[at(channel_.cornerPoints[c])];
        add<N>(around.faces, mean);
        ++around.faceCount;
        const auto e = at(channel_.cornerEdges[c]);
        add<N>(facePointSums_[e], mean);
        ++edgeFaces_[e];
      }
    }
  }

  void placeEdgePoints() {
    for (std::size_t e = 0; e < channel_.edges.size(); ++e) {
      const auto [a, b] = channel_.edges[e];
      const Point<N>&p = points_[at(a)], &q = points_[at(b)];
      const Point<N> middle = blend<N>(p, q, 0.5);
      out_[edgePoint(e)] = middle;
      if (edgeFaces_[e] == 0) continue;
      const float sharpness = sharpnessOf(e);
      gather(at(a), q, e, sharpness);
      gather(at(b), p, e, sharpness);
      if (sharpness >= 1 || channel_.isEdgePinned[e] != 0) continue;
      Point<N> smooth{};
      add<N>(smooth, middle, 0.5);
      add<N>(smooth, facePointSums_[e], 0.25);
      out_[edgePoint(e)] =
          blend<N>(middle, smooth, channel_.weight * (1 - static_cast<double>(sharpness)));
    }
  }

  void gather(std::size_t point, const Point<N>& neighbour, std::size_t e, float sharpness) {
    Around<N>& around = around_[point];
    add<N>(around.neighbours, neighbour);
    ++around.edgeCount;
    if (edgeFaces_[e] != 2) around.borderCount += edgeFaces_[e] == 1 ? 1 : 100;
    if (sharpness <= 0) return;
    add<N>(around.creaseNow, neighbour);
    ++around.sharpNow;
    if (childSharpness(sharpness) > 0) {
      add<N>(around.creaseThen, neighbour);
      ++around.sharpThen;
    } else {
      around.fading += static_cast<double>(sharpness);
      ++around.fadingCount;
    }
  }

  static Rule ruleOf(int sharpEdges, float sharpness) {
    if (sharpness > 0 || sharpEdges > 2) return Rule::Corner;
    return sharpEdges == 2 ? Rule::Crease : Rule::Smooth;
  }

  Point<N> mask(Rule rule, std::size_t p, const Point<N>& creaseNeighbours) const {
    const Around<N>& around = around_[p];
    Point<N> place{};
    if (rule == Rule::Corner) return points_[p];
    if (rule == Rule::Crease) {
      add<N>(place, points_[p], 0.75);
      add<N>(place, creaseNeighbours, 0.125);
      return place;
    }
    const double n = around.edgeCount;
    add<N>(place, points_[p], (n - 2) / n);
    add<N>(place, around.neighbours, 1 / (n * n));
    add<N>(place, around.faces, 1 / (n * n));
    return place;
  }

  // One closed fan of faces, or one open one.
  static bool isRegular(const Around<N>& around) {
    return (around.borderCount == 0 && around.edgeCount == around.faceCount) ||
           (around.borderCount == 2 && around.edgeCount == around.faceCount + 1);
  }

  Point<N> placePoint(std::size_t p) const {
    const Around<N>& around = around_[p];
    if (around.faceCount == 0 || channel_.isPinned[p] != 0 || !isRegular(around)) return points_[p];
    const float sharpness = channel_.pointSharpness[p];
    const Rule now = ruleOf(around.sharpNow, sharpness);
    const Rule then = ruleOf(around.sharpThen, childSharpness(sharpness));
    Point<N> place = mask(now, p, around.creaseNow);
    if (now != then) {
      double fading = around.fading;
      int count = around.fadingCount;
      if (sharpness > 0 && childSharpness(sharpness) <= 0) {
        fading += static_cast<double>(sharpness);
        ++count;
      }
      const double share = count > 0 ? std::min(1.0, fading / count) : 0;
      place = blend<N>(mask(then, p, around.creaseThen), place, share);
    }
    return blend<N>(points_[p], place, channel_.weight);
  }

  std::span<const Point<N>> points_;
  const SubdivisionChannel& channel_;
  std::vector<int> edgeFaces_;
  std::vector<Point<N>> facePointSums_;
  std::vector<Around<N>> around_;
  std::vector<Point<N>> out_;
};

}  // namespace

template <int N>
std::vector<std::array<double, N>> catmullClarkPoints(std::span<const std::array<double, N>> points,
                                                      const SubdivisionChannel& channel) {
  return Step<N>(points, channel).run();
}

template std::vector<std::array<double, 2>> catmullClarkPoints<2>(
    std::span<const std::array<double, 2>>, const SubdivisionChannel&);
template std::vector<std::array<double, 3>> catmullClarkPoints<3>(
    std::span<const std::array<double, 3>>, const SubdivisionChannel&);

}  // namespace host::ops
