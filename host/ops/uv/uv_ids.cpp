#include "host/ops/uv/uv_ids.h"

#include <algorithm>
#include <cmath>

#include "host/mesh/components.h"

namespace host::ops {

Result<int> findUvSet(const mesh::Mesh& mesh, std::string_view name) {
  const int set = name.empty() ? mesh.currentUvSet() : mesh.findUvSet(name);
  if (set < 0 || set >= mesh.uvSetCount())
    return fail(ErrorKind::NotFound, "the mesh has no UV set '{}'", name);
  return set;
}

std::vector<UvId> uvsOfFaces(const mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces) {
  const std::vector<UvId>& ids = mesh.uvSet(uvSet).cornerIds;
  std::vector<UvId> uvs;
  if (ids.empty()) return uvs;
  const std::size_t count = mesh.uvSet(uvSet).points.size();
  if (faces.size() * 8 < count) {
    for (const FaceId f : faces)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
        if (ids[at(c)] != kNone) uvs.push_back(ids[at(c)]);
    mesh::sortUnique(uvs);
    return uvs;
  }
  std::vector<std::uint8_t> isUsed(count, 0);
  for (const FaceId f : faces)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      if (ids[at(c)] != kNone) isUsed[at(ids[at(c)])] = 1;
  for (std::size_t uv = 0; uv < count; ++uv)
    if (isUsed[uv]) uvs.push_back(static_cast<UvId>(uv));
  return uvs;
}

std::vector<UvId>& writableCornerIds(mesh::UvSet& set, Index cornerCount) {
  if (set.cornerIds.empty()) set.cornerIds.assign(at(cornerCount), kNone);
  return set.cornerIds;
}

void dropUnusedUvs(mesh::UvSet& set, std::span<const UvId> candidates) {
  if (candidates.empty()) return;
  std::vector<std::uint8_t> isLost(set.points.size(), 0);
  for (const UvId uv : candidates) isLost[at(uv)] = 1;
  for (const UvId uv : set.cornerIds)
    if (uv != kNone) isLost[at(uv)] = 0;
  const bool isAnyLost =
      std::ranges::any_of(candidates, [&](UvId uv) { return isLost[at(uv)] != 0; });
  if (!isAnyLost) return;
  std::vector<UvId> newId(set.points.size());
  UvId next = 0;
  for (std::size_t uv = 0; uv < set.points.size(); ++uv) {
    newId[uv] = next;
    if (isLost[uv]) continue;
    set.points[at(next++)] = set.points[uv];
  }
  set.points.resize(at(next));
  for (UvId& uv : set.cornerIds)
    if (uv != kNone) uv = newId[at(uv)];
}

void unshareUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces) {
  const std::vector<UvId> before = uvsOfFaces(mesh, uvSet, faces);
  if (before.empty()) return;
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  for (const FaceId f : faces)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
      UvId& uv = set.cornerIds[c];
      if (uv == kNone) continue;
      set.points.push_back(mesh::Vec2f(set.points[at(uv)]));
      uv = static_cast<UvId>(set.points.size()) - 1;
    }
  dropUnusedUvs(set, before);
}

void deleteUvs(mesh::Mesh& mesh, int uvSet, std::span<const FaceId> faces) {
  const std::vector<UvId> before = uvsOfFaces(mesh, uvSet, faces);
  if (before.empty()) return;
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  for (const FaceId f : faces)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      set.cornerIds[c] = kNone;
  dropUnusedUvs(set, before);
  if (std::ranges::all_of(set.cornerIds, [](UvId uv) { return uv == kNone; }))
    set.cornerIds.clear();
}

void UvBox::add(double u, double v) {
  if (!std::isfinite(u) || !std::isfinite(v)) return;
  if (isEmpty) {
    minU = maxU = u;
    minV = maxV = v;
    isEmpty = false;
    return;
  }
  minU = std::min(minU, u);
  maxU = std::max(maxU, u);
  minV = std::min(minV, v);
  maxV = std::max(maxV, v);
}

UvBox uvBox(const mesh::UvSet& set, std::span<const UvId> uvs) {
  UvBox box;
  for (const UvId uv : uvs) box.add(set.points[at(uv)]);
  return box;
}

}  // namespace host::ops
