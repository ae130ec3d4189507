#include "host/ops/topology/reverse_faces.h"

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"

namespace host::ops {
namespace {

// The direction of each face in its piece: 1 as the piece's lowest face, 2 against it, 0 not
// listed.
class Winder {
 public:
  Winder(const Mesh& mesh, std::span<const FaceId> faces)
      : mesh_(mesh), isListed_(flagsOf(faces, mesh.faceCount())), side_(at(mesh.faceCount()), 0) {}

  // The smaller part of the piece with this face; empty when it was looked at before.
  std::vector<FaceId> minority(FaceId seed) {
    if (side_[at(seed)] != 0) return {};
    std::vector<FaceId> parts[2], open{seed};
    side_[at(seed)] = 1;
    while (!open.empty()) {
      const FaceId f = open.back();
      open.pop_back();
      parts[side_[at(f)] - 1].push_back(f);
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c)
        visitAcross(f, c, open);
    }
    return parts[1].size() <= parts[0].size() ? parts[1] : parts[0];
  }

 private:
  void visitAcross(FaceId f, CornerId corner, std::vector<FaceId>& open) {
    const auto corners = mesh_.adjacency().edgeCorners(mesh_.cornerEdge(corner));
    if (corners.size() != 2) return;
    const CornerId other = corners[0] == corner ? corners[1] : corners[0];
    const FaceId g = mesh_.adjacency().cornerFace(other);
    if (isListed_[at(g)] == 0 || side_[at(g)] != 0) return;
    const bool isAlike = mesh_.cornerVertex(other) != mesh_.cornerVertex(corner);
    side_[at(g)] = static_cast<std::uint8_t>(isAlike ? side_[at(f)] : 3 - side_[at(f)]);
    open.push_back(g);
  }

  const Mesh& mesh_;
  std::vector<std::uint8_t> isListed_, side_;
};

}  // namespace

Result<void> reverseFaces(Mesh& mesh, std::span<const FaceId> faces) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  if (faces.empty()) return {};
  const std::vector<std::uint8_t> isListed = flagsOf(faces, mesh.faceCount());
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    if (isListed[at(f)] == 0) {
      rebuilder.copyFace(f);
      continue;
    }
    rebuilder.beginFace(f);
    const CornerId first = mesh.firstCorner(f);
    for (Index k = mesh.faceSize(f); k > 0; --k) {
      const CornerId c = first + k % mesh.faceSize(f);
      rebuilder.addCorner(mesh.cornerVertex(c), c);
    }
    rebuilder.endFace();
  }
  mesh = rebuilder.finish().mesh;
  if (mesh.lockedNormals().locked.empty()) return {};
  mesh::LockedNormals normals = mesh.lockedNormals();
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (CornerId c = mesh.firstCorner(f); isListed[at(f)] != 0 && c < mesh.firstCorner(f + 1); ++c)
      normals.normals[at(c)] = (-math::Vec3(normals.normals[at(c)])).toFloat();
  mesh.setLockedNormals(std::move(normals));
  return {};
}

Result<std::vector<FaceId>> conformFaces(Mesh& mesh, std::span<const FaceId> faces) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  Winder winder(mesh, faces);
  std::vector<FaceId> turned;
  for (const FaceId f : sortedIds(faces)) {
    const std::vector<FaceId> part = winder.minority(f);
    turned.insert(turned.end(), part.begin(), part.end());
  }
  turned = sortedIds(turned);
  HOST_TRY(reverseFaces(mesh, turned));
  return turned;
}

}  // namespace host::ops
