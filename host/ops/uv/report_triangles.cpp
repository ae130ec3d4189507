#include "host/ops/uv/report_triangles.h"

#include <algorithm>
#include <map>
#include <numeric>

#include "host/base/parallel.h"
#include "host/mesh/adjacency.h"

namespace host::ops {
namespace {

using flat::Point;

Index rootOf(std::vector<Index>& parents, Index i) {
  while (parents[at(i)] != i) i = parents[at(i)] = parents[at(parents[at(i)])];
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
  std::vector<Index> parents(at(mesh.faceCount()));
  std::iota(parents.begin(), parents.end(), 0);
  const auto hasUvs = [&](CornerId c) {
    return set.cornerIds[at(mesh.firstCorner(adjacency.cornerFace(c)))] != kNone;
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
        parents[at(std::max(p, q))] = std::min(p, q);
      }
  }
  std::vector<Index> charts(parents.size(), kNone);
  count = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    if (set.cornerIds[at(mesh.firstCorner(f))] == kNone) continue;
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
    if (set.cornerIds[at(s)] == kNone) {
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
      out.uv += std::abs(t.signedUv);
      out.all.push_back(t);
    }
  }
  const double tiny = 1e-12 * out.uv / std::max<double>(1, static_cast<double>(out.all.size()));
  for (UvTriangle& t : out.all) t.isCollapsed = t.isCollapsed || std::abs(t.signedUv) <= tiny;
  return out;
}

namespace {

struct OverlapPair {
  std::size_t a, b;
  double area;
};

/// How many others a triangle looks at: all there are in any sensible map, but where thousands are
/// stacked the work must not grow with their square.
std::size_t mostLookedAt(std::size_t triangles) {
  return std::max<std::size_t>(1000, 100'000'000 / std::max<std::size_t>(1, triangles));
}

/// The pairs, in an order that no number of threads changes.
std::vector<OverlapPair> overlapPairs(const mesh::UvSet& set, const UvTriangles& triangles,
                                      bool& isPartial) {
  const std::vector<UvTriangle>& all = triangles.all;
  std::vector<SizeGrids::Box> boxes(all.size());
  std::vector<std::array<Point, 3>> places(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t k = 0; k < 3; ++k) places[i][k] = uvPoint(set, all[i].corners[k]);
    if (all[i].signedUv < 0) std::swap(places[i][1], places[i][2]);
    const auto& [a, b, c] = places[i];
    boxes[i] = {{std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y})},
                {std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y})}};
  }
  const SizeGrids grids(boxes);
  const std::size_t most = mostLookedAt(all.size());
  std::vector<std::vector<OverlapPair>> found((all.size() + 1023) / 1024);
  std::vector<std::uint8_t> isCut(found.size(), 0);
  parallelFor(found.size(), 4, [&](std::size_t begin, std::size_t end) {
    for (std::size_t block = begin; block < end; ++block)
      for (std::size_t i = 1024 * block; i < std::min(all.size(), 1024 * (block + 1)); ++i) {
        if (all[i].isCollapsed) continue;
        std::size_t looks = 0, visits = 0;
        grids.overNear(i, [&](std::size_t k, bool isOwnGrid) {
          const bool isOthers = k == i || (isOwnGrid && k < i) || all[k].isCollapsed;
          looks += !isOthers;
          if (looks > most || ++visits > 8 * most) {
            isCut[block] = 1;
            return false;
          }
          if (isOthers) return true;
          if (boxes[i].high.x < boxes[k].low.x || boxes[k].high.x < boxes[i].low.x ||
              boxes[i].high.y < boxes[k].low.y || boxes[k].high.y < boxes[i].low.y)
            return true;
          const auto [first, second] = std::minmax(i, k);
          const double area = sharedArea(places[first], places[second]);
          if (area > 0.01 * std::min(std::abs(all[i].signedUv), std::abs(all[k].signedUv)))
            found[block].push_back({i, k, area});
          return true;
        });
      }
  });
  isPartial = std::ranges::find(isCut, 1) != isCut.end();
  std::vector<OverlapPair> pairs;
  for (const std::vector<OverlapPair>& block : found)
    pairs.insert(pairs.end(), block.begin(), block.end());
  return pairs;
}

}  // namespace

UvOverlaps uvOverlaps(const mesh::UvSet& set, const UvTriangles& triangles) {
  UvOverlaps overlaps;
  std::vector<bool> isHit(triangles.all.size(), false);
  for (const OverlapPair& pair : overlapPairs(set, triangles, overlaps.isPartial)) {
    isHit[pair.a] = isHit[pair.b] = true;
    overlaps.area += pair.area;
    ++overlaps.pairs;
  }
  overlaps.triangles = static_cast<Index>(std::count(isHit.begin(), isHit.end(), true));
  return overlaps;
}

std::vector<std::pair<FaceId, FaceId>> overlappingFaces(const mesh::UvSet& set,
                                                        const UvTriangles& triangles) {
  std::vector<std::pair<FaceId, FaceId>> faces;
  bool isPartial = false;
  for (const OverlapPair& pair : overlapPairs(set, triangles, isPartial)) {
    const FaceId a = triangles.all[pair.a].face, b = triangles.all[pair.b].face;
    if (a != b) faces.emplace_back(std::min(a, b), std::max(a, b));
  }
  std::sort(faces.begin(), faces.end());
  faces.erase(std::unique(faces.begin(), faces.end()), faces.end());
  return faces;
}

}  // namespace host::ops
