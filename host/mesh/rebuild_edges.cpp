#include "host/mesh/rebuild_edges.h"

#include <algorithm>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"

namespace host::mesh {

EdgeId MeshRebuilder::EdgeFinder::fromSources(std::size_t corner, std::size_t next) const {
  const VertexId from = rebuilder_.listedVertices_[corner], to = rebuilder_.listedVertices_[next];
  const VertexId a = keptSource(from), b = keptSource(to);
  if (a == kNone || b == kNone || rebuilder_.isMergeTarget(from) || rebuilder_.isMergeTarget(to))
    return kNone;
  for (const std::size_t c : {corner, next}) {
    const CornerId s = rebuilder_.corners_.single(c);
    if (s == kNone) continue;
    const EdgeId e = source_.cornerEdges[s];
    const EdgeVertices ends = source_.edges[at(e)];
    if ((ends.a == a && ends.b == b) || (ends.a == b && ends.b == a)) return e;
  }
  return kNone;
}

EdgeId MeshRebuilder::EdgeFinder::findOrAdd(VertexId a, VertexId b) {
  if (const EdgeId e = plainSourceEdge(a, b); e != kNone) return e;
  makeTable();
  return toProvisional(table_->findOrAdd(a, b));
}

EdgeId MeshRebuilder::EdgeFinder::find(VertexId a, VertexId b) {
  if (const EdgeId e = plainSourceEdge(a, b); e != kNone) return e;
  makeTable();
  const EdgeId e = table_->find(a, b);
  return e == kNone ? kNone : toProvisional(e);
}

EdgeVertices MeshRebuilder::EdgeFinder::kept(EdgeId e) const {
  const auto replaced = rebuilder_.replacedEdges_.find(e);
  if (replaced != rebuilder_.replacedEdges_.end()) return replaced->second;
  const EdgeVertices ends = source_.edges[at(e)];
  return {rebuilder_.vertexFor(ends.a), rebuilder_.vertexFor(ends.b)};
}

EdgeId MeshRebuilder::EdgeFinder::toProvisional(EdgeId inTable) const {
  return at(inTable) < tableSources_.size()
             ? tableSources_[at(inTable)]
             : inTable + static_cast<EdgeId>(source_.edges.size() - tableSources_.size());
}

/// The source edge between two vertices that each stand for one source vertex alone.
EdgeId MeshRebuilder::EdgeFinder::plainSourceEdge(VertexId a, VertexId b) const {
  const VertexId from = keptSource(a), to = keptSource(b);
  if (from == kNone || to == kNone || rebuilder_.isMergeTarget(a) || rebuilder_.isMergeTarget(b))
    return kNone;
  const EdgeId e = rebuilder_.source_.adjacency().findEdge(from, to);
  return e != kNone && rebuilder_.replacedEdges_.contains(e) ? kNone : e;
}

/// The table holds what the source's own adjacency does not tell: edges at merged vertices,
/// replaced ones, and new ones. So its cost is that of what changes.
void MeshRebuilder::EdgeFinder::makeTable() {
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
    pollCancel(e);
    const VertexId a = rebuilder_.vertexFor(source_.edges[e].a),
                   b = rebuilder_.vertexFor(source_.edges[e].b);
    if ((a != kNone && rebuilder_.isMergeTarget(a)) ||
        (b != kNone && rebuilder_.isMergeTarget(b)) ||
        (!rebuilder_.replacedEdges_.empty() &&
         rebuilder_.replacedEdges_.contains(static_cast<EdgeId>(e))))
      addSourceEdge(static_cast<EdgeId>(e));
  }
}

void MeshRebuilder::EdgeFinder::addSourceEdge(EdgeId e) {
  const EdgeVertices ends = kept(e);
  if (ends.a == kNone || ends.b == kNone || ends.a == ends.b) return;
  if (table_->find(ends.a, ends.b) != kNone) return;
  table_->add(ends.a, ends.b);
  tableSources_.push_back(e);
}

}  // namespace host::mesh
