#include "host/mesh/walks.h"

#include <maya/MFnSingleIndexedComponent.h>

#include <algorithm>
#include <set>

#include "host/mesh/adjacency.h"
#include "shared/mesh/polyHelper.h"
#include "tests/toolkit/zoo_scene.h"

// Rings, loops, their parts and borders of face sets, on every mesh of the zoo.

namespace {

using host::EdgeId;
using host::FaceId;

std::vector<int> values(const MIntArray& array) {
  return {array.begin(), array.end()};
}

/// The smaller of the two directions of a run, closed ones turned so that they start at their
/// lowest edge.
std::vector<int> canonical(std::vector<int> run, bool isClosed) {
  std::vector<int> back(run.rbegin(), run.rend());
  if (isClosed)
    for (auto* way : {&run, &back})
      std::rotate(way->begin(), std::min_element(way->begin(), way->end()), way->end());
  return std::min(run, back);
}

std::vector<int> borderOf(const MDagPath& path, const std::vector<int>& faces) {
  MStatus status;
  const MObject component = polyHelper().borderEdges(
      path, MIntArray(faces.data(), static_cast<unsigned int>(faces.size())), &status);
  CHECK(status);
  CHECK(component.hasFn(MFn::kMeshEdgeComponent));
  MIntArray edges;
  MFnSingleIndexedComponent(component).getElements(edges);
  return values(edges);
}

int edgeBetween(const host::mesh::Mesh& mesh, int a, int b) {
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    if (mesh.edge(e).has(a) && mesh.edge(e).has(b)) return e;
  return -1;
}

}  // namespace

TEST_CASE("rings and loops: as a walk over the mesh itself finds them, each edge once") {
  toolkitSession toolkit;
  const polyHelper poly;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo()) {
    CAPTURE(zoo.name);
    const MDagPath path = showMesh(toolkit, zoo.mesh);
    const bool isManifold = zoo.has(host::zoo::Has::Manifold);
    for (EdgeId e = 0; e < zoo.mesh.edgeCount(); ++e)
      for (const bool isRing : {true, false}) {
        MIntArray edges;
        bool isClosed = false;
        REQUIRE((isRing ? poly.edgeRing(path, e, edges, &isClosed)
                        : poly.edgeLoop(path, e, edges, &isClosed)));
        std::vector<int> run = values(edges);
        CHECK(std::set<int>(run.begin(), run.end()).size() == run.size());
        CHECK(std::count(run.begin(), run.end(), e) == 1);
        if (isClosed) CHECK(run.front() == e);
        if (!isManifold) continue;
        const host::mesh::EdgeWalk walk =
            isRing ? host::mesh::edgeRing(zoo.mesh, e) : host::mesh::edgeLoop(zoo.mesh, e);
        CHECK(isClosed == walk.isClosed);
        CHECK(canonical(run, isClosed) == canonical(host::copyIds(walk.edges), walk.isClosed));
      }
    MIntArray edges;
    for (const int bad : {-1, static_cast<int>(zoo.mesh.edgeCount())}) {
      CHECK(poly.edgeRing(path, bad, edges) == MS::kInvalidParameter);
      CHECK(poly.edgeLoop(path, bad, edges) == MS::kInvalidParameter);
      CHECK(edges.length() == 0);
    }
  }
  MIntArray edges(3, 7);
  const MDagPath gone = deletedPath(toolkit);
  for (const MDagPath& path : {gone, MDagPath()}) {
    CHECK_FALSE(poly.edgeRing(path, 0, edges));
    CHECK_FALSE(poly.partialEdgeLoop(path, 0, 1, edges));
    CHECK(edges.length() == 0);
    MStatus status;
    CHECK(poly.borderEdges(path, MIntArray(1, 0), &status).isNull());
    CHECK_FALSE(status);
  }
}

TEST_CASE("partial runs: the shorter way round, in the order asked for, the tie always the same") {
  toolkitSession toolkit;
  const polyHelper poly;
  const host::mesh::Mesh torus = host::zoo::torusMesh(8, 6);
  const MDagPath path = showMesh(toolkit, torus);
  for (const bool isRing : {true, false}) {
    MIntArray all;
    bool isClosed = false;
    REQUIRE(
        (isRing ? poly.edgeRing(path, 0, all, &isClosed) : poly.edgeLoop(path, 0, all, &isClosed)));
    REQUIRE(isClosed);
    const std::vector<int> whole = values(all);
    const std::size_t count = whole.size();
    for (std::size_t i = 0; i < count; ++i) {
      MIntArray part;
      REQUIRE((isRing ? poly.partialEdgeRing(path, whole[0], whole[i], part)
                      : poly.partialEdgeLoop(path, whole[0], whole[i], part)));
      std::vector<int> expected{whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(i) + 1};
      if (i > count / 2) {
        expected = {whole[0]};
        for (std::size_t k = count; k-- > i;) expected.push_back(whole[k]);
      }
      CHECK(values(part) == expected);
    }
  }
  // Open runs: both orders, and edges of different runs.
  const host::mesh::Mesh grid = host::zoo::gridMesh(5, 3);
  const MDagPath open = showMesh(toolkit, grid);
  MIntArray ring, part, back;
  REQUIRE(poly.edgeRing(open, edgeBetween(grid, 0, 1), ring));
  CHECK(ring.length() == 4);
  REQUIRE(poly.partialEdgeRing(open, ring[3], ring[1], part));
  CHECK(values(part) == std::vector<int>{ring[3], ring[2], ring[1]});
  REQUIRE(poly.partialEdgeRing(open, ring[1], ring[1], part));
  CHECK(values(part) == std::vector<int>{ring[1]});
  CHECK_FALSE(poly.partialEdgeRing(open, ring[0], edgeBetween(grid, 1, 2), part));
  CHECK(part.length() == 0);
}

TEST_CASE("loops: stop at poles, run along borders, and end where three faces meet") {
  toolkitSession toolkit;
  const polyHelper poly;
  toolkit.run("file -f -new; polyCube -ch 0 -name shape;");
  MIntArray edges;
  REQUIRE(poly.edgeLoop(toolkitSession::path("shape"), 0, edges));
  CHECK(edges.length() == 1);  // every corner of a cube is a pole

  const host::mesh::Mesh grid = host::zoo::gridMesh(4, 4);
  const MDagPath path = showMesh(toolkit, grid);
  bool isClosed = false;
  REQUIRE(poly.edgeLoop(path, edgeBetween(grid, 0, 1), edges, &isClosed));
  CHECK(isClosed);
  CHECK(edges.length() == 16);
  REQUIRE(poly.edgeLoop(path, edgeBetween(grid, 6, 7), edges, &isClosed));
  CHECK_FALSE(isClosed);
  CHECK(edges.length() == 4);

  // Three quads on one edge: the ring across it does not choose a side.
  const host::mesh::Mesh fin = host::zoo::meshOf(
      {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {1, 0, 1}, {-1, 0, 0}, {-1, 0, 1}, {0, 1, 0}, {0, 1, 1}},
      {{0, 1, 3, 2}, {0, 4, 5, 1}, {0, 1, 7, 6}});
  const MDagPath finPath = showMesh(toolkit, fin);
  REQUIRE(poly.edgeRing(finPath, edgeBetween(fin, 2, 3), edges));
  CHECK(values(edges).size() == 2);
  REQUIRE(poly.edgeRing(finPath, edgeBetween(fin, 0, 1), edges));
  CHECK(edges.length() == 1);
}

TEST_CASE("border of a face set: shared with faces outside, or on the mesh border") {
  toolkitSession toolkit;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo(host::zoo::Has::Faces)) {
    CAPTURE(zoo.name);
    const MDagPath path = showMesh(toolkit, zoo.mesh);
    std::vector<int> some, all;
    for (FaceId f = 0; f < zoo.mesh.faceCount(); ++f) {
      all.push_back(f);
      if (f % 3 != 1) some.push_back(f);
    }
    for (const std::vector<int>& set : {some, all}) {
      std::vector<int> expected;
      for (EdgeId e = 0; e < zoo.mesh.edgeCount(); ++e) {
        std::size_t inside = 0;
        const auto around = zoo.mesh.adjacency().edgeFaces(e);
        for (const FaceId f : around) inside += std::count(set.begin(), set.end(), f);
        if (inside > 0 && (inside < around.size() || around.size() == 1)) expected.push_back(e);
      }
      CHECK(borderOf(path, set) == expected);
    }
    std::vector<int> repeated = some;
    repeated.insert(repeated.end(), some.rbegin(), some.rend());
    CHECK(borderOf(path, repeated) == borderOf(path, some));
    CHECK(borderOf(path, {}).empty());
    MStatus status;
    CHECK(polyHelper().borderEdges(path, MIntArray(1, zoo.mesh.faceCount()), &status).isNull());
    CHECK(status == MS::kInvalidParameter);
  }
}
