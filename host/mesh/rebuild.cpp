#include "host/mesh/rebuild.h"

#include <algorithm>
#include <numeric>

#include "host/base/assert.h"
#include "host/base/cancel_poll.h"
#include "host/mesh/rebuild_edges.h"

namespace host::mesh {

namespace {
template <class Id>
Id mapped(const std::vector<Id>& map, std::type_identity_t<Id> id) {
  return map.empty() ? id : map[at(id)];
}
/// Appends values[first, end), taken through a map unless that is empty.
template <class Id>
void appendMapped(std::vector<Id>& out, const std::vector<Id>& values, CornerId first, CornerId end,
                  const std::vector<Id>& map) {
  if (map.empty()) {
    out.insert(out.end(), values.begin() + first, values.begin() + end);
    return;
  }
  const std::size_t base = out.size();
  out.resize(base + at(end - first));
  for (std::size_t i = 0; i < at(end - first); ++i) out[base + i] = map[at(values[at(first) + i])];
}
/// The new ids of what stays; empty when all of it does.
template <class Id>
std::vector<Id> closedUp(const std::vector<std::uint8_t>& stays, Index& count) {
  count = static_cast<Index>(std::ranges::count(stays, std::uint8_t{1}));
  std::vector<Id> map;
  if (at(count) == stays.size()) return map;
  map.resize(stays.size());
  Id next = 0;
  for (std::size_t i = 0; i < stays.size(); ++i) {
    pollCancel(i);
    map[i] = stays[i] != 0 ? next : kNone;
    next += stays[i];
  }
  return map;
}
/// A map that says what an empty one leaves out.
template <class Id>
std::vector<Id> spelledOut(std::vector<Id> map, Index count) {
  if (!map.empty()) return map;
  map.resize(at(count));
  std::iota(map.begin(), map.end(), 0);
  return map;
}
}  // namespace

MeshRebuilder::MeshRebuilder(const Mesh& source) : source_(source) {}

void MeshRebuilder::keepAllVertices() {
  HOST_ASSERT(vertexCount() == 0, "call keepAllVertices before adding any vertex");
  allKept_ = source_.vertexCount();
}

void MeshRebuilder::listKept() {
  if (!keptAs_.empty()) return;
  keptAs_.resize(at(source_.vertexCount()), kNone);
  if (allKept_ > 0) std::iota(keptAs_.begin(), keptAs_.end(), 0);
}

VertexId MeshRebuilder::keepVertex(VertexId source) {
  listKept();
  const VertexId v = addVertex(source_.points()[at(source)], source);
  addedSources_.back() = source;
  if (keptAs_[source] == kNone) keptAs_[source] = v;
  return v;
}

void MeshRebuilder::mergeVertex(VertexId source, VertexId into) {
  listKept();
  isMergeTarget_.resize(at(vertexCount()), 0);
  isMergeTarget_[into] = 1;
  keptAs_[source] = into;
}

void MeshRebuilder::replaceEdge(EdgeId source, VertexId a, VertexId b) {
  replacedEdges_[source] = {a, b};
}

VertexId MeshRebuilder::addVertex(const Vec3f& point, VertexId creaseSource) {
  pollCancel(addedPoints_.size());
  addedPoints_.push_back(point);
  addedSources_.push_back(kNone);
  addedCreases_.push_back(creaseSource);
  return vertexCount() - 1;
}

void MeshRebuilder::setPoint(VertexId vertex, const Vec3f& point) {
  if (vertex < allKept_)
    movedPoints_[vertex] = point;
  else
    addedPoints_[at(vertex - allKept_)] = point;
}

const Vec3f& MeshRebuilder::point(VertexId vertex) const {
  if (vertex >= allKept_) return addedPoints_[at(vertex - allKept_)];
  const auto moved = movedPoints_.find(vertex);
  return moved != movedPoints_.end() ? moved->second : source_.points()[at(vertex)];
}

void MeshRebuilder::beginFace(FaceId source) {
  if (stretches_.empty() || stretches_.back().isRun) stretches_.push_back({kNone, 0, false});
  listedSources_.push_back(source);
  pollCancel(listedSources_.size());
}

FaceId MeshRebuilder::endFace() {
  const std::size_t begin = listedEnds_.empty() ? 0 : listedEnds_.back();
  HOST_ASSERT(listedVertices_.size() >= begin + 3, "leave out faces of fewer than three corners");
  listedEnds_.push_back(listedVertices_.size());
  ++stretches_.back().faces;
  return faceCount_++;
}

bool MeshRebuilder::touchesMerge(FaceId source) const {
  return std::ranges::any_of(source_.faceVertices(source),
                             [this](VertexId v) { return isMergeTarget(keptAs_[v]); });
}

FaceId MeshRebuilder::copyFace(FaceId source) {
  if (isMergeTarget_.empty() || !touchesMerge(source)) {
    copyFaces(source, source + 1);
    return faceCount_ - 1;
  }
  beginFace(source);
  for (CornerId c = source_.firstCorner(source); c < source_.firstCorner(source + 1); ++c)
    addCorner(vertexFor(source_.cornerVertex(c)), c);
  return endFace();
}

void MeshRebuilder::copyFaces(FaceId first, FaceId end) {
  if (first >= end) return;
  if (!stretches_.empty() && stretches_.back().isRun &&
      stretches_.back().source + stretches_.back().faces == first)
    stretches_.back().faces += end - first;
  else
    stretches_.push_back({first, end - first, true});
  corners_.addRun(source_.firstCorner(first),
                  source_.firstCorner(end) - source_.firstCorner(first));
  faceCount_ += end - first;
}

Rebuilt MeshRebuilder::finish(const RebuildOptions& options) {
  Rebuilt result;
  EdgeFinder finder(*this);
  const std::vector<EdgeId> listedEdges = findListedEdges(finder);
  Survivors survivors =
      findSurvivors(listedEdges, finder.provisionalCount(), options.dropUnusedVertices);
  Mesh& mesh = result.mesh;
  mesh = source_;
  Topology topology = assembleTopology(survivors, listedEdges, finder);
  result.uvMaps.resize(at(source_.uvSetCount()));
  for (int s = 0; s < source_.uvSetCount(); ++s)
    mesh.setUvSet(s, carryUvSet(source_.uvSet(s), topology, corners_, &result.uvMaps[at(s)]));
  for (int s = 0; s < source_.colorSetCount(); ++s)
    mesh.setColorSet(s, carryColorSet(source_.colorSet(s), topology, corners_));
  mesh.setLockedNormals(carryLockedNormals(source_.lockedNormals(), corners_));
  mesh.setPoints(assemblePoints(survivors));
  mesh.setTopology(std::move(topology));
  carryEdgeData(mesh, survivors, finder);
  carryVertexAndFaceData(mesh, survivors);
  if (ProvenanceTrail::isFollowed())
    ProvenanceTrail::note(source_, mesh, provenance(survivors, finder));
  result.vertexMap = spelledOut(std::move(survivors.vertexMap), vertexCount());
  result.edgeMap = spelledOut(std::move(survivors.edgeMap), source_.edgeCount());
  result.edgeMap.resize(at(source_.edgeCount()));
  return result;
}

// Provisional ids of the edges that listed corners walk.
std::vector<EdgeId> MeshRebuilder::findListedEdges(EdgeFinder& finder) const {
  for (const EdgeVertices& edge : declared_) finder.findOrAdd(edge.a, edge.b);
  std::vector<EdgeId> edges(listedVertices_.size());
  std::size_t begin = 0;
  for (const std::size_t end : listedEnds_) {
    for (std::size_t c = begin; c < end; ++c) {
      pollCancel(c);
      const std::size_t next = c + 1 == end ? begin : c + 1;
      const EdgeId e = finder.fromSources(c, next);
      edges[c] = e != kNone ? e : finder.findOrAdd(listedVertices_[c], listedVertices_[next]);
    }
    begin = end;
  }
  return edges;
}

// Only what hangs on source faces that no run copies can go, and what was added.
MeshRebuilder::Survivors MeshRebuilder::findSurvivors(const std::vector<EdgeId>& listedEdges,
                                                      Index edgeCount, bool dropUnused) const {
  const Topology& topology = source_.topology();
  PerElement<VertexId, std::uint8_t> vertexStays(vertexCount(), 1), edgeStays(at(edgeCount), 1);
  std::fill(edgeStays.begin() + source_.edgeCount(), edgeStays.end(), std::uint8_t{0});
  const auto release = [&](VertexId v) {
    if (v != kNone) vertexStays[v] = 0;
  };
  for (VertexId v = allKept_; v < vertexCount(); ++v)
    if (const VertexId s = vertexSource(v); s == kNone || vertexFor(s) != v) release(v);
  if (!isMergeTarget_.empty())
    for (VertexId v = 0; v < allKept_; ++v)
      if (keptAs_[v] != v) release(v);
  for (const VertexId v : released_) release(vertexFor(v));
  corners_.forEachGap(source_.cornerCount(), [&](CornerId first, CornerId end) {
    for (CornerId c = first; c < end; ++c) {
      release(vertexFor(topology.cornerVertices[c]));
      edgeStays[at(topology.cornerEdges[c])] = 0;
    }
  });
  markUsed(listedEdges, vertexStays, edgeStays);
  if (!dropUnused) std::ranges::fill(vertexStays, std::uint8_t{1});
  Survivors survivors;
  survivors.vertexMap = closedUp<VertexId>(vertexStays, survivors.vertices);
  survivors.edgeMap = closedUp<EdgeId>(edgeStays, survivors.edges);
  if (!keptAs_.empty() || !survivors.vertexMap.empty()) {
    survivors.sourceMap.reserve(at(source_.vertexCount()));
    for (VertexId v = 0; v < source_.vertexCount(); ++v) {
      pollCancel(v);
      const VertexId kept = vertexFor(v);
      survivors.sourceMap.push_back(kept == kNone ? kNone : mapped(survivors.vertexMap, kept));
    }
  }
  return survivors;
}

void MeshRebuilder::markUsed(const std::vector<EdgeId>& listedEdges,
                             std::vector<std::uint8_t>& vertexStays,
                             std::vector<std::uint8_t>& edgeStays) const {
  const Topology& topology = source_.topology();
  for (const VertexId v : listedVertices_) vertexStays[v] = 1;
  for (const EdgeId e : listedEdges) edgeStays[at(e)] = 1;
  bool isAnyOpen = false;
  corners_.forEachGap(source_.cornerCount(), [&](CornerId first, CornerId end) {
    for (CornerId c = first; c < end && !isAnyOpen; ++c) {
      const VertexId v = vertexFor(topology.cornerVertices[c]);
      isAnyOpen =
          edgeStays[at(topology.cornerEdges[c])] == 0 || (v != kNone && vertexStays[v] == 0);
    }
  });
  if (!isAnyOpen && released_.empty()) return;
  for (const CornerSources::Stretch& run : corners_.stretches()) {
    if (run.source == kNone) continue;
    for (CornerId c = run.source; c < run.source + run.count; ++c) {
      const VertexId v = topology.cornerVertices[c];
      vertexStays[keptAs_.empty() ? v : keptAs_[v]] = 1;
      edgeStays[at(topology.cornerEdges[c])] = 1;
    }
  }
}

Topology MeshRebuilder::assembleTopology(const Survivors& survivors,
                                         const std::vector<EdgeId>& listedEdges,
                                         const EdgeFinder& finder) const {
  const Topology& old = source_.topology();
  Topology topology;
  topology.faceOffsets.reserve(at(faceCount_) + 1);
  topology.cornerVertices.reserve(corners_.size());
  topology.cornerEdges.reserve(corners_.size());
  std::size_t listedFace = 0, corner = 0;
  for (const Stretch& stretch : stretches_) {
    const auto base = static_cast<CornerId>(topology.cornerVertices.size());
    if (stretch.isRun) {
      const CornerId first = source_.firstCorner(stretch.source),
                     end = source_.firstCorner(stretch.source + stretch.faces);
      for (Index f = 1; f <= stretch.faces; ++f)
        topology.faceOffsets.push_back(old.faceOffsets[stretch.source + f] + (base - first));
      appendMapped(topology.cornerVertices, old.cornerVertices, first, end, survivors.sourceMap);
      appendMapped(topology.cornerEdges, old.cornerEdges, first, end, survivors.edgeMap);
      continue;
    }
    const std::size_t begin = corner;
    for (Index f = 0; f < stretch.faces; ++f) {
      corner = listedEnds_[listedFace++];
      topology.faceOffsets.push_back(base + static_cast<CornerId>(corner - begin));
    }
    appendMapped(topology.cornerVertices, listedVertices_, static_cast<CornerId>(begin),
                 static_cast<CornerId>(corner), survivors.vertexMap);
    appendMapped(topology.cornerEdges, listedEdges, static_cast<CornerId>(begin),
                 static_cast<CornerId>(corner), survivors.edgeMap);
  }
  topology.edges.reserve(at(survivors.edges));
  if (survivors.sourceMap.empty() && survivors.edgeMap.empty()) {
    topology.edges.insert(topology.edges.end(), old.edges.begin(), old.edges.end());
  } else {
    for (EdgeId e = 0; e < source_.edgeCount(); ++e) {
      pollCancel(e);
      if (mapped(survivors.edgeMap, e) == kNone) continue;
      const EdgeVertices ends = old.edges[at(e)];
      topology.edges.push_back(
          {mapped(survivors.sourceMap, ends.a), mapped(survivors.sourceMap, ends.b)});
    }
  }
  for (const auto& [e, ends] : replacedEdges_)
    if (const EdgeId now = mapped(survivors.edgeMap, e); now != kNone)
      topology.edges[at(now)] = {mapped(survivors.vertexMap, ends.a),
                                 mapped(survivors.vertexMap, ends.b)};
  const auto added = at(finder.provisionalCount() - source_.edgeCount());
  for (std::size_t i = 0; i < added; ++i) {
    const EdgeVertices ends = finder.newEdge(i);
    if (mapped(survivors.edgeMap, source_.edgeCount() + static_cast<EdgeId>(i)) != kNone)
      topology.edges.push_back(
          {mapped(survivors.vertexMap, ends.a), mapped(survivors.vertexMap, ends.b)});
  }
  return topology;
}

std::vector<Vec3f> MeshRebuilder::assemblePoints(const Survivors& survivors) const {
  std::vector<Vec3f> points;
  points.reserve(at(survivors.vertices));
  const auto source = source_.points().first(at(allKept_));
  if (survivors.vertexMap.empty()) {
    points.insert(points.end(), source.begin(), source.end());
    points.insert(points.end(), addedPoints_.begin(), addedPoints_.end());
  } else {
    for (std::size_t v = 0; v < survivors.vertexMap.size(); ++v)
      if (survivors.vertexMap[v] != kNone)
        points.push_back(v < source.size() ? source[v] : addedPoints_[v - source.size()]);
  }
  for (const auto& [v, point] : movedPoints_)
    if (const VertexId now = mapped(survivors.vertexMap, v); now != kNone) points[at(now)] = point;
  return points;
}

void MeshRebuilder::carryEdgeData(Mesh& mesh, const Survivors& survivors,
                                  EdgeFinder& finder) const {
  const bool hasSmooth = !source_.edgeSmooth().empty(),
             hasCreases = !source_.creases().edges.empty();
  if (!hasSmooth && !hasCreases) return;
  std::vector<std::uint8_t> smooth;
  std::vector<float> creases;
  const auto carry = [&](const auto& from, auto& to, auto fresh) {
    to.reserve(at(survivors.edges));
    if (survivors.edgeMap.empty())
      to.insert(to.end(), from.begin(), from.end());
    else
      for (EdgeId e = 0; e < source_.edgeCount(); ++e)
        if (survivors.edgeMap[e] != kNone) to.push_back(from[at(e)]);
    to.resize(at(survivors.edges), fresh);
  };
  if (hasSmooth) carry(source_.edgeSmooth(), smooth, std::uint8_t{1});
  if (hasCreases) carry(source_.creases().edges, creases, 0.0F);
  for (const Inherited& hint : inherited_) {
    const EdgeId p = finder.find(hint.a, hint.b);
    if (p == kNone || p < source_.edgeCount()) continue;
    const EdgeId now = mapped(survivors.edgeMap, p);
    if (now == kNone) continue;
    if (hasSmooth) smooth[at(now)] = source_.edgeSmooth()[at(hint.source)];
    if (hasCreases) creases[at(now)] = source_.edgeCrease(hint.source);
  }
  if (hasSmooth) mesh.setEdgeSmooth(std::move(smooth));
  if (hasCreases) mesh.setCreases({std::move(creases), source_.creases().vertices});
}

void MeshRebuilder::carryVertexAndFaceData(Mesh& mesh, const Survivors& survivors) const {
  if (!source_.creases().vertices.empty()) {
    std::vector<float> creases(at(survivors.vertices), 0.0F);
    for (VertexId v = 0; v < vertexCount(); ++v) {
      pollCancel(v);
      const VertexId now = mapped(survivors.vertexMap, v);
      const VertexId lender = v < allKept_ ? v : addedCreases_[at(v - allKept_)];
      if (now != kNone && lender != kNone) creases[at(now)] = source_.vertexCrease(lender);
    }
    mesh.setCreases({mesh.creases().edges, std::move(creases)});
  }
  if (source_.invisibleFaces().empty()) return;
  std::vector<FaceId> invisible;
  std::size_t listed = 0;
  FaceId next = 0;
  for (const Stretch& stretch : stretches_)
    for (Index i = 0; i < stretch.faces; ++i, ++next) {
      const FaceId from = stretch.isRun ? stretch.source + i : listedSources_[listed++];
      if (from != kNone && std::ranges::binary_search(source_.invisibleFaces(), from))
        invisible.push_back(next);
    }
  mesh.setInvisibleFaces(std::move(invisible));
}

Provenance MeshRebuilder::provenance(const Survivors& survivors, EdgeFinder& finder) const {
  Provenance result;
  std::size_t listed = 0;
  for (const Stretch& stretch : stretches_) {
    if (stretch.isRun)
      result.faces.addRun(stretch.source, stretch.faces);
    else
      for (Index i = 0; i < stretch.faces; ++i) result.faces.add(listedSources_[listed++]);
  }
  if (survivors.vertexMap.empty()) {
    result.vertices.addRun(0, allKept_);
    for (VertexId v = allKept_; v < vertexCount(); ++v) result.vertices.add(vertexSource(v));
  } else {
    for (VertexId v = 0; v < vertexCount(); ++v)
      if (survivors.vertexMap[v] != kNone) result.vertices.add(vertexSource(v));
  }
  Index kept = 0;
  if (survivors.edgeMap.empty()) {
    kept = source_.edgeCount();
    result.edges.addRun(0, kept);
  } else {
    for (EdgeId e = 0; e < source_.edgeCount(); ++e)
      if (survivors.edgeMap[e] != kNone) {
        result.edges.add(e);
        ++kept;
      }
  }
  // A new edge that takes after an old one is a piece of it.
  std::vector<EdgeId> lenders(at(survivors.edges - kept), kNone);
  for (const Inherited& hint : inherited_) {
    const EdgeId p = finder.find(hint.a, hint.b);
    if (p == kNone || p < source_.edgeCount()) continue;
    const EdgeId now = mapped(survivors.edgeMap, p);
    if (now >= kept) lenders[at(now - kept)] = hint.source;
  }
  for (const EdgeId lender : lenders) result.edges.add(lender);
  return result;
}

Rebuilt keepFaces(const Mesh& mesh, std::span<const std::uint8_t> keep) {
  MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    if (keep[at(f)]) rebuilder.copyFace(f);
  return rebuilder.finish({.dropUnusedVertices = true});
}

}  // namespace host::mesh
