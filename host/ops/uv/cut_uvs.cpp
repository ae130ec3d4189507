#include "host/ops/uv/cut_uvs.h"

#include <algorithm>
#include <numeric>
#include <unordered_set>
#include <vector>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/components.h"
#include "host/mesh/shells.h"

namespace host::ops {

namespace {

using mesh::Adjacency;
using mesh::Mesh;

/// The corners of one vertex, joined across the edges that stay.
class VertexGroups {
 public:
  VertexGroups(const Mesh& mesh, int uvSet) : mesh_(mesh), ids_(mesh.uvSet(uvSet).cornerIds) {}

  /// For every corner at the vertex the position of the lowest one that it hangs together with.
  template <class IsCut>
  const std::vector<std::size_t>& group(VertexId v, const IsCut& isCut) {
    const Adjacency& adjacency = mesh_.adjacency();
    corners_ = adjacency.vertexCorners(v);
    parent_.resize(corners_.size());
    std::iota(parent_.begin(), parent_.end(), std::size_t{0});
    for (const EdgeId e : adjacency.vertexEdges(v)) {
      if (isCut(e)) continue;
      const auto walks = adjacency.edgeCorners(e);
      for (std::size_t i = 0; i < walks.size(); ++i)
        for (std::size_t k = 0; k < i; ++k)
          joinAcross(cornerAt(walks[i], v), cornerAt(walks[k], v));
    }
    for (std::size_t i = 0; i < parent_.size(); ++i) parent_[i] = find(i);
    return parent_;
  }
  [[nodiscard]] std::span<const CornerId> corners() const { return corners_; }

 private:
  /// The end of a walk along an edge that lies at the vertex.
  [[nodiscard]] CornerId cornerAt(CornerId walk, VertexId v) const {
    return mesh_.cornerVertex(walk) == v ? walk : mesh_.adjacency().nextCorner(walk);
  }
  void joinAcross(CornerId a, CornerId b) {
    if (ids_[at(a)] == kNone || ids_[at(a)] != ids_[at(b)]) return;
    const std::size_t i = find(position(a)), k = find(position(b));
    parent_[std::max(i, k)] = std::min(i, k);
  }
  [[nodiscard]] std::size_t position(CornerId c) const {
    return static_cast<std::size_t>(std::ranges::lower_bound(corners_, c) - corners_.begin());
  }
  std::size_t find(std::size_t i) {
    while (parent_[i] != i) i = parent_[i] = parent_[parent_[i]];
    return i;
  }

  const Mesh& mesh_;
  const std::vector<UvId>& ids_;
  std::span<const CornerId> corners_;
  std::vector<std::size_t> parent_;
};

/// A corner's new UV, known before the first write.
struct NewUv {
  CornerId corner;
  UvId uv;
};

/// Moves the UVs on both sides of the cut towards the middle of the corners next to them.
void openGap(const Mesh& mesh, mesh::UvSet& set, const std::vector<CornerId>& corners, double gap) {
  struct Middle {
    UvId uv;
    double u, v;
  };
  std::vector<Middle> toward;
  const Adjacency& adjacency = mesh.adjacency();
  for (const CornerId c : corners) {
    const UvId uv = set.cornerIds[c];
    for (const CornerId near : {adjacency.previousCorner(c), adjacency.nextCorner(c)}) {
      const mesh::Vec2f& place = set.points[at(set.cornerIds[near])];
      toward.push_back({uv, place.u, place.v});
    }
  }
  std::ranges::stable_sort(toward, {}, &Middle::uv);
  std::vector<std::pair<UvId, mesh::Vec2f>> moved;
  for (std::size_t i = 0; i < toward.size();) {
    pollCancel(i);
    std::size_t end = i;
    double u = 0, v = 0;
    for (; end < toward.size() && toward[end].uv == toward[i].uv; ++end) {
      u += toward[end].u;
      v += toward[end].v;
    }
    const double count = static_cast<double>(end - i);
    const mesh::Vec2f& from = set.points[at(toward[i].uv)];
    moved.emplace_back(toward[i].uv,
                       mesh::Vec2f{static_cast<float>(from.u + gap * (u / count - from.u)),
                                   static_cast<float>(from.v + gap * (v / count - from.v))});
    i = end;
  }
  for (const auto& [uv, place] : moved) set.points[at(uv)] = place;
}

/// Gives each group of faces around the vertices, as `isCut` parts them, UVs of its own.
template <class IsCut>
void regroup(Mesh& mesh, int uvSet, std::span<const VertexId> vertices, const IsCut& isCut,
             double gap) {
  std::vector<NewUv> changes;
  std::vector<UvId> copied;  // the old UV of every new one
  std::vector<CornerId> parted;
  auto next = static_cast<UvId>(mesh.uvSet(uvSet).points.size());
  VertexGroups groups(mesh, uvSet);
  std::vector<UvId> keptFew;  // the UVs that a group of the vertex keeps
  std::vector<UvId> given;
  for (const VertexId v : vertices) {
    pollCancel(v);
    const auto& group = groups.group(v, isCut);
    const auto corners = groups.corners();
    keptFew.clear();
    std::unordered_set<UvId> keptMany;
    const auto isFirst = [&](UvId uv) {
      if (corners.size() > 64) return keptMany.insert(uv).second;
      if (std::ranges::find(keptFew, uv) != keptFew.end()) return false;
      keptFew.push_back(uv);
      return true;
    };
    given.assign(corners.size(), kNone);
    const std::size_t before = changes.size();
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const UvId old = mesh.cornerUv(uvSet, corners[i]);
      if (old == kNone) continue;
      if (group[i] == i) {
        given[i] = isFirst(old) ? old : next++;
        if (given[i] != old) copied.push_back(old);
      }
      if (const UvId uv = given[group[i]]; uv != old) changes.push_back({corners[i], uv});
    }
    if (changes.size() > before && gap != 0)
      for (const CornerId c : corners)
        if (mesh.cornerUv(uvSet, c) != kNone) parted.push_back(c);
  }
  if (!changes.empty()) {
    mesh::UvSet& set = mesh.editUvSet(uvSet);
    set.points.reserve(set.points.size() + copied.size());
    for (const UvId old : copied) set.points.push_back(mesh::Vec2f(set.points[at(old)]));
    for (const NewUv& change : changes) set.cornerIds[change.corner] = change.uv;
    if (gap != 0) openGap(mesh, set, parted, gap);
  }
}

}  // namespace

CutUvsResult cutUvs(Mesh& mesh, int uvSet, std::span<const EdgeId> edges,
                    const CutUvsOptions& options) {
  CutUvsResult result;
  const Adjacency& adjacency = mesh.adjacency();
  if (mesh.uvSet(uvSet).cornerIds.empty()) return result;
  std::vector<EdgeId> wanted;
  std::vector<VertexId> vertices;
  std::unordered_set<EdgeId> cut;
  for (const EdgeId e : edges) {
    pollCancel(e);
    if (adjacency.edgeCorners(e).size() < 2) continue;
    cut.insert(e);
    vertices.push_back(mesh.edge(e).a);
    vertices.push_back(mesh.edge(e).b);
    if (!mesh::isUvSeam(mesh, uvSet, e) &&
        mesh.cornerUv(uvSet, adjacency.edgeCorners(e)[0]) != kNone)
      wanted.push_back(e);
  }
  mesh::sortUnique(wanted);
  mesh::sortUnique(vertices);
  // A border that ended at a vertex goes on there.
  const auto isCut = [&](EdgeId e) { return cut.contains(e) || mesh::isUvSeam(mesh, uvSet, e); };

  regroup(mesh, uvSet, vertices, isCut, options.gap);
  for (const EdgeId e : wanted) ++(mesh::isUvSeam(mesh, uvSet, e) ? result.cut : result.closed);
  return result;
}

void partFans(Mesh& mesh, int uvSet, std::span<const VertexId> vertices) {
  if (mesh.uvSet(uvSet).cornerIds.empty()) return;
  regroup(
      mesh, uvSet, vertices, [&](EdgeId e) { return mesh::isUvSeam(mesh, uvSet, e); }, 0);
}

}  // namespace host::ops
