#include "host/ops/uv/piece_split.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <unordered_map>

#include "host/mesh/adjacency.h"

namespace host::ops {

namespace {

using mesh::Mesh;
using Place = FlatPiece::Place;

double cross(const Place& a, const Place& b, const Place& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Cells of a plane, each with the numbers of what reaches into it.
class Cells {
 public:
  Cells(double x, double y, double size) : x_(x), y_(y), size_(size > 0 ? size : 1) {}

  /// Calls `visit(cell)` for the cells of a box.
  template <class Visit>
  void over(double minX, double maxX, double minY, double maxY, const Visit& visit) {
    for (std::int64_t i = column(minX); i <= column(maxX); ++i)
      for (std::int64_t k = row(minY); k <= row(maxY); ++k) visit(cells_[key(i, k)]);
  }

 private:
  [[nodiscard]] std::int64_t column(double x) const { return index((x - x_) / size_); }
  [[nodiscard]] std::int64_t row(double y) const { return index((y - y_) / size_); }
  static std::int64_t index(double x) {
    return static_cast<std::int64_t>(std::floor(std::clamp(x, -1e9, 1e9)));
  }
  static std::uint64_t key(std::int64_t i, std::int64_t k) {
    return static_cast<std::uint64_t>(i) * 0x9E3779B97F4A7C15u ^ static_cast<std::uint64_t>(k);
  }
  double x_, y_, size_;
  std::unordered_map<std::uint64_t, std::vector<Index>> cells_;
};

struct Segment {
  Place a, b;
  VertexId from = kNone, to = kNone;
};

/// The sides that no other face of the piece shares.
std::vector<Segment> borderOf(const Mesh& mesh, const FlatPiece& piece) {
  std::unordered_map<EdgeId, int> uses;
  for (const FaceId f : piece.faces)
    for (const EdgeId e : mesh.faceEdges(f)) ++uses[e];
  std::vector<Segment> border;
  std::size_t place = 0;
  for (const FaceId f : piece.faces) {
    const auto edges = mesh.faceEdges(f);
    const auto loop = mesh.faceVertices(f);
    for (std::size_t i = 0; i < edges.size(); ++i) {
      const std::size_t k = (i + 1) % edges.size();
      if (uses[edges[i]] == 1)
        border.push_back({piece.places[place + i], piece.places[place + k], loop[i], loop[k]});
    }
    place += edges.size();
  }
  return border;
}

bool doCross(const Segment& s, const Segment& t) {
  const bool isChained = s.from == t.to || s.to == t.from || s.from == t.from || s.to == t.to;
  const double a = cross(s.a, s.b, t.a), b = cross(s.a, s.b, t.b);
  const double c = cross(t.a, t.b, s.a), d = cross(t.a, t.b, s.b);
  if (isChained) return false;
  return ((a > 0 && b < 0) || (a < 0 && b > 0)) && ((c > 0 && d < 0) || (c < 0 && d > 0));
}

using Corners = std::array<Place, 3>;

/// Whether two triangles share more than a rim: no side of either has the other wholly outside.
bool doOverlap(const Corners& s, const Corners& t, double tolerance) {
  const auto isApart = [tolerance](const Corners& own, const Corners& other) {
    for (std::size_t i = 0; i < 3; ++i) {
      const Place &a = own[i], &b = own[(i + 1) % 3];
      const double nx = b.y - a.y, ny = a.x - b.x;
      const double length = std::hypot(nx, ny);
      if (length == 0) return true;  // no area
      double least = 1e300;
      for (const Place& p : other)
        least = std::min(least, ((p.x - a.x) * nx + (p.y - a.y) * ny) / length);
      if (least >= -tolerance) return true;
    }
    return false;
  };
  return !isApart(s, t) && !isApart(t, s);
}

/// Grows pieces face by face, each face only where nothing of its piece lies yet.
class Splitter {
 public:
  Splitter(const Mesh& mesh, const FlatPiece& piece) : mesh_(mesh), piece_(piece) {
    std::size_t place = 0;
    double area = 0;
    for (std::size_t i = 0; i < piece.faces.size(); ++i) {
      numberOf_.emplace(piece.faces[i], static_cast<Index>(i));
      first_.push_back(place);
      place += at(mesh.faceSize(piece.faces[i]));
    }
    minX_ = minY_ = 1e300;
    double maxX = -1e300, maxY = -1e300;
    for (const Place& p : piece.places) {
      minX_ = std::min(minX_, p.x);
      maxX = std::max(maxX, p.x);
      minY_ = std::min(minY_, p.y);
      maxY = std::max(maxY, p.y);
    }
    area = (maxX - minX_) * (maxY - minY_);
    cell_ = 2 * std::sqrt(area / static_cast<double>(piece.faces.size()));
    tolerance_ = 1e-9 * std::max(maxX - minX_, maxY - minY_);
  }

  std::vector<FlatPiece> run() {
    std::vector<FlatPiece> pieces;
    isTaken_.assign(piece_.faces.size(), 0);
    for (std::size_t i = 0; i < piece_.faces.size(); ++i)
      if (!isTaken_[i]) pieces.push_back(grow(static_cast<Index>(i)));
    return pieces;
  }

 private:
  FlatPiece grow(Index seed) {
    FlatPiece grown;
    Cells cells(minX_, minY_, cell_);
    std::vector<Corners> triangles;
    std::unordered_map<Index, bool> isMet{{seed, true}};
    std::deque<Index> queue{seed};
    while (!queue.empty()) {
      const Index number = queue.front();
      queue.pop_front();
      if (!add(number, cells, triangles)) continue;
      isTaken_[at(number)] = 1;
      const FaceId f = piece_.faces[at(number)];
      grown.faces.push_back(f);
      const auto places = placesOf(number);
      grown.places.insert(grown.places.end(), places.begin(), places.end());
      for (const EdgeId e : mesh_.faceEdges(f))
        for (const FaceId other : mesh_.adjacency().edgeFaces(e))
          if (const auto known = numberOf_.find(other); known != numberOf_.end() &&
                                                        !isTaken_[at(known->second)] &&
                                                        isMet.emplace(known->second, true).second)
            queue.push_back(known->second);
    }
    return grown;
  }

  bool add(Index number, Cells& cells, std::vector<Corners>& triangles) {
    const auto places = placesOf(number);
    std::vector<Corners> own;
    bool isFree = true;
    for (std::size_t i = 1; i + 1 < places.size(); ++i) {
      own.push_back({places[0], places[i], places[i + 1]});
      box(own.back(), cells, [&](const std::vector<Index>& cell) {
        for (const Index other : cell)
          isFree = isFree && !doOverlap(own.back(), triangles[at(other)], tolerance_);
      });
    }
    if (!isFree) return false;
    for (const Corners& triangle : own) {
      const auto id = static_cast<Index>(triangles.size());
      triangles.push_back(triangle);
      box(triangle, cells, [&](std::vector<Index>& cell) { cell.push_back(id); });
    }
    return true;
  }
  template <class Visit>
  static void box(const Corners& t, Cells& cells, const Visit& visit) {
    cells.over(std::min({t[0].x, t[1].x, t[2].x}), std::max({t[0].x, t[1].x, t[2].x}),
               std::min({t[0].y, t[1].y, t[2].y}), std::max({t[0].y, t[1].y, t[2].y}), visit);
  }
  [[nodiscard]] std::span<const Place> placesOf(Index number) const {
    return {piece_.places.data() + first_[at(number)],
            at(mesh_.faceSize(piece_.faces[at(number)]))};
  }

  const Mesh& mesh_;
  const FlatPiece& piece_;
  std::unordered_map<FaceId, Index> numberOf_;
  std::vector<std::size_t> first_;
  std::vector<std::uint8_t> isTaken_;
  double minX_ = 0, minY_ = 0, cell_ = 1, tolerance_ = 0;
};

}  // namespace

bool coversItself(const Mesh& mesh, const FlatPiece& piece) {
  const std::vector<Segment> border = borderOf(mesh, piece);
  double length = 0;
  for (const Segment& s : border) length += std::hypot(s.b.x - s.a.x, s.b.y - s.a.y);
  if (border.empty() || !(length > 0)) return false;
  Cells cells(border[0].a.x, border[0].a.y, length / static_cast<double>(border.size()));
  for (std::size_t i = 0; i < border.size(); ++i) {
    const Segment& s = border[i];
    bool isCrossed = false;
    cells.over(std::min(s.a.x, s.b.x), std::max(s.a.x, s.b.x), std::min(s.a.y, s.b.y),
               std::max(s.a.y, s.b.y), [&](std::vector<Index>& cell) {
                 for (const Index other : cell)
                   isCrossed = isCrossed || doCross(s, border[at(other)]);
                 cell.push_back(static_cast<Index>(i));
               });
    if (isCrossed) return true;
  }
  return false;
}

std::vector<FlatPiece> splitOverlaps(const Mesh& mesh, FlatPiece piece) {
  if (piece.faces.size() < 2 || !coversItself(mesh, piece)) {
    std::vector<FlatPiece> whole;
    whole.push_back(std::move(piece));
    return whole;
  }
  return Splitter(mesh, piece).run();
}

}  // namespace host::ops
