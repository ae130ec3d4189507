#include "host/mesh/components.h"

#include <algorithm>

#include "host/mesh/adjacency.h"

namespace host::mesh {

namespace {

/// A set of ids that answers membership in constant time when it is a good part of all, else by
/// bisection, so that a small set costs nothing that grows with the mesh.
class IdSet {
 public:
  IdSet(IdView ids, Index count) : sorted_(ids.begin(), ids.end()) {
    sortUnique(sorted_);
    if (sorted_.size() * 32 < at(count)) return;
    mask_.assign(at(count), 0);
    for (Index i : sorted_) mask_[at(i)] = 1;
  }
  [[nodiscard]] bool has(Index i) const {
    return mask_.empty() ? std::ranges::binary_search(sorted_, i) : mask_[at(i)] != 0;
  }
  [[nodiscard]] std::span<const Index> ids() const { return sorted_; }

 private:
  std::vector<Index> sorted_;
  std::vector<std::uint8_t> mask_;
};

/// Visits the components of one kind that touch one of another kind.
class Incidence {
 public:
  Incidence(const Mesh& mesh, int uvSet)
      : mesh_(mesh), adjacency_(mesh.adjacency()), uvSet_(uvSet) {}

  /// Lists the corners of each UV, for visits that start from UVs.
  void listUvCorners() {
    const UvSet& set = mesh_.uvSet(uvSet_);
    uvOffsets_.assign(set.points.size() + 2, 0);
    for (UvId id : set.cornerIds)
      if (id != kNone) ++uvOffsets_[at(id) + 2];
    for (std::size_t i = 1; i < uvOffsets_.size(); ++i) uvOffsets_[i] += uvOffsets_[i - 1];
    uvCorners_.resize(at(uvOffsets_.back()));
    for (std::size_t c = 0; c < set.cornerIds.size(); ++c)
      if (set.cornerIds[c] != kNone)
        uvCorners_[at(uvOffsets_[at(set.cornerIds[c]) + 1]++)] = static_cast<CornerId>(c);
  }

  template <class Visit>
  void visit(ComponentType from, Index id, ComponentType to, Visit&& found) const {
    if (from == to) return found(id);
    switch (from) {
      case ComponentType::Vertex:
        if (to == ComponentType::Edge) return each(adjacency_.vertexEdges(id), found);
        if (to == ComponentType::Face) return each(adjacency_.vertexFaces(id), found);
        return corners(adjacency_.vertexCorners(id), to, found);
      case ComponentType::Edge:
        return fromEdge(id, to, found);
      case ComponentType::Face:
        return fromFace(id, to, found);
      case ComponentType::Uv: {
        const std::span<const CornerId> all(uvCorners_.data() + uvOffsets_[at(id)],
                                            uvCorners_.data() + uvOffsets_[at(id) + 1]);
        return corners(all, to, found);
      }
      case ComponentType::VertexFace:
        return corner(id, to, found);
    }
  }

 private:
  template <class Id, class Visit>
  static void each(std::span<const Id> ids, Visit& found) {
    for (const Id id : ids) found(id);
  }

  template <class Visit>
  void fromEdge(EdgeId e, ComponentType to, Visit& found) const {
    if (to == ComponentType::Vertex) {
      found(mesh_.edge(e).a);
      found(mesh_.edge(e).b);
      return;
    }
    if (to == ComponentType::Face) return each(adjacency_.edgeFaces(e), found);
    for (CornerId c : adjacency_.edgeCorners(e)) {
      corner(c, to, found);
      corner(adjacency_.nextCorner(c), to, found);
    }
  }

  template <class Visit>
  void fromFace(FaceId f, ComponentType to, Visit& found) const {
    if (to == ComponentType::Vertex) return each(mesh_.faceVertices(f), found);
    if (to == ComponentType::Edge) return each(mesh_.faceEdges(f), found);
    for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) corner(c, to, found);
  }

  template <class Visit>
  void corners(std::span<const CornerId> ids, ComponentType to, Visit& found) const {
    for (CornerId c : ids) corner(c, to, found);
  }

  template <class Visit>
  void corner(CornerId c, ComponentType to, Visit& found) const {
    switch (to) {
      case ComponentType::Vertex:
        return found(mesh_.cornerVertex(c));
      case ComponentType::Face:
        return found(adjacency_.cornerFace(c));
      case ComponentType::VertexFace:
        return found(c);
      case ComponentType::Edge:
        found(mesh_.cornerEdge(c));
        return found(mesh_.cornerEdge(adjacency_.previousCorner(c)));
      case ComponentType::Uv:
        if (const UvId id = mesh_.cornerUv(uvSet_, c); id != kNone) found(id);
        return;
    }
  }

  const Mesh& mesh_;
  const Adjacency& adjacency_;
  int uvSet_;
  std::vector<Index> uvOffsets_;
  std::vector<CornerId> uvCorners_;
};

}  // namespace

Index componentCount(const Mesh& mesh, ComponentType kind, int uvSet) {
  switch (kind) {
    case ComponentType::Vertex:
      return mesh.vertexCount();
    case ComponentType::Edge:
      return mesh.edgeCount();
    case ComponentType::Face:
      return mesh.faceCount();
    case ComponentType::Uv:
      return static_cast<Index>(mesh.uvSet(uvSet).points.size());
    case ComponentType::VertexFace:
      return mesh.cornerCount();
  }
  return 0;
}

std::vector<Index> convertComponents(const Mesh& mesh, ComponentType from, IdView ids,
                                     ComponentType to, Conversion conversion, int uvSet) {
  const IdSet set(ids, componentCount(mesh, from, uvSet));
  if (from == to)
    return conversion == Conversion::Border
               ? std::vector<Index>{}
               : std::vector<Index>(set.ids().begin(), set.ids().end());
  Incidence incidence(mesh, uvSet);
  const bool isWhole = conversion == Conversion::Connected;
  if (from == ComponentType::Uv || (to == ComponentType::Uv && !isWhole)) incidence.listUvCorners();

  std::vector<Index> out;
  const auto count = at(componentCount(mesh, to, uvSet));
  if (set.ids().size() * 32 >= at(componentCount(mesh, from, uvSet))) {
    // Marking keeps the order for free where most of the mesh is touched anyway.
    std::vector<std::uint8_t> mark(count, 0);
    for (Index id : set.ids())
      incidence.visit(from, id, to, [&mark](Index found) { mark[at(found)] = 1; });
    for (std::size_t i = 0; i < count; ++i)
      if (mark[i]) out.push_back(static_cast<Index>(i));
  } else {
    for (Index id : set.ids())
      incidence.visit(from, id, to, [&out](Index found) { out.push_back(found); });
    sortUnique(out);
  }
  if (isWhole) return out;
  std::erase_if(out, [&](Index candidate) {
    bool isContained = true;
    incidence.visit(to, candidate, from,
                    [&](Index own) { isContained = isContained && set.has(own); });
    return isContained != (conversion == Conversion::Contained);
  });
  return out;
}

std::vector<EdgeId> boundaryEdges(const Mesh& mesh, std::span<const FaceId> faces) {
  const IdSet set(faces, mesh.faceCount());
  const Adjacency& adjacency = mesh.adjacency();
  std::vector<EdgeId> edges;
  for (FaceId f : set.ids())
    for (EdgeId e : mesh.faceEdges(f)) {
      const auto around = adjacency.edgeFaces(e);
      if (around.size() == 1 || !std::ranges::all_of(around, [&](FaceId o) { return set.has(o); }))
        edges.push_back(e);
    }
  sortUnique(edges);
  return edges;
}

}  // namespace host::mesh
