#include "host/ops/uv/shell_growth.h"

#include <algorithm>

#include "host/mesh/adjacency.h"

namespace host::ops {

namespace {

/// The UVs at the ends of a sewable edge, as its two faces have them; `b` runs against `a`.
struct EdgeSides {
  UvId aStart, aEnd, bStart, bEnd;
};

EdgeSides sidesOf(const mesh::Mesh& mesh, int uvSet, EdgeId edge) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  const auto walks = adjacency.edgeCorners(edge);
  const std::vector<UvId>& ids = mesh.uvSet(uvSet).cornerIds;
  return {ids[at(walks[0])], ids[at(adjacency.nextCorner(walks[0]))], ids[at(walks[1])],
          ids[at(adjacency.nextCorner(walks[1]))]};
}

}  // namespace

bool isUvSewable(const mesh::Mesh& mesh, int uvSet, EdgeId edge) {
  const auto walks = mesh.adjacency().edgeCorners(edge);
  return walks.size() == 2 && mesh.cornerVertex(walks[0]) != mesh.cornerVertex(walks[1]) &&
         mesh.cornerUv(uvSet, walks[0]) != kNone && mesh.cornerUv(uvSet, walks[1]) != kNone;
}

bool isUvJoined(const mesh::Mesh& mesh, int uvSet, EdgeId edge) {
  if (!isUvSewable(mesh, uvSet, edge)) return false;
  const EdgeSides sides = sidesOf(mesh, uvSet, edge);
  return sides.aStart == sides.bEnd || sides.aEnd == sides.bStart;
}

bool isUvClosed(const mesh::Mesh& mesh, int uvSet, EdgeId edge) {
  if (!isUvSewable(mesh, uvSet, edge)) return false;
  const EdgeSides sides = sidesOf(mesh, uvSet, edge);
  return sides.aStart == sides.bEnd && sides.aEnd == sides.bStart;
}

ShellGrowth::ShellGrowth(const mesh::Mesh& mesh, int uvSet, std::span<const FaceId> seeds) {
  label_.assign(at(mesh.faceCount()), kNone);
  for (const FaceId f : seeds) {
    if (label_[at(f)] != kNone) continue;
    label_[at(f)] = static_cast<Index>(fronts_.size());
    fronts_.push_back({{}, {f}, 0});
    parent_.push_back(label_[at(f)]);
  }
  grow(mesh, uvSet);
  shellOfFront_.assign(fronts_.size(), kNone);
  for (std::size_t i = 0; i < fronts_.size(); ++i) {
    if (parent_[i] != static_cast<Index>(i)) continue;
    shellOfFront_[i] = static_cast<Index>(faces_.size());
    const Front& front = fronts_[i];
    if (!front.isFinished()) unfinished_ = shellOfFront_[i];
    std::vector<FaceId> all = std::move(fronts_[i].done);
    all.insert(all.end(), front.waiting.begin() + static_cast<std::ptrdiff_t>(front.next),
               front.waiting.end());
    faces_.push_back(std::move(all));
  }
  fronts_.clear();
}

void ShellGrowth::grow(const mesh::Mesh& mesh, int uvSet) {
  std::vector<Index> active(fronts_.size());
  for (std::size_t i = 0; i < active.size(); ++i) active[i] = static_cast<Index>(i);
  while (active.size() > 1) {
    for (const Index front : active)
      if (parent_[at(front)] == front) step(mesh, uvSet, front);
    std::erase_if(active, [&](Index front) {
      return parent_[at(front)] != front || fronts_[at(front)].isFinished();
    });
  }
}

void ShellGrowth::step(const mesh::Mesh& mesh, int uvSet, Index front) {
  if (fronts_[at(front)].isFinished()) return;
  const FaceId face = fronts_[at(front)].waiting[fronts_[at(front)].next++];
  fronts_[at(front)].done.push_back(face);
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (const EdgeId e : mesh.faceEdges(face)) {
    if (!isUvJoined(mesh, uvSet, e)) continue;
    for (const FaceId other : adjacency.edgeFaces(e)) {
      if (label_[at(other)] == kNone) {
        const Index root = find(front);
        label_[at(other)] = root;
        fronts_[at(root)].waiting.push_back(other);
      } else {
        unite(label_[at(other)], front);
      }
    }
  }
}

void ShellGrowth::unite(Index a, Index b) {
  a = find(a);
  b = find(b);
  if (a == b) return;
  if (fronts_[at(a)].size() < fronts_[at(b)].size()) std::swap(a, b);
  parent_[at(b)] = a;
  Front &into = fronts_[at(a)], &from = fronts_[at(b)];
  into.done.insert(into.done.end(), from.done.begin(), from.done.end());
  into.waiting.insert(into.waiting.end(),
                      from.waiting.begin() + static_cast<std::ptrdiff_t>(from.next),
                      from.waiting.end());
  from = {};
}

Index ShellGrowth::find(Index front) {
  while (parent_[at(front)] != front) front = parent_[at(front)] = parent_[at(parent_[at(front)])];
  return front;
}

Index ShellGrowth::ofFace(FaceId face) const {
  Index front = label_[at(face)];
  while (parent_[at(front)] != front) front = parent_[at(front)];
  return shellOfFront_[at(front)];
}

}  // namespace host::ops
