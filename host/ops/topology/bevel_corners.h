#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/bevel_edges.h"
#include "host/ops/topology/bevel_patch.h"
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
  BevelCorners(const BevelCorners&) = delete;
  BevelCorners& operator=(const BevelCorners&) = delete;

  /// The edges that can be bevelled, ascending.
  [[nodiscard]] const std::vector<EdgeId>& edges() const { return edges_; }
  /// Adds the new vertices, as far out and as round as `trial` says, and says what becomes of edges
  /// that are left.
  void place(mesh::MeshRebuilder& rebuilder, const BevelEdgesOptions& trial);

  /// How far the new edges are from the old ones, in the space of the options.
  [[nodiscard]] double offsetOf(const BevelEdgesOptions& options) const;
  /// Where the new vertices are, in the order in which they were added, in object space. Options
  /// may differ in offset and roundness from those of the corners.
  [[nodiscard]] std::vector<math::Vec3f> placesFor(const BevelEdgesOptions& options) const;
  /// The same for the trial.
  [[nodiscard]] const std::vector<math::Vec3f>& places() const { return places_; }
  /// What a corner becomes, in loop order; empty when it stays.
  [[nodiscard]] std::span<const VertexId> atCorner(CornerId c) const { return listAt(corners_, c); }
  /// The vertices across a bevelled edge at its end, from the face that walks away from `end` on.
  [[nodiscard]] std::span<const VertexId> profile(EdgeId edge, VertexId end) const {
    return listAt(profiles_, endKey(edge, end));
  }
  /// Faces with corners that move, ascending.
  [[nodiscard]] std::vector<FaceId> touchedFaces() const;

  /// A face in the gap at a vertex.
  struct Cap {
    VertexId vertex = kNone;
    std::vector<VertexId> loop;
  };
  [[nodiscard]] const std::vector<Cap>& caps() const { return caps_; }
  /// Where an old or new vertex is, in the space of the options, with the new ones at `places`.
  [[nodiscard]] math::Vec3 placeOf(VertexId v, std::span<const math::Vec3f> places) const;

 private:
  /// A way that grows with the offset up to an end.
  struct Way {
    math::Vec3 direction;
    double sine = 1;  ///< a step of offset / sine
    double most = HUGE_VAL;
  };
  /// How a new vertex follows from offset and roundness. Along a profile or a ridge it lies between
  /// two vertices, new ones of a lower number or old ones.
  struct Recipe {
    enum class Kind : std::uint8_t { Sector, Profile, Ridge, Patch };
    Kind kind = Kind::Sector;
    int wayCount = 0;           ///< a sector's: it goes the mean of them
    std::array<Way, 2> ways{};  ///< a sector's
    math::Vec3 base;            ///< where the old vertex is, in the space of the options
    math::Vec3 along;           ///< a profile's: its tangents meet on this line through the base
    VertexId from = kNone, to = kNone;
    double share = 0;  ///< how far from the one to the other; a ridge goes from one to the base
  };
  /// The faces of a gap, and its sides as profiles. Their vertices have recipes one after the
  /// other that say nothing but that.
  struct Patch {
    BevelPatch shape;
    std::vector<Recipe> sides;
  };
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
  [[nodiscard]] bool isBevelled(EdgeId e) const { return isBevelled_[at(e)] != 0; }

  [[nodiscard]] bool canBevel(EdgeId e) const;
  [[nodiscard]] math::Vec3 pointOf(VertexId v) const;
  [[nodiscard]] double lengthOf(EdgeId e) const;
  [[nodiscard]] double shortestEdge() const;
  [[nodiscard]] math::Vec3 along(VertexId v, EdgeId e) const;
  [[nodiscard]] bool hasBevelAt(VertexId v) const;
  [[nodiscard]] Way slide(VertexId v, EdgeId edge, EdgeId bevelled) const;
  [[nodiscard]] Way mitre(VertexId v, EdgeId e, EdgeId f) const;
  [[nodiscard]] Recipe sector(VertexId v, const VertexFan& fan, std::size_t i, std::size_t j) const;
  [[nodiscard]] Recipe alongEdge(VertexId v, EdgeId edge, EdgeId bevelled) const;
  [[nodiscard]] math::Vec3f toObject(const math::Vec3& p) const;
  [[nodiscard]] math::Vec3f cook(const Recipe& recipe, std::span<const math::Vec3f> places,
                                 double offset, double roundness) const;
  [[nodiscard]] BevelArc arcOf(const Recipe& profile, std::span<const math::Vec3f> places) const;
  [[nodiscard]] std::vector<math::Vec3f> cookPatch(const Patch& patch,
                                                   std::span<const math::Vec3f> places,
                                                   double roundness) const;

  VertexId add(const Recipe& recipe);
  void placeVertex(VertexId v, VertexFan& fan);
  void placeSectors(VertexId v, const VertexFan& fan, std::span<const std::size_t> bounds);
  void placeEnd(VertexId v, const VertexFan& fan);
  void fillGap(VertexId v, std::span<const VertexId> sectors, std::span<const math::Vec3> edges,
               std::vector<VertexId> cap);
  std::vector<VertexId> makeProfile(VertexId from, VertexId to, VertexId corner,
                                    const math::Vec3& along = {});
  std::vector<VertexId> makeRidge(VertexId from, VertexId to, VertexId corner);
  void replaceEdges();

  Mesh mesh_;
  const mesh::Adjacency& adjacency_;
  BevelEdgesOptions options_;
  math::Matrix4 inverse_;
  bool isPlain_;  // the space is that of the object
  mesh::MeshRebuilder* rebuilder_ = nullptr;
  std::vector<std::uint8_t> isBevelled_;
  std::vector<EdgeId> edges_;
  std::vector<std::pair<VertexId, VertexFan>> fans_;
  double offset_ = 0, roundness_ = 0;  // of the trial
  double shortest_ = 0;
  std::vector<Recipe> recipes_;
  std::vector<Patch> patches_;
  std::vector<math::Vec3f> places_;
  std::vector<VertexId> pool_;
  FlatMap<Range> corners_, profiles_, ridges_;
  FlatMap<VertexId> edgeEnds_;  // where an edge ends that was moved
  std::vector<Cap> caps_;
};

}  // namespace host::ops
