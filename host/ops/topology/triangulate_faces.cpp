#include "host/ops/topology/triangulate_faces.h"

#include "host/base/cancel_poll.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"
#include "host/mesh/triangulate.h"

namespace host::ops {
namespace {

// Whether the quad turns the wrong way at one of its corners, seen along its normal.
bool isReflex(const Mesh& mesh, FaceId f, std::size_t k) {
  const auto loop = mesh.faceVertices(f);
  const math::Vec3 p = mesh.point(loop[k]);
  const math::Vec3 turn =
      math::cross(mesh.point(loop[(k + 1) % 4]) - p, mesh.point(loop[(k + 3) % 4]) - p);
  return math::dot(turn, mesh::faceAreaVector(mesh, f)) < 0;
}

std::vector<mesh::LoopTriangle> trianglesOf(const Mesh& mesh, FaceId f) {
  if (mesh.faceSize(f) != 4) return mesh::triangulateFace(mesh, f);
  if (isReflex(mesh, f, 0) || isReflex(mesh, f, 2)) return {{0, 1, 2}, {0, 2, 3}};
  return {{0, 1, 3}, {3, 1, 2}};
}

bool hasThreeVertices(const Mesh& mesh, FaceId f, const mesh::LoopTriangle& t) {
  const auto loop = mesh.faceVertices(f);
  const auto v = [&](std::size_t i) { return loop[at(t[i])]; };
  return v(0) != v(1) && v(1) != v(2) && v(2) != v(0);
}

}  // namespace

Result<TriangulateResult> triangulateFaces(Mesh& mesh, std::span<const FaceId> faces) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  const std::vector<std::uint8_t> isListed = flagsOf(faces, mesh.faceCount());
  TriangulateResult result;
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  FaceId next = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    result.newFaces.push_back(next);
    if (isListed[at(f)] == 0) {
      rebuilder.copyFace(f);
      ++next;
      continue;
    }
    for (const mesh::LoopTriangle& triangle : trianglesOf(mesh, f)) {
      // A face that visits a vertex twice can give a triangle without a third one.
      if (!hasThreeVertices(mesh, f, triangle)) continue;
      rebuilder.beginFace(f);
      for (const Index k : triangle)
        rebuilder.addCorner(mesh.faceVertices(f)[at(k)], mesh.firstCorner(f) + k);
      rebuilder.endFace();
      result.triangles.push_back(next++);
    }
  }
  result.newFaces.push_back(next);
  mesh = rebuilder.finish().mesh;
  return result;
}

}  // namespace host::ops
