#include "host/ops/topology/bridge_edges.h"

#include <array>
#include <cmath>
#include <limits>
#include <unordered_map>

#include "host/mesh/rebuild.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {
namespace {

using math::Vec3;

/// A run of border edges as the faces there walk them.
struct Side {
  std::vector<VertexId> vertices;  ///< one more than corners when open
  std::vector<CornerId> corners;   ///< the face's corner at each edge's first vertex
  std::vector<CornerId> ends;      ///< and at its second
  bool isClosed = false;
};

class SideFinder {
 public:
  explicit SideFinder(const Mesh& mesh) : mesh_(mesh) {}

  Result<std::vector<Side>> find(std::span<const EdgeId> edges) {
    for (const EdgeSides& sides : sidesOfEdges(mesh_, edges)) {
      const auto loop = mesh_.faceEdges(sides.first);
      if (sides.faceCount != 1 || std::count(loop.begin(), loop.end(), sides.edge) != 1)
        return fail("Edge {} is no border edge; only borders can be bridged", sides.edge);
      const auto k = std::find(loop.begin(), loop.end(), sides.edge) - loop.begin();
      const CornerId first = mesh_.firstCorner(sides.first);
      const CornerId a = first + static_cast<CornerId>(k);
      const CornerId b = a + 1 < mesh_.firstCorner(sides.first + 1) ? a + 1 : first;
      const auto piece = static_cast<Index>(pieces_.size());
      pieces_.push_back({a, b});
      const bool isFirst = outOf_.try_emplace(mesh_.cornerVertex(a), piece).second;
      const bool isOnly = into_.try_emplace(mesh_.cornerVertex(b), piece).second;
      if (!isFirst || !isOnly)
        return fail("The border forks at edge {}; bridge its parts one by one", sides.edge);
    }
    isUsed_.assign(pieces_.size(), 0);
    std::vector<Side> found;
    for (std::size_t i = 0; i < pieces_.size(); ++i)
      if (isUsed_[i] == 0) found.push_back(trace(startOf(static_cast<Index>(i))));
    return found;
  }

 private:
  struct Piece {
    CornerId a, b;
  };
  // The first piece of the run that a piece belongs to, the piece itself when the run is closed.
  [[nodiscard]] Index startOf(Index piece) const {
    for (Index i = piece;;) {
      const auto before = into_.find(mesh_.cornerVertex(pieces_[at(i)].a));
      if (before == into_.end()) return i;
      i = before->second;
      if (i == piece) return i;
    }
  }
  Side trace(Index start) {
    Side side;
    for (Index i = start;;) {
      isUsed_[at(i)] = 1;
      side.vertices.push_back(mesh_.cornerVertex(pieces_[at(i)].a));
      side.corners.push_back(pieces_[at(i)].a);
      side.ends.push_back(pieces_[at(i)].b);
      const VertexId end = mesh_.cornerVertex(pieces_[at(i)].b);
      const auto next = outOf_.find(end);
      if (next == outOf_.end()) {
        side.vertices.push_back(end);
        return side;
      }
      i = next->second;
      side.isClosed = i == start;
      if (side.isClosed) return side;
    }
  }

  const Mesh& mesh_;
  std::vector<Piece> pieces_;
  std::unordered_map<VertexId, Index> outOf_, into_;
  std::vector<std::uint8_t> isUsed_;
};

class Bridge {
 public:
  Bridge(const Mesh& mesh, Side first, Side second, const BridgeEdgesOptions& options)
      : mesh_(mesh),
        first_(std::move(first)),
        second_(std::move(second)),
        options_(options),
        count_(first_.corners.size()),
        rebuilder_(mesh_) {}

  Result<void> matchSides() {
    if (!first_.isClosed) return {};
    if (options_.start != kNone && options_.target != kNone) {
      const auto a = std::find(first_.vertices.begin(), first_.vertices.end(), options_.start);
      const auto b = std::find(second_.vertices.begin(), second_.vertices.end(), options_.target);
      if (a == first_.vertices.end() || b == second_.vertices.end())
        return fail("Vertices {} and {} do not lie on the two sides of the bridge", options_.start,
                    options_.target);
      turn_ = at(static_cast<Index>(a - first_.vertices.begin())) +
              at(static_cast<Index>(b - second_.vertices.begin()));
    } else {
      double least = std::numeric_limits<double>::max();
      for (std::size_t turn = 0; turn < count_; ++turn) {
        double sum = 0;
        for (std::size_t k = 0; k < count_ && sum < least; ++k)
          sum += math::lengthSquared(mesh_.point(first_.vertices[k]) -
                                     mesh_.point(second_.vertices[(turn + count_ - k) % count_]));
        if (sum >= least) continue;
        least = sum;
        turn_ = turn;
      }
    }
    const auto n = static_cast<Index>(count_);
    turn_ = (turn_ + at((options_.shift % n + n) % n)) % count_;
    return {};
  }

  BridgeEdgesResult run(Mesh& mesh) {
    BridgeEdgesResult result;
    rebuilder_.keepAllVertices();
    placeRows();
    for (VertexId v = mesh_.vertexCount(); v < rebuilder_.vertexCount(); ++v)
      result.vertices.push_back(v);
    rebuilder_.copyFaces(0, mesh_.faceCount());
    for (int row = 0; row <= options_.divisions; ++row)
      for (std::size_t k = 0; k < count_; ++k)
        if (const FaceId f = addQuad(row, k); f != kNone) result.faces.push_back(f);
    mesh = rebuilder_.finish().mesh;
    std::vector<EdgeId> edges;
    for (const FaceId f : result.faces)
      for (const EdgeId e : mesh.faceEdges(f)) edges.push_back(e);
    // The sides keep what they have: they are edges that were there before.
    std::vector<EdgeId> added;
    for (const EdgeId e : sortedIds(edges))
      if (e >= mesh_.edgeCount()) added.push_back(e);
    softenSides(mesh, sidesOfEdges(mesh, added), options_.smoothingAngle);
    return result;
  }

 private:
  [[nodiscard]] VertexId firstVertex(std::size_t k) const {
    return first_.vertices[k % first_.vertices.size()];
  }
  // The other side is walked backwards, so that both keep their faces on the same hand.
  [[nodiscard]] VertexId secondVertex(std::size_t k) const {
    if (!first_.isClosed) return second_.vertices[count_ - k];
    return second_.vertices[(turn_ + 2 * count_ - k) % count_];
  }
  // The edge of the other side across from edge k.
  [[nodiscard]] std::size_t secondEdge(std::size_t k) const {
    return first_.isClosed ? (turn_ + 2 * count_ - k - 1) % count_ : count_ - k - 1;
  }
  [[nodiscard]] std::size_t rowLength() const { return count_ + (first_.isClosed ? 0 : 1); }

  [[nodiscard]] VertexId rowVertex(int row, std::size_t k) const {
    if (row == 0) return firstVertex(k);
    if (row == options_.divisions + 1) return secondVertex(k);
    return rows_[at(row - 1) * rowLength() + k % rowLength()];
  }

  void placeRows() {
    const std::size_t n = rowLength();
    Vec3 firstCentre, secondCentre;
    for (std::size_t k = 0; k < n; ++k) {
      firstCentre += mesh_.point(firstVertex(k)) / static_cast<double>(n);
      secondCentre += mesh_.point(secondVertex(k)) / static_cast<double>(n);
    }
    const Vec3 axis = math::normalized(secondCentre - firstCentre);
    for (int row = 1; row <= options_.divisions; ++row) {
      const double t = static_cast<double>(row) / (options_.divisions + 1);
      const double bulge = std::sin(std::numbers::pi * t);
      const double size = 1 + (options_.taper - 1) * bulge, angle = options_.twist * bulge;
      const Vec3 centre = firstCentre + (secondCentre - firstCentre) * t;
      for (std::size_t k = 0; k < n; ++k) {
        if (firstVertex(k) == secondVertex(k)) {
          rows_.push_back(firstVertex(k));
          continue;
        }
        const Vec3 a = mesh_.point(firstVertex(k)), b = mesh_.point(secondVertex(k));
        const Vec3 d = (a + (b - a) * t - centre) * size;
        const Vec3 turned = d * std::cos(angle) + math::cross(axis, d) * std::sin(angle) +
                            axis * (math::dot(axis, d) * (1 - std::cos(angle)));
        rows_.push_back(rebuilder_.addVertex((centre + turned).toFloat()));
      }
    }
  }

  FaceId addQuad(int row, std::size_t k) {
    const std::size_t j = secondEdge(k);
    struct Corner {
      VertexId vertex;
      CornerId near, far;  // on the first side and on the second
      int row;
    };
    const std::array<Corner, 4> quad{{
        {rowVertex(row, k + 1), first_.ends[k], second_.corners[j], row},
        {rowVertex(row, k), first_.corners[k], second_.ends[j], row},
        {rowVertex(row + 1, k), first_.corners[k], second_.ends[j], row + 1},
        {rowVertex(row + 1, k + 1), first_.ends[k], second_.corners[j], row + 1},
    }};
    std::vector<Corner> loop;
    for (std::size_t i = 0; i < 4; ++i)
      if (quad[i].vertex != quad[(i + 1) % 4].vertex) loop.push_back(quad[i]);
    if (loop.size() < 3) return kNone;
    rebuilder_.beginFace();
    for (const Corner& corner : loop) {
      const double t = static_cast<double>(corner.row) / (options_.divisions + 1);
      const std::array<mesh::CornerWeight, 2> blend{{{corner.near, 1 - t}, {corner.far, t}}};
      if (corner.row == 0)
        rebuilder_.addCorner(corner.vertex, corner.near);
      else if (corner.row == options_.divisions + 1)
        rebuilder_.addCorner(corner.vertex, corner.far);
      else
        rebuilder_.addCorner(corner.vertex, blend);
    }
    return rebuilder_.endFace();
  }

  Mesh mesh_;
  Side first_, second_;
  const BridgeEdgesOptions& options_;
  std::size_t count_;
  mesh::MeshRebuilder rebuilder_;
  std::size_t turn_ = 0;  // closed sides: vertex k meets vertex turn - k
  std::vector<VertexId> rows_;
};

}  // namespace

Result<BridgeEdgesResult> bridgeEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                      const BridgeEdgesOptions& options) {
  constexpr int kMostDivisions = 10000;
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (options.divisions < 0 || options.divisions > kMostDivisions)
    return fail(ErrorKind::BadArgument, "The number of divisions must be 0 to {}, not {}",
                kMostDivisions, options.divisions);
  for (const double value : {options.taper, options.twist, options.smoothingAngle})
    if (!std::isfinite(value)) return fail(ErrorKind::BadArgument, "A bridge needs finite numbers");
  auto sides = SideFinder(mesh).find(sortedIds(edges));
  if (!sides) return failWith(std::move(sides).error());
  if (sides->size() != 2)
    return fail("A bridge joins two runs of border edges; the edges make up {}", sides->size());
  Side &first = (*sides)[0], &second = (*sides)[1];
  if (first.isClosed != second.isClosed)
    return fail("A bridge cannot join a closed border to an open run of edges");
  if (first.corners.size() != second.corners.size())
    return fail("The two sides of a bridge need equally many edges, not {} and {}",
                first.corners.size(), second.corners.size());
  Bridge bridge(mesh, std::move(first), std::move(second), options);
  HOST_TRY(bridge.matchSides());
  return bridge.run(mesh);
}

}  // namespace host::ops
