#include "host/mesh/rebuild.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <array>
#include <random>

#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::mesh;
using namespace host::zoo;

namespace {

/// Splits every edge in the middle: the data of a new corner lies between its two neighbours'.
Rebuilt splitAllEdges(const Mesh& mesh) {
  MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const auto [a, b] = mesh.edge(e);
    const VertexId v = rebuilder.addVertex(((mesh.point(a) + mesh.point(b)) * 0.5).toFloat());
    rebuilder.inheritEdge(a, v, e);
    rebuilder.inheritEdge(v, b, e);
  }
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    rebuilder.beginFace(f);
    for (Index i = 0; i < mesh.faceSize(f); ++i) {
      const CornerId c = mesh.firstCorner(f) + i;
      const CornerId next = mesh.firstCorner(f) + (i + 1) % mesh.faceSize(f);
      const std::array<CornerWeight, 2> blend{{{c, 0.5}, {next, 0.5}}};
      rebuilder.addCorner(mesh.cornerVertex(c), c);
      rebuilder.addCorner(mesh.vertexCount() + mesh.cornerEdge(c), blend);
    }
    rebuilder.endFace();
  }
  return rebuilder.finish();
}

/// Keeps every second face as plain bytes.
std::vector<std::uint8_t> everySecond(const Mesh& mesh) {
  std::vector<std::uint8_t> keep(at(mesh.faceCount()));
  for (std::size_t f = 0; f < keep.size(); ++f) keep[f] = f % 2 == 0;
  return keep;
}

}  // namespace

TEST_CASE("rebuild: copying every face gives the same mesh, bit for bit") {
  for (const ZooMesh& zoo : meshZoo()) {
    CAPTURE(zoo.name);
    const Rebuilt rebuilt =
        keepFaces(zoo.mesh, std::vector<std::uint8_t>(at(zoo.mesh.faceCount()), 1));
    CHECK(hashMesh(rebuilt.mesh) == hashMesh(zoo.mesh));
    CHECK(rebuilt.edgeMap == allEdges(zoo.mesh));
    CHECK(rebuilt.vertexMap == allVertices(zoo.mesh));
  }
}

TEST_CASE("keepFaces: what stays keeps its order and its data, what hung on the rest goes") {
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    const Mesh& before = zoo.mesh;
    const auto [mesh, vertexMap, edgeMap, uvMaps] = keepFaces(before, everySecond(before));
    for (const std::string& fault : check(mesh)) FAIL_CHECK(fault);
    REQUIRE(mesh.faceCount() == (before.faceCount() + 1) / 2);
    for (int set = 0; set < before.uvSetCount(); ++set)
      for (UvId id = 0; at(id) < before.uvSet(set).points.size(); ++id) {
        const UvId now = uvMaps[at(set)].empty() ? id : uvMaps[at(set)][at(id)];
        if (now != kNone)
          CHECK(mesh.uvSet(set).points[at(now)] == before.uvSet(set).points[at(id)]);
      }
    for (const IdView map : {IdView(vertexMap), IdView(edgeMap)}) {
      std::vector<Index> kept(map.begin(), map.end());
      std::erase(kept, kNone);
      CHECK(std::ranges::is_sorted(kept));
    }
    for (EdgeId e = 0; e < before.edgeCount(); ++e) {
      if (edgeMap[at(e)] == kNone) continue;
      CHECK(mesh.isEdgeSmooth(edgeMap[at(e)]) == before.isEdgeSmooth(e));
      CHECK(mesh.edgeCrease(edgeMap[at(e)]) == before.edgeCrease(e));
      CHECK(mesh.edge(edgeMap[at(e)]).a == vertexMap[at(before.edge(e).a)]);
    }
    for (FaceId f = 0; f < mesh.faceCount(); ++f)
      for (Index i = 0; i < mesh.faceSize(f); ++i) {
        const CornerId now = mesh.firstCorner(f) + i, was = before.firstCorner(2 * f) + i;
        CHECK(mesh.point(mesh.cornerVertex(now)) == before.point(before.cornerVertex(was)));
        CHECK(mesh.isNormalLocked(now) == before.isNormalLocked(was));
        for (int s = 0; s < mesh.uvSetCount(); ++s) {
          const UvId a = mesh.cornerUv(s, now), b = before.cornerUv(s, was);
          REQUIRE((a == kNone) == (b == kNone));
          if (a != kNone) CHECK(mesh.uvSet(s).points[at(a)] == before.uvSet(s).points[at(b)]);
        }
      }
  }
  // UVs that no face used before are not ours to throw away; those that lost their faces are.
  CHECK(keepFaces(zooMesh("unused uvs"), std::vector<std::uint8_t>{1, 0})
            .mesh.uvSet(0)
            .points.size() == 3 + 4);
  CHECK(keepFaces(zooMesh("isolated vertices"), std::vector<std::uint8_t>{0}).mesh.vertexCount() ==
        3);
  CHECK(keepFaces(zooMesh("invisible faces"), everySecond(zooMesh("invisible faces")))
            .mesh.invisibleFaces()[0] == 2);
}

TEST_CASE(
    "rebuild: split edges hand down hardness and creases, and new UVs are shared as the old ones "
    "were") {
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    const Mesh& before = zoo.mesh;
    const Rebuilt rebuilt = splitAllEdges(before);
    const Mesh& mesh = rebuilt.mesh;
    for (const std::string& fault : check(mesh)) FAIL_CHECK(fault);
    CHECK(mesh.edgeCount() == 2 * before.edgeCount());
    CHECK(surfaceArea(mesh) == doctest::Approx(surfaceArea(before)).epsilon(0.05));
    for (EdgeId e = 0; e < before.edgeCount(); ++e) {
      CHECK(rebuilt.edgeMap[at(e)] == kNone);
      const VertexId middle = before.vertexCount() + e;
      for (VertexId end : {before.edge(e).a, before.edge(e).b}) {
        const EdgeId half = mesh.adjacency().findEdge(middle, end);
        REQUIRE(half != kNone);
        CHECK(mesh.isEdgeSmooth(half) == before.isEdgeSmooth(e));
        CHECK(mesh.edgeCrease(half) == before.edgeCrease(e));
      }
    }
    for (int s = 0; s < mesh.uvSetCount(); ++s) {
      // One new UV for each pair of old ones that an edge runs between.
      std::vector<std::array<Index, 3>> pairs;
      for (FaceId f = 0; f < before.faceCount(); ++f)
        for (Index i = 0; i < before.faceSize(f); ++i) {
          const CornerId c = before.firstCorner(f) + i;
          const CornerId next = before.firstCorner(f) + (i + 1) % before.faceSize(f);
          const UvId first = before.cornerUv(s, c), second = before.cornerUv(s, next);
          const auto [a, b] = std::minmax(first, second);
          if (a != kNone && a != b) pairs.push_back({before.cornerEdge(c), a, b});
        }
      std::ranges::sort(pairs);
      pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
      CHECK(mesh.uvSet(s).points.size() == before.uvSet(s).points.size() + pairs.size());
    }
  }
}

TEST_CASE("rebuild: blends give the weighted mean and don't need weights that add up to one") {
  Mesh mesh = zooMesh("quad");
  mesh.setUvSet(0, {"map1", {{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {0, 1, 2, 3}});
  ColorSet colors{"c", 4, false, {{1, 0, 0, 1}, {0, 1, 0, 1}}, {0, 1, kNone, kNone}};
  mesh.addColorSet(colors);
  mesh.setLockedNormals({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 1}}, {1, 1, 0, 0}});
  MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  const std::array<CornerWeight, 2> towardsFirst{{{0, 3}, {1, 1}}}, towardsNone{{{1, 1}, {2, 1}}};
  rebuilder.beginFace();
  rebuilder.addCorner(0, towardsFirst);
  rebuilder.addCorner(1, towardsNone);
  rebuilder.addCorner(2, 2);
  rebuilder.endFace();
  const Rebuilt rebuilt = rebuilder.finish({.dropUnusedVertices = true});
  CHECK(check(rebuilt.mesh).empty());
  CHECK(rebuilt.vertexMap == std::vector<VertexId>{0, 1, 2, kNone});
  const UvSet& uvs = rebuilt.mesh.uvSet(0);
  CHECK(uvs.points[at(uvs.cornerIds[0])] == Vec2f{0.25f, 0});
  CHECK(uvs.points[at(uvs.cornerIds[1])] == Vec2f{1, 0.5f});
  const ColorSet& carried = rebuilt.mesh.colorSet(0);
  CHECK(carried.colors[at(carried.cornerIds[0])] == Color4f{0.75f, 0.25f, 0, 1});
  CHECK(carried.colors[at(carried.cornerIds[1])] == Color4f{0, 1, 0, 1});
  CHECK(carried.cornerIds[2] == kNone);
  CHECK(rebuilt.mesh.isNormalLocked(0));
  CHECK_FALSE(rebuilt.mesh.isNormalLocked(1));
}

TEST_CASE("rebuild: detached faces get edges of their own, the survivors keep theirs") {
  const Mesh grid = gridMesh(2, 1);
  MeshRebuilder rebuilder(grid);
  rebuilder.keepAllVertices();
  const VertexId low = rebuilder.keepVertex(1), high = rebuilder.keepVertex(4);
  rebuilder.copyFace(0);
  rebuilder.beginFace(1);
  const VertexId loop[4] = {low, 2, 5, high};
  for (Index i = 0; i < 4; ++i) rebuilder.addCorner(loop[i], grid.firstCorner(1) + i);
  rebuilder.endFace();
  const Rebuilt rebuilt = rebuilder.finish();
  CHECK(check(rebuilt.mesh).empty());
  CHECK(rebuilt.mesh.edgeCount() == 8);
  CHECK(rebuilt.edgeMap[at(grid.adjacency().findEdge(1, 4))] != kNone);
  CHECK(rebuilt.mesh.adjacency().isBorderEdge(rebuilt.mesh.adjacency().findEdge(low, high)));
  // The UVs stay welded: tearing them is a decision of its own.
  CHECK(rebuilt.mesh.uvSet(0).points.size() == 6);
}

TEST_CASE("rebuild: runs of copied faces give what listing every corner gives") {
  std::mt19937 random(3);
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    for (int round = 0; round < 6; ++round) {
      const Mesh& mesh = zoo.mesh;
      const bool drops = round % 2 == 0, turnsAround = round >= 4;
      MeshRebuilder runs(mesh), listed(mesh);
      for (MeshRebuilder* rebuilder : {&runs, &listed}) rebuilder->keepAllVertices();
      const VertexId extra = runs.addVertex({1, 2, 3}, 0);
      CHECK(listed.addVertex({1, 2, 3}, 0) == extra);
      for (FaceId i = 0; i < mesh.faceCount(); ++i) {
        const FaceId f = turnsAround ? FaceId(mesh.faceCount() - 1 - i) : i;
        const auto fate = random() % 3;
        if (fate == 0 && round > 0) continue;
        // One face in three gets another first vertex, so that its neighbours' data is told apart.
        const bool isMoved = fate == 1;
        const auto list = [&](MeshRebuilder& rebuilder) {
          rebuilder.beginFace(f);
          for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
            rebuilder.addCorner(isMoved && c == mesh.firstCorner(f) ? extra : mesh.cornerVertex(c),
                                c);
          rebuilder.endFace();
        };
        list(listed);
        if (isMoved)
          list(runs);
        else
          runs.copyFace(f);
      }
      const Rebuilt a = runs.finish({.dropUnusedVertices = drops}),
                    b = listed.finish({.dropUnusedVertices = drops});
      CHECK(check(a.mesh).empty());
      CHECK(a.mesh == b.mesh);
      CHECK(a.vertexMap == b.vertexMap);
      CHECK(a.edgeMap == b.edgeMap);
    }
  }
}
