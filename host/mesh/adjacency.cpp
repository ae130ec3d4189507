#include "host/mesh/adjacency.h"

#include <algorithm>
#include <thread>

namespace host::mesh {

namespace {
constexpr std::size_t kParallelCorners =
    200'000;  // below, starting a thread costs more than it saves

}  // namespace

// Lists are filled in three passes: counts land two places up, are summed, and filling advances the
// place between, so that afterwards offsets[i] is the start of list i without a copy.
template <class Item>
void Adjacency::Lists<Item>::startCounting(std::size_t lists) {
  offsets.assign(lists + 2, 0);
}

template <class Item>
void Adjacency::Lists<Item>::finishCounting() {
  for (std::size_t i = 1; i < offsets.size(); ++i) offsets[i] += offsets[i - 1];
  items.resize(at(offsets.back()));
}

template <class Item>
void Adjacency::Lists<Item>::finishFilling() {
  offsets.pop_back();
}

Adjacency::Lists<FaceId> Adjacency::facesOf(const Lists<CornerId>& corners,
                                            const PerElement<CornerId, FaceId>& cornerFaces) {
  Lists<FaceId> out;
  out.offsets.resize(corners.offsets.size());
  out.items.resize(corners.items.size());
  std::size_t n = 0;
  out.offsets[0] = 0;
  for (std::size_t i = 0; i + 1 < corners.offsets.size(); ++i) {
    // Corners ascend, so corners of one face are neighbours in the list.
    FaceId last = kNone;
    for (CornerId c : corners.of(static_cast<Index>(i))) {
      const FaceId f = cornerFaces[at(c)];
      if (f != last) out.items[n++] = f;
      last = f;
    }
    out.offsets[i + 1] = static_cast<Index>(n);
  }
  out.items.resize(n);
  return out;
}

Adjacency::Adjacency(const Topology& topology, Index vertexCount)
    : topology_(&topology), vertexCount_(vertexCount) {
  const std::size_t corners = topology.cornerVertices.size();
  cornerFaces_.resize(corners);
  for (std::size_t f = 0; f + 1 < topology.faceOffsets.size(); ++f)
    std::fill(cornerFaces_.begin() + topology.faceOffsets[f],
              cornerFaces_.begin() + topology.faceOffsets[f + 1], static_cast<FaceId>(f));

  const auto listCorners = [corners](Lists<CornerId>& lists, const auto& owners,
                                     std::size_t count) {
    lists.startCounting(count);
    for (const auto owner : owners) ++lists.offsets[at(owner) + 2];
    lists.finishCounting();
    for (std::size_t c = 0; c < corners; ++c)
      lists.items[at(lists.offsets[at(owners[c]) + 1]++)] = static_cast<CornerId>(c);
    lists.finishFilling();
  };
  const auto listAroundVertices = [&] {
    listCorners(vertexCorners_, topology.cornerVertices, at(vertexCount));
    vertexFaces_ = facesOf(vertexCorners_, cornerFaces_);
  };
  const auto listAroundEdges = [&] {
    listCorners(edgeCorners_, topology.cornerEdges, topology.edges.size());
    edgeFaces_ = facesOf(edgeCorners_, cornerFaces_);
    vertexEdges_.startCounting(at(vertexCount));
    for (const EdgeVertices& e : topology.edges) {
      ++vertexEdges_.offsets[at(e.a) + 2];
      ++vertexEdges_.offsets[at(e.b) + 2];
    }
    vertexEdges_.finishCounting();
    for (std::size_t e = 0; e < topology.edges.size(); ++e)
      for (VertexId v : {topology.edges[e].a, topology.edges[e].b})
        vertexEdges_.items[at(vertexEdges_.offsets[at(v) + 1]++)] = static_cast<EdgeId>(e);
    vertexEdges_.finishFilling();
  };
  if (corners < kParallelCorners) {
    listAroundVertices();
    listAroundEdges();
  } else {
    std::thread other(listAroundEdges);
    listAroundVertices();
    other.join();
  }
}

bool Adjacency::isBorderVertex(VertexId v) const {
  return std::ranges::any_of(vertexEdges(v), [this](EdgeId e) { return isBorderEdge(e); });
}

bool Adjacency::isManifoldEdge(EdgeId e) const {
  const auto walks = edgeCorners(e);
  if (walks.size() < 2) return true;
  return walks.size() == 2 &&
         topology_->cornerVertices[walks[0]] != topology_->cornerVertices[walks[1]];
}

bool Adjacency::isManifoldVertex(VertexId v) const {
  const auto corners = vertexCorners(v);
  const auto edges = vertexEdges(v);
  if (corners.empty()) return edges.empty();
  if (!std::ranges::all_of(edges, [this](EdgeId e) { return isManifoldEdge(e); })) return false;
  // One fan: rotating one way and then the other from any corner meets them all.
  std::size_t met = 1;
  for (CornerId c = corners[0];;) {
    const CornerId t = twin(c);
    if (t == kNone) break;
    c = nextCorner(t);
    if (c == corners[0]) return met == corners.size();
    ++met;
  }
  for (CornerId c = corners[0];; ++met) {
    c = twin(previousCorner(c));
    if (c == kNone) return met == corners.size();
  }
}

EdgeId Adjacency::findEdge(VertexId a, VertexId b) const {
  if (a == b) return kNone;
  if (vertexEdges(a).size() > vertexEdges(b).size()) std::swap(a, b);
  for (EdgeId e : vertexEdges(a))
    if (topology_->edges[at(e)].has(b)) return e;
  return kNone;
}

CornerId Adjacency::findCorner(FaceId f, VertexId v) const {
  for (CornerId c = topology_->faceOffsets[f]; c < topology_->faceOffsets[at(f) + 1]; ++c)
    if (topology_->cornerVertices[c] == v) return c;
  return kNone;
}

std::size_t Adjacency::bytes() const {
  const auto indicesOf = [](const auto&... lists) {
    return (... + (lists.offsets.size() + lists.items.size()));
  };
  return sizeof(Index) *
         (cornerFaces_.size() +
          indicesOf(vertexEdges_, vertexFaces_, vertexCorners_, edgeFaces_, edgeCorners_));
}

// --- TopologyBlock
// -----------------------------------------------------------------------------------------

struct TopologyBlock::Entry {
  Adjacency adjacency;
  const Entry* older;
};

TopologyBlock::TopologyBlock() = default;
TopologyBlock::TopologyBlock(Topology topologyIn) : topology(std::move(topologyIn)) {}

TopologyBlock::~TopologyBlock() {
  for (const Entry* entry = newest_.load(); entry;) {
    const Entry* older = entry->older;
    delete entry;
    entry = older;
  }
}

const Adjacency& TopologyBlock::adjacency(Index vertexCount) const {
  const auto find = [this, vertexCount]() -> const Adjacency* {
    for (const Entry* e = newest_.load(std::memory_order_acquire); e; e = e->older)
      if (e->adjacency.vertexCount() == vertexCount) return &e->adjacency;
    return nullptr;
  };
  if (const Adjacency* found = find()) return *found;
  const std::lock_guard lock(building_);
  if (const Adjacency* found = find()) return *found;
  auto entry = std::make_unique<Entry>(Entry{Adjacency(topology, vertexCount), newest_.load()});
  newest_.store(entry.get(), std::memory_order_release);
  return entry.release()->adjacency;
}

const std::shared_ptr<const TopologyBlock>& TopologyBlock::empty() {
  static const auto block = std::make_shared<const TopologyBlock>();
  return block;
}

}  // namespace host::mesh
