#pragma once

#include <span>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/bevel_edges.h"
#include "host/ops/topology/flat_map.h"
#include "host/ops/topology/vertex_fan.h"

namespace host::ops {

/// Places the new vertices of a bevel: around each end of a bevelled edge one for each sector of
/// faces between bevelled edges, and profiles across the edges.
class BevelCorners {
 public:
  /// @param edges ascending, no repeats
  BevelCorners(const Mesh& mesh, std::span<const EdgeId> edges, const BevelEdgesOptions& options,
               const math::Matrix4& inverse);

  /// The edges that can be bevelled, ascending.
  [[nodiscard]] const std::vector<EdgeId>& edges() const { return edges_; }
  /// Adds the new vertices and says what becomes of edges that are left.
  void place(mesh::MeshRebuilder& rebuilder);

  /// How far the new edges are from the old ones, in the space of the options; once placed.
  [[nodiscard]] double offset() const { return offset_; }
  /// What a corner becomes, in loop order; empty when it stays.
  [[nodiscard]] std::span<const VertexId> atCorner(CornerId c) const { return listAt(corners_, c); }
  /// The vertices across a bevelled edge at its end, from the face that walks away from `end` on.
  [[nodiscard]] std::span<const VertexId> profile(EdgeId edge, VertexId end) const {
    return listAt(profiles_, endKey(edge, end));
  }
  /// Faces with corners that move, ascending.
  [[nodiscard]] std::vector<FaceId> touchedFaces() const;

  /// A gap at a vertex and the loop that fills it.
  struct Cap {
    VertexId vertex = kNone;
    std::vector<VertexId> loop;
  };
  [[nodiscard]] const std::vector<Cap>& caps() const { return caps_; }
  /// Where an old or new vertex is, in the space of the options.
  [[nodiscard]] math::Vec3 placeOf(VertexId v) const;

 private:
  struct Range {
    std::size_t first = 0, count = 0;
  };
  [[nodiscard]] static std::int64_t endKey(EdgeId e, VertexId v) {
    return static_cast<std::int64_t>(e) << 32 | static_cast<std::int64_t>(v);
  }
  [[nodiscard]] std::span<const VertexId> listAt(const FlatMap<Range>& map,
                                                 std::int64_t key) const {
    const Range* range = map.find(key);
    return range ? std::span(pool_).subspan(range->first, range->count)
                 : std::span<const VertexId>();
  }
  [[nodiscard]] Range stored(std::span<const VertexId> vertices);
  [[nodiscard]] bool isBevelled(EdgeId e) const {
    return isBevelled_[static_cast<std::size_t>(e)] != 0;
  }

  [[nodiscard]] bool canBevel(EdgeId e) const;
  [[nodiscard]] math::Vec3 pointOf(VertexId v) const;
  [[nodiscard]] double lengthOf(EdgeId e) const;
  [[nodiscard]] double shortestEdge() const;
  [[nodiscard]] math::Vec3 along(VertexId v, EdgeId e) const;
  [[nodiscard]] bool hasBevelAt(VertexId v) const;
  [[nodiscard]] math::Vec3 slide(VertexId v, EdgeId edge, EdgeId bevelled) const;
  [[nodiscard]] math::Vec3 mitre(VertexId v, EdgeId e, EdgeId f) const;
  [[nodiscard]] math::Vec3 sectorWay(VertexId v, const VertexFan& fan, std::size_t i,
                                     std::size_t j) const;

  VertexId addVertexAt(const math::Vec3& p);
  void placeVertex(VertexId v, VertexFan& fan);
  void placeSectors(VertexId v, const VertexFan& fan, std::span<const std::size_t> bounds);
  void placeEnd(VertexId v, const VertexFan& fan);
  std::vector<VertexId> makeProfile(VertexId from, VertexId to, VertexId corner);
  std::vector<VertexId> makeRidge(VertexId from, VertexId to, VertexId corner);
  void replaceEdges();

  const Mesh& mesh_;
  const mesh::Adjacency& adjacency_;
  const BevelEdgesOptions& options_;
  math::Matrix4 inverse_;
  bool isPlain_;  // the space is that of the object
  mesh::MeshRebuilder* rebuilder_ = nullptr;
  std::vector<std::uint8_t> isBevelled_;
  std::vector<EdgeId> edges_;
  std::vector<std::pair<VertexId, VertexFan>> fans_;
  double offset_ = 0;
  std::vector<VertexId> pool_;
  FlatMap<Range> corners_, profiles_, ridges_;
  FlatMap<VertexId> edgeEnds_;  // where an edge ends that was moved
  std::vector<Cap> caps_;
};

}  // namespace host::ops
