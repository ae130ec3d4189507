#include "host/mesh/components.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#include "host/mesh/adjacency.h"
#include "host/mesh/shells.h"
#include "host/mesh/walks.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::mesh;
using namespace host::zoo;

namespace {

constexpr ComponentType kKinds[] = {ComponentType::Vertex, ComponentType::Edge, ComponentType::Face,
                                    ComponentType::Uv, ComponentType::VertexFace};

/// Which components touch which, from one pass over all corners: each corner brings its vertex, its
/// two edges, its face, its UV and itself together, but an edge meets only its own two ends.
using Relation =
    std::map<std::pair<ComponentType, ComponentType>, std::map<Index, std::set<Index>>>;

Relation relate(const Mesh& mesh) {
  Relation touch;
  const auto link = [&touch](ComponentType a, Index i, ComponentType b, Index j) {
    if (i == kNone || j == kNone) return;
    touch[{a, b}][i].insert(j);
    touch[{b, a}][j].insert(i);
  };
  using enum ComponentType;
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (Index i = 0, n = mesh.faceSize(f); i < n; ++i) {
      const CornerId c = mesh.firstCorner(f) + i, before = mesh.firstCorner(f) + (i + n - 1) % n;
      const VertexId v = mesh.cornerVertex(c);
      const UvId uv = mesh.cornerUv(0, c);
      link(Vertex, v, Face, f);
      link(Vertex, v, Uv, uv);
      link(Vertex, v, VertexFace, c);
      link(Face, f, Uv, uv);
      link(Face, f, VertexFace, c);
      link(Uv, uv, VertexFace, c);
      for (EdgeId e : {mesh.cornerEdge(c), mesh.cornerEdge(before)}) {
        link(Edge, e, Vertex, v);
        link(Edge, e, Face, f);
        link(Edge, e, Uv, uv);
        link(Edge, e, VertexFace, c);
      }
    }
  return touch;
}

}  // namespace

TEST_CASE("convertComponents: agrees with the touch relation for all kinds and both forms") {
  std::mt19937 random(3);
  for (const ZooMesh& zoo : meshZoo()) {
    CAPTURE(zoo.name);
    Relation touch = relate(zoo.mesh);
    for (ComponentType from : kKinds)
      for (ComponentType to : kKinds)
        for (int density : {1, 3, 10}) {
          CAPTURE(static_cast<int>(from));
          CAPTURE(static_cast<int>(to));
          std::vector<Index> ids;
          for (Index i = componentCount(zoo.mesh, from); i-- > 0;)
            if (std::uniform_int_distribution<int>(0, 10)(random) < density) ids.push_back(i);
          if (!ids.empty()) ids.push_back(ids[0]);
          const std::set<Index> set(ids.begin(), ids.end());
          if (from == to) {
            CHECK(std::ranges::equal(convertComponents(zoo.mesh, from, ids, to), set));
            continue;
          }
          std::set<Index> connected, contained, border;
          for (Index i : set)
            connected.insert(touch[{from, to}][i].begin(), touch[{from, to}][i].end());
          for (Index i : connected)
            (std::ranges::includes(set, touch[{to, from}][i]) ? contained : border).insert(i);
          CHECK(std::ranges::equal(convertComponents(zoo.mesh, from, ids, to), connected));
          CHECK(std::ranges::equal(
              convertComponents(zoo.mesh, from, ids, to, Conversion::Contained), contained));
          CHECK(std::ranges::equal(convertComponents(zoo.mesh, from, ids, to, Conversion::Border),
                                   border));
        }
  }
}

TEST_CASE(
    "convertComponents: a few components of a large mesh give what the whole-mesh road gives") {
  const Mesh grid = gridMesh(60, 60);  // few enough ids for the sorting road
  CHECK(convertComponents(grid, ComponentType::Face, std::vector<Index>{61, 0, 61},
                          ComponentType::Vertex) == std::vector<Index>{0, 1, 61, 62, 63, 123, 124});
  const auto faces =
      convertComponents(grid, ComponentType::Vertex, std::vector<Index>{62}, ComponentType::Face);
  CHECK(faces == std::vector<Index>{0, 1, 60, 61});
  CHECK(convertComponents(grid, ComponentType::Uv, std::vector<Index>{62}, ComponentType::Face) ==
        faces);
  CHECK(boundaryEdges(grid, viewIds<FaceId>(faces)).size() == 8);
  CHECK(boundaryEdges(grid, allFaces(grid)).size() == 240);
}

TEST_CASE("shells: pieces by vertices, by edges and by UVs") {
  const auto shellCount = [](const char* name, ShellLink link) {
    return findShells(zooMesh(name), link).count;
  };
  CHECK(shellCount("bowtie", ShellLink::Vertices) == 1);
  CHECK(shellCount("bowtie", ShellLink::Edges) == 2);
  CHECK(shellCount("two cubes", ShellLink::Vertices) == 2);
  CHECK(shellCount("interleaved shells", ShellLink::Vertices) == 3);
  CHECK(shellCount("points only", ShellLink::Vertices) == 0);
  CHECK(findShells(zooMesh("interleaved shells")).ofFace == std::vector<Index>{0, 1, 2});
  CHECK(connectedFaces(zooMesh("two cubes"), std::vector<FaceId>{8}).front() == 6);
  CHECK(connectedFaces(zooMesh("bowtie"), std::vector<FaceId>{1}, ShellLink::Edges) ==
        std::vector<FaceId>{1});

  CHECK(findUvShells(zooMesh("cross cube"), 0).count == 1);
  CHECK(findUvShells(zooMesh("face uvs"), 0).count == 7);
  CHECK(findUvShells(zooMesh("uv seam grid"), 0).count == 2);
  CHECK(findUvShells(zooMesh("cube"), 0).count == 0);
  const UvShells partial = findUvShells(zooMesh("partial uvs"), 0);
  CHECK(partial.count == 1);
  CHECK(partial.ofFace == std::vector<Index>{0, kNone, 0, 0});
  const UvShells unused = findUvShells(zooMesh("unused uvs"), 0);
  CHECK(unused.ofUv[0] == kNone);
  CHECK(unused.ofUv[1] == 0);

  CHECK(uvBorderEdges(zooMesh("cross cube"), 0).size() == 7);
  CHECK(uvBorderEdges(zooMesh("face uvs"), 0).size() == 15);
  CHECK(uvBorderEdges(zooMesh("uv seam grid"), 0).size() == 12 + 2);
}

TEST_CASE(
    "walks: loops and rings pass regular vertices and quads and stop at poles, borders and "
    "n-gons") {
  const Mesh grid = gridMesh(5, 4);
  const auto edgeBetween = [&grid](VertexId a, VertexId b) {
    return grid.adjacency().findEdge(a, b);
  };
  const EdgeWalk loop =
      edgeLoop(grid, edgeBetween(8, 14));  // the third column, from one border to the other
  CHECK_FALSE(loop.isClosed);
  CHECK(loop.edges.size() == 4);
  const auto vertices = verticesOfWalk(grid, loop);
  CHECK((vertices == std::vector<VertexId>{2, 8, 14, 20, 26} ||
         vertices == std::vector<VertexId>{26, 20, 14, 8, 2}));
  CHECK(edgeRing(grid, edgeBetween(8, 14)).edges.size() == 6);
  const EdgeWalk border = edgeLoop(grid, edgeBetween(0, 1));
  CHECK(border.isClosed);
  CHECK(border.edges.size() == 18);
  CHECK(borderWalk(grid, edgeBetween(8, 14)).edges.empty());

  const Mesh torus = zooMesh("torus");  // 6 around, 5 across
  std::multiset<std::size_t> lengths;
  for (EdgeId e = 0; e < torus.edgeCount(); ++e) {
    const EdgeWalk around = edgeLoop(torus, e), ring = edgeRing(torus, e);
    CHECK(around.isClosed);
    CHECK(around.edges[0] == e);
    CHECK(around.edges.size() + ring.edges.size() == 11);
    CHECK(std::set(ring.edges.begin(), ring.edges.end()).size() == ring.edges.size());
  }
  CHECK(edgeLoop(zooMesh("cube"), 0).edges.size() == 1);
  CHECK(edgeRing(zooMesh("cube"), 0).edges.size() == 4);
  CHECK(edgeRing(zooMesh("octahedron"), 0).edges.size() == 1);
  CHECK(edgeRing(zooMesh("prism of five"), zooMesh("prism of five").edgeCount() - 1).edges.size() ==
        5);
  CHECK(edgeRing(zooMesh("three pages"), zooMesh("three pages").adjacency().findEdge(2, 3))
            .edges.size() == 2);
  CHECK(allBorders(zooMesh("annulus")).size() == 2);
  CHECK(allBorders(zooMesh("moebius")).size() == 1);
  CHECK(allBorders(zooMesh("moebius"))[0].edges.size() == 14);
  CHECK(edgeRing(zooMesh("moebius"), zooMesh("moebius").adjacency().findEdge(0, 1)).edges.size() ==
        7);
}

TEST_CASE("walks: end and repeat nothing on every zoo mesh") {
  for (const ZooMesh& zoo : meshZoo(Has::Faces)) {
    CAPTURE(zoo.name);
    for (EdgeId e = 0; e < zoo.mesh.edgeCount(); ++e)
      for (const EdgeWalk& walk : {edgeLoop(zoo.mesh, e), edgeRing(zoo.mesh, e)}) {
        CHECK(std::ranges::count(walk.edges, e) == 1);
        CHECK(std::set(walk.edges.begin(), walk.edges.end()).size() == walk.edges.size());
      }
  }
}

TEST_CASE("partOfWalk: takes the shorter way, forward on a tie") {
  const EdgeWalk closed{{10, 11, 12, 13, 14, 15}, true}, open{{10, 11, 12, 13, 14, 15}, false};
  CHECK(partOfWalk(closed, 11, 13) == std::vector<EdgeId>{11, 12, 13});
  CHECK(partOfWalk(closed, 11, 15) == std::vector<EdgeId>{11, 10, 15});
  CHECK(partOfWalk(closed, 11, 14) == std::vector<EdgeId>{11, 12, 13, 14});
  CHECK(partOfWalk(open, 14, 11) == std::vector<EdgeId>{14, 13, 12, 11});
  CHECK(partOfWalk(open, 12, 12) == std::vector<EdgeId>{12});
  CHECK(partOfWalk(open, 12, 99).empty());
}
