#include "host/mesh/normals.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/reverse_faces.h"
#include "host/ops/topology/triangulate_faces.h"
#include "host/ops/topology/unite.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

TEST_CASE("triangulateFaces: the listed faces become triangles, the others stay as they are") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    Mesh edited = mesh;
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    const auto result = triangulateFaces(edited, faces);
    REQUIRE(result.has_value());
    requireSound(edited);
    for (const FaceId f : result->triangles) CHECK(edited.faceSize(f) == 3);
    for (EdgeId e = 0; e < mesh.edgeCount() && edited.edgeCount() >= mesh.edgeCount(); ++e)
      CHECK(edited.edge(e) == mesh.edge(e));
  });
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::ConvexFaces)) {
    INFO(entry.name);
    Mesh edited = entry.mesh;
    REQUIRE(triangulateFaces(edited, zoo::allFaces(edited)));
    CHECK(zoo::surfaceArea(edited) == doctest::Approx(zoo::surfaceArea(entry.mesh)).epsilon(1e-4));
    // The two sides of a lamina get the same diagonal.
    if (entry.name != "lamina")
      CHECK(zoo::counts(edited).euler() == zoo::counts(entry.mesh).euler());
  }
  Mesh cube = makeCube().value();
  REQUIRE(triangulateFaces(cube, std::vector<FaceId>{0}));
  using Loop = std::vector<VertexId>;
  const auto loop = [&](FaceId f) {
    return Loop(cube.faceVertices(f).begin(), cube.faceVertices(f).end());
  };
  CHECK(loop(0) == Loop{0, 1, 2});
  CHECK(loop(1) == Loop{2, 1, 3});
  CHECK(loop(2) == Loop{2, 3, 5, 4});
  CHECK((cube.isEdgeSmooth(12) && cube.edge(12).has(1) && cube.edge(12).has(2)));
  // A dart is cut through its inner corner, wherever that stands in the loop.
  for (Index turn = 0; turn < 4; ++turn) {
    std::vector<VertexId> dart{0, 1, 2, 3};
    std::rotate(dart.begin(), dart.begin() + turn, dart.end());
    Mesh mesh = zoo::meshOf({{0, 0, 0}, {2, 0, 0}, {0.5F, 0.5F, 0}, {0, 2, 0}}, {dart});
    REQUIRE(triangulateFaces(mesh, std::vector<FaceId>{0}));
    for (FaceId f = 0; f < 2; ++f) CHECK(mesh::faceNormal(mesh, f).z == doctest::Approx(1));
  }
}

TEST_CASE("reverseFaces: twice is nothing, once turns every normal") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    Mesh edited = mesh;
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    REQUIRE(reverseFaces(edited, faces));
    requireSound(edited);
    for (const FaceId f : faces)
      CHECK(math::length(mesh::faceAreaVector(edited, f) + mesh::faceAreaVector(mesh, f)) <=
            1e-4 * (1 + math::length(mesh::faceAreaVector(mesh, f))));
    REQUIRE(reverseFaces(edited, faces));
    CHECK(edited.topology() == mesh.topology());
    CHECK(edited.lockedNormals() == mesh.lockedNormals());
  });
}

TEST_CASE("conformFaces: finds the faces that were turned over") {
  std::mt19937 random(6);
  for (const zoo::ZooMesh& entry :
       zoo::meshZoo(Has::Faces | Has::Manifold | Has::Closed, Has::SeveralShells)) {
    INFO(entry.name);
    Mesh mesh = entry.mesh;
    const auto turned = randomIds<FaceId>(random, mesh.faceCount(), 0.2);
    if (2 * turned.size() >= static_cast<std::size_t>(mesh.faceCount())) continue;
    REQUIRE(reverseFaces(mesh, turned));
    CHECK(conformFaces(mesh, zoo::allFaces(mesh)).value() == turned);
    CHECK(mesh.topology() == entry.mesh.topology());
  }
}

TEST_CASE("unite: parts keep everything they carry, one behind the other") {
  const auto all = zoo::meshZoo();
  for (std::size_t i = 0; i + 1 < all.size(); ++i) {
    INFO(all[i].name);
    const Mesh &a = all[i].mesh, &b = all[i + 1].mesh;
    const Mesh both = unite(std::vector<UnitePart>{{a, {}}, {b, {}}}).value();
    requireSound(both);
    CHECK(both.vertexCount() == a.vertexCount() + b.vertexCount());
    CHECK(both.faceCount() == a.faceCount() + b.faceCount());
    for (EdgeId e = 0; e < b.edgeCount(); ++e) {
      CHECK(both.isEdgeSmooth(a.edgeCount() + e) == b.isEdgeSmooth(e));
      CHECK(both.edgeCrease(a.edgeCount() + e) == b.edgeCrease(e));
    }
    for (int s = 0; s < b.uvSetCount(); ++s) {
      const int into = both.findUvSet(b.uvSet(s).name);
      REQUIRE(into >= 0);
      for (CornerId c = 0; c < b.cornerCount(); ++c) {
        const UvId was = b.cornerUv(s, c), is = both.cornerUv(into, a.cornerCount() + c);
        REQUIRE((was < 0) == (is < 0));
        if (was >= 0)
          CHECK(b.uvSet(s).points[static_cast<std::size_t>(was)] ==
                both.uvSet(into).points[static_cast<std::size_t>(is)]);
      }
    }
    CHECK(unite(std::vector<UnitePart>{{a, {}}}).value().topology() == a.topology());
  }
  const Mesh cube = makeCube().value();
  const Mesh pair =
      unite(std::vector<UnitePart>{{cube, {}}, {cube, math::Matrix4::scaling({-2, 1, 1})}}).value();
  for (FaceId f = 0; f < pair.faceCount(); ++f)  // both are right side out
    CHECK(math::dot(mesh::faceNormal(pair, f), mesh::faceCenter(pair, f)) > 0);
  CHECK_FALSE(unite({}));
}
