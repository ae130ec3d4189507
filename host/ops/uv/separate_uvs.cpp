#include "host/ops/uv/separate_uvs.h"

#include <algorithm>
#include <unordered_map>

#include "host/mesh/adjacency.h"
#include "host/ops/uv/report_triangles.h"
#include "host/ops/uv/uv_topology.h"

namespace host::ops {
namespace {

/// Grows pieces of faces over edges that UVs share.
class Separation {
 public:
  Separation(const mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces, bool alsoOverlaps)
      : mesh_(mesh),
        twins_(uvTwins(mesh, uvSet)),
        isAsked_(at(mesh.faceCount()), 0),
        side_(at(mesh.faceCount()), 0),
        pieceOf_(at(mesh.faceCount()), kNone),
        covered_(at(mesh.faceCount())) {
    for (const FaceId f : faces)
      if (f >= 0 && f < mesh.faceCount()) isAsked_[at(f)] = 1;
    const UvTriangles triangles = uvTriangles(mesh, uvSet);
    PerElement<FaceId, double> area(mesh.faceCount(), 0);
    for (const UvTriangle& t : triangles.all) area[t.face] += t.signedUv;
    for (std::size_t f = 0; f < area.size(); ++f) side_[f] = area[f] < 0 ? -1 : 1;
    if (!alsoOverlaps) return;
    for (const auto& [a, b] : overlappingFaces(mesh.uvSet(uvSet), triangles)) {
      covered_[at(a)].push_back(b);
      covered_[at(b)].push_back(a);
    }
  }

  /// @return the number of pieces; pieceOf() tells whose each face is
  Index grow() {
    Index count = 0;
    std::vector<FaceId> queue;
    for (FaceId seed = 0; seed < mesh_.faceCount(); ++seed) {
      if (!isAsked_[at(seed)] || pieceOf_[at(seed)] != kNone) continue;
      const Index piece = count++;
      queue.assign(1, seed);
      pieceOf_[at(seed)] = piece;
      for (std::size_t i = 0; i < queue.size(); ++i)
        for (CornerId c = mesh_.firstCorner(queue[i]); c < mesh_.firstCorner(queue[i] + 1); ++c) {
          if (twins_[at(c)] < 0) continue;
          const FaceId next = mesh_.adjacency().cornerFace(twins_[at(c)]);
          if (!isAsked_[at(next)] || pieceOf_[at(next)] != kNone ||
              side_[at(next)] != side_[at(seed)])
            continue;
          const auto& rivals = covered_[at(next)];
          if (std::ranges::any_of(rivals, [&](FaceId f) { return pieceOf_[at(f)] == piece; }))
            continue;
          pieceOf_[at(next)] = piece;
          queue.push_back(next);
        }
    }
    return count;
  }
  [[nodiscard]] const std::vector<Index>& pieceOf() const { return pieceOf_; }

 private:
  const mesh::Mesh& mesh_;
  std::vector<CornerId> twins_;
  std::vector<std::uint8_t> isAsked_;
  std::vector<int> side_;
  std::vector<Index> pieceOf_;
  std::vector<std::vector<FaceId>> covered_;
};

}  // namespace

Index separateUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces, bool alsoOverlaps) {
  if (mesh.uvSet(uvSet).cornerIds.empty()) return 0;
  const Index before = mesh::findUvShells(mesh, uvSet).count;
  Separation separation(mesh, uvSet, faces, alsoOverlaps);
  separation.grow();
  const std::vector<Index>& pieceOf = separation.pieceOf();
  // The first piece at a UV keeps it, faces that were not asked for first of all.
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  constexpr Index kOthers = -2;
  std::vector<Index> owner(set.points.size(), kNone);
  std::vector<UvId> ids = set.cornerIds;
  std::vector<mesh::Vec2f> points = set.points;
  std::unordered_map<std::uint64_t, UvId> doubles;
  for (const bool isAsked : {false, true})
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      const Index piece = pieceOf[at(f)];
      if ((piece != kNone) != isAsked) continue;
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        const UvId id = ids[at(c)];
        if (id == kNone) continue;
        const Index mine = isAsked ? piece : kOthers;
        if (owner[at(id)] == kNone) owner[at(id)] = mine;
        if (owner[at(id)] == mine) continue;
        const std::uint64_t key =
            static_cast<std::uint64_t>(id) << 32 | static_cast<std::uint32_t>(piece);
        const auto [found, isNew] = doubles.try_emplace(key, static_cast<UvId>(points.size()));
        if (isNew) points.push_back(points[at(id)]);
        ids[at(c)] = found->second;
      }
    }
  if (doubles.empty()) return 0;
  mesh::UvSet& written = mesh.editUvSet(uvSet);
  written.points = std::move(points);
  written.cornerIds = std::move(ids);
  return mesh::findUvShells(mesh, uvSet).count - before;
}

}  // namespace host::ops
