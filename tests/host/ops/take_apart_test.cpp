#include <set>

#include "host/mesh/hash.h"
#include "host/mesh/normals.h"
#include "host/mesh/shells.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/topology/chip_off.h"
#include "host/ops/topology/extrude_faces.h"
#include "host/ops/topology/normals.h"
#include "host/ops/topology/quadrangulate.h"
#include "host/ops/topology/separate.h"
#include "host/ops/topology/triangulate_faces.h"
#include "host/ops/topology/unite.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

TEST_CASE("separate: the pieces are connected, sound and united again they are the mesh") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo()) {
    INFO(entry.name);
    const std::vector<Mesh> pieces = separate(entry.mesh);
    CHECK(static_cast<Index>(pieces.size()) == mesh::findShells(entry.mesh).count);
    std::vector<UnitePart> parts;
    Index faces = 0, edges = 0;
    for (const Mesh& piece : pieces) {
      requireSound(piece);
      CHECK(mesh::findShells(piece).count == 1);
      faces += piece.faceCount();
      edges += piece.edgeCount();
      parts.push_back({piece, {}});
    }
    CHECK(faces == entry.mesh.faceCount());
    CHECK(edges == entry.mesh.edgeCount());
    if (pieces.empty()) continue;
    const Mesh again = unite(parts).value();
    CHECK(geometryOf(again) == geometryOf(entry.mesh));
    if (pieces.size() != 1 || entry.has(Has::IsolatedVertices)) continue;
    CHECK(pieces[0].topology() == entry.mesh.topology());
    CHECK(pieces[0].creases() == entry.mesh.creases());
    CHECK(std::ranges::equal(pieces[0].edgeSmooth(), entry.mesh.edgeSmooth()));
    for (int s = 0; s < entry.mesh.uvSetCount(); ++s)
      CHECK(pieces[0].uvSet(s).name == entry.mesh.uvSet(s).name);
  }
}

TEST_CASE("chipOff: what comes off is loose, and looks as it did") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    for (const bool duplicate : {true, false})
      for (const bool together : {true, false}) {
        ChipOffOptions options;
        options.duplicate = duplicate;
        options.keepFacesTogether = together;
        Mesh edited = mesh;
        const auto result = chipOff(edited, faces, options);
        REQUIRE(result.has_value());
        requireSound(edited);
        REQUIRE(result->faces.size() == faces.size());
        CHECK(edited.faceCount() ==
              mesh.faceCount() + (duplicate ? static_cast<Index>(faces.size()) : 0));
        const auto isOff = flagsOf(result->faces, edited.faceCount());
        std::set<VertexId> loose;
        for (const FaceId f : result->faces)
          loose.insert(edited.faceVertices(f).begin(), edited.faceVertices(f).end());
        for (FaceId f = 0; f < edited.faceCount(); ++f)
          if (isOff[static_cast<std::size_t>(f)] == 0)
            for (const VertexId v : edited.faceVertices(f)) CHECK_FALSE(loose.contains(v));
        for (std::size_t i = 0; i < faces.size(); ++i)
          for (Index k = 0; k < mesh.faceSize(faces[i]); ++k) {
            const CornerId c = mesh.firstCorner(faces[i]) + k,
                           d = edited.firstCorner(result->faces[i]) + k;
            CHECK(mesh.point(mesh.cornerVertex(c)) == edited.point(edited.cornerVertex(d)));
            CHECK(mesh.edgeCrease(mesh.cornerEdge(c)) == edited.edgeCrease(edited.cornerEdge(d)));
            CHECK(mesh.isEdgeSmooth(mesh.cornerEdge(c)) ==
                  edited.isEdgeSmooth(edited.cornerEdge(d)));
          }
      }
  });
  Mesh cube = makeCube().value();
  ChipOffOptions options;
  options.local.translate.z = 2;
  const auto result = chipOff(cube, std::vector<FaceId>{1}, options);
  REQUIRE(result.has_value());
  CHECK(cube.vertexCount() == 12);
  CHECK(mesh::faceCenter(cube, result->faces[0]).y == doctest::Approx(2.5));
}

TEST_CASE("changeNormals: every mode over the zoo") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    for (const NormalMode mode : {NormalMode::Reverse, NormalMode::Unlock, NormalMode::Conform,
                                  NormalMode::ReverseAndExtract, NormalMode::ReverseAndPropagate}) {
      Mesh edited = mesh;
      const auto result = changeNormals(edited, faces, mode);
      REQUIRE(result.has_value());
      requireSound(edited);
      const bool turns = mode != NormalMode::Unlock;
      const auto isChanged = flagsOf(result->faces, mesh.faceCount());
      for (FaceId f = 0; f < mesh.faceCount(); ++f) {
        const double sign = turns && isChanged[static_cast<std::size_t>(f)] != 0 ? -1 : 1;
        CHECK(math::length(mesh::faceAreaVector(edited, f) -
                           mesh::faceAreaVector(mesh, f) * sign) <= 1e-4);
      }
    }
  });
  Mesh torus = zoo::torusMesh(5, 4);
  const auto all = changeNormals(torus, std::vector<FaceId>{7}, NormalMode::ReverseAndPropagate);
  CHECK(static_cast<Index>(all->faces.size()) == torus.faceCount());
  CHECK_FALSE(changeNormals(torus, std::vector<FaceId>{99}, NormalMode::Reverse));
}

TEST_CASE("quadrangulate: triangulated flat quads come back") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::QuadsOnly | Has::ConvexFaces)) {
    INFO(entry.name);
    Mesh mesh = entry.mesh;
    REQUIRE(triangulateFaces(mesh, zoo::allFaces(mesh)));
    QuadrangulateOptions options;
    options.angle = 0.01;
    REQUIRE(quadrangulate(mesh, zoo::allFaces(mesh), options));
    requireSound(mesh);
    CHECK(zoo::surfaceArea(mesh) == doctest::Approx(zoo::surfaceArea(entry.mesh)).epsilon(1e-4));
  }
  Mesh cube = makeCube().value();
  REQUIRE(triangulateFaces(cube, zoo::allFaces(cube)));
  Mesh some = cube;
  const auto few = quadrangulate(some, std::vector<FaceId>{0, 1, 2});
  CHECK(few->quads.size() == 1);
  QuadrangulateOptions loose;
  loose.angle = 4;
  loose.keepHardEdges = false;
  loose.keepTextureBorders = false;
  const auto quads = quadrangulate(cube, zoo::allFaces(cube), loose);
  CHECK(quads->quads.size() == 6);
  CHECK(zoo::counts(cube) == zoo::counts(makeCube().value()));
}

TEST_CASE("quadrangulate: the squarest pair comes first, and creased edges stay") {
  // Triangle 0 makes a square with 1 and a kite with 2.
  const std::vector<math::Vec3f> points{
      {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2.5f, 0.2f, 0}};
  const Mesh strip = mesh::buildMesh(points, std::vector<Index>{3, 3, 3},
                                     std::vector<VertexId>{0, 1, 2, 0, 2, 3, 1, 4, 2})
                         .value();
  Mesh joined = strip;
  REQUIRE(quadrangulate(joined, zoo::allFaces(joined)));
  REQUIRE(joined.faceCount() == 2);
  const auto quad = joined.faceVertices(0);
  CHECK(std::set<VertexId>(quad.begin(), quad.end()) == std::set<VertexId>{0, 1, 2, 3});

  Mesh creased = strip;
  creased.editCreases().edges.assign(static_cast<std::size_t>(creased.edgeCount()), 0);
  creased.editCreases().edges[static_cast<std::size_t>(creased.adjacency().findEdge(0, 2))] = 2;
  REQUIRE(quadrangulate(creased, zoo::allFaces(creased)));
  const auto kite = creased.faceVertices(0);
  CHECK(std::set<VertexId>(kite.begin(), kite.end()) == std::set<VertexId>{0, 1, 2, 4});
}

TEST_CASE("quadrangulate: listed triangles become at most pairs, nothing else changes") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    Mesh edited = mesh;
    const auto result = quadrangulate(edited, faces);
    REQUIRE(result.has_value());
    requireSound(edited);
    CHECK(edited.faceCount() == mesh.faceCount() - static_cast<Index>(result->quads.size()));
    for (const FaceId f : result->quads) CHECK(edited.faceSize(f) == 4);
  });
}

TEST_CASE("ExtrudePlan: placed again and again it gives what extruding gives") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
    for (const bool together : {true, false}) {
      ExtrudeFacesOptions options;
      options.keepFacesTogether = together;
      options.divisions = 2;
      const auto plan = ExtrudePlan::make(mesh, faces, options);
      REQUIRE(plan.has_value());
      for (const double z : {0.0, 0.7, -0.2}) {
        options.local.translate.z = z;
        options.offset = z / 4;
        options.smoothingAngle = z;
        Mesh direct = mesh;
        const auto result = extrudeFaces(direct, faces, options);
        const auto placed = plan->place(options);
        REQUIRE((result && placed));
        CHECK(*placed == direct);
        CHECK(plan->result().sides == result->sides);
      }
      options.divisions = 3;
      CHECK_FALSE(plan->place(options).has_value());
    }
  });
}
