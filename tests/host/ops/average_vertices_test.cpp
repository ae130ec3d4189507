#include "host/ops/smooth/average_vertices.h"

#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

/// Two by two quads whose middle vertex, 4, stands one above the others.
Mesh tent() {
  Mesh mesh = zoo::gridMesh(2, 2);
  mesh.editPoints()[4].y = 1;
  return mesh;
}

}  // namespace

TEST_CASE("averageVertices: a vertex goes to its neighbours' mean and part of the way back") {
  // The mean is 0; beta of the way back is the vertex's own. In the second round alpha of it counts
  // from the first place and the rest from where the first round led.
  Mesh one = tent();
  REQUIRE(averageVertices(one, std::vector<VertexId>{4}, {1, 0.2, 0.7}));
  CHECK(one.point(4).y == doctest::Approx(0.7));
  Mesh two = tent();
  REQUIRE(averageVertices(two, std::vector<VertexId>{4}, {2, 0.2, 0.7}));
  CHECK(two.point(4).y == doctest::Approx(0.7 * (0.2 * 1 + 0.8 * 0.7)));
  for (VertexId v = 0; v < 9; ++v)
    if (v != 4) CHECK(two.point(v) == tent().point(v));

  // Without beta the way back is that of the neighbours: 5 lies between 2, 4 and 8.
  Mesh both = tent();
  REQUIRE(averageVertices(both, std::vector<VertexId>{4, 5}, {1, 0.5, 0}));
  CHECK(both.point(4).y == doctest::Approx(-1.0 / 12));
  CHECK(both.point(5).y == doctest::Approx(2.0 / 3));
}

TEST_CASE("averageVertices: bad numbers change nothing") {
  Mesh mesh = tent();
  CHECK_FALSE(averageVertices(mesh, std::vector<VertexId>{9}));
  CHECK_FALSE(averageVertices(mesh, std::vector<VertexId>{4}, {-1, 0.5, 0.5}));
  CHECK_FALSE(averageVertices(mesh, std::vector<VertexId>{4}, {1, 1.5, 0.5}));
  CHECK_FALSE(averageVertices(mesh, std::vector<VertexId>{4}, {1, 0.5, -0.1}));
  CHECK(mesh == tent());
}
