#include "host/ops/topology/spin_edges.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"

namespace host::ops {

namespace {

/// The two faces of an edge and their outline, without the edge.
struct Pair {
  EdgeId edge = kNone;
  FaceId left = kNone, right = kNone;
  std::vector<CornerId> outline;  ///< from the edge's end in `left` on; then those of `right`
  std::size_t leftSize = 0;       ///< corners of `left` less one
};

/// Edges that can turn at the same time: no two share a face.
class Spinner {
 public:
  Spinner(const Mesh& mesh, int offset) : mesh_(mesh), offset_(offset) {
    isTaken_.assign(at(mesh.faceCount()), 0);
  }

  /// False when one of the edge's faces turns another edge in this round.
  bool take(EdgeId e) {
    const mesh::Adjacency& adjacency = mesh_.adjacency();
    const auto corners = adjacency.edgeCorners(e);
    if (corners.size() != 2 || adjacency.edgeFaces(e).size() != 2) return true;
    Pair pair;
    pair.edge = e;
    pair.left = adjacency.cornerFace(corners[0]);
    pair.right = adjacency.cornerFace(corners[1]);
    if (isTaken_[at(pair.left)] != 0 || isTaken_[at(pair.right)] != 0) return false;
    if (mesh_.cornerVertex(corners[0]) == mesh_.cornerVertex(corners[1])) return true;  // folded
    for (CornerId c = adjacency.nextCorner(corners[0]); c != corners[0];
         c = adjacency.nextCorner(c))
      pair.outline.push_back(c);
    pair.leftSize = pair.outline.size();
    for (CornerId c = adjacency.nextCorner(corners[1]); c != corners[1];
         c = adjacency.nextCorner(c))
      pair.outline.push_back(c);
    const std::size_t count = pair.outline.size();
    const auto turned = [&](std::size_t place) {
      const auto size = static_cast<std::ptrdiff_t>(count);
      return static_cast<std::size_t>(
          ((static_cast<std::ptrdiff_t>(place) + offset_) % size + size) % size);
    };
    const VertexId a = vertexAt(pair, turned(0)), b = vertexAt(pair, turned(pair.leftSize));
    if (a == b || isJoined(a, b)) return true;
    // Another edge of this round may come to lie between the same two: the next round sees it.
    if (!made_.insert(std::minmax(a, b)).second) return false;
    std::rotate(pair.outline.begin(), pair.outline.begin() + static_cast<std::ptrdiff_t>(turned(0)),
                pair.outline.end());
    isTaken_[at(pair.left)] = isTaken_[at(pair.right)] = 1;
    pairs_.push_back(std::move(pair));
    return true;
  }
  [[nodiscard]] Index count() const { return static_cast<Index>(pairs_.size()); }

  Mesh finish() {
    mesh::MeshRebuilder rebuilder(mesh_);
    rebuilder.keepAllVertices();
    std::map<FaceId, std::vector<CornerId>> loops;
    for (const Pair& pair : pairs_) {
      const auto middle = pair.outline.begin() + static_cast<std::ptrdiff_t>(pair.leftSize);
      std::vector<CornerId> left(pair.outline.begin(), middle + 1);
      std::vector<CornerId> right(middle, pair.outline.end());
      right.push_back(pair.outline.front());
      rebuilder.replaceEdge(pair.edge, mesh_.cornerVertex(*middle),
                            mesh_.cornerVertex(pair.outline.front()));
      loops.emplace(pair.left, std::move(left));
      loops.emplace(pair.right, std::move(right));
    }
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      pollCancel(f);
      const auto own = loops.find(f);
      if (own == loops.end()) {
        rebuilder.copyFace(f);
        continue;
      }
      rebuilder.beginFace(f);
      for (const CornerId c : own->second) rebuilder.addCorner(mesh_.cornerVertex(c), c);
      rebuilder.endFace();
    }
    return rebuilder.finish().mesh;
  }

 private:
  [[nodiscard]] VertexId vertexAt(const Pair& pair, std::size_t place) const {
    return mesh_.cornerVertex(pair.outline[place]);
  }
  [[nodiscard]] bool isJoined(VertexId a, VertexId b) const {
    for (const EdgeId e : mesh_.adjacency().vertexEdges(a))
      if (mesh_.edge(e).other(a) == b) return true;
    return false;
  }

  const Mesh& mesh_;
  int offset_;
  std::vector<std::uint8_t> isTaken_;
  std::vector<Pair> pairs_;
  std::set<std::pair<VertexId, VertexId>> made_;
};

}  // namespace

Result<SpinEdgesResult> spinEdges(Mesh& mesh, std::span<const EdgeId> edges, int offset) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  SpinEdgesResult result;
  std::vector<EdgeId> waiting(edges.begin(), edges.end());
  while (!waiting.empty() && offset != 0) {
    const Mesh before = mesh;
    Spinner spinner(before, offset);
    std::vector<EdgeId> later;
    for (const EdgeId e : waiting)
      if (!spinner.take(e)) later.push_back(e);
    if (spinner.count() == 0) break;
    result.spun += spinner.count();
    mesh = spinner.finish();
    waiting = std::move(later);
  }
  return result;
}

}  // namespace host::ops
