#include "host/ops/topology/separate.h"

#include "host/base/cancel_poll.h"
#include "host/mesh/provenance.h"
#include "host/mesh/shells.h"

namespace host::ops {
namespace {

/// Gives the ids that a piece uses new ones in ascending order. The table is as long as the mesh's
/// and serves all pieces, so that a piece costs what it holds.
class Renumbering {
 public:
  explicit Renumbering(std::size_t count) : map_(count, kNone) {}

  void use(Index id) {
    if (id == kNone || map_[at(id)] != kNone) return;
    map_[at(id)] = 0;
    used_.push_back(id);
  }
  void close() {
    std::sort(used_.begin(), used_.end());
    for (std::size_t i = 0; i < used_.size(); ++i) map_[at(used_[i])] = static_cast<Index>(i);
  }
  [[nodiscard]] Index operator()(Index id) const { return id == kNone ? kNone : map_[at(id)]; }
  [[nodiscard]] const std::vector<Index>& used() const { return used_; }
  void clear() {
    for (const Index id : used_) map_[at(id)] = kNone;
    used_.clear();
  }

 private:
  std::vector<Index> map_;
  std::vector<Index> used_;
};

class Separator {
 public:
  explicit Separator(const Mesh& mesh)
      : mesh_(mesh), vertices_(at(mesh.vertexCount())), edges_(at(mesh.edgeCount())) {
    for (int s = 0; s < mesh.uvSetCount(); ++s) uvs_.emplace_back(mesh.uvSet(s).points.size());
    for (int s = 0; s < mesh.colorSetCount(); ++s)
      colors_.emplace_back(mesh.colorSet(s).colors.size());
    isHidden_ = flagsOf(mesh.invisibleFaces(), mesh.faceCount());
  }

  Mesh piece(const std::vector<FaceId>& faces) {
    for (const FaceId f : faces) {
      pollCancel(f);
      for (const VertexId v : mesh_.faceVertices(f)) vertices_.use(v);
      for (const EdgeId e : mesh_.faceEdges(f)) edges_.use(e);
    }
    vertices_.close();
    edges_.close();
    Mesh made;
    copyTopology(faces, made);
    for (int s = 0; s < mesh_.uvSetCount(); ++s) {
      const mesh::UvSet& from = mesh_.uvSet(s);
      mesh::UvSet set{from.name, {}, {}};
      copyChannel(faces, from.points, from.cornerIds, uvs_[at(s)], set.points, set.cornerIds);
      if (s == 0)
        made.setUvSet(0, std::move(set));
      else
        made.addUvSet(std::move(set));
    }
    made.setCurrentUvSet(mesh_.currentUvSet());
    for (int s = 0; s < mesh_.colorSetCount(); ++s) {
      const mesh::ColorSet& from = mesh_.colorSet(s);
      mesh::ColorSet set{from.name, from.representation, from.clamped, {}, {}};
      copyChannel(faces, from.colors, from.cornerIds, colors_[at(s)], set.colors, set.cornerIds);
      made.addColorSet(std::move(set));
    }
    made.setCurrentColorSet(mesh_.currentColorSet());
    copyFlags(faces, made);
    if (mesh::ProvenanceTrail::isFollowed())
      mesh::ProvenanceTrail::note(mesh_, made,
                                  {listed(vertices_.used()), listed(edges_.used()), listed(faces)});
    vertices_.clear();
    edges_.clear();
    return made;
  }

 private:
  static mesh::Origins listed(IdView sources) {
    mesh::Origins origins;
    for (const Index source : sources) origins.add(source);
    return origins;
  }

  void copyTopology(const std::vector<FaceId>& faces, Mesh& made) const {
    std::vector<math::Vec3f> points;
    for (const VertexId v : vertices_.used()) points.push_back(mesh_.points()[at(v)]);
    mesh::Topology topology;
    for (const EdgeId e : edges_.used())
      topology.edges.push_back({vertices_(mesh_.edge(e).a), vertices_(mesh_.edge(e).b)});
    for (const FaceId f : faces) {
      pollCancel(f);
      for (const VertexId v : mesh_.faceVertices(f))
        topology.cornerVertices.push_back(vertices_(v));
      for (const EdgeId e : mesh_.faceEdges(f)) topology.cornerEdges.push_back(edges_(e));
      topology.faceOffsets.push_back(static_cast<CornerId>(topology.cornerVertices.size()));
    }
    made.setPoints(std::move(points));
    made.setTopology(std::move(topology));
  }

  template <class Value, class ValueId>
  void copyChannel(const std::vector<FaceId>& faces, const std::vector<Value>& values,
                   const std::vector<ValueId>& ids, Renumbering& numbers,
                   std::vector<Value>& newValues, std::vector<ValueId>& newIds) const {
    if (ids.empty()) return;
    const auto forEachId = [&](auto visit) {
      for (const FaceId f : faces)
        for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c)
          visit(ids[at(c)]);
    };
    forEachId([&](Index id) { numbers.use(id); });
    numbers.close();
    if (!numbers.used().empty()) forEachId([&](Index id) { newIds.push_back(numbers(id)); });
    for (const Index id : numbers.used()) newValues.push_back(values[at(id)]);
    numbers.clear();
  }

  void copyFlags(const std::vector<FaceId>& faces, Mesh& made) const {
    if (!mesh_.edgeSmooth().empty()) {
      std::vector<std::uint8_t> smooth;
      for (const EdgeId e : edges_.used()) smooth.push_back(mesh_.edgeSmooth()[at(e)]);
      made.setEdgeSmooth(std::move(smooth));
    }
    mesh::Creases creases;
    if (!mesh_.creases().edges.empty())
      for (const EdgeId e : edges_.used()) creases.edges.push_back(mesh_.edgeCrease(e));
    if (!mesh_.creases().vertices.empty())
      for (const VertexId v : vertices_.used()) creases.vertices.push_back(mesh_.vertexCrease(v));
    made.setCreases(std::move(creases));
    const mesh::LockedNormals& locked = mesh_.lockedNormals();
    mesh::LockedNormals normals;
    std::vector<FaceId> hidden;
    for (std::size_t i = 0; i < faces.size(); ++i) {
      pollCancel(i);
      if (isHidden_[at(faces[i])] != 0) hidden.push_back(static_cast<FaceId>(i));
      if (locked.locked.empty()) continue;
      const auto first = mesh_.firstCorner(faces[i]), end = mesh_.firstCorner(faces[i] + 1);
      normals.normals.insert(normals.normals.end(), locked.normals.begin() + first,
                             locked.normals.begin() + end);
      normals.locked.insert(normals.locked.end(), locked.locked.begin() + first,
                            locked.locked.begin() + end);
    }
    made.setLockedNormals(std::move(normals));
    made.setInvisibleFaces(std::move(hidden));
  }

  const Mesh& mesh_;
  Renumbering vertices_, edges_;
  std::vector<Renumbering> uvs_, colors_;
  std::vector<std::uint8_t> isHidden_;
};

}  // namespace

std::vector<Mesh> separate(const Mesh& mesh) {
  std::vector<Mesh> pieces;
  Separator separator(mesh);
  for (const std::vector<FaceId>& faces : mesh::findShells(mesh).faces())
    pieces.push_back(separator.piece(faces));
  return pieces;
}

}  // namespace host::ops
