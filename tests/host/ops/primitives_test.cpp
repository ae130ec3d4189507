#include <doctest/doctest.h>

#include <array>
#include <cmath>
#include <map>
#include <set>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/ops/primitives/cone.h"
#include "host/ops/primitives/cube.h"
#include "host/ops/primitives/cylinder.h"
#include "host/ops/primitives/helix.h"
#include "host/ops/primitives/pipe.h"
#include "host/ops/primitives/plane.h"
#include "host/ops/primitives/platonic_solid.h"
#include "host/ops/primitives/sphere.h"
#include "host/ops/primitives/torus.h"

using namespace host;
using namespace host::ops;
using math::Vec3;
using mesh::Mesh;

namespace {

using Loop = std::vector<Index>;

Loop vertexLoop(const Mesh& mesh, FaceId f) {
  const auto loop = mesh.faceVertices(f);
  return {loop.begin(), loop.end()};
}

Loop uvLoop(const Mesh& mesh, FaceId f) {
  const auto& ids = mesh.uvSet(0).cornerIds;
  return {ids.begin() + mesh.firstCorner(f), ids.begin() + mesh.firstCorner(f + 1)};
}

std::array<Index, 2> ends(const Mesh& mesh, EdgeId e) {
  return {mesh.edge(e).a, mesh.edge(e).b};
}

// Vertices / edges / faces / UVs.
std::array<Index, 4> counts(const Mesh& mesh) {
  return {mesh.vertexCount(), mesh.edgeCount(), mesh.faceCount(),
          static_cast<Index>(mesh.uvSet(0).points.size())};
}

int hardEdges(const Mesh& mesh) {
  int n = 0;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) n += !mesh.isEdgeSmooth(e);
  return n;
}

bool isNear(const math::Vec3f& p, double x, double y, double z, double tolerance = 2e-6) {
  return std::abs(p.x - x) < tolerance && std::abs(p.y - y) < tolerance &&
         std::abs(p.z - z) < tolerance;
}

math::Vec3f pointOf(const Mesh& mesh, VertexId v) {
  return mesh.points()[static_cast<std::size_t>(v)];
}
math::Vec2f uvOf(const Mesh& mesh, UvId id) {
  return mesh.uvSet(0).points[static_cast<std::size_t>(id)];
}
bool isUvNear(const math::Vec2f& p, double u, double v) {
  return std::abs(p.u - u) < 2e-6 && std::abs(p.v - v) < 2e-6;
}

// Volume by the divergence theorem, faces fanned: positive when faces wind outwards.
double volume(const Mesh& mesh) {
  double six = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    for (std::size_t k = 2; k < loop.size(); ++k)
      six +=
          math::dot(mesh.point(loop[0]), math::cross(mesh.point(loop[k - 1]), mesh.point(loop[k])));
  }
  return six / 6;
}

double uvArea(const Mesh& mesh) {
  double twice = 0;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const Loop loop = uvLoop(mesh, f);
    double face = 0;
    for (std::size_t k = 0; k < loop.size(); ++k) {
      const auto a = uvOf(mesh, loop[k]), b = uvOf(mesh, loop[(k + 1) % loop.size()]);
      face += double(a.u) * b.v - double(b.u) * a.v;
    }
    CHECK(face > 0);  // no face is flipped or collapsed in UV space
    twice += face;
  }
  return twice / 2;
}

// Edges belong to the corners that walk them, each used once each way; every vertex and UV is used.
void checkClosedAndOriented(const Mesh& mesh) {
  std::vector<std::array<int, 2>> uses(static_cast<std::size_t>(mesh.edgeCount()));
  std::set<std::pair<Index, Index>> distinct;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
    distinct.insert(std::minmax(mesh.edge(e).a, mesh.edge(e).b));
  CHECK(distinct.size() == static_cast<std::size_t>(mesh.edgeCount()));
  std::set<Index> vertices, uvs;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto loop = mesh.faceVertices(f);
    const auto edges = mesh.faceEdges(f);
    for (std::size_t k = 0; k < loop.size(); ++k) {
      const auto edge = mesh.edge(edges[k]);
      const bool isForward = edge.a == loop[k];
      const Index next = loop[(k + 1) % loop.size()];
      CHECK((isForward ? edge.b == next : edge.b == loop[k] && edge.a == next));
      ++uses[static_cast<std::size_t>(edges[k])][isForward ? 0 : 1];
    }
    vertices.insert(loop.begin(), loop.end());
    if (!mesh.uvSet(0).cornerIds.empty())
      for (const Index id : uvLoop(mesh, f)) uvs.insert(id);
  }
  for (const auto& use : uses) CHECK((use[0] == 1 && use[1] == 1));
  CHECK(vertices.size() == static_cast<std::size_t>(mesh.vertexCount()));
  CHECK(uvs.size() == mesh.uvSet(0).points.size());
}

}  // namespace

TEST_CASE("cube: the default has the stored points, edges, faces and UVs") {
  const Mesh cube = makeCube().value();
  const double p[8][3] = {{-.5, -.5, .5}, {.5, -.5, .5}, {-.5, .5, .5},   {.5, .5, .5},
                          {-.5, .5, -.5}, {.5, .5, -.5}, {-.5, -.5, -.5}, {.5, -.5, -.5}};
  REQUIRE(counts(cube) == std::array<Index, 4>{8, 12, 6, 14});
  for (Index v = 0; v < 8; ++v)
    CHECK(pointOf(cube, v) == math::Vec3(p[v][0], p[v][1], p[v][2]).toFloat());
  const std::array<Index, 2> edges[12] = {{0, 1}, {2, 3}, {4, 5}, {6, 7}, {0, 2}, {1, 3},
                                          {2, 4}, {3, 5}, {4, 6}, {5, 7}, {6, 0}, {7, 1}};
  for (EdgeId e = 0; e < 12; ++e) CHECK(ends(cube, e) == edges[e]);
  CHECK(hardEdges(cube) == 12);
  const Loop faces[6] = {{0, 1, 3, 2}, {2, 3, 5, 4}, {4, 5, 7, 6},
                         {6, 7, 1, 0}, {1, 7, 5, 3}, {6, 0, 2, 4}};
  const Loop uvs[6] = {{0, 1, 3, 2}, {2, 3, 5, 4},   {4, 5, 7, 6},
                       {6, 7, 9, 8}, {1, 10, 11, 3}, {12, 0, 2, 13}};
  for (FaceId f = 0; f < 6; ++f) {
    CHECK(vertexLoop(cube, f) == faces[f]);
    CHECK(uvLoop(cube, f) == uvs[f]);
  }
  const double uv[14][2] = {{.375, 0},  {.625, 0},   {.375, .25}, {.625, .25}, {.375, .5},
                            {.625, .5}, {.375, .75}, {.625, .75}, {.375, 1},   {.625, 1},
                            {.875, 0},  {.875, .25}, {.125, 0},   {.125, .25}};
  for (UvId id = 0; id < 14; ++id) CHECK(isUvNear(uvOf(cube, id), uv[id][0], uv[id][1]));
}

TEST_CASE("sphere: the default follows the stored numbering") {
  const Mesh sphere = makeSphere().value();
  REQUIRE(counts(sphere) == std::array<Index, 4>{382, 780, 400, 439});
  const double deg = std::acos(-1.0) / 180;
  for (int j = 0; j < 19; ++j)
    for (int i = 0; i < 20; ++i) {
      const double latitude = (-90 + 9 * (j + 1)) * deg, angle = -18 * (i + 1) * deg;
      CHECK(isNear(pointOf(sphere, 20 * j + i), std::cos(latitude) * std::cos(angle),
                   std::sin(latitude), std::cos(latitude) * std::sin(angle)));
    }
  CHECK(isNear(pointOf(sphere, 380), 0, -1, 0));
  CHECK(isNear(pointOf(sphere, 381), 0, 1, 0));
  CHECK(ends(sphere, 19) == std::array<Index, 2>{19, 0});
  CHECK(ends(sphere, 380) == std::array<Index, 2>{0, 20});
  CHECK(ends(sphere, 740) == std::array<Index, 2>{380, 0});
  CHECK(ends(sphere, 779) == std::array<Index, 2>{379, 381});
  CHECK(hardEdges(sphere) == 0);
  CHECK(vertexLoop(sphere, 0) == Loop{0, 1, 21, 20});
  CHECK(vertexLoop(sphere, 359) == Loop{359, 340, 360, 379});
  CHECK(vertexLoop(sphere, 360) == Loop{1, 0, 380});
  CHECK(vertexLoop(sphere, 399) == Loop{379, 360, 381});
  CHECK(uvLoop(sphere, 19) == Loop{19, 20, 41, 40});
  CHECK(uvLoop(sphere, 379) == Loop{20, 19, 418});
  CHECK(uvLoop(sphere, 380) == Loop{378, 379, 419});
  CHECK(isUvNear(uvOf(sphere, 40), .95, .1));
  CHECK(isUvNear(uvOf(sphere, 399), .025, 0));
  CHECK(isUvNear(uvOf(sphere, 438), .975, 1));
}

TEST_CASE("plane: the default follows the stored numbering") {
  const Mesh plane = makePlane().value();
  REQUIRE(counts(plane) == std::array<Index, 4>{121, 220, 100, 121});
  CHECK(pointOf(plane, 0) == math::Vec3(-.5, -1.110223e-16, .5).toFloat());
  CHECK(isNear(pointOf(plane, 120), .5, 0, -.5));
  CHECK(ends(plane, 0) == std::array<Index, 2>{0, 1});
  CHECK(ends(plane, 1) == std::array<Index, 2>{0, 11});
  CHECK(ends(plane, 20) == std::array<Index, 2>{10, 21});
  CHECK(ends(plane, 219) == std::array<Index, 2>{119, 120});
  CHECK(hardEdges(plane) == 40);
  CHECK(vertexLoop(plane, 0) == Loop{0, 1, 12, 11});
  CHECK(vertexLoop(plane, 99) == uvLoop(plane, 99));
  for (EdgeId e = 0; e < plane.edgeCount(); ++e)
    CHECK(plane.adjacency().isBorderEdge(e) != plane.isEdgeSmooth(e));

  PlaneOptions one;
  one.subdivisionsWidth = one.subdivisionsHeight = 1;
  const Mesh quad = makePlane(one).value();
  const std::array<Index, 2> edges[4] = {{0, 1}, {0, 2}, {1, 3}, {2, 3}};
  for (EdgeId e = 0; e < 4; ++e) CHECK(ends(quad, e) == edges[e]);
  CHECK(vertexLoop(quad, 0) == Loop{0, 1, 3, 2});
}

TEST_CASE("cylinder: the default follows the stored numbering") {
  const Mesh cylinder = makeCylinder().value();
  REQUIRE(counts(cylinder) == std::array<Index, 4>{42, 100, 60, 84});
  const double a = -std::acos(-1.0) / 10;
  CHECK(isNear(pointOf(cylinder, 0), std::cos(a), -1, std::sin(a)));
  CHECK(isNear(pointOf(cylinder, 39), 1, 1, 0));
  CHECK(isNear(pointOf(cylinder, 40), 0, -1, 0));
  CHECK(ends(cylinder, 40) == std::array<Index, 2>{0, 20});
  CHECK(ends(cylinder, 60) == std::array<Index, 2>{40, 0});
  CHECK(ends(cylinder, 80) == std::array<Index, 2>{20, 41});
  for (EdgeId e = 0; e < 100; ++e) CHECK(cylinder.isEdgeSmooth(e) == (e >= 40));
  CHECK(vertexLoop(cylinder, 19) == Loop{19, 0, 20, 39});
  CHECK(vertexLoop(cylinder, 20) == Loop{1, 0, 40});
  CHECK(vertexLoop(cylinder, 40) == Loop{20, 21, 41});
  CHECK(isUvNear(uvOf(cylinder, 20), .375, .3125));
  CHECK(isUvNear(uvOf(cylinder, 61), .625, .6875));
  CHECK(isUvNear(uvOf(cylinder, 82), .5, .15625));
  CHECK(isUvNear(uvOf(cylinder, 83), .5, .84375));
  CHECK(uvLoop(cylinder, 19) == Loop{39, 40, 61, 60});
  CHECK(uvLoop(cylinder, 39) == Loop{0, 19, 82});
}

TEST_CASE("cone, pyramid and torus: the defaults follow the stored numbering") {
  const Mesh cone = makeCone().value();
  REQUIRE(counts(cone) == std::array<Index, 4>{21, 40, 21, 42});
  const Loop base = vertexLoop(cone, 0);
  CHECK(base.size() == 20);
  CHECK((base[0] == 0 && base[1] == 19 && base[19] == 1));
  CHECK(vertexLoop(cone, 1) == Loop{0, 1, 20});
  for (EdgeId e = 0; e < 40; ++e) CHECK(cone.isEdgeSmooth(e) == (e >= 20));

  const Mesh pyramid = makePyramid().value();
  REQUIRE(counts(pyramid) == std::array<Index, 4>{5, 8, 5, 10});
  CHECK(vertexLoop(pyramid, 0) == Loop{0, 3, 2, 1});
  for (EdgeId e = 0; e < 8; ++e) {
    const auto edge = pyramid.edge(e);
    CHECK(math::distance(pyramid.point(edge.a), pyramid.point(edge.b)) == doctest::Approx(1));
  }

  const Mesh torus = makeTorus().value();
  REQUIRE(counts(torus) == std::array<Index, 4>{400, 800, 400, 441});
  CHECK(isNear(pointOf(torus, 0), 0.47552857, 0, -0.15450859));
  CHECK(isNear(pointOf(torus, 20), 0.4988026, 0.1545085, -0.16207078));
  CHECK(isNear(pointOf(torus, 399), 0.5244717, -0.1545085, 0));
  CHECK(ends(torus, 419) == std::array<Index, 2>{19, 39});
  CHECK(ends(torus, 780) == std::array<Index, 2>{380, 0});
  CHECK(vertexLoop(torus, 0) == Loop{1, 0, 20, 21});
  CHECK(uvLoop(torus, 0) == Loop{1, 0, 21, 22});
  CHECK(isUvNear(uvOf(torus, 21), 0, .95));
}

TEST_CASE("primitives: all subdivisions give closed, outward-facing meshes with sound UVs") {
  std::vector<std::pair<const char*, Result<Mesh>>> shapes;
  for (int uvs = 0; uvs <= 4; ++uvs) {
    for (int n = 1; n <= 3; ++n) {
      CubeOptions cube{2, 3, 4, n, 2, 4 - n};
      cube.createUVs = uvs;
      shapes.emplace_back("cube", makeCube(cube));
      PlatonicSolidOptions solid;
      solid.solid = static_cast<PlatonicSolid>(n), solid.createUVs = uvs, solid.axis = {0, 0, 1};
      shapes.emplace_back("solid", makePlatonicSolid(solid));
      if (uvs > 3) continue;
      for (int cap = 0; cap <= 3; ++cap) {
        CylinderOptions cylinder;
        cylinder.subdivisionsAxis = 2 + n, cylinder.subdivisionsHeight = n,
        cylinder.subdivisionsCaps = cap;
        cylinder.createUVs = uvs, cylinder.roundCap = n == 2;
        shapes.emplace_back("cylinder", makeCylinder(cylinder));
        ConeOptions cone;
        cone.subdivisionsAxis = 2 + n, cone.subdivisionsHeight = n, cone.subdivisionsCap = cap;
        cone.createUVs = uvs, cone.roundCap = n == 2;
        shapes.emplace_back("cone", makeCone(cone));
        PyramidOptions pyramid;
        pyramid.sides = 2 + n, pyramid.subdivisionsHeight = n, pyramid.subdivisionsCap = cap;
        pyramid.createUVs = uvs;
        shapes.emplace_back("pyramid", makePyramid(pyramid));
        PrismOptions prism;
        prism.sides = 2 + n, prism.subdivisionsHeight = n, prism.subdivisionsCaps = cap;
        prism.createUVs = uvs;
        shapes.emplace_back("prism", makePrism(prism));
        HelixOptions helix;
        helix.coils = 0.7 * n, helix.subdivisionsAxis = 2 + n, helix.subdivisionsCoil = 7;
        helix.subdivisionsCaps = cap, helix.roundCap = n == 2, helix.createUVs = uvs;
        helix.isCounterClockwise = n == 1;
        shapes.emplace_back("helix", makeHelix(helix));
      }
      if (uvs > 2) continue;
      SphereOptions sphere;
      sphere.subdivisionsAxis = 2 + n, sphere.subdivisionsHeight = 1 + n, sphere.createUVs = uvs;
      shapes.emplace_back("sphere", makeSphere(sphere));
      if (uvs > 1) continue;
      TorusOptions torus;
      torus.subdivisionsAxis = 2 + n, torus.subdivisionsHeight = 3, torus.createUVs = uvs;
      shapes.emplace_back("torus", makeTorus(torus));
      PipeOptions pipe;
      pipe.subdivisionsAxis = 2 + n, pipe.subdivisionsHeight = n, pipe.subdivisionsCaps = n;
      pipe.roundCap = n == 2, pipe.createUVs = uvs != 0;
      shapes.emplace_back("pipe", makePipe(pipe));
    }
  }
  for (const auto& entry : shapes) {
    const Result<Mesh>& shape = entry.second;
    const std::string name = entry.first;
    CAPTURE(name);
    REQUIRE(shape.has_value());
    checkClosedAndOriented(*shape);
    CHECK(volume(*shape) > 0);
    CHECK(shape->vertexCount() - shape->edgeCount() + shape->faceCount() ==
          (name == "torus" || name == "pipe" ? 0 : 2));
    if (!shape->uvSet(0).cornerIds.empty()) uvArea(*shape);
  }
}

TEST_CASE("solids are regular, and their nets overlap nowhere") {
  const std::array<std::array<Index, 3>, 4> wanted = {
      {{20, 30, 12}, {12, 30, 20}, {6, 12, 8}, {4, 6, 4}}};
  for (int kind = 0; kind < 4; ++kind) {
    CAPTURE(kind);
    PlatonicSolidOptions options;
    options.solid = static_cast<PlatonicSolid>(kind);
    options.radius = 2.5;
    options.createUVs = 1;
    const Mesh solid = makePlatonicSolid(options).value();
    CHECK(std::array{solid.vertexCount(), solid.edgeCount(), solid.faceCount()} ==
          wanted[static_cast<std::size_t>(kind)]);
    CHECK(hardEdges(solid) == solid.edgeCount());
    const double side = 2.5 * platonicSideLength(options.solid);
    for (EdgeId e = 0; e < solid.edgeCount(); ++e)
      CHECK(math::distance(solid.point(solid.edge(e).a), solid.point(solid.edge(e).b)) ==
            doctest::Approx(side));
    for (VertexId v = 0; v < solid.vertexCount(); ++v)
      CHECK(math::length(solid.point(v)) == doctest::Approx(2.5));
    // In cm the net is as large as the surface.
    const double corners = static_cast<double>(solid.faceSize(0));
    const double face = corners * side * side / (4 * std::tan(3.14159265358979 / corners));
    CHECK(uvArea(solid) == doctest::Approx(face * solid.faceCount()));
    // Middles of faces in the net keep away from one another by two inner radii.
    std::vector<math::Vec2f> middles;
    for (FaceId f = 0; f < solid.faceCount(); ++f) {
      math::Vec2f middle{0, 0};
      for (const Index id : uvLoop(solid, f)) {
        middle.u += uvOf(solid, id).u / float(corners);
        middle.v += uvOf(solid, id).v / float(corners);
      }
      for (const math::Vec2f& other : middles)
        CHECK(std::hypot(other.u - middle.u, other.v - middle.v) >
              0.999 * side / std::tan(3.14159265358979 / corners));
      middles.push_back(middle);
    }
  }
}

TEST_CASE("pipe, prism and helix have the sizes that they are given") {
  PipeOptions pipe;
  pipe.height = 3;
  pipe.subdivisionsAxis = 400;
  const Mesh made = makePipe(pipe).value();
  CHECK(volume(made) == doctest::Approx(3 * 3.14159265 * (1 - 0.25)).epsilon(1e-3));
  CHECK(hardEdges(made) == 4 * 400);
  CHECK(hardEdges(makePrism().value()) == 9);
  PrismOptions prism;
  prism.sideLength = 2, prism.length = 5, prism.sides = 4;
  CHECK(volume(makePrism(prism).value()) == doctest::Approx(20));
  HelixOptions helix;
  helix.radius = 0.1, helix.subdivisionsAxis = 64, helix.subdivisionsCoil = 200;
  const double length = std::hypot(3 * 2 * 3.14159265, 2);
  CHECK(volume(makeHelix(helix).value()) ==
        doctest::Approx(length * 3.14159265 * 0.01).epsilon(5e-3));
  // Counterclockwise from above it goes from x towards -z, clockwise the other way.
  for (const bool isCounterClockwise : {true, false}) {
    helix.isCounterClockwise = isCounterClockwise;
    const Mesh coil = makeHelix(helix).value();
    const Vec3 early = coil.point(20 * 64);
    CHECK((early.z < 0) == isCounterClockwise);
  }
  pipe.thickness = 1;
  CHECK(makePipe(pipe).error().message.find("thickness") != std::string::npos);
}

TEST_CASE("primitives: sizes and axis shape the result") {
  CubeOptions box{2, 3, 4, 2, 3, 1};
  box.heightBaseline = -1;
  const Mesh cube = makeCube(box).value();
  CHECK(volume(cube) == doctest::Approx(24));
  for (const auto& p : cube.points()) CHECK((p.y >= 0 && p.y <= 3));
  // Only the twelve edges of the box are hard, whatever the subdivisions: four a direction.
  CHECK(hardEdges(cube) == 4 * (2 + 3 + 1));
  box.createUVs = 1;
  CHECK(uvArea(makeCube(box).value()) == doctest::Approx(2 * (6 + 8 + 12)));
  box.createUVs = 2;
  CHECK(uvArea(makeCube(box).value()) == doctest::Approx(6));

  for (const Vec3 axis : {Vec3(1, 0, 0), Vec3(0, 0, 2), Vec3(0, -1, 0), Vec3(1, 1, 1)}) {
    CylinderOptions options;
    options.axis = axis;
    options.height = 6;
    const Mesh cylinder = makeCylinder(options).value();
    CHECK(volume(cylinder) > 0);
    CHECK(math::distance(cylinder.point(41), 3.0 * math::normalized(axis)) < 1e-6);
  }
  CylinderOptions pill;
  pill.roundCap = true, pill.subdivisionsCaps = 4;
  CHECK(makeCylinder(pill)->point(8 * 20 + 1).y == doctest::Approx(2));
  pill.height = 5, pill.roundCapHeightCompensate = true;
  CHECK(makeCylinder(pill)->point(8 * 20 + 1).y == doctest::Approx(2.5));
}

TEST_CASE("primitives: impossible sizes are refused by name") {
  CubeOptions cube;
  cube.width = 0;
  CHECK(makeCube(cube).error().message.find("width") != std::string::npos);
  cube.width = 1, cube.subdivisionsDepth = 0;
  CHECK(makeCube(cube).error().message.find("depth") != std::string::npos);
  SphereOptions sphere;
  sphere.radius = std::nan("");
  CHECK_FALSE(makeSphere(sphere));
  sphere.radius = 1, sphere.subdivisionsAxis = sphere.subdivisionsHeight = 1 << 20;
  CHECK_FALSE(makeSphere(sphere));  // more faces than ids can name
  PlaneOptions plane;
  plane.axis = {0, 0, 0};
  CHECK_FALSE(makePlane(plane));
}
