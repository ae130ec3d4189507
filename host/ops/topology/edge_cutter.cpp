#include "host/ops/topology/edge_cutter.h"

#include <array>
#include <numeric>

#include "host/base/assert.h"
#include "host/base/cancel_poll.h"

namespace host::ops {
std::vector<CutCorner> partOfLoop(const std::vector<CutCorner>& loop, std::size_t from,
                                  std::size_t to) {
  std::vector<CutCorner> corners;
  for (std::size_t i = from;; i = i + 1 < loop.size() ? i + 1 : 0) {
    corners.push_back(loop[i]);
    if (i == to) return corners;
  }
}

EdgeCutter::EdgeCutter(const Mesh& mesh)
    : mesh_(mesh), rebuilder_(mesh_), cutEdgeOf_(at(mesh.edgeCount()), kNone) {
  rebuilder_.keepAllVertices();
}

VertexId EdgeCutter::cutEvenly(EdgeId edge, int pieces) {
  std::vector<double> parameters;
  for (int i = 1; i < pieces; ++i) parameters.push_back(static_cast<double>(i) / pieces);
  return cutAt(edge, parameters);
}

VertexId EdgeCutter::cutAt(EdgeId edge, std::span<const double> parameters) {
  HOST_ASSERT(!isCut(edge), "give all cuts of an edge at once");
  if (parameters.empty()) return kNone;
  pollCancel(edge);
  const mesh::EdgeVertices ends = mesh_.edge(edge);
  const math::Vec3 a = mesh_.point(ends.a), b = mesh_.point(ends.b);
  const std::size_t first = cuts_.size();
  cutEdgeOf_[at(edge)] = static_cast<Index>(cutEdges_.size());
  cutEdges_.push_back({first, static_cast<Index>(parameters.size())});
  VertexId before = ends.a;
  for (const double t : parameters) {
    const VertexId v = rebuilder_.addVertex((a + (b - a) * t).toFloat());
    if (before == ends.a)
      rebuilder_.replaceEdge(edge, before, v);
    else
      rebuilder_.inheritEdge(before, v, edge);
    cuts_.push_back({t, v});
    before = v;
  }
  rebuilder_.inheritEdge(before, ends.b, edge);
  return cuts_[first].vertex;
}

VertexId EdgeCutter::cutVertex(EdgeId edge) const {
  return cuts_[cutEdges_[at(cutEdgeOf_[at(edge)])].first].vertex;
}

std::vector<CutCorner> EdgeCutter::loop(FaceId face) const {
  pollCancel(face);
  std::vector<CutCorner> corners;
  const CornerId first = mesh_.firstCorner(face), end = mesh_.firstCorner(face + 1);
  for (CornerId c = first; c < end; ++c) {
    const VertexId v = mesh_.cornerVertex(c);
    const EdgeId e = mesh_.cornerEdge(c);
    const CornerId next = c + 1 < end ? c + 1 : first;
    corners.push_back({v, c, kNone, 0});
    if (!isCut(e)) continue;
    const bool isForward = mesh_.edge(e).a == v;
    const CutEdge& cutEdge = cutEdges_[at(cutEdgeOf_[at(e)])];
    for (Index i = 0; i < cutEdge.count; ++i) {
      const Cut& cut = cuts_[cutEdge.first + at(isForward ? i : cutEdge.count - 1 - i)];
      corners.push_back({cut.vertex, c, next, isForward ? cut.t : 1 - cut.t});
    }
  }
  return corners;
}

void EdgeCutter::addCorner(FaceId face, const CutCorner& corner) {
  if (corner.source == kNone) {  // a centre
    std::vector<mesh::CornerWeight> mean;
    const double weight = 1.0 / mesh_.faceSize(face);
    for (CornerId c = mesh_.firstCorner(face); c < mesh_.firstCorner(face + 1); ++c)
      mean.push_back({c, weight});
    rebuilder_.addCorner(corner.vertex, mean);
  } else if (corner.next == kNone) {
    rebuilder_.addCorner(corner.vertex, corner.source);
  } else {
    const std::array<mesh::CornerWeight, 2> blend{
        {{corner.source, 1 - corner.t}, {corner.next, corner.t}}};
    rebuilder_.addCorner(corner.vertex, blend);
  }
}

void EdgeCutter::setFace(FaceId face, std::span<const CutCorner> loop) {
  rebuilder_.beginFace(face);
  for (const CutCorner& corner : loop) addCorner(face, corner);
  rebuilder_.endFace();
}

bool EdgeCutter::hasCut(FaceId face) const {
  for (const EdgeId e : mesh_.faceEdges(face))
    if (isCut(e)) return true;
  return false;
}

void EdgeCutter::keepFace(FaceId face) {
  if (hasCut(face))
    setFace(face, loop(face));
  else
    rebuilder_.copyFace(face);
}

void EdgeCutter::addPiece(FaceId face, std::vector<CutCorner> loop) {
  pieces_.push_back({face, std::move(loop)});
}

CutCorner EdgeCutter::addCentre(FaceId, const math::Vec3f& point) {
  return {rebuilder_.addVertex(point), kNone, kNone, 0};
}

EdgeCutter::Outcome EdgeCutter::finish() {
  Outcome outcome;
  FaceId next = mesh_.faceCount();
  for (const Piece& piece : pieces_) {
    setFace(piece.face, piece.loop);
    outcome.pieces.push_back(next++);
  }
  mesh::Rebuilt rebuilt = rebuilder_.finish();
  outcome.mesh = std::move(rebuilt.mesh);
  rebuilt.vertexMap.resize(at(mesh_.vertexCount()));
  outcome.maps.vertices = std::move(rebuilt.vertexMap);
  outcome.maps.edges = std::move(rebuilt.edgeMap);
  outcome.maps.faces.resize(at(mesh_.faceCount()));
  std::iota(outcome.maps.faces.begin(), outcome.maps.faces.end(), 0);
  return outcome;
}

}  // namespace host::ops
