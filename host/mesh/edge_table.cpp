#include "host/mesh/edge_table.h"

#include <algorithm>

namespace host::mesh {

namespace {
constexpr int kChainLimit = 12;
}  // namespace

EdgeTable::EdgeTable(std::vector<EdgeVertices>& edges, Index vertexCount)
    : edges_(edges), first_(at(vertexCount), kNone) {
  next_.reserve(edges.capacity());
  for (std::size_t e = 0; e < edges.size(); ++e) link(static_cast<EdgeId>(e));
}

EdgeId EdgeTable::find(VertexId a, VertexId b) const {
  const auto [lo, hi] = std::minmax(a, b);
  int steps = 0;
  for (EdgeId e = first_[at(lo)]; e != kNone; e = next_[at(e)], ++steps)
    if (edges_[at(e)].has(hi)) return e;
  if (steps < kChainLimit) return kNone;
  const auto found = overflow_.find(key(lo, hi));
  return found == overflow_.end() ? kNone : found->second;
}

EdgeId EdgeTable::add(VertexId a, VertexId b) {
  edges_.push_back({a, b});
  link(static_cast<EdgeId>(edges_.size()) - 1);
  return static_cast<EdgeId>(edges_.size()) - 1;
}

void EdgeTable::link(EdgeId e) {
  const auto [lo, hi] = std::minmax(edges_[at(e)].a, edges_[at(e)].b);
  next_.push_back(kNone);
  EdgeId* tail = &first_[at(lo)];
  int steps = 0;
  while (*tail != kNone && steps < kChainLimit) {
    tail = &next_[at(*tail)];
    ++steps;
  }
  if (steps < kChainLimit)
    *tail = e;
  else
    overflow_.try_emplace(key(lo, hi), e);
}

}  // namespace host::mesh
