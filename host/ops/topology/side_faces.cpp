#include "host/ops/topology/side_faces.h"

#include "host/base/cancel_poll.h"

namespace host::ops {
std::vector<EdgeSides> detachSideFaces(Mesh& mesh, std::span<const FaceId> sides) {
  for (int s = 0; s < mesh.uvSetCount(); ++s) {
    if (mesh.uvSet(s).cornerIds.empty()) continue;
    mesh::UvSet& set = mesh.editUvSet(s);
    for (const FaceId f : sides) {
      pollCancel(f);
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f) + 2; ++c) {
        UvId& id = set.cornerIds[c];
        if (id < 0) continue;
        const math::Vec2f uv = set.points[at(id)];
        id = static_cast<UvId>(set.points.size());
        set.points.push_back(uv);
      }
    }
  }
  if (!mesh.lockedNormals().locked.empty()) {
    mesh::LockedNormals normals = mesh.lockedNormals();
    for (const FaceId f : sides)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        normals.locked[at(c)] = 0;
        normals.normals[at(c)] = {};
      }
    mesh.setLockedNormals(std::move(normals));
  }
  std::vector<EdgeId> edges;
  for (const FaceId f : sides)
    edges.insert(edges.end(), mesh.faceEdges(f).begin(), mesh.faceEdges(f).end());
  return sidesOfEdges(mesh, sortedIds(edges));
}

}  // namespace host::ops
