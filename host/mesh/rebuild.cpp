#include "host/mesh/rebuild.h"

#include <algorithm>
#include <numeric>
#include <optional>

#include "host/base/assert.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/edge_table.h"

namespace host::mesh {

namespace {
std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}
}  // namespace

/// Finds edges under provisional ids: a source edge under its own, new edges behind those of the
/// source. The table is made only when a corner's own source does not tell its edge.
class MeshRebuilder::EdgeFinder {
 public:
  explicit EdgeFinder(const MeshRebuilder& rebuilder)
      : rebuilder_(rebuilder), source_(rebuilder.source_.topology()) {}

  /// The edge of a corner from its own and the next corner's source corners, -1 when they don't
  /// tell.
  [[nodiscard]] EdgeId fromSources(std::size_t corner, std::size_t next) const {
    const VertexId a = keptSource(rebuilder_.cornerVertices_[corner]);
    const VertexId b = keptSource(rebuilder_.cornerVertices_[next]);
    if (a == kNone || b == kNone) return kNone;
    if (isMergeTarget(rebuilder_.cornerVertices_[corner]) ||
        isMergeTarget(rebuilder_.cornerVertices_[next]))
      return kNone;
    for (const std::size_t c : {corner, next}) {
      const CornerId s = rebuilder_.corners_.single(c);
      if (s == kNone) continue;
      const EdgeId e = source_.cornerEdges[at(s)];
      const EdgeVertices ends = source_.edges[at(e)];
      if ((ends.a == a && ends.b == b) || (ends.a == b && ends.b == a)) return e;
    }
    return kNone;
  }

  EdgeId findOrAdd(VertexId a, VertexId b) {
    if (const EdgeId e = plainSourceEdge(a, b); e != kNone) return e;
    makeTable();
    return toProvisional(table_->findOrAdd(a, b));
  }
  EdgeId find(VertexId a, VertexId b) {
    if (const EdgeId e = plainSourceEdge(a, b); e != kNone) return e;
    makeTable();
    const EdgeId e = table_->find(a, b);
    return e == kNone ? kNone : toProvisional(e);
  }
  [[nodiscard]] Index provisionalCount() const {
    return static_cast<Index>(source_.edges.size() + edges_.size() - tableSources_.size());
  }
  /// The ends of a provisional edge in new vertex ids.
  [[nodiscard]] EdgeVertices ends(EdgeId provisional) const {
    const auto sourceEdges = static_cast<Index>(source_.edges.size());
    if (provisional >= sourceEdges)
      return edges_[tableSources_.size() + at(provisional - sourceEdges)];
    return kept(provisional);
  }

 private:
  [[nodiscard]] VertexId keptSource(VertexId vertex) const {
    const VertexId s = rebuilder_.vertexSources_[at(vertex)];
    return s != kNone && rebuilder_.keptAs_[at(s)] == vertex ? s : kNone;
  }
  [[nodiscard]] bool isMergeTarget(VertexId vertex) const {
    return at(vertex) < rebuilder_.isMergeTarget_.size() &&
           rebuilder_.isMergeTarget_[at(vertex)] != 0;
  }
  [[nodiscard]] EdgeVertices kept(EdgeId e) const {
    const auto replaced = rebuilder_.replacedEdges_.find(e);
    if (replaced != rebuilder_.replacedEdges_.end()) return replaced->second;
    const EdgeVertices ends = source_.edges[at(e)];
    return {rebuilder_.keptAs_[at(ends.a)], rebuilder_.keptAs_[at(ends.b)]};
  }
  [[nodiscard]] EdgeId toProvisional(EdgeId inTable) const {
    return at(inTable) < tableSources_.size()
               ? tableSources_[at(inTable)]
               : inTable + static_cast<EdgeId>(source_.edges.size() - tableSources_.size());
  }
  /// The source edge between two vertices that each stand for one source vertex alone.
  [[nodiscard]] EdgeId plainSourceEdge(VertexId a, VertexId b) const {
    const VertexId from = keptSource(a), to = keptSource(b);
    if (from == kNone || to == kNone || isMergeTarget(a) || isMergeTarget(b)) return kNone;
    const EdgeId e = rebuilder_.source_.adjacency().findEdge(from, to);
    return e != kNone && rebuilder_.replacedEdges_.contains(e) ? kNone : e;
  }
  /// The table holds what the source's own adjacency does not tell: edges at merged vertices,
  /// replaced ones, and new ones. So its cost is that of what changes.
  void makeTable() {
    if (table_) return;
    table_.emplace(edges_, rebuilder_.vertexCount());
    if (rebuilder_.isMergeTarget_.empty()) {
      std::vector<EdgeId> replaced;
      for (const auto& entry : rebuilder_.replacedEdges_) replaced.push_back(entry.first);
      std::ranges::sort(replaced);
      for (const EdgeId e : replaced) addSourceEdge(e);
      return;
    }
    for (std::size_t e = 0; e < source_.edges.size(); ++e) {
      const EdgeVertices ends = kept(static_cast<EdgeId>(e));
      if (ends.a == kNone || ends.b == kNone) continue;
      if (isMergeTarget(ends.a) || isMergeTarget(ends.b) ||
          rebuilder_.replacedEdges_.contains(static_cast<EdgeId>(e)))
        addSourceEdge(static_cast<EdgeId>(e));
    }
  }
  void addSourceEdge(EdgeId e) {
    const EdgeVertices ends = kept(e);
    if (ends.a == kNone || ends.b == kNone || ends.a == ends.b) return;
    if (table_->find(ends.a, ends.b) != kNone) return;
    table_->add(ends.a, ends.b);
    tableSources_.push_back(e);
  }

  const MeshRebuilder& rebuilder_;
  const Topology& source_;
  std::vector<EdgeVertices> edges_;   // source edges that moved, then new ones
  std::vector<EdgeId> tableSources_;  // the source edge of each of the former
  std::optional<EdgeTable> table_;
};

MeshRebuilder::MeshRebuilder(const Mesh& source)
    : source_(source), keptAs_(at(source.vertexCount()), kNone) {}

void MeshRebuilder::reserve(Index vertices, Index faces, Index corners) {
  points_.reserve(at(vertices));
  vertexSources_.reserve(at(vertices));
  creaseSources_.reserve(at(vertices));
  faceSources_.reserve(at(faces));
  faceOffsets_.reserve(at(faces) + 1);
  cornerVertices_.reserve(at(corners));
  corners_.reserve(at(corners));
}

void MeshRebuilder::keepAllVertices() {
  HOST_ASSERT(points_.empty(), "call keepAllVertices before adding any vertex");
  points_.assign(source_.points().begin(), source_.points().end());
  vertexSources_.resize(points_.size());
  std::iota(vertexSources_.begin(), vertexSources_.end(), 0);
  creaseSources_ = vertexSources_;
  keptAs_ = vertexSources_;
}

VertexId MeshRebuilder::keepVertex(VertexId source) {
  const VertexId v = addVertex(source_.points()[at(source)], source);
  vertexSources_.back() = source;
  if (keptAs_[at(source)] == kNone) keptAs_[at(source)] = v;
  return v;
}

void MeshRebuilder::mergeVertex(VertexId source, VertexId into) {
  isMergeTarget_.resize(points_.size(), 0);
  isMergeTarget_[at(into)] = 1;
  keptAs_[at(source)] = into;
}

void MeshRebuilder::replaceEdge(EdgeId source, VertexId a, VertexId b) {
  replacedEdges_[source] = {a, b};
}

VertexId MeshRebuilder::addVertex(const Vec3f& point, VertexId creaseSource) {
  points_.push_back(point);
  vertexSources_.push_back(kNone);
  creaseSources_.push_back(creaseSource);
  return vertexCount() - 1;
}

FaceId MeshRebuilder::endFace() {
  const auto end = static_cast<CornerId>(cornerVertices_.size());
  HOST_ASSERT(end - faceOffsets_.back() >= 3, "leave out faces of fewer than three corners");
  faceOffsets_.push_back(end);
  return static_cast<FaceId>(faceOffsets_.size()) - 2;
}

FaceId MeshRebuilder::copyFace(FaceId source) {
  beginFace(source);
  for (CornerId c = source_.firstCorner(source); c < source_.firstCorner(source + 1); ++c)
    addCorner(vertexFor(source_.cornerVertex(c)), c);
  return endFace();
}

void MeshRebuilder::copyFaces(FaceId first, FaceId end) {
  for (FaceId f = first; f < end; ++f) copyFace(f);
}

Rebuilt MeshRebuilder::finish(const RebuildOptions& options) {
  Rebuilt result;
  if (options.dropUnusedVertices) {
    result.vertexMap = dropVertices();
  } else {
    result.vertexMap.resize(points_.size());
    std::iota(result.vertexMap.begin(), result.vertexMap.end(), 0);
  }
  Mesh& mesh = result.mesh;
  mesh = source_;
  Topology topology;
  topology.faceOffsets = std::move(faceOffsets_);
  buildEdges(topology, result);
  topology.cornerVertices = std::move(cornerVertices_);
  for (int s = 0; s < source_.uvSetCount(); ++s)
    mesh.setUvSet(s, carryUvSet(source_.uvSet(s), topology, corners_));
  for (int s = 0; s < source_.colorSetCount(); ++s)
    mesh.setColorSet(s, carryColorSet(source_.colorSet(s), topology, corners_));
  mesh.setLockedNormals(carryLockedNormals(source_.lockedNormals(), corners_));
  mesh.setPoints(std::move(points_));
  mesh.setTopology(std::move(topology));
  carryVertexAndFaceData(mesh);
  return result;
}

std::vector<VertexId> MeshRebuilder::dropVertices() {
  std::vector<std::uint8_t> stays(points_.size(), 0), hadFace(keptAs_.size(), 0);
  for (VertexId v : cornerVertices_) stays[at(v)] = 1;
  for (VertexId v : source_.topology().cornerVertices) hadFace[at(v)] = 1;
  std::vector<VertexId> map(points_.size(), kNone);
  std::size_t kept = 0;
  for (std::size_t v = 0; v < points_.size(); ++v) {
    const VertexId s = vertexSources_[v];
    const bool isMerged = s != kNone && keptAs_[at(s)] != static_cast<VertexId>(v);
    if (!stays[v] && (s == kNone || hadFace[at(s)] || isMerged)) continue;
    map[v] = static_cast<VertexId>(kept);
    points_[kept] = points_[v];
    vertexSources_[kept] = s;
    creaseSources_[kept] = creaseSources_[v];
    ++kept;
  }
  points_.resize(kept);
  vertexSources_.resize(kept);
  creaseSources_.resize(kept);
  for (VertexId& v : cornerVertices_) v = map[at(v)];
  for (VertexId& v : keptAs_)
    if (v != kNone) v = map[at(v)];
  std::erase_if(declared_, [&map](EdgeVertices& edge) {
    edge = {map[at(edge.a)], map[at(edge.b)]};
    return edge.a == kNone || edge.b == kNone;
  });
  for (auto& [source, ends] : replacedEdges_) ends = {map[at(ends.a)], map[at(ends.b)]};
  if (!isMergeTarget_.empty()) {
    isMergeTarget_.resize(map.size(), 0);
    for (std::size_t v = 0; v < map.size(); ++v)
      if (map[v] != kNone) isMergeTarget_[at(map[v])] = isMergeTarget_[v];
  }
  std::erase_if(inherited_, [&map](Inherited& hint) {
    hint.a = map[at(hint.a)];
    hint.b = map[at(hint.b)];
    return hint.a == kNone || hint.b == kNone;
  });
  return map;
}

void MeshRebuilder::buildEdges(Topology& topology, Rebuilt& result) {
  EdgeFinder finder(*this);
  std::vector<EdgeId>& cornerEdges = topology.cornerEdges;
  cornerEdges.resize(cornerVertices_.size());
  for (const EdgeVertices& edge : declared_) finder.findOrAdd(edge.a, edge.b);
  for (std::size_t f = 0; f + 1 < topology.faceOffsets.size(); ++f) {
    const std::size_t begin = at(topology.faceOffsets[f]), end = at(topology.faceOffsets[f + 1]);
    for (std::size_t c = begin; c < end; ++c) {
      const std::size_t next = c + 1 == end ? begin : c + 1;
      const EdgeId e = finder.fromSources(c, next);
      cornerEdges[c] = e != kNone ? e : finder.findOrAdd(cornerVertices_[c], cornerVertices_[next]);
    }
  }
  // Source edges that no face uses any more leave gaps; closing them gives the final ids.
  const auto sourceEdges = source_.topology().edges.size();
  std::vector<EdgeId> map(at(finder.provisionalCount()), kNone);
  for (EdgeId e : cornerEdges) map[at(e)] = 0;
  std::vector<EdgeId> edgeSources;
  for (std::size_t p = 0; p < map.size(); ++p) {
    if (map[p] == kNone) continue;
    map[p] = static_cast<EdgeId>(topology.edges.size());
    topology.edges.push_back(finder.ends(static_cast<EdgeId>(p)));
    edgeSources.push_back(p < sourceEdges ? static_cast<EdgeId>(p) : kNone);
  }
  for (EdgeId& e : cornerEdges) e = map[at(e)];
  for (const Inherited& hint : inherited_) {
    const EdgeId p = finder.find(hint.a, hint.b);
    if (p != kNone && at(p) >= sourceEdges) edgeSources[at(map[at(p)])] = hint.source;
  }
  map.resize(sourceEdges);
  result.edgeMap = std::move(map);
  carryEdgeData(result.mesh, edgeSources);
}

void MeshRebuilder::carryEdgeData(Mesh& mesh, const std::vector<EdgeId>& edgeSources) const {
  if (!source_.edgeSmooth().empty()) {
    std::vector<std::uint8_t> smooth(edgeSources.size(), 1);
    for (std::size_t e = 0; e < smooth.size(); ++e)
      if (edgeSources[e] != kNone) smooth[e] = source_.edgeSmooth()[at(edgeSources[e])];
    mesh.setEdgeSmooth(std::move(smooth));
  }
  if (!source_.creases().edges.empty()) {
    std::vector<float> creases(edgeSources.size(), 0.0f);
    for (std::size_t e = 0; e < creases.size(); ++e)
      if (edgeSources[e] != kNone) creases[e] = source_.edgeCrease(edgeSources[e]);
    mesh.setCreases({std::move(creases), source_.creases().vertices});
  }
}

void MeshRebuilder::carryVertexAndFaceData(Mesh& mesh) const {
  if (!source_.creases().vertices.empty()) {
    std::vector<float> creases(creaseSources_.size(), 0.0f);
    for (std::size_t v = 0; v < creases.size(); ++v)
      if (creaseSources_[v] != kNone) creases[v] = source_.vertexCrease(creaseSources_[v]);
    mesh.setCreases({mesh.creases().edges, std::move(creases)});
  }
  if (source_.invisibleFaces().empty()) return;
  std::vector<FaceId> invisible;
  for (std::size_t f = 0; f < faceSources_.size(); ++f)
    if (faceSources_[f] != kNone &&
        std::ranges::binary_search(source_.invisibleFaces(), faceSources_[f]))
      invisible.push_back(static_cast<FaceId>(f));
  mesh.setInvisibleFaces(std::move(invisible));
}

Rebuilt keepFaces(const Mesh& mesh, std::span<const std::uint8_t> keep) {
  MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  rebuilder.reserve(mesh.vertexCount(), mesh.faceCount(), mesh.cornerCount());
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    if (keep[at(f)]) rebuilder.copyFace(f);
  return rebuilder.finish({.dropUnusedVertices = true});
}

}  // namespace host::mesh
