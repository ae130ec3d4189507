#include "host/ops/uv/report_triangles.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <numeric>

#include "host/base/parallel.h"
#include "host/mesh/adjacency.h"

namespace host::ops {
namespace {

using flat::Point;

Index rootOf(std::vector<Index>& parents, Index i) {
  while (parents[i] != i) i = parents[i] = parents[parents[i]];
  return i;
}

/// UVs that a file of seven digits would not tell apart.
bool areSame(Point a, Point b) {
  const double size = std::max({1.0, std::abs(a.x), std::abs(a.y)});
  return std::max(std::abs(a.x - b.x), std::abs(a.y - b.y)) <= 1e-7 * size;
}

/// Faces joined over edges with the same UVs on both sides, numbered by their lowest face.
std::vector<Index> chartsOf(const mesh::Mesh& mesh, const mesh::UvSet& set, Index& count) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  PerElement<FaceId, Index> parents(mesh.faceCount());
  std::iota(parents.begin(), parents.end(), 0);
  const auto hasUvs = [&](CornerId c) {
    return set.cornerIds[mesh.firstCorner(adjacency.cornerFace(c))] != kNone;
  };
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const auto corners = adjacency.edgeCorners(e);
    for (std::size_t i = 0; i < corners.size(); ++i)
      for (std::size_t k = 0; k < i; ++k) {
        if (!hasUvs(corners[i]) || !hasUvs(corners[k])) continue;
        Point a = uvPoint(set, corners[i]), b = uvPoint(set, adjacency.nextCorner(corners[i]));
        const Point c = uvPoint(set, corners[k]),
                    d = uvPoint(set, adjacency.nextCorner(corners[k]));
        if (mesh.cornerVertex(corners[i]) != mesh.cornerVertex(corners[k])) std::swap(a, b);
        if (!areSame(c, a) || !areSame(d, b)) continue;
        const Index p = rootOf(parents, adjacency.cornerFace(corners[i]));
        const Index q = rootOf(parents, adjacency.cornerFace(corners[k]));
        parents[std::max(p, q)] = std::min(p, q);
      }
  }
  std::vector<Index> charts(parents.size(), kNone);
  count = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    if (set.cornerIds[mesh.firstCorner(f)] == kNone) continue;
    const Index root = rootOf(parents, f);
    if (charts[at(root)] == kNone) charts[at(root)] = count++;
    charts[at(f)] = charts[at(root)];
  }
  return charts;
}

/// The stretches of the map from the surface to UV, from lengths of its two edges' images.
void measure(UvTriangle& t, const mesh::Vec3& p, const mesh::Vec3& q, Point u, Point w) {
  const double base = math::length(p);
  const double along = math::dot(p, q) / base, height = 2 * t.surface / base;
  const Point first = 1 / base * u;
  const Point second = 1 / height * (w - along * first);
  const double square = flat::dot(first, first) + flat::dot(second, second);
  const double det = flat::cross(first, second);
  const double root = std::sqrt(std::max(0.0, square * square / 4 - det * det));
  t.s1 = std::sqrt(square / 2 + root);
  t.s2 = t.s1 > 0 ? std::abs(det) / t.s1 : 0;
  t.isCollapsed = !(t.s1 > 0) || t.s2 < 1e-7 * t.s1;
}

/// The area that two counter-clockwise triangles share (Sutherland and Hodgman 1974).
double sharedArea(const std::array<Point, 3>& a, const std::array<Point, 3>& b) {
  std::array<Point, 10> polygon{}, clipped{};
  std::size_t count = 3;
  std::copy(a.begin(), a.end(), polygon.begin());
  for (std::size_t e = 0; e < 3 && count > 0; ++e) {
    const Point origin = b[e], direction = b[(e + 1) % 3] - origin;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const Point p = polygon[i], q = polygon[(i + 1) % count];
      const double atP = flat::cross(direction, p - origin);
      const double atQ = flat::cross(direction, q - origin);
      if (atP >= 0) clipped[kept++] = p;
      if ((atP > 0 && atQ < 0) || (atP < 0 && atQ > 0))
        clipped[kept++] = p + atP / (atP - atQ) * (q - p);
    }
    count = kept;
    polygon = clipped;
  }
  double area = 0;
  for (std::size_t i = 1; i + 1 < count; ++i)
    area += 0.5 * flat::doubleArea(polygon[0], polygon[i], polygon[i + 1]);
  return area;
}

/// Triangles by size: each lies in the cell of its lower left corner in a grid whose cells are as
/// large as it is, at most twice.
class SizeGrids {
 public:
  struct Box {
    Point low, high;
  };
  explicit SizeGrids(const std::vector<Box>& boxes) : boxes_(boxes) {
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      const double extent =
          std::max({boxes[i].high.x - boxes[i].low.x, boxes[i].high.y - boxes[i].low.y, 1e-12});
      grids_[std::ilogb(extent) + 1].push_back({cellOf(boxes[i].low, std::ilogb(extent) + 1), i});
    }
    for (auto& [level, entries] : grids_) std::sort(entries.begin(), entries.end());
  }
  /// Visits what may touch box i in its own grid and coarser ones, until `visit` gives false.
  template <class Visit>
  void overNear(std::size_t i, Visit visit) const {
    const Box& box = boxes_[i];
    const double extent = std::max({box.high.x - box.low.x, box.high.y - box.low.y, 1e-12});
    for (auto grid = grids_.lower_bound(std::ilogb(extent) + 1); grid != grids_.end(); ++grid) {
      const double size = std::ldexp(1.0, grid->first);
      const Cell from = cellOf(box.low - Point{size, size}, grid->first);
      const Cell to = cellOf(box.high, grid->first);
      for (std::int64_t y = from.y; y <= to.y; ++y) {
        auto entry =
            std::lower_bound(grid->second.begin(), grid->second.end(), Entry{{from.x, y}, 0});
        for (; entry != grid->second.end() && entry->cell.y == y && entry->cell.x <= to.x; ++entry)
          if (!visit(entry->item, grid->first == std::ilogb(extent) + 1)) return;
      }
    }
  }

 private:
  struct Cell {
    std::int64_t x, y;
  };
  struct Entry {
    Cell cell;
    std::size_t item;
    friend bool operator<(const Entry& a, const Entry& b) {
      return std::tie(a.cell.y, a.cell.x, a.item) < std::tie(b.cell.y, b.cell.x, b.item);
    }
  };
  static Cell cellOf(Point p, int level) {
    const auto cell = [&](double value) {
      return static_cast<std::int64_t>(
          std::clamp(std::floor(std::ldexp(value, -level)), -9e18, 9e18));
    };
    return {cell(p.x), cell(p.y)};
  }
  const std::vector<Box>& boxes_;
  std::map<int, std::vector<Entry>> grids_;
};

}  // namespace

UvTriangles uvTriangles(const mesh::Mesh& mesh, int uvSet) {
  UvTriangles out;
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  if (set.cornerIds.empty()) {
    out.facesWithoutUvs = mesh.faceCount();
    return out;
  }
  const std::vector<Index> charts = chartsOf(mesh, set, out.charts);
  out.all.reserve(at(mesh.cornerCount()));
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId s = mesh.firstCorner(f);
    if (set.cornerIds[s] == kNone) {
      ++out.facesWithoutUvs;
      continue;
    }
    for (CornerId c = s + 1; c + 1 < mesh.firstCorner(f + 1); ++c) {
      UvTriangle t{.face = f, .corners = {s, c, c + 1}, .chart = charts[at(f)]};
      const mesh::Vec3 origin = mesh.point(mesh.cornerVertex(s));
      const mesh::Vec3 p = mesh.point(mesh.cornerVertex(c)) - origin;
      const mesh::Vec3 q = mesh.point(mesh.cornerVertex(c + 1)) - origin;
      const Point u = uvPoint(set, c) - uvPoint(set, s), w = uvPoint(set, c + 1) - uvPoint(set, s);
      t.surface = 0.5 * math::length(math::cross(p, q));
      t.signedUv = 0.5 * flat::cross(u, w);
      if (!(t.surface > 1e-14 * math::length(p) * math::length(q)) || t.surface == 0) {
        ++out.withoutArea;
        continue;
      }
      measure(t, p, q, u, w);
      out.surface += t.surface;
      // UVs that are no numbers cover nothing.
      if (std::isfinite(t.signedUv))
        out.uv += std::abs(t.signedUv);
      else
        t.isCollapsed = true;
      out.all.push_back(t);
    }
  }
  const double tiny = 1e-12 * out.uv / std::max<double>(1, static_cast<double>(out.all.size()));
  for (UvTriangle& t : out.all) t.isCollapsed = t.isCollapsed || std::abs(t.signedUv) <= tiny;
  return out;
}

namespace {

/// How many others a triangle looks at: all there are in any sensible map, but where thousands are
/// stacked the work must not grow with their square.
std::size_t mostLookedAt(std::size_t triangles) {
  return std::max<std::size_t>(100, 20'000'000 / std::max<std::size_t>(1, triangles));
}

constexpr std::size_t kBlock = 1024;  ///< triangles that one thread looks after at a time

/// Finds pairs of triangles that overlap and hands them to `visit(block, a, b, area)`, in parallel,
/// those of a block in an order that no number of threads changes.
class OverlapSearch {
 public:
  /// @param withinCharts only pairs of one chart count
  OverlapSearch(const mesh::UvSet& set, const UvTriangles& triangles, bool withinCharts)
      : all_(triangles.all), boxes_(all_.size()), places_(all_.size()) {
    for (std::size_t i = 0; i < all_.size(); ++i) {
      for (std::size_t k = 0; k < 3; ++k) places_[i][k] = uvPoint(set, all_[i].corners[k]);
      if (all_[i].signedUv < 0) std::swap(places_[i][1], places_[i][2]);
      if (!std::isfinite(all_[i].signedUv)) continue;  // collapsed: nobody looks at it
      const auto& [a, b, c] = places_[i];
      boxes_[i] = {{std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y})},
                   {std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y})}};
    }
    if (withinCharts) setChartsApart();
  }

  [[nodiscard]] std::size_t blocks() const { return (all_.size() + kBlock - 1) / kBlock; }

  /// @return whether some triangles lie on so many that not all were looked at
  template <class Visit>
  bool run(Visit visit) const {
    const SizeGrids grids(boxes_);
    std::vector<std::uint8_t> isCut(blocks(), 0);
    parallelFor(blocks(), 4, [&](std::size_t begin, std::size_t end) {
      for (std::size_t block = begin; block < end; ++block)
        for (std::size_t i = kBlock * block; i < std::min(all_.size(), kBlock * (block + 1)); ++i)
          if (!all_[i].isCollapsed && !lookAround(grids, i, block, visit)) isCut[block] = 1;
    });
    return std::ranges::find(isCut, 1) != isCut.end();
  }

 private:
  /// Moves the boxes of each chart to where no other's are.
  void setChartsApart() {
    double low = 1e300, high = -1e300;
    for (const SizeGrids::Box& box : boxes_) {
      low = std::min(low, box.low.x);
      high = std::max(high, box.high.x);
    }
    for (std::size_t i = 0; i < boxes_.size(); ++i) {
      const double apart = 3 * (high - low) * all_[i].chart;
      boxes_[i].low.x += apart;
      boxes_[i].high.x += apart;
    }
  }

  template <class Visit>
  bool lookAround(const SizeGrids& grids, std::size_t i, std::size_t block, Visit& visit) const {
    const std::size_t most = mostLookedAt(all_.size());
    std::size_t looks = 0, visits = 0;
    bool isWhole = true;
    grids.overNear(i, [&](std::size_t k, bool isOwnGrid) {
      const bool isOthers = k == i || (isOwnGrid && k < i) || all_[k].isCollapsed;
      looks += !isOthers;
      if (looks > most || ++visits > 3 * most) return isWhole = false;
      if (isOthers || boxes_[i].high.x < boxes_[k].low.x || boxes_[k].high.x < boxes_[i].low.x ||
          boxes_[i].high.y < boxes_[k].low.y || boxes_[k].high.y < boxes_[i].low.y)
        return true;
      const auto [first, second] = std::minmax(i, k);
      const double area = sharedArea(places_[first], places_[second]);
      if (area > 0.01 * std::min(std::abs(all_[i].signedUv), std::abs(all_[k].signedUv)))
        visit(block, i, k, area);
      return true;
    });
    return isWhole;
  }

  const std::vector<UvTriangle>& all_;
  std::vector<SizeGrids::Box> boxes_;
  std::vector<std::array<Point, 3>> places_;
};

}  // namespace

UvOverlaps uvOverlaps(const mesh::UvSet& set, const UvTriangles& triangles) {
  const OverlapSearch search(set, triangles, false);
  struct Sum {
    std::size_t pairs = 0;
    double area = 0;
  };
  std::vector<Sum> sums(search.blocks());
  std::vector<std::uint8_t> isHit(triangles.all.size(), 0);
  const auto hit = [&](std::size_t i) {
    std::atomic_ref(isHit[i]).store(1, std::memory_order_relaxed);
  };
  UvOverlaps overlaps;
  overlaps.isPartial =
      search.run([&](std::size_t block, std::size_t a, std::size_t b, double area) {
        hit(a);
        hit(b);
        sums[block].area += area;
        ++sums[block].pairs;
      });
  for (const Sum& sum : sums) {
    overlaps.area += sum.area;
    overlaps.pairs += sum.pairs;
  }
  overlaps.triangles = static_cast<Index>(std::ranges::count(isHit, 1));
  return overlaps;
}

std::vector<std::pair<FaceId, FaceId>> overlappingFaces(const mesh::UvSet& set,
                                                        const UvTriangles& triangles) {
  const OverlapSearch search(set, triangles, true);
  std::vector<std::vector<std::pair<FaceId, FaceId>>> found(search.blocks());
  (void)search.run([&](std::size_t block, std::size_t i, std::size_t k, double) {
    const FaceId a = triangles.all[i].face, b = triangles.all[k].face;
    if (a != b) found[block].emplace_back(std::min(a, b), std::max(a, b));
  });
  std::vector<std::pair<FaceId, FaceId>> faces;
  for (const auto& block : found) faces.insert(faces.end(), block.begin(), block.end());
  std::sort(faces.begin(), faces.end());
  faces.erase(std::unique(faces.begin(), faces.end()), faces.end());
  return faces;
}

}  // namespace host::ops
