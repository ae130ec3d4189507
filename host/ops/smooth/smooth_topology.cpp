#include "host/ops/smooth/smooth_topology.h"

#include <array>
#include <unordered_map>

#include "host/base/cancel_poll.h"

namespace host::ops {
namespace {

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
    PerElement<EdgeId, CornerId> newest(mesh_.edgeCount(), kNone);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f)
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        CornerId& last = newest[mesh_.cornerEdge(c)];
        if (last >= mesh_.firstCorner(f))
          firstWalks_[c] = last;
        else
          last = c;
      }
  }

  EdgeId& innerEdge(CornerId corner) {
    if (firstWalks_.empty()) return innerEdges_[at(corner)];
    const auto first = firstWalks_.find(corner);
    return innerEdges_[at(first == firstWalks_.end() ? corner : first->second)];
  }

  [[nodiscard]] VertexId vertexOf(const SmoothCorner& corner) const {
    if (corner.kind == Kind::Corner) return mesh_.cornerVertex(corner.corner);
    return out_.edgeVertices[at(mesh_.cornerEdge(corner.corner))];
  }

  // Along an old edge: the corner that walks it is the one of the edge part, or the first of two
  // plain corners.
  void walk(const SmoothCorner& from, const SmoothCorner& to) {
    const SmoothCorner& walker = from.kind == Kind::Edge ? from : to.kind == Kind::Edge ? to : from;
    const EdgeId parent = mesh_.cornerEdge(walker.corner);
    const VertexId end = from.kind == Kind::Corner ? vertexOf(from) : vertexOf(to);
    EdgeId& slot = halves_[2 * at(parent) + (mesh_.edge(parent).a == end ? 0 : 1)];
    if (slot == kNone) {
      slot = addEdge(vertexOf(from), vertexOf(to), parent);
      if (out_.edgeVertices[at(parent)] == kNone)
        halves_[2 * at(parent)] = halves_[2 * at(parent) + 1] = slot;
    }
    out_.topology.cornerEdges.push_back(slot);
  }

  void closeFace() {
    for (std::size_t i = 0; i < loop_.size(); ++i) {
      out_.topology.cornerVertices.push_back(vertexOf(loop_[i]));
      walk(loop_[i], loop_[i + 1 < loop_.size() ? i + 1 : 0]);
    }
    out_.topology.faceOffsets.push_back(static_cast<CornerId>(out_.topology.cornerVertices.size()));
    out_.faceParents.push_back(loop_.front().face);
    loop_.clear();
  }

  // A face that stays keeps its loop, with the middles of divided edges.
  void keepFace(FaceId f) {
    for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
      loop_.push_back({Kind::Corner, f, c});
      if (out_.isEdgeDivided[at(mesh_.cornerEdge(c))] != 0) loop_.push_back({Kind::Edge, f, c});
    }
    closeFace();
  }

  EdgeId named(EdgeId& slot, VertexId from, VertexId to, EdgeId parent) {
    if (slot == kNone) slot = addEdge(from, to, parent);
    return slot;
  }

  // The quad at corner k, in the same order as forEachSmoothCorner() names its corners.
  void addQuad(FaceId f, Index k) {
    const CornerId first = mesh_.firstCorner(f);
    const Index n = mesh_.faceSize(f);
    const CornerId corner = first + k, before = first + (k > 0 ? k : n) - 1;
    const EdgeId out = mesh_.cornerEdge(corner), in = mesh_.cornerEdge(before);
    const VertexId v = mesh_.cornerVertex(corner);
    const std::array<VertexId, 4> vertices{v, out_.edgeVertices[at(out)], out_.faceVertices[at(f)],
                                           out_.edgeVertices[at(in)]};
    // An edge from a vertex to itself cannot be, so the end tells which half it is.
    const std::array<EdgeId*, 4> slots{&halves_[2 * at(out) + (mesh_.edge(out).a == v ? 0 : 1)],
                                       &innerEdge(corner), &innerEdge(before),
                                       &halves_[2 * at(in) + (mesh_.edge(in).a == v ? 0 : 1)]};
    const std::array<EdgeId, 4> parents{out, kNone, kNone, in};
    const std::size_t turn = n == 4 ? at((4 - k) % 4) : 0;
    for (std::size_t i = turn; i < turn + 4; ++i) {
      const std::size_t here = i % 4, next = (i + 1) % 4;
      out_.topology.cornerVertices.push_back(vertices[here]);
      out_.topology.cornerEdges.push_back(
          named(*slots[here], vertices[here], vertices[next], parents[here]));
    }
    out_.topology.faceOffsets.push_back(static_cast<CornerId>(out_.topology.cornerVertices.size()));
    out_.faceParents.push_back(f);
  }

  void buildFaces() {
    for (FaceId f = 0; f < mesh_.faceCount() && !isCancelledAt(at(f)); ++f) {
      if (isDivided_[at(f)] == 0)
        keepFace(f);
      else
        for (Index k = 0; k < mesh_.faceSize(f); ++k) addQuad(f, k);
    }
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
