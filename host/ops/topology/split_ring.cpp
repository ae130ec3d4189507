#include "host/ops/topology/split_ring.h"

#include <cmath>

#include "host/base/cancel_poll.h"
#include "host/ops/topology/edge_cutter.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {
namespace {

// Nearer to an end than this fraction of an edge nothing is cut: it would make edges of no length.
constexpr double kLeastFraction = 1e-4;

class RingSplitter {
 public:
  RingSplitter(const Mesh& mesh, std::vector<EdgeId> edges, const SplitRingOptions& options)
      : mesh_(mesh),
        edges_(std::move(edges)),
        options_(options),
        divisions_(options.spacing == SplitRingOptions::Spacing::Even ? options.divisions : 1),
        place_(at(mesh.edgeCount()), kNone),
        cutter_(mesh) {
    for (std::size_t i = 0; i < edges_.size(); ++i) place_[at(edges_[i])] = static_cast<Index>(i);
  }

  SplitRingResult run(Mesh& mesh) {
    findFaces();
    matchEnds();
    SplitRingResult result;
    walkRings(result.vertices);
    auto crossing = crossings_.begin();
    cutter_.buildFaces(
        [&](FaceId f) { return crossing != crossings_.end() && crossing->face == f; },
        [&](FaceId) { splitFace(*crossing++); });
    EdgeCutter::Outcome outcome = cutter_.finish();
    mesh = std::move(outcome.mesh);
    for (const FaceId f : outcome.pieces) result.edges.push_back(mesh.faceEdges(f).back());
    result.edges = sortedIds(result.edges);
    softenSides(mesh, sidesOfEdges(mesh, result.edges), options_.smoothingAngle);
    return result;
  }

 private:
  struct Crossing {
    FaceId face = kNone;
    std::vector<Index> corners;  ///< positions in the loop whose edges are listed
  };

  void findFaces() {
    facesOf_.resize(edges_.size());
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      pollCancel(f);
      const auto edges = mesh_.faceEdges(f);
      Crossing crossing{f, {}};
      for (std::size_t k = 0; k < edges.size(); ++k)
        if (place_[at(edges[k])] != kNone) crossing.corners.push_back(static_cast<Index>(k));
      if (crossing.corners.empty()) continue;
      for (const Index k : crossing.corners)
        facesOf_[at(place_[at(edges[at(k)])])].push_back(static_cast<Index>(crossings_.size()));
      crossings_.push_back(std::move(crossing));
    }
  }

  [[nodiscard]] bool isForward(FaceId f, Index corner) const {
    return mesh_.edge(mesh_.faceEdges(f)[at(corner)]).a == mesh_.faceVertices(f)[at(corner)];
  }

  // Carries over which end is the first one, from each edge to those next to it in its faces.
  void matchEnds() {
    isTurned_.assign(edges_.size(), kUnmatched);
    if (options_.rootEdge != kNone && place_[at(options_.rootEdge)] != kNone)
      matchFrom(place_[at(options_.rootEdge)]);
    for (std::size_t i = 0; i < edges_.size(); ++i) matchFrom(static_cast<Index>(i));
  }

  void matchFrom(Index seed) {
    if (isTurned_[at(seed)] != kUnmatched) return;
    isTurned_[at(seed)] = options_.isReversed ? 1 : 0;
    std::vector<Index> open{seed};
    while (!open.empty()) {
      const Index i = open.back();
      open.pop_back();
      for (const Index c : facesOf_[at(i)]) {
        const Crossing& crossing = crossings_[at(c)];
        const std::size_t n = crossing.corners.size();
        for (std::size_t k = 0; k < n; ++k) {
          matchAcross(crossing, i, crossing.corners[k], crossing.corners[(k + 1) % n], open);
          matchAcross(crossing, i, crossing.corners[(k + 1) % n], crossing.corners[k], open);
        }
      }
    }
  }

  // Two edges across a face run alike when one is walked forwards and the other backwards.
  void matchAcross(const Crossing& crossing, Index i, Index from, Index to,
                   std::vector<Index>& open) {
    const auto edges = mesh_.faceEdges(crossing.face);
    const Index other = place_[at(edges[at(to)])];
    if (place_[at(edges[at(from)])] != i || isTurned_[at(other)] != kUnmatched) return;
    const bool isAlike = isForward(crossing.face, from) != isForward(crossing.face, to);
    isTurned_[at(other)] =
        static_cast<std::uint8_t>(isAlike ? isTurned_[at(i)] : 1 - isTurned_[at(i)]);
    open.push_back(other);
  }

  void walkRings(std::vector<VertexId>& vertices) {
    firsts_.assign(edges_.size(), kNone);
    isWalked_.assign(crossings_.size(), 0);
    if (options_.rootEdge != kNone && place_[at(options_.rootEdge)] != kNone)
      walkFrom(place_[at(options_.rootEdge)], vertices);
    for (std::size_t i = 0; i < edges_.size(); ++i) walkFrom(static_cast<Index>(i), vertices);
  }

  void walkFrom(Index seed, std::vector<VertexId>& vertices) {
    if (firsts_[at(seed)] != kNone) return;
    cut(seed, vertices);
    for (const Index start : facesOf_[at(seed)]) {
      Index from = seed;
      for (Index crossing = start; crossing != kNone && isWalked_[at(crossing)] == 0;) {
        const Index to = acrossFrom(crossings_[at(crossing)], from);
        if (to == kNone) break;
        isWalked_[at(crossing)] = 1;
        const bool isNew = firsts_[at(to)] == kNone;
        if (isNew) cut(to, vertices);
        for (int k = 0; k < divisions_; ++k)
          cutter_.declareEdge(divisionVertex(from, k), divisionVertex(to, k));
        if (!isNew) break;
        crossing = otherFace(to, crossing);
        from = to;
      }
    }
  }

  void cut(Index i, std::vector<VertexId>& vertices) {
    firsts_[at(i)] = cutter_.cutAt(edges_[at(i)], parametersOf(at(i)));
    const VertexId first = firsts_[at(i)], last = first + divisions_ - 1;
    for (VertexId v = first; v <= last; ++v) {
      vertices.push_back(v);
      cutter_.declareEdge(v, v < last ? v + 1 : mesh_.edge(edges_[at(i)]).b);
    }
  }

  // The k-th new vertex from the end of an edge that counts as the first.
  [[nodiscard]] VertexId divisionVertex(Index i, int k) const {
    return firsts_[at(i)] + (isTurned_[at(i)] != 0 ? divisions_ - 1 - k : k);
  }

  // The other of the two edges that are divided in a face; none where there are more.
  [[nodiscard]] Index acrossFrom(const Crossing& crossing, Index from) const {
    if (crossing.corners.size() != 2) return kNone;
    const auto edges = mesh_.faceEdges(crossing.face);
    const Index a = place_[at(edges[at(crossing.corners[0])])],
                b = place_[at(edges[at(crossing.corners[1])])];
    return a == b ? kNone : a == from ? b : a;
  }

  // The face on the other side of an edge, by its crossing.
  [[nodiscard]] Index otherFace(Index i, Index crossing) const {
    for (const Index other : facesOf_[at(i)])
      if (other != crossing) return other;
    return kNone;
  }

  [[nodiscard]] std::vector<double> parametersOf(std::size_t i) const {
    std::vector<double> parameters;
    if (options_.spacing == SplitRingOptions::Spacing::Even) {
      for (int k = 1; k <= divisions_; ++k)
        parameters.push_back(static_cast<double>(k) / (divisions_ + 1));
      return parameters;
    }
    double t = options_.weight;
    if (options_.spacing == SplitRingOptions::Spacing::Absolute) {
      const mesh::EdgeVertices ends = mesh_.edge(edges_[i]);
      const double length = math::distance(mesh_.point(ends.a), mesh_.point(ends.b));
      t = length > 0 ? t / length : 0.5;
    }
    t = std::clamp(t, kLeastFraction, 1 - kLeastFraction);
    parameters.push_back(isTurned_[i] != 0 ? 1 - t : t);
    return parameters;
  }

  void splitFace(const Crossing& crossing) {
    const std::vector<CutCorner> loop = cutter_.loop(crossing.face);
    std::vector<std::size_t> firsts;  // the first new corner of each divided edge
    for (std::size_t i = 0; i < crossing.corners.size(); ++i)
      firsts.push_back(at(crossing.corners[i]) + 1 + i * at(divisions_));
    if (firsts.size() == 1 && options_.fixQuads && mesh_.faceSize(crossing.face) == 3)
      return leadToCorner(crossing.face, loop, firsts[0]);
    if (firsts.size() == 1 || walksAnEdgeTwice(crossing))
      return cutter_.setFace(crossing.face, loop);
    // Two edges are joined division by division; of more, each gives half of them to either side.
    const bool isPair = firsts.size() == 2;
    const std::size_t d = at(divisions_), depth = isPair ? d : (d + 1) / 2;
    std::vector<std::uint8_t> isCutOff(loop.size(), 0);
    for (std::size_t k = 0; k < firsts.size() - (isPair ? 1 : 0); ++k)
      cutStrips(crossing.face, loop, firsts[k] + d - 1, firsts[(k + 1) % firsts.size()], depth,
                isCutOff);
    std::vector<CutCorner> middle;
    for (std::size_t i = 0; i < loop.size(); ++i)
      if (isCutOff[i] == 0) middle.push_back(loop[i]);
    cutter_.setFace(crossing.face, middle);
  }

  // Cuts off what lies between two edges, strip by strip from the corner between them on.
  void cutStrips(FaceId face, const std::vector<CutCorner>& loop, std::size_t from, std::size_t to,
                 std::size_t depth, std::vector<std::uint8_t>& isCutOff) {
    for (std::size_t i = (from + 1) % loop.size(); i != to; i = (i + 1) % loop.size())
      isCutOff[i] = 1;
    cutter_.addPiece(face, partOfLoop(loop, from, to));
    for (std::size_t level = 1; level < depth; ++level) {
      const std::size_t a = from - level, b = to + level;
      isCutOff[a + 1] = isCutOff[b - 1] = 1;
      cutter_.addPiece(face, {loop[a], loop[a + 1], loop[b - 1], loop[b]});
    }
  }

  // A triangle's divided edge is joined with the corner across from it.
  void leadToCorner(FaceId face, const std::vector<CutCorner>& loop, std::size_t first) {
    const std::size_t n = loop.size(), d = at(divisions_), tip = (first + d + 1) % n;
    cutter_.setFace(face,
                    std::vector<CutCorner>{loop[tip], loop[(first + n - 1) % n], loop[first]});
    for (std::size_t k = 0; k < d; ++k)
      cutter_.addPiece(face, {loop[first + k], loop[(first + k + 1) % n], loop[tip]});
  }

  [[nodiscard]] bool walksAnEdgeTwice(const Crossing& crossing) const {
    std::vector<EdgeId> edges;
    for (const Index k : crossing.corners) edges.push_back(mesh_.faceEdges(crossing.face)[at(k)]);
    return sortedIds(edges).size() != edges.size();
  }

  static constexpr std::uint8_t kUnmatched = 2;
  Mesh mesh_;
  std::vector<EdgeId> edges_;
  const SplitRingOptions& options_;
  int divisions_;
  std::vector<Index> place_;  // an edge: where it is among the listed ones
  EdgeCutter cutter_;
  std::vector<Crossing> crossings_;
  std::vector<std::vector<Index>> facesOf_;  // a listed edge: its faces among the crossings
  std::vector<std::uint8_t> isTurned_;       // a listed edge: its second end counts as the first
  std::vector<VertexId> firsts_;             // a listed edge: the first of its new vertices
  std::vector<std::uint8_t> isWalked_;       // a crossing
};

}  // namespace

Result<SplitRingResult> splitRing(Mesh& mesh, std::span<const EdgeId> edges,
                                  const SplitRingOptions& options) {
  constexpr int kMostDivisions = 10000;
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (options.divisions < 1 || options.divisions > kMostDivisions)
    return fail(ErrorKind::BadArgument, "The number of divisions must be 1 to {}, not {}",
                kMostDivisions, options.divisions);
  if (!std::isfinite(options.weight) || !std::isfinite(options.smoothingAngle))
    return fail(ErrorKind::BadArgument, "Splitting a ring needs finite numbers");
  if (options.rootEdge != kNone)
    HOST_TRY(checkIds("edge", std::span(&options.rootEdge, 1), mesh.edgeCount()));
  return RingSplitter(mesh, sortedIds(edges), options).run(mesh);
}

}  // namespace host::ops
