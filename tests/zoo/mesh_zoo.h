#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::zoo {

/// Properties of a zoo mesh, found by counting, not by the code under test.
enum class Has : std::uint32_t {
  Anything = 0,
  Faces = 1u << 0,
  Closed = 1u << 1,    ///< every edge has two faces
  Border = 1u << 2,    ///< some edge has one face
  Manifold = 1u << 3,  ///< no edge of three faces, one fan at every vertex, wound alike
  NonManifold = 1u << 4,
  QuadsOnly = 1u << 5,
  TrianglesOnly = 1u << 6,
  Ngons = 1u << 7,    ///< some face of five or more
  Concave = 1u << 8,  ///< some face that is not convex
  Uvs = 1u << 9,
  SeveralUvSets = 1u << 10,
  UvSeams = 1u << 11,     ///< a vertex with several UVs
  PartialUvs = 1u << 12,  ///< some faces with and some without
  Creases = 1u << 13,
  HardEdges = 1u << 14,
  Colors = 1u << 15,
  LockedNormals = 1u << 16,
  IsolatedVertices = 1u << 17,
  ZeroArea = 1u << 18,  ///< some face without area
  SeveralShells = 1u << 19,
  InvisibleFaces = 1u << 20,
  ConvexFaces = 1u << 21,  ///< all faces planar, convex and with area
};
[[nodiscard]] constexpr Has operator|(Has a, Has b) {
  return static_cast<Has>(static_cast<std::uint32_t>(a) | static_cast<std::uint32_t>(b));
}
[[nodiscard]] constexpr bool includes(Has all, Has wanted) {
  return (static_cast<std::uint32_t>(all) & static_cast<std::uint32_t>(wanted)) ==
         static_cast<std::uint32_t>(wanted);
}

struct ZooMesh {
  std::string name;
  mesh::Mesh mesh;
  Has properties = Has::Anything;
  [[nodiscard]] mesh::Mesh build() const { return mesh; }
  [[nodiscard]] bool has(Has wanted) const { return includes(properties, wanted); }
};

/// All zoo meshes with every property of `required` and none of `excluded`.
[[nodiscard]] std::vector<ZooMesh> meshZoo(Has required = Has::Anything,
                                           Has excluded = Has::Anything);
/// One zoo mesh by name; ends the test program when there is none.
[[nodiscard]] mesh::Mesh zooMesh(const std::string& name);

// Numbers and id lists that tests keep asking for.
struct Counts {
  Index vertices = 0, edges = 0, faces = 0, faceCorners = 0;
  [[nodiscard]] Index euler() const { return vertices - edges + faces; }
  friend bool operator==(const Counts&, const Counts&) = default;
};
[[nodiscard]] Counts counts(const mesh::Mesh& mesh);
[[nodiscard]] std::vector<FaceId> allFaces(const mesh::Mesh& mesh);
[[nodiscard]] std::vector<EdgeId> allEdges(const mesh::Mesh& mesh);
[[nodiscard]] std::vector<VertexId> allVertices(const mesh::Mesh& mesh);
/// The sum of the faces' areas, each face as a fan around its mean.
[[nodiscard]] double surfaceArea(const mesh::Mesh& mesh);

// Sized shapes, for growth and for shapes of one's own.
/// A grid of nx by nz unit quads on y = 0 with one UV set over the unit square; faces row by row
/// along x, facing +y.
[[nodiscard]] mesh::Mesh gridMesh(Index nx, Index nz);
/// A closed torus of quads, `around` by `across`, radii 2 and 0.75, without UVs.
[[nodiscard]] mesh::Mesh torusMesh(Index around, Index across);
/// A mesh from loops, which must be valid.
[[nodiscard]] mesh::Mesh meshOf(std::vector<math::Vec3f> points,
                                const std::vector<std::vector<VertexId>>& faces);

}  // namespace host::zoo
