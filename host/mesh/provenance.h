#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// For every component of one kind in a new mesh, the one in the old mesh that it is a piece of;
/// kNone for what belongs to none. Kept as stretches, so that what stayed as it was costs nothing
/// each.
class Origins {
 public:
  /// Components in a row that come of components in a row, or all of the same one.
  struct Stretch {
    Index first = 0;  ///< in the new mesh
    Index count = 0;
    Index source = 0;  ///< in the old mesh, of the first; kNone for none
    Index step = 1;    ///< 1: of the next one each; 0: all of the same
  };

  /// The next `count` components are `source` and those after it.
  void addRun(Index source, Index count);
  /// The next component is a piece of `source`, or of nothing.
  void add(Index source) { addSame(source, 1); }
  /// The next `count` components are pieces of `source`.
  void addSame(Index source, Index count);
  [[nodiscard]] static Origins identity(Index count);
  /// From a map of old ids to new ones (kNone: gone) and the count of the new mesh.
  [[nodiscard]] static Origins fromMap(IdView newIds, Index newCount);

  [[nodiscard]] Index size() const { return size_; }
  [[nodiscard]] Index at(Index id) const;
  [[nodiscard]] std::span<const Stretch> stretches() const { return stretches_; }

  /// What these are in terms of the mesh before: `earlier` says where the old mesh's came from.
  [[nodiscard]] Origins after(const Origins& earlier) const;

 private:
  std::vector<Stretch> stretches_;
  Index size_ = 0;
};

/// Where the components of a mesh come from in the one that it was made of.
struct Provenance {
  Origins vertices, edges, faces;
  [[nodiscard]] Provenance after(const Provenance& earlier) const;
};

/// Takes sets of components along: for each set of old ids (ascending) the new ids that are pieces
/// of them, ascending. A set that stays as it is comes back empty with `same` set, so that it need
/// not be copied. Costs the sets' share of what the operation touched.
struct CarriedIds {
  bool same = false;
  std::vector<Index> ids;
};
[[nodiscard]] std::vector<CarriedIds> carryIds(const Origins& origins,
                                               std::span<const std::span<const Index>> sets);

/// Follows on this thread how meshes are made of one another, while it lives: operations that
/// rebuild a mesh tell of it by `note`, and whoever asked for an operation reads how its result
/// comes of what it gave. An operation needs no result of its own for it, whatever it is put
/// together from.
class ProvenanceTrail {
 public:
  explicit ProvenanceTrail(const Mesh& start);
  ~ProvenanceTrail();
  ProvenanceTrail(const ProvenanceTrail&) = delete;
  ProvenanceTrail& operator=(const ProvenanceTrail&) = delete;

  /// Whether anybody follows, so that operations only then work it out.
  [[nodiscard]] static bool isFollowed();
  /// Tells that `made` comes of `from`.
  static void note(const Mesh& from, const Mesh& made, Provenance provenance);

  /// How a mesh comes of the start. One with the start's faces is the same; nothing is known of one
  /// that nobody told of.
  [[nodiscard]] std::optional<Provenance> to(const Mesh& mesh) const;

 private:
  struct Step {
    Mesh from, made;  ///< kept alive: their arrays tell them apart
    Provenance provenance;
  };
  Mesh start_;
  std::vector<Step> steps_;
  ProvenanceTrail* outer_;
};

}  // namespace host::mesh
