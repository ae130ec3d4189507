#include "host/ops/topology/connect_components.h"

#include <algorithm>

#include "host/mesh/adjacency.h"
#include "host/ops/topology/edge_cutter.h"

namespace host::ops {
namespace {

class Connector {
 public:
  Connector(const Mesh& mesh, std::span<const VertexId> vertices)
      : mesh_(mesh), isListed_(flagsOf(vertices, mesh.vertexCount())), cutter_(mesh) {}

  VertexId cut(EdgeId e) { return cutter_.cutEvenly(e, 2); }

  void connectFaces() {
    cutter_.buildFaces([this](FaceId f) { return mayHavePoints(f); },
                       [this](FaceId f) { connectFace(f); });
  }
  EdgeCutter::Outcome finish() { return cutter_.finish(); }

 private:
  void connectFace(FaceId f) {
    const std::vector<CutCorner> loop = cutter_.loop(f);
    std::vector<std::size_t> points;
    for (std::size_t i = 0; i < loop.size(); ++i)
      if (loop[i].vertex >= mesh_.vertexCount() || isListed_[at(loop[i].vertex)] != 0)
        points.push_back(i);
    if (points.size() < 2)
      cutter_.setFace(f, loop);
    else if (points.size() == 2)
      cutOnce(f, loop, points[0], points[1]);
    else
      cutAround(f, loop, points);
  }

  [[nodiscard]] bool mayHavePoints(FaceId f) const {
    const auto loop = mesh_.faceVertices(f);
    const auto isListed = [this](VertexId v) { return isListed_[at(v)] != 0; };
    return cutter_.hasCut(f) || std::any_of(loop.begin(), loop.end(), isListed);
  }

  // Whether an edge may be drawn between two places of a loop.
  [[nodiscard]] bool canJoin(const std::vector<CutCorner>& loop, std::size_t i,
                             std::size_t j) const {
    const VertexId a = loop[i].vertex, b = loop[j].vertex;
    const std::size_t apart = (j + loop.size() - i) % loop.size();
    if (a == b || apart < 2 || apart > loop.size() - 2) return false;
    const bool areOld = a < mesh_.vertexCount() && b < mesh_.vertexCount();
    return !areOld || mesh_.adjacency().findEdge(a, b) == kNone;
  }

  void cutOnce(FaceId f, const std::vector<CutCorner>& loop, std::size_t i, std::size_t j) {
    if (!canJoin(loop, i, j)) return cutter_.setFace(f, loop);
    // The piece with the loop's first corner keeps the face's id.
    std::vector<CutCorner> first(loop.begin(), loop.begin() + static_cast<std::ptrdiff_t>(i) + 1);
    first.insert(first.end(), loop.begin() + static_cast<std::ptrdiff_t>(j), loop.end());
    cutter_.setFace(f, first);
    cutter_.addPiece(f, partOfLoop(loop, i, j));
  }

  // Cuts off what lies between neighbouring points; the middle keeps the face's id.
  void cutAround(FaceId f, const std::vector<CutCorner>& loop,
                 const std::vector<std::size_t>& points) {
    std::vector<CutCorner> middle;
    for (std::size_t k = 0; k < points.size(); ++k) {
      const std::size_t i = points[k], j = points[(k + 1) % points.size()];
      if (canJoin(loop, i, j)) {
        middle.push_back(loop[i]);
        cutter_.addPiece(f, partOfLoop(loop, i, j));
      } else {
        const std::vector<CutCorner> kept = partOfLoop(loop, i, j);
        middle.insert(middle.end(), kept.begin(), kept.end() - 1);
      }
    }
    cutter_.setFace(f, middle);
  }

  const Mesh& mesh_;
  std::vector<std::uint8_t> isListed_;
  EdgeCutter cutter_;
};

}  // namespace

Result<ConnectResult> connectComponents(Mesh& mesh, std::span<const VertexId> vertices,
                                        std::span<const EdgeId> edges) {
  HOST_TRY(checkIds("vertex", vertices, mesh.vertexCount()));
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  ConnectResult result;
  Connector connector(mesh, vertices);
  for (const EdgeId e : sortedIds(edges)) result.vertices.push_back(connector.cut(e));
  connector.connectFaces();
  EdgeCutter::Outcome outcome = connector.finish();
  // A piece's last corner walks the edge that cut it off.
  for (const FaceId f : outcome.pieces) result.edges.push_back(outcome.mesh.faceEdges(f).back());
  result.edges = sortedIds(result.edges);
  mesh = std::move(outcome.mesh);
  return result;
}

}  // namespace host::ops
