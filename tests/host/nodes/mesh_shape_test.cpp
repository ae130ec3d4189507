#include <doctest/doctest.h>

#include <bit>
#include <cmath>
#include <random>

#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "host/nodes/move_points.h"
#include "tests/host/nodes/nodes_fixture.h"

using namespace host;
using namespace host::nodes;
using namespace host::nodes::test;
using math::Vec3;
using math::Vec3f;

namespace {

std::vector<Vec3f> shaken(std::vector<Vec3f> points, unsigned seed) {
  std::mt19937 random(seed);
  for (Vec3f& point : points) {
    if (random() % 2) continue;
    point.x = std::ldexp(static_cast<float>(random() % 4096) / 4096,
                         static_cast<int>(random() % 40) - 20);
    point.y = -point.y * 1.7f;
    if (random() % 3 == 0) point.z = 6.123234e-17f;
  }
  return points;
}

}  // namespace

TEST_CASE("mesh: points written come out exactly, with history and without") {
  for (const bool withHistory : {false, true}) {
    CAPTURE(withHistory);
    Scene scene;
    dg::Node& shape = withHistory ? scene.cubeWithHistory() : scene.cube();
    const std::vector<Vec3f> original = scene.points(shape);
    for (unsigned seed = 0; seed < 20; ++seed) {
      const std::vector<Vec3f> wanted = shaken(scene.points(shape), seed);
      const std::uint64_t before = scene->hash();
      const std::uint64_t meshBefore = mesh::hashMesh(scene.mesh(shape));
      scene::ChangeSet changes;
      {
        const scene::Journal::Scope scope(scene->journal(), &changes);
        REQUIRE(setEvaluatedPoints(shape, wanted));
      }
      for (std::size_t i = 0; i < wanted.size(); ++i) {
        const Vec3f got = scene.points(shape)[i];
        CHECK(std::abs(got.x - wanted[i].x) == 0);
        CHECK(std::abs(got.y - wanted[i].y) == 0);
        CHECK(std::abs(got.z - wanted[i].z) <= 1e-16f);
      }
      REQUIRE(changes.undo());
      CHECK(scene->hash() == before);
      CHECK(mesh::hashMesh(scene.mesh(shape)) == meshBefore);
      REQUIRE(changes.redo());
    }
    REQUIRE(setEvaluatedPoints(shape, original));
    CHECK(scene.points(shape) == original);
  }
}

TEST_CASE(
    "mesh: moves of a shape without history are offsets, exact through undo and on top of others") {
  Scene scene;
  dg::Node& shape = scene.cube();
  const auto stored = [&] {
    const auto mesh = untweakedMesh(shape);
    REQUIRE(mesh);
    return std::vector<Vec3f>(mesh->points().begin(), mesh->points().end());
  };
  const std::vector<Vec3f> original = stored();
  std::mt19937 random(7);
  scene::ChangeSet all;
  std::vector<std::pair<std::uint64_t, std::vector<Vec3f>>> states;
  for (int step = 0; step < 40; ++step) {
    states.emplace_back(scene->hash(), scene.points(shape));
    std::vector<Vec3f> wanted = scene.points(shape);
    PointTargets targets;
    for (std::size_t v = 0; v < wanted.size(); ++v) {
      if (random() % 3) continue;
      // Now and then back to where it is stored: then it needs no offset.
      const Vec3f place = random() % 4 == 0 ? original[v] : Vec3f{float(random()), 0.1F, -0.0F};
      targets.add(VertexId(static_cast<Index>(v)), place);
      wanted[v] = place;
    }
    scene::ChangeSet changes;
    {
      const scene::Journal::Scope scope(scene->journal(), &changes);
      REQUIRE(tweakPoints(shape, targets));
    }
    CHECK(scene.points(shape) == wanted);
    CHECK(stored() == original);
    // The sum is what a fresh shape of the same offsets shows.
    const VertexOffsets offsets(shape);
    for (std::size_t v = 0; v < wanted.size(); ++v)
      CHECK(offsets.hold(static_cast<Index>(v)) == !(wanted[v] == original[v]));
    if (step % 3 == 0) {
      REQUIRE(changes.undo());
      CHECK(scene->hash() == states.back().first);
      CHECK(scene.points(shape) == states.back().second);
      REQUIRE(changes.redo());
      CHECK(scene.points(shape) == wanted);
    }
    if (step % 5 == 4) {
      // A program's edit of all points: offsets where there are some, else the stored mesh.
      std::vector<Vec3f> shifted = wanted;
      for (Vec3f& point : shifted) point.z += 1;
      scene::ChangeSet written;
      {
        const scene::Journal::Scope scope(scene->journal(), &written);
        REQUIRE(setEvaluatedPoints(shape, shifted));
      }
      CHECK(scene.points(shape) == shifted);
      REQUIRE(written.undo());
      CHECK(scene.points(shape) == wanted);
      CHECK(stored() == original);
    }
  }
  REQUIRE(deleteHistory(*scene.document, shape));
  CHECK(scene.graph().elementCount(shape.plug("pnts")) == 0);
  CHECK(scene.points(shape) == stored());
}

TEST_CASE("mesh: what a listener does to offsets while they are set counts") {
  struct Meddler final : dg::GraphObserver {
    dg::Node* shape = nullptr;
    void attributeEvent(dg::AttributeEvent, const dg::Plug&, const dg::Plug&) override {
      if (!shape) return;
      dg::Node& node = *std::exchange(shape, nullptr);
      REQUIRE(node.graph().set(node.plug("pnts").element(6).child(1), 5.0));
    }
  } meddler;
  Scene scene;
  dg::Node& shape = scene.cube();
  const std::vector<Vec3f> before = scene.points(shape);
  scene.graph().addObserver(&meddler);
  meddler.shape = &shape;
  PointTargets targets;
  targets.add(VertexId(0), {9, 9, 9});
  REQUIRE(tweakPoints(shape, targets));
  scene.graph().removeObserver(&meddler);
  CHECK(scene.points(shape)[0] == Vec3f{9, 9, 9});
  CHECK(scene.points(shape)[6].y == before[6].y + 5);
}

TEST_CASE("mesh: with history a move is a tweak that survives an edit of the history") {
  Scene scene;
  dg::Node& shape = scene.cubeWithHistory();
  std::vector<Vec3f> points = scene.points(shape);
  points[3].y += 1;
  REQUIRE(setEvaluatedPoints(shape, points));
  CHECK(scene.graph().elementCount(shape.plug("pnts")) == 1);
  CHECK(scene.real("pCubeShape1.pnts[3].pnty") == 1);
  scene.set("polyCube1.width", 4.0);
  CHECK(scene.points(shape)[3].x == 2);
  CHECK(scene.points(shape)[3].y == 1.5f);
  // One that is set as an attribute counts the same.
  scene.set("pCubeShape1.pt[0].px", -1.0);
  CHECK(scene.points(shape)[0].x == -3);
}

TEST_CASE("mesh: what is not tweaked is shared with what arrives") {
  Scene scene;
  dg::Node& shape = scene.cubeWithHistory();
  const auto made = scene.graph().get(scene.plug("polyCube1.output"));
  REQUIRE(made);
  const mesh::Mesh& source = dg::dataAs<scene::MeshData>(*made)->mesh;
  CHECK(scene.mesh(shape).sharesPointsWith(source));
  scene.set("pCubeShape1.pnts[0].pntx", 0.0);
  CHECK(scene.mesh(shape).sharesPointsWith(source));
  scene.set("pCubeShape1.pnts[0].pntx", 1.0);
  CHECK_FALSE(scene.mesh(shape).sharesPointsWith(source));
  CHECK(scene.mesh(shape).sharesTopologyWith(source));
  CHECK(scene.mesh(shape).sharesUvSetWith(0, source, 0));
}

TEST_CASE("mesh: vertices, edges and UVs read and write as attributes") {
  Scene scene;
  dg::Node& shape = scene.cube();
  CHECK(scene.real("pCubeShape1.vt[3].vy") == 0.5);
  scene::ChangeSet changes;
  const std::uint64_t before = scene->hash();
  {
    const scene::Journal::Scope scope(scene->journal(), &changes);
    scene.set("pCubeShape1.vrts[3].vrtx", 7.0);
    scene.set("pCubeShape1.uvSet[0].uvSetPoints[2].uvSetPointsU", 0.125);
  }
  CHECK(scene.points(shape)[3].x == 7);
  CHECK(scene.mesh(shape).uvSet(0).points[2].u == 0.125f);
  const auto edge = scene.graph().get(scene.plug("pCubeShape1.edge[4].edg2"));
  REQUIRE(edge);
  CHECK(std::get<std::int64_t>(*edge) == scene.mesh(shape).edge(4).b);
  REQUIRE(changes.undo());
  CHECK(scene->hash() == before);
  CHECK(scene.points(shape)[3].x == 0.5f);
  CHECK_FALSE(scene.graph().set(scene.plug("pCubeShape1.vt[99].vx"), 1.0));
}

TEST_CASE("mesh: the world mesh of each instance follows its own parents") {
  Scene scene;
  dg::Node& shape = scene.cube();
  dg::Node& other = scene.make("transform", "other");
  REQUIRE(scene->addInstance(shape, &other));
  const auto corner = [&](Index instance) {
    const auto value = scene.graph().get(shape.plug("worldMesh").element(instance));
    REQUIRE(value);
    return dg::dataAs<scene::MeshData>(*value)->mesh.points()[0].x;
  };
  CHECK(corner(0) == -0.5f);
  CHECK(corner(1) == -0.5f);
  scene.set("other.translateX", 10.0);
  CHECK(corner(0) == -0.5f);
  CHECK(corner(1) == 9.5f);
  dg::Node& group = scene.make("transform", "group");
  REQUIRE(scene->reparent(scene.path("other"), &group));
  scene.set("group.translateX", 100.0);
  CHECK(corner(1) == 109.5f);
}

TEST_CASE("mesh: corner data edited behind history stays until other faces arrive") {
  Scene scene;
  dg::Node& shape = scene.cubeWithHistory();
  mesh::Mesh edited = scene.mesh(shape);
  edited.editUvSet(0).points[0].u = 0.875f;
  edited.setEdgeSmooth(2, true);
  REQUIRE(setEvaluatedMesh(shape, edited));
  CHECK(scene.mesh(shape).uvSet(0).points[0].u == 0.875f);
  scene.set("polyCube1.width", 4.0);
  CHECK(scene.mesh(shape).points()[1].x == 2);
  CHECK(scene.mesh(shape).isEdgeSmooth(2));
  scene.set("polyCube1.subdivisionsWidth", std::int64_t{2});
  CHECK_FALSE(scene.mesh(shape).isEdgeSmooth(2));
  CHECK(mesh::check(scene.mesh(shape)).empty());
  scene.set("polyCube1.subdivisionsWidth", std::int64_t{1});
  CHECK(scene.mesh(shape).isEdgeSmooth(2));
  mesh::Mesh other;
  CHECK_FALSE(setEvaluatedMesh(shape, other));
  CHECK_FALSE(setStoredMesh(shape, other));
}
