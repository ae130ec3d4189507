#include "host/io/ma/ma_normals.h"

#include "host/mesh/adjacency.h"

namespace host::io {
namespace {

/// The corner at the same vertex on the other side of an edge, -1 where the fan ends.
CornerId across(const mesh::Mesh& mesh, const mesh::Adjacency& adjacency, CornerId corner,
                CornerId walk) {
  if (!mesh.isEdgeSmooth(mesh.cornerEdge(walk))) return kNone;
  const CornerId twin = adjacency.twin(walk);
  if (twin == kNone) return kNone;
  return mesh.cornerVertex(twin) == mesh.cornerVertex(corner) ? twin : adjacency.nextCorner(twin);
}

bool isSameNormal(const mesh::Mesh& mesh, CornerId a, CornerId b) {
  if (mesh.isNormalLocked(a) != mesh.isNormalLocked(b)) return false;
  const std::vector<math::Vec3f>& normals = mesh.lockedNormals().normals;
  return !mesh.isNormalLocked(a) || normals[at(a)] == normals[at(b)];
}

}  // namespace

NormalFans normalFans(const mesh::Mesh& mesh) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  NormalFans fans;
  fans.ofCorner.assign(at(mesh.cornerCount()), kNone);
  std::vector<CornerId> open;
  for (CornerId start = 0; start < mesh.cornerCount(); ++start) {
    if (fans.ofCorner[at(start)] != kNone) continue;
    fans.ofCorner[at(start)] = fans.count;
    open.push_back(start);
    while (!open.empty()) {
      const CornerId corner = open.back();
      open.pop_back();
      for (const CornerId walk : {corner, adjacency.previousCorner(corner)}) {
        const CornerId next = across(mesh, adjacency, corner, walk);
        if (next == kNone || fans.ofCorner[at(next)] != kNone) continue;
        fans.ofCorner[at(next)] = fans.count;
        open.push_back(next);
      }
    }
    ++fans.count;
  }
  return fans;
}

Index hardenAlongNormals(mesh::Mesh& mesh) {
  if (mesh.lockedNormals().locked.empty()) return 0;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  std::vector<EdgeId> differing;
  for (CornerId corner = 0; corner < mesh.cornerCount(); ++corner)
    for (const CornerId walk : {corner, adjacency.previousCorner(corner)}) {
      const CornerId next = across(mesh, adjacency, corner, walk);
      if (next != kNone && !isSameNormal(mesh, corner, next))
        differing.push_back(mesh.cornerEdge(walk));
    }
  Index count = 0;
  for (const EdgeId edge : differing) {
    count += mesh.isEdgeSmooth(edge) ? 1 : 0;
    mesh.setEdgeSmooth(edge, false);
  }
  return count;
}

}  // namespace host::io
