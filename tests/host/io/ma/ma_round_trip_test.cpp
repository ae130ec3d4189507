#include <fstream>
#include <sstream>

#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "tests/host/io/ma/ma_fixture.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using io::test::MaScene;

namespace {

/// Saves the scene, opens that twice over, and wants the same of it every time.
void checkRoundTrip(MaScene& scene) {
  const std::string saved = scene.save();
  MaScene opened;
  opened.open(saved);
  const std::string again = opened.save();
  CHECK(again == saved);
  MaScene reopened;
  reopened.open(again);
  CHECK(reopened->hash() == opened->hash());
}

}  // namespace

TEST_CASE("saved scenes: every zoo mesh comes back bit for bit") {
  for (const zoo::ZooMesh& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    MaScene scene;
    dg::Node& shape = scene.make("mesh", "theShape");
    REQUIRE(nodes::setStoredMesh(shape, each.mesh));
    MaScene opened;
    opened.open(scene.save());
    const mesh::Mesh mesh = opened.mesh("theShape");
    CHECK(mesh::check(mesh).empty());
    CHECK(mesh.topology() == each.mesh.topology());
    CHECK(std::ranges::equal(mesh.points(), each.mesh.points()));
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      if (!each.has(zoo::Has::LockedNormals))
        REQUIRE(mesh.isEdgeSmooth(e) == each.mesh.isEdgeSmooth(e));
      REQUIRE(mesh.edgeCrease(e) == each.mesh.edgeCrease(e));
    }
    REQUIRE(mesh.uvSetCount() == each.mesh.uvSetCount());
    for (int s = 0; s < mesh.uvSetCount(); ++s) {
      CHECK(mesh.uvSet(s).name == each.mesh.uvSet(s).name);
      CHECK(mesh.uvSet(s).points == each.mesh.uvSet(s).points);
      for (CornerId c = 0; c < mesh.cornerCount(); ++c)
        REQUIRE(mesh.cornerUv(s, c) == each.mesh.cornerUv(s, c));
    }
    REQUIRE(mesh.colorSetCount() == each.mesh.colorSetCount());
    for (int s = 0; s < mesh.colorSetCount(); ++s) CHECK(mesh.colorSet(s) == each.mesh.colorSet(s));
    CHECK(std::ranges::equal(mesh.invisibleFaces(), each.mesh.invisibleFaces()));
    for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
      REQUIRE(mesh.isNormalLocked(c) == each.mesh.isNormalLocked(c));
      if (mesh.isNormalLocked(c))
        REQUIRE(mesh.lockedNormals().normals[static_cast<std::size_t>(c)] ==
                each.mesh.lockedNormals().normals[static_cast<std::size_t>(c)]);
    }
    checkRoundTrip(opened);
  }
}

TEST_CASE("saved scenes: history, tweaks, sets, instances and units come back") {
  for (const char* unit : {"cm", "foot", "m", "inch"}) {
    CAPTURE(unit);
    MaScene scene;
    scene::Units units;
    REQUIRE(scene::parseLinearUnit(unit, units.linear));
    units.time = "pal";
    scene->setUnits(units);
    scene->fileInfo = {{"product", "a \"quoted\" name\n"}};

    // A sphere with its history, moved, a face extruded away from it by tweaks.
    dg::Node& ball = scene.make("transform", "ball");
    scene.make("mesh", "ballShape", &ball);
    scene.make("polySphere", "polySphere1");
    scene.set("polySphere1.radius", 1.37);
    REQUIRE(
        scene.graph().connect(scene.plug("polySphere1.output"), scene.plug("ballShape.inMesh")));
    scene.setVec3("ball.translate", {1.0 / 3, -2e-7, 1e6 / 7});
    scene.setVec3("ball.rotate", {0.1, 1.2345678901234567, -3});
    dg::Node& ballShape = *scene.path("ballShape").node();
    const auto mesh = nodes::evaluatedMesh(ballShape);
    REQUIRE(mesh);
    std::vector<math::Vec3f> points(mesh->points().begin(), mesh->points().end());
    points[5].y += 0.1f;
    points[200].x -= 1.0f / 7;
    REQUIRE(nodes::setEvaluatedPoints(ballShape, std::move(points)));
    // One shape in two places, under parents of the same name.
    dg::Node& left = scene.make("transform", "left");
    dg::Node& right = scene.make("transform", "right");
    dg::Node& inner = scene.make("transform", "inner", &left);
    scene.make("transform", "inner", &right);
    dg::Node& shape = scene.make("mesh", "innerShape", &inner);
    REQUIRE(nodes::setStoredMesh(shape, zoo::zooMesh("cube")));
    REQUIRE(scene->addInstance(shape, &right));
    // Sets of objects and of components, a material of its own.
    dg::Node& set = scene.make("objectSet", "picked");
    REQUIRE(nodes::addToSet(*scene.document, set, scene.list("ballShape.f[3:9]")));
    REQUIRE(nodes::addToSet(*scene.document, set, scene.list("right")));
    dg::Node& group = scene.make("shadingEngine", "redSG");
    scene.set("redSG.renderableOnlySet", std::int64_t{1});
    REQUIRE(nodes::addToSet(*scene.document, group, scene.list("|left|inner|innerShape")));
    // Switches, added attributes, names for attributes.
    auto added = scene.graph().addAttribute(
        ball,
        dg::makeTriple("windDirection", "wd", dg::AttributeType::Double, "double3", {0, 1, 0}));
    REQUIRE(added);
    auto mood = dg::makeEnum("mood", "mood", {{"calm", 0}, {"wild", 5}});
    mood->keyable = true;
    REQUIRE(scene.graph().addAttribute(ball, mood));
    scene.set("ball.mood", std::int64_t{5});
    scene.set("ball.windDirectionY", 0.25);
    auto note = dg::makeAttribute("note", "note", dg::AttributeType::String);
    REQUIRE(scene.graph().addAttribute(ball, note));
    scene.set("ball.note", std::string("tab\there \\ \"there\"\r\n"));
    REQUIRE(scene.graph().setAlias(scene.plug("ball.windDirectionX"), "gust"));
    REQUIRE(
        scene.graph().setFlag(scene.plug("ball.translateX"), dg::Graph::PlugFlag::Locked, true));
    REQUIRE(scene.graph().setFlag(scene.plug("ball.scaleX"), dg::Graph::PlugFlag::Keyable, false));
    scene.set("persp.visibility", std::int64_t{1});
    REQUIRE(scene.graph().setNodeLocked(set, true));

    const std::string saved = scene.save();
    MaScene opened;
    CHECK(opened.open(saved).warnings.empty());
    CHECK(opened->units() == units);
    CHECK(opened->fileInfo == scene->fileInfo);
    for (const char* name : {"ballShape", "|right|innerShape"})
      CHECK(mesh::hashMesh(opened.mesh(name)) == mesh::hashMesh(scene.mesh(name)));
    for (const char* plug : {"ball.translateX", "ball.translateZ", "ball.rotateX", "ball.rotateY",
                             "ball.rotateZ", "polySphere1.radius", "ball.gust"})
      CHECK(opened.real(plug) == scene.real(plug));
    for (const char* name : {"picked", "redSG", "initialShadingGroup"})
      CHECK(nodes::setMembers(*opened->nodesNamed(name).front()).length() ==
            nodes::setMembers(*scene->nodesNamed(name).front()).length());
    CHECK(opened.graph().flag(opened.plug("ball.translateX"), dg::Graph::PlugFlag::Locked));
    CHECK_FALSE(opened.graph().flag(opened.plug("ball.scaleX"), dg::Graph::PlugFlag::Keyable));
    CHECK(dg::equal(*opened.graph().get(opened.plug("persp.visibility")), std::int64_t{1}));
    CHECK(opened->nodesNamed("picked").front()->isLocked());
    CHECK(dg::equal(*opened.graph().get(opened.plug("ball.note")),
                    *scene.graph().get(scene.plug("ball.note"))));
    checkRoundTrip(opened);
  }
}

TEST_CASE("saved scenes: edits on top of history are saved as they are seen") {
  MaScene scene;
  scene.make("transform", "ball");
  dg::Node& shape = scene.make("mesh", "ballShape", scene->nodesNamed("ball").front());
  scene.make("polySphere", "polySphere1");
  REQUIRE(scene.graph().connect(scene.plug("polySphere1.output"), scene.plug("ballShape.inMesh")));
  mesh::Mesh edited = scene.mesh("ballShape");
  edited.editUvSet(0).points[7] = {0.5f, 2.5f};
  edited.setEdgeSmooth(3, false);
  REQUIRE(nodes::setEvaluatedMesh(shape, edited));

  const auto text =
      io::formatMa(*scene.document, scene.kept,
                   {.name = "a.ma", .modified = {}, .version = "2016", .requirements = {}});
  REQUIRE(text);
  CHECK(text->warnings.size() == 1);
  MaScene opened;
  opened.open(text->text);
  CHECK(opened.mesh("ballShape") == edited);
  CHECK_FALSE(nodes::hasHistory(*opened.path("ballShape").node()));
  CHECK(opened->nodesNamed("polySphere1").empty());
  checkRoundTrip(opened);
}

TEST_CASE(
    "saved scenes: a number that no file can hold becomes 0 with a warning, and all is saved") {
  MaScene scene;
  dg::Node& shape = scene.make("mesh", "badShape");
  mesh::Mesh bad = zoo::zooMesh("cube");
  bad.editPoints()[2].x = std::numeric_limits<float>::quiet_NaN();
  REQUIRE(nodes::setStoredMesh(shape, bad));
  const auto text =
      io::formatMa(*scene.document, scene.kept,
                   {.name = "a.ma", .modified = {}, .version = "2016", .requirements = {}});
  REQUIRE(text);
  REQUIRE(text->warnings.size() == 1);
  CHECK(text->warnings.front().find("'badShape': 1 numbers") != std::string::npos);
  CHECK(text->text.find("nan") == std::string::npos);
}

TEST_CASE("saved scenes: what made exported meshes can be left out") {
  MaScene scene;
  dg::Node& ball = scene.make("transform", "ball");
  dg::Node& shape = scene.make("mesh", "ballShape", &ball);
  scene.make("polySphere", "polySphere1");
  REQUIRE(scene.graph().connect(scene.plug("polySphere1.output"), scene.plug("ballShape.inMesh")));
  scene.make("transform", "other");
  const io::MaPart only = {.nodes = {&shape, &ball}, .links = {{&ball, nullptr}, {&shape, &ball}}};
  const auto text = io::formatMa(*scene.document, scene.kept,
                                 {.name = "a.ma",
                                  .modified = {},
                                  .version = "2016",
                                  .requirements = {},
                                  .only = &only,
                                  .withHistory = false});
  REQUIRE(text);
  CHECK(text->warnings.empty());
  MaScene opened;
  opened.open(text->text);
  const mesh::Mesh seen = scene.mesh("ballShape"), written = opened.mesh("|ball|ballShape");
  CHECK(written.topology() == seen.topology());
  CHECK(std::ranges::equal(written.points(), seen.points()));
  CHECK(written.uvSet(0) == seen.uvSet(0));
  CHECK(opened->nodesNamed("other").empty());
  CHECK(opened->nodesNamed("polySphere1").empty());
}
