#include "host/mesh/mesh.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <map>
#include <random>
#include <thread>

#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::mesh;
using namespace host::zoo;

TEST_CASE("mesh: a copy costs nothing and never sees the other's edits") {
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    Mesh mesh = zoo.build();
    const Mesh before = mesh;
    const std::uint64_t hash = hashMesh(before);
    CHECK(mesh.bytesNotSharedWith(before) == 0);
    (void)mesh.cornerNormals();

    mesh.editPoints()[0].x += 1;
    CHECK(mesh.bytesNotSharedWith(before) == at(mesh.vertexCount()) * sizeof(Vec3f));
    mesh.setEdgeSmooth(0, !mesh.isEdgeSmooth(0));
    mesh.editUvSet(0).points.push_back({1, 2});
    mesh.editCreases().vertices.assign(at(mesh.vertexCount()), 1);
    mesh.addColorSet({"more", 4, false, {}, {}});
    mesh.setInvisibleFaces({0});
    LockedNormals normals;
    normals.normals.assign(at(mesh.cornerCount()), {1, 0, 0});
    normals.locked.assign(at(mesh.cornerCount()), 1);
    mesh.setLockedNormals(normals);
    CHECK(mesh.cornerNormals()[0] == Vec3f{1, 0, 0});

    CHECK(hashMesh(before) == hash);
    CHECK(before == zoo.mesh);
    CHECK_FALSE(mesh == before);
    CHECK(mesh.sharesTopologyWith(before));
  }
}

TEST_CASE("hash: every array counts") {
  const Mesh mesh = zooMesh("everything");
  std::vector<Mesh> variants(12, mesh);
  variants[0].editPoints()[3].y = -0.0f;
  variants[1].setEdgeSmooth(0, false);
  variants[2].editCreases().edges[1] = 1;
  variants[3].editUvSet(0).points[0].u += 1;
  variants[4].editUvSet(1).name = "other";
  variants[5].editColorSet(0).colors[0].a = 0;
  variants[6].editLockedNormals().locked[0] = 1;
  variants[7].setInvisibleFaces({});
  variants[8].setCurrentUvSet(0);
  variants[9].setTopology(zooMesh("prism of five").topology());
  variants[10].editUvSet(0).cornerIds[0] = 3;
  variants[11].removeUvSet(2);
  variants[0].editPoints()[3] = {1, 1, 0.99f};
  std::map<std::uint64_t, int> hashes{{hashMesh(mesh), 1}};
  for (const Mesh& variant : variants) ++hashes[hashMesh(variant)];
  CHECK(hashes.size() == variants.size() + 1);
}

TEST_CASE("uv and colour sets: removal keeps the current set, or falls back to the first") {
  Mesh mesh = zooMesh("two uv sets");  // map1, lightmap (current), empty
  mesh.removeUvSet(0);
  CHECK(mesh.uvSet(mesh.currentUvSet()).name == "lightmap");
  mesh.removeUvSet(mesh.currentUvSet());
  CHECK(mesh.uvSet(mesh.currentUvSet()).name == "empty");
  Mesh colors = zooMesh("colored");
  colors.removeColorSet(0);
  CHECK(colors.currentColorSet() == 0);
  colors.removeColorSet(0);
  CHECK(colors.currentColorSet() == kNone);
}

TEST_CASE("adjacency: agrees with plain maps on every zoo mesh") {
  for (const ZooMesh& zoo : meshZoo()) {
    CAPTURE(zoo.name);
    const Mesh& mesh = zoo.mesh;
    const Adjacency& adjacency = mesh.adjacency();
    std::map<VertexId, std::vector<EdgeId>> vertexEdges;
    std::map<VertexId, std::vector<CornerId>> vertexCorners;
    std::map<VertexId, std::vector<FaceId>> vertexFaces;
    std::map<EdgeId, std::vector<FaceId>> edgeFaces;
    std::map<EdgeId, std::vector<CornerId>> edgeCorners;
    const auto append = [](std::vector<FaceId>& list, FaceId id) {
      if (list.empty() || list.back() != id) list.push_back(id);
    };
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
      for (VertexId v : {mesh.edge(e).a, mesh.edge(e).b}) vertexEdges[v].push_back(e);
    for (FaceId f = 0; f < mesh.faceCount(); ++f)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        vertexCorners[mesh.cornerVertex(c)].push_back(c);
        append(vertexFaces[mesh.cornerVertex(c)], f);
        append(edgeFaces[mesh.cornerEdge(c)], f);
        edgeCorners[mesh.cornerEdge(c)].push_back(c);
        CHECK(adjacency.cornerFace(c) == f);
        CHECK(adjacency.previousCorner(adjacency.nextCorner(c)) == c);
      }
    for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
      CHECK(std::ranges::equal(adjacency.vertexEdges(v), vertexEdges[v]));
      CHECK(std::ranges::equal(adjacency.vertexCorners(v), vertexCorners[v]));
      CHECK(std::ranges::equal(adjacency.vertexFaces(v), vertexFaces[v]));
    }
    bool isManifold = true;
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      CHECK(std::ranges::equal(adjacency.edgeFaces(e), edgeFaces[e]));
      CHECK(std::ranges::equal(adjacency.edgeCorners(e), edgeCorners[e]));
      CHECK(adjacency.findEdge(mesh.edge(e).b, mesh.edge(e).a) == e);
      isManifold = isManifold && adjacency.isManifoldEdge(e);
    }
    for (VertexId v = 0; v < mesh.vertexCount(); ++v)
      isManifold = isManifold && adjacency.isManifoldVertex(v);
    // A loop that visits a vertex twice is no fan of its own in the zoo's eyes.
    if (zoo.name != "keyhole") CHECK(isManifold == zoo.has(Has::Manifold));
  }
}

TEST_CASE("adjacency: fits each of two meshes that share faces but not the number of points") {
  Mesh more = zooMesh("cube");
  const Mesh fewer = more;
  std::vector<Vec3f> points(more.points().begin(), more.points().end());
  points.push_back({9, 9, 9});
  more.setPoints(points);
  CHECK(more.sharesTopologyWith(fewer));
  CHECK(more.adjacency().vertexFaces(8).empty());
  CHECK(fewer.adjacency().vertexCount() == 8);
  CHECK(&more.adjacency() == &Mesh(more).adjacency());
}

TEST_CASE("mesh: caches asked for by several threads at once are built once and alike") {
  const Mesh mesh = torusMesh(60, 40);
  std::vector<const Adjacency*> adjacencies(4);
  std::vector<const Vec3f*> normals(4);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < 4; ++i)
    threads.emplace_back([&, i] {
      const Mesh copy = mesh;
      normals[i] = copy.cornerNormals().data();
      adjacencies[i] = &copy.adjacency();
    });
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 1; i < 4; ++i) {
    CHECK(adjacencies[i] == adjacencies[0]);
    CHECK(normals[i] == normals[0]);
  }
}

TEST_CASE("buildMesh: numbers edges by first use and finds them whatever the valence") {
  const Mesh cube = zooMesh("cube");
  for (EdgeId e = 0, next = 0; e < cube.edgeCount(); ++e) {
    const auto first = std::ranges::find(cube.topology().cornerEdges, e);
    CHECK(first - cube.topology().cornerEdges.begin() >= next);
    next = static_cast<EdgeId>(first - cube.topology().cornerEdges.begin());
    CHECK(cube.edge(e).a == cube.topology().cornerVertices[at(next)]);
  }
  // Two fans of 500 around vertices 0 and 1: long past what a chain holds, from both ends.
  std::vector<Vec3f> points(502);
  std::vector<std::vector<VertexId>> faces;
  for (VertexId v = 2; v < 501; ++v) {
    faces.push_back({0, v, v + 1});
    faces.push_back({1, v + 1, v});
  }
  const Mesh fans = meshOf(points, faces);
  CHECK(check(fans).empty());
  CHECK(fans.edgeCount() == 500 * 2 + 499);
}

TEST_CASE("buildMesh: names the first bad face") {
  const std::vector<Vec3f> points(4);
  const auto message = [&points](std::vector<Index> counts, std::vector<VertexId> vertices) {
    const auto mesh = buildMesh(points, counts, vertices);
    return mesh ? std::string("built") : mesh.error().message;
  };
  CHECK(message({3}, {0, 1, 2}) == "built");
  CHECK(message({3, 2}, {0, 1, 2, 3, 0}) == "Face 1 has 2 corners; a face needs at least 3.");
  CHECK(message({3}, {0, 1, 4}) == "Face 0 names vertex 4; the mesh has vertices 0 to 3.");
  CHECK(message({3}, {0, 1, -1}) == "Face 0 names vertex -1; the mesh has vertices 0 to 3.");
  CHECK(message({4}, {0, 1, 2, 0}) == "Face 0 uses vertex 0 twice in a row.");
  CHECK(message({2000000000}, {0, 1, 2}) ==
        "Face 0 asks for 2000000000 vertices, but only 3 are left in the list.");
  CHECK(message({3}, {0, 1, 2, 3}) == "The faces use 3 of the 4 listed vertices.");
}

TEST_CASE("check: reports each kind of damage") {
  const Mesh good = zooMesh("everything");
  const auto breaks = [&good](auto damage) {
    Mesh mesh = good;
    damage(mesh);
    return !check(mesh).empty();
  };
  const auto topology = [&breaks](auto damage) {
    return breaks([&damage](Mesh& mesh) {
      Topology t = mesh.topology();
      damage(t);
      mesh.setTopology(std::move(t));
    });
  };
  CHECK(topology([](Topology& t) { t.cornerVertices[2] = 8; }));
  CHECK(topology([](Topology& t) { std::swap(t.cornerEdges[0], t.cornerEdges[1]); }));
  CHECK(topology([](Topology& t) { t.cornerEdges[5] = -1; }));
  CHECK(topology([](Topology& t) { t.faceOffsets[2] = 6; }));
  CHECK(topology([](Topology& t) { t.faceOffsets.pop_back(); }));
  CHECK(topology([](Topology& t) { t.edges.push_back({0, 7}); }));
  CHECK(topology([](Topology& t) { t.edges[3] = t.edges[2]; }));
  CHECK(topology([](Topology& t) { t.edges[3].a = t.edges[3].b; }));
  CHECK(breaks([](Mesh& m) { m.editPoints()[1].z = INFINITY; }));
  CHECK(breaks([](Mesh& m) { m.editUvSet(0).points[0].v = NAN; }));
  CHECK(breaks([](Mesh& m) { m.editUvSet(0).cornerIds[0] = 14; }));
  CHECK(breaks([](Mesh& m) { m.editUvSet(0).cornerIds[0] = -1; }));
  CHECK(breaks([](Mesh& m) { m.editUvSet(0).cornerIds.pop_back(); }));
  CHECK(breaks([](Mesh& m) { m.editUvSet(1).name = "map1"; }));
  CHECK(breaks([](Mesh& m) { m.setCurrentUvSet(3); }));
  CHECK(breaks([](Mesh& m) { m.editColorSet(0).cornerIds[1] = 99; }));
  CHECK(breaks([](Mesh& m) { m.editCreases().edges[0] = -1; }));
  CHECK(breaks([](Mesh& m) { m.editCreases().vertices.pop_back(); }));
  CHECK(breaks([](Mesh& m) { m.setEdgeSmooth(std::vector<std::uint8_t>(3)); }));
  CHECK(breaks([](Mesh& m) { m.editLockedNormals().locked.pop_back(); }));
  CHECK(breaks([](Mesh& m) { m.setInvisibleFaces({2, 1}); }));
}
