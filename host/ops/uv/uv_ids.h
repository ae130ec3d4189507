#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

/// The UV set that a name means: the current one for an empty name.
/// @return an error that names the set when the mesh has none of that name
[[nodiscard]] Result<int> findUvSet(const mesh::Mesh& mesh, std::string_view name);

/// The UVs of the faces, sorted, each once; faces without UVs have none. Linear in their corners.
[[nodiscard]] std::vector<UvId> uvsOfFaces(const mesh::Mesh& mesh, int uvSet,
                                           std::span<const FaceId> faces);

/// The ids of a set for writing, one a corner; a set without any gets -1 everywhere.
[[nodiscard]] std::vector<UvId>& writableCornerIds(mesh::UvSet& set, Index cornerCount);

/// Takes those of `candidates` out of a set that no corner uses; the rest keep their order and
/// close up. Costs a pass over the corners, none without candidates.
/// @param candidates sorted, each once
void dropUnusedUvs(mesh::UvSet& set, std::span<const UvId> candidates);

/// Gives every corner of the faces a UV of its own, in face and corner order behind the others;
/// the ones that lost their last corner go. Faces without UVs stay so.
void unshareUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces);

/// Takes the faces' UVs away; those that lost their last corner go.
void deleteUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces);

/// The box around UVs, those that are not finite left out.
struct UvBox {
  double minU = 0, maxU = 0, minV = 0, maxV = 0;
  bool isEmpty = true;
  void add(double u, double v);
  void add(const mesh::Vec2f& uv) { add(uv.u, uv.v); }
  [[nodiscard]] double width() const { return maxU - minU; }
  [[nodiscard]] double height() const { return maxV - minV; }
  [[nodiscard]] double centerU() const { return 0.5 * (minU + maxU); }
  [[nodiscard]] double centerV() const { return 0.5 * (minV + maxV); }
};
[[nodiscard]] UvBox uvBox(const mesh::UvSet& set, std::span<const UvId> uvs);

}  // namespace host::ops
