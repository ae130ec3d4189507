// An extrude node keeps its topology between evaluations; it must never show.
#include <doctest/doctest.h>

#include <random>

#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "host/ops/topology/extrude_faces.h"
#include "tests/host/nodes/nodes_fixture.h"

using namespace host;
using namespace host::nodes;
using namespace host::nodes::test;

namespace {

dg::Value faceList(const std::vector<FaceId>& faces) {
  return dg::DataPtr(std::make_shared<scene::ComponentListData>(
      std::vector<scene::Component>{scene::Component::of(faces)}));
}

/// A plane of 3 by 3 faces with an extrude node, and the same extrusion done afresh.
struct ExtrudeScene : Scene {
  ExtrudeScene() {
    REQUIRE(graph().connect(plane.plug("output"), shape.plug("inMesh")));
    set("polyPlane1.sw", std::int64_t{3});
    set("polyPlane1.sh", std::int64_t{3});
    REQUIRE(insertHistoryNode(*document, shape, node.plug("inputPolymesh"), node.plug("output")));
    list({0, 1, 4});
  }

  void list(std::vector<FaceId> ids) {
    faces = ids;
    set("polyExtrudeFace1.ics", faceList(std::move(ids)));
  }

  std::uint64_t afresh() {
    mesh::Mesh result = inputOf();
    std::vector<FaceId> there = faces;
    std::erase_if(there, [&](FaceId face) { return face >= result.faceCount(); });
    options.pivot = math::Vec3();
    REQUIRE(ops::extrudeFaces(result, there, options));
    CHECK(mesh::check(result).empty());
    return mesh::hashMesh(result);
  }
  std::uint64_t shown() { return mesh::hashMesh(mesh(shape)); }

  dg::Node& shape = make("mesh", "shape");
  dg::Node& plane = make("polyPlane");
  dg::Node& node = make("polyExtrudeFace");
  std::vector<FaceId> faces;
  ops::ExtrudeFacesOptions options;

 private:
  mesh::Mesh inputOf() {
    const auto value = graph().get(plane.plug("output"));
    REQUIRE(value);
    return dg::dataAs<scene::MeshData>(*value)->mesh;
  }
};

/// One edit of the node, of its input or of its list.
void editSomething(ExtrudeScene& scene, std::mt19937& random) {
  const double number = static_cast<double>(random() % 100) / 50;
  switch (random() % 8) {
    case 0:
    case 1:
    case 2:
      scene.options.local.translate.z = number;
      return scene.set("polyExtrudeFace1.localTranslateZ", number);
    case 3:
      scene.options.offset = number / 10;
      return scene.set("polyExtrudeFace1.offset", number / 10);
    case 4:
      scene.options.divisions = 1 + static_cast<int>(random() % 3);
      return scene.set("polyExtrudeFace1.d", std::int64_t{scene.options.divisions});
    case 5:
      scene.options.keepFacesTogether = !scene.options.keepFacesTogether;
      return scene.set("polyExtrudeFace1.kft", std::int64_t{scene.options.keepFacesTogether});
    case 6:
      return random() % 2 ? scene.set("polyPlane1.width", 1 + number)
                          : scene.set("polyPlane1.sw", static_cast<std::int64_t>(1 + random() % 4));
    default:
      return scene.list({static_cast<FaceId>(random() % 4), static_cast<FaceId>(4 + random() % 8)});
  }
}

}  // namespace

TEST_CASE("polyExtrudeFace: whatever changes, the result is that of an extrusion done afresh") {
  ExtrudeScene scene;
  std::mt19937 random(3);
  CHECK(scene.shown() == scene.afresh());
  for (int i = 0; i < 200; ++i) {
    editSomething(scene, random);
    CAPTURE(i);
    REQUIRE(scene.shown() == scene.afresh());
  }
}

TEST_CASE("polyExtrudeFace: a drag shares the topology; a refused value does not stick") {
  ExtrudeScene scene;
  const mesh::Mesh first = scene.mesh(scene.shape);
  scene.set("polyExtrudeFace1.ltz", 2.0);
  CHECK(scene.mesh(scene.shape).sharesTopologyWith(first));
  scene.set("polyExtrudeFace1.d", std::int64_t{0});
  CHECK_FALSE(evaluatedMesh(scene.shape));
  scene.set("polyExtrudeFace1.d", std::int64_t{1});
  scene.options.local.translate.z = 2;
  CHECK(scene.shown() == scene.afresh());
}
