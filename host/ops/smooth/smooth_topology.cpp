#include "host/ops/smooth/smooth_topology.h"

#include <unordered_map>

namespace host::ops {
namespace {

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

using Kind = SmoothCorner::Kind;

class TopologyDivider {
 public:
  TopologyDivider(const mesh::Mesh& mesh, std::span<const std::uint8_t> isDivided, Index rootEdges)
      : mesh_(mesh), isDivided_(isDivided), oldRootEdges_(rootEdges) {}

  SmoothTopology run() {
    nameVertices();
    reserveResult();
    nameRootEdges();
    innerEdges_.assign(at(mesh_.cornerCount()), kNone);
    findRepeatedWalks();
    buildFaces();
    return std::move(out_);
  }

 private:
  void nameVertices() {
    out_.isEdgeDivided.assign(at(mesh_.edgeCount()), 0);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f)
      if (isDivided_[at(f)] != 0)
        for (const EdgeId e : mesh_.faceEdges(f)) out_.isEdgeDivided[at(e)] = 1;
    out_.edgeVertices.reserve(out_.isEdgeDivided.size());
    out_.faceVertices.reserve(isDivided_.size());
    Index next = mesh_.vertexCount();
    for (const std::uint8_t isCut : out_.isEdgeDivided)
      out_.edgeVertices.push_back(isCut != 0 ? next++ : kNone);
    for (const std::uint8_t isCut : isDivided_)
      out_.faceVertices.push_back(isCut != 0 ? next++ : kNone);
    out_.vertexCount = next;
  }

  void reserveResult() {
    std::size_t corners = 0, faces = 0, inner = 0;
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      const auto n = at(mesh_.faceSize(f));
      const bool isCut = isDivided_[at(f)] != 0;
      corners += isCut ? 4 * n : 2 * n;
      faces += isCut ? n : 1;
      inner += isCut ? n : 0;
    }
    const std::size_t edges = 2 * at(mesh_.edgeCount()) + inner;
    out_.topology.faceOffsets.reserve(faces + 1);
    out_.faceParents.reserve(faces);
    out_.topology.cornerVertices.reserve(corners);
    out_.topology.cornerEdges.reserve(corners);
    out_.topology.edges.reserve(edges);
    out_.edgeParents.reserve(edges);
  }

  EdgeId addEdge(VertexId a, VertexId b, EdgeId parent) {
    out_.topology.edges.push_back({a, b});
    out_.edgeParents.push_back(parent);
    return static_cast<EdgeId>(out_.topology.edges.size()) - 1;
  }

  // Halves of root edges stand in place; halves of others get their numbers where a face first
  // walks them.
  void nameRootEdges() {
    halves_.assign(2 * at(mesh_.edgeCount()), kNone);
    for (EdgeId e = 0; e < oldRootEdges_; ++e) {
      const auto [a, b] = mesh_.edge(e);
      const VertexId middle = out_.edgeVertices[at(e)];
      if (middle == kNone) {
        halves_[2 * at(e)] = halves_[2 * at(e) + 1] = addEdge(a, b, e);
      } else {
        halves_[2 * at(e)] = addEdge(a, middle, e);
        halves_[2 * at(e) + 1] = addEdge(middle, b, e);
      }
    }
    out_.rootEdges = static_cast<Index>(out_.topology.edges.size());
  }

  // A face that walks an edge twice has one edge from its middle to the centre.
  void findRepeatedWalks() {
    std::vector<CornerId> newest(at(mesh_.edgeCount()), kNone);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f)
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        CornerId& last = newest[at(mesh_.cornerEdge(c))];
        if (last >= mesh_.firstCorner(f))
          firstWalks_[c] = last;
        else
          last = c;
      }
  }

  EdgeId& innerEdge(CornerId corner) {
    const auto first = firstWalks_.find(corner);
    return innerEdges_[at(first == firstWalks_.end() ? corner : first->second)];
  }

  [[nodiscard]] VertexId vertexOf(const SmoothCorner& corner) const {
    if (corner.kind == Kind::Corner) return mesh_.cornerVertex(corner.corner);
    if (corner.kind == Kind::Edge) return out_.edgeVertices[at(mesh_.cornerEdge(corner.corner))];
    return out_.faceVertices[at(corner.face)];
  }

  // The slot that holds the id of the edge between two neighbouring corners of a new face.
  EdgeId& edgeSlot(const SmoothCorner& from, const SmoothCorner& to, EdgeId& parent) {
    parent = kNone;
    if (from.kind == Kind::Face) return innerEdge(to.corner);
    if (to.kind == Kind::Face) return innerEdge(from.corner);
    // Along an old edge: the corner that walks it is the one of the edge part, or the first of two
    // plain corners.
    const SmoothCorner& walker = from.kind == Kind::Edge ? from : to.kind == Kind::Edge ? to : from;
    parent = mesh_.cornerEdge(walker.corner);
    const VertexId end = from.kind == Kind::Corner ? vertexOf(from) : vertexOf(to);
    return halves_[2 * at(parent) + (mesh_.edge(parent).a == end ? 0 : 1)];
  }

  void walk(const SmoothCorner& from, const SmoothCorner& to) {
    EdgeId parent = kNone;
    EdgeId& slot = edgeSlot(from, to, parent);
    if (slot == kNone) {
      slot = addEdge(vertexOf(from), vertexOf(to), parent);
      if (parent != kNone && out_.edgeVertices[at(parent)] == kNone)
        halves_[2 * at(parent)] = halves_[2 * at(parent) + 1] = slot;
    }
    out_.topology.cornerEdges.push_back(slot);
  }

  void closeFace() {
    if (loop_.empty()) return;
    for (std::size_t i = 0; i < loop_.size(); ++i) {
      out_.topology.cornerVertices.push_back(vertexOf(loop_[i]));
      walk(loop_[i], loop_[i + 1 < loop_.size() ? i + 1 : 0]);
    }
    out_.topology.faceOffsets.push_back(static_cast<CornerId>(out_.topology.cornerVertices.size()));
    out_.faceParents.push_back(loop_.front().face);
    loop_.clear();
  }

  void buildFaces() {
    forEachSmoothCorner(mesh_, isDivided_, out_.isEdgeDivided,
                        [&](const SmoothCorner& corner, bool isStart) {
                          if (isStart) closeFace();
                          loop_.push_back(corner);
                        });
    closeFace();
  }

  const mesh::Mesh& mesh_;
  std::span<const std::uint8_t> isDivided_;
  Index oldRootEdges_;
  std::vector<EdgeId> halves_;  // two an old edge: at its first and at its second vertex
  std::vector<EdgeId>
      innerEdges_;  // a corner: from the middle of the edge it walks to the face's centre
  std::unordered_map<CornerId, CornerId>
      firstWalks_;  // of corners whose face walked their edge before
  std::vector<SmoothCorner> loop_;
  SmoothTopology out_;
};

}  // namespace

SmoothTopology divideTopology(const mesh::Mesh& mesh, std::span<const std::uint8_t> isDivided,
                              Index rootEdges) {
  return TopologyDivider(mesh, isDivided, rootEdges).run();
}

}  // namespace host::ops
