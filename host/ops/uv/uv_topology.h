#pragma once

#include <span>
#include <vector>

#include "host/mesh/mesh.h"
#include "host/mesh/shells.h"

namespace host::ops {

/// Items grouped by owner in two flat arrays: the items of owner i are items[start[i], start[i+1]).
struct GroupedIds {
  std::vector<Index> start{0};
  std::vector<Index> items;
  [[nodiscard]] std::span<const Index> of(Index owner) const {
    const auto o = at(owner);
    return {items.data() + start[o], items.data() + start[o + 1]};
  }
  [[nodiscard]] Index ownerCount() const { return static_cast<Index>(start.size()) - 1; }
};

/// Groups ids 0, 1, ... by the owner given for each; an owner of -1 leaves the id out. Ascending in
/// each group. Linear.
[[nodiscard]] GroupedIds groupByOwner(IdView ownerOfId, Index ownerCount);

/// The shells of one UV set with what they hold. Shells are those of mesh::findUvShells: faces that
/// share a UV id belong together, numbered by their lowest face. It is a copy of the state it was
/// made from.
struct UvTopology {
  Index shellCount = 0;
  std::vector<Index> shellOfFace;  ///< -1 for a face without UVs
  std::vector<Index> shellOfUv;    ///< -1 for a UV of no face
  GroupedIds faces;                ///< a shell's faces, ascending
  GroupedIds uvs;                  ///< a shell's UV ids, ascending
};
/// Builds it for all shells of a set. Linear in corners and UVs.
[[nodiscard]] UvTopology uvTopology(const mesh::Mesh& mesh, int uvSet);

/// The corners at each UV of a set, ascending; corners without UVs are in no group. Linear.
[[nodiscard]] GroupedIds cornersOfUvs(const mesh::Mesh& mesh, int uvSet);

/// What lies across the edge that a corner walks, within the UV shell.
inline constexpr CornerId kUvBorder = -1;  ///< no face with the same UVs along it, or no UVs at all
inline constexpr CornerId kUvManyFaces = -2;  ///< three or more faces share both UVs

/// For each corner of the mesh the corner of the one other face that walks the same edge between
/// the same two UVs, kUvBorder or kUvManyFaces. Two faces that walk it in one direction (a
/// one-sided or reversed neighbour) are each other's twins too. Linear.
[[nodiscard]] std::vector<CornerId> uvTwins(const mesh::Mesh& mesh, int uvSet);

/// The borders of UV shells as closed loops of corners in the direction of their faces: each corner
/// walks a border edge and the next one starts at the UV where it ends. Loops are ordered by their
/// lowest corner, which they start with. Where several fans meet in one UV each loop stays with its
/// fan. Linear.
/// @param twins of uvTwins
[[nodiscard]] std::vector<std::vector<CornerId>> uvBorderLoops(const mesh::Mesh& mesh, int uvSet,
                                                               std::span<const CornerId> twins);

}  // namespace host::ops
