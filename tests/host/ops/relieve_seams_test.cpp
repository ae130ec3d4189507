#include "host/ops/uv/relieve_seams.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <cmath>

#include "host/ops/uv/unwrap.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::ops;

namespace {

/// A prism over an L, whose two large faces are not convex.
mesh::Mesh prism() {
  const std::vector<math::Vec3f> points{{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0},
                                        {1, 2, 0}, {0, 2, 0}, {0, 0, 1}, {2, 0, 1},
                                        {2, 1, 1}, {1, 1, 1}, {1, 2, 1}, {0, 2, 1}};
  const std::vector<Index> counts{6, 6, 4, 4, 4, 4, 4, 4};
  const std::vector<VertexId> corners{2, 1, 0, 5, 4, 3, 8, 9, 10, 11, 6, 7, 0,  1,  7, 6, 1, 2,
                                      8, 7, 2, 3, 9, 8, 3, 4, 10, 9,  4, 5, 11, 10, 5, 0, 6, 11};
  return *mesh::buildMesh(points, counts, corners);
}

std::ptrdiff_t countOf(const SeamFlags& seams) {
  return std::ranges::count(seams, 1);
}

}  // namespace

TEST_CASE("unwrap: a face that is not convex is no fault of the layout") {
  std::vector<mesh::Mesh> meshes{prism()};
  const auto done = unwrap(meshes, {angleSeams(meshes[0], 40)});
  REQUIRE(done);
  CHECK(done->front().shells == 8);
  CHECK(done->front().report.symmetricDirichlet == doctest::Approx(4).epsilon(1e-3));
}

TEST_CASE("dropSlits: what ends inside a piece goes, what joins borders stays") {
  const mesh::Mesh grid = zoo::zooMesh("grid");
  const std::vector<std::uint8_t> all(static_cast<std::size_t>(grid.faceCount()), 1);
  // Every edge inside cuts the grid to single faces: nothing ends inside.
  SeamFlags seams(static_cast<std::size_t>(grid.edgeCount()), 1);
  dropSlits(grid, all, seams);
  CHECK(countOf(seams) == grid.edgeCount());
  // One edge inside alone parts nothing.
  for (EdgeId e = 0; e < grid.edgeCount(); ++e) {
    std::ranges::fill(seams, std::uint8_t{0});
    seams[static_cast<std::size_t>(e)] = 1;
    dropSlits(grid, all, seams);
    if (countOf(seams) == 0) break;
  }
  CHECK(countOf(seams) == 0);
}

TEST_CASE("unwrap: a closed shape that comes out stretched is cut further until it is not") {
  std::vector<mesh::Mesh> meshes{zoo::zooMesh("cube")};
  const SeamFlags none(static_cast<std::size_t>(meshes[0].edgeCount()), 0);
  std::vector<mesh::Mesh> loose = meshes;
  const auto before = unwrap(loose, {none});
  REQUIRE(before);
  const auto after = unwrap(meshes, {none}, {.mostStretch = 4.3});
  REQUIRE(after);
  CHECK(after->front().report.symmetricDirichlet <= before->front().report.symmetricDirichlet);
  CHECK(after->front().report.symmetricDirichlet < 4.31);
}
