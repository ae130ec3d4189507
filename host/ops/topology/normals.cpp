#include "host/ops/topology/normals.h"

#include "host/base/cancel_poll.h"
#include "host/mesh/shells.h"
#include "host/ops/topology/chip_off.h"
#include "host/ops/topology/reverse_faces.h"

namespace host::ops {
namespace {

void unlockNormals(Mesh& mesh, std::span<const FaceId> faces, NormalsResult& result) {
  if (mesh.lockedNormals().locked.empty()) return;
  mesh::LockedNormals normals = mesh.lockedNormals();
  for (const FaceId f : faces) {
    pollCancel(f);
    bool wasLocked = false;
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
      wasLocked |= mesh.isNormalLocked(c);
      normals.locked[at(c)] = 0;
      normals.normals[at(c)] = {};
    }
    if (wasLocked) result.faces.push_back(f);
  }
  if (!result.faces.empty()) mesh.setLockedNormals(std::move(normals));
}

}  // namespace

Result<NormalsResult> changeNormals(Mesh& mesh, std::span<const FaceId> faces, NormalMode mode) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  NormalsResult result;
  const std::vector<FaceId> ids = sortedIds(faces);
  switch (mode) {
    case NormalMode::Unlock:
      unlockNormals(mesh, ids, result);
      return result;
    case NormalMode::Conform: {
      auto turned = conformFaces(mesh, ids);
      if (!turned) return failWith(std::move(turned).error());
      result.faces = std::move(*turned);
      return result;
    }
    case NormalMode::Reverse:
      result.faces = ids;
      break;
    case NormalMode::ReverseAndExtract: {
      ChipOffOptions inPlace;
      inPlace.duplicate = false;
      HOST_TRY(chipOff(mesh, ids, inPlace));
      result.faces = ids;
      break;
    }
    case NormalMode::ReverseAndPropagate:
      result.faces = mesh::connectedFaces(mesh, ids, mesh::ShellLink::Edges);
      break;
  }
  HOST_TRY(reverseFaces(mesh, result.faces));
  return result;
}

}  // namespace host::ops
