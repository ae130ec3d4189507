// A plug-in's shape with a geometry override: a node below its transform that views show.
#include <maya/MFnDagNode.h>
#include <maya/MStateManager.h>

#include <filesystem>

#include "host/api/view/draw_registry.h"
#include "host/base/messages.h"
#include "host/workspace/workspace.h"
#include "tests/host/api/api_scene.h"

namespace {

using host::viewport::DrawItem;
using host::viewport::Primitive;

struct Crystals : ApiScene {
  Crystals() {
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/crystal_shape.so"));
    run("createNode transform -n stone; createNode crystalShape -n stoneShape -p stone;"
        "setAttr stone.t 3 0 0; select -cl;");
  }
  ~Crystals() { session.reset(); }
  host::MessageCapture quiet;

  /// What a view of a style shows beside meshes, by kind.
  std::vector<DrawItem> shown(Primitive primitive, const std::string& style = "smoothShaded") {
    run("modelEditor -e -displayAppearance " + style + " modelPanel4");
    auto& views = host::workspace::workspaceOf(*session).views;
    const auto scene = host::workspace::gatherView(session->document(), views, views.active());
    REQUIRE(scene);
    CHECK(host::viewport::check(scene->extra).empty());
    std::vector<DrawItem> found;
    for (const DrawItem& item : scene->extra.items)
      if (item.primitive == primitive && item.vertices->positions.size() == 24)
        found.push_back(item);
    return found;
  }
};

}  // namespace

TEST_CASE_FIXTURE(Crystals, "a geometry override's items are drawn, live and by the view's style") {
  const auto surface = shown(Primitive::Triangles);
  REQUIRE(surface.size() == 1);
  CHECK(surface[0].lit);
  CHECK(surface[0].indices->size() == 24);
  CHECK(surface[0].world[3][0] == 3);
  CHECK(surface[0].color.b == doctest::Approx(0.9));
  CHECK(surface[0].vertices->positions[1].y == 2);
  REQUIRE(shown(Primitive::Lines).size() == 1);
  const auto dots = shown(Primitive::Points);
  REQUIRE(dots.size() == 1);
  CHECK(dots[0].vertices->colors[0] == host::viewport::packColor({1, 0, 0, 1}));
  CHECK(dots[0].width == 9);
  CHECK(shown(Primitive::Triangles, "wireframe").empty());
  CHECK(shown(Primitive::Lines, "wireframe").size() == 1);

  const auto before = shown(Primitive::Lines)[0].color;
  run("select stone; setAttr stoneShape.size 2; setAttr stoneShape.tint -type float3 1 0 0");
  CHECK_FALSE(shown(Primitive::Lines)[0].color == before);
  CHECK(shown(Primitive::Triangles)[0].vertices->positions[1].y == 4);
  CHECK(shown(Primitive::Triangles)[0].color.r == 1);
  run("setAttr stone.v 0");
  CHECK(shown(Primitive::Points).empty());
}

TEST_CASE_FIXTURE(Crystals,
                  "a plug-in's shape is instanced, copied, measured, saved and unloaded") {
  CHECK(text("float $box[] = `exactWorldBoundingBox stone`; $box[1] + \" \" + $box[3]") == "-2 4");
  CHECK(MFnDagNode(path("stoneShape")).boundingBox().height() == 4);
  CHECK(text("string $shapes[] = `ls -type crystalShape`; $shapes[0]") == "stoneShape");
  run("instance -n again stone; setAttr again.tx -3; duplicate -n copy stone;"
      "setAttr copyShape.size 3");
  CHECK(shown(Primitive::Triangles).size() == 3);
  CHECK(text("getAttr stoneShape.size") == "1");
  const std::string file = (std::filesystem::temp_directory_path() / "qxmt_crystal.ma").string();
  run("file -f -rename \"" + file + "\"; file -f -save -type mayaAscii; file -f -new");
  CHECK(shown(Primitive::Triangles).empty());
  run("file -f -open \"" + file + "\"");
  std::filesystem::remove(file);
  CHECK(shown(Primitive::Triangles).size() == 3);
  CHECK(text("getAttr copyShape.size") == "3");
  run("delete stone again copy; flushUndo; unloadPlugin crystal_shape");
  CHECK(host::api::geometryRegistry().isEmpty());
}

TEST_CASE_FIXTURE(Crystals, "a state manager sets states while a callback draws, and only then") {
  MHWRender::MBlendStateDesc desc;
  desc.targetBlends[0].blendEnable = true;
  const auto* state = MHWRender::MStateManager::acquireBlendState(desc);
  REQUIRE(state);
  CHECK(state == MHWRender::MStateManager::acquireBlendState(desc));
  CHECK(state->desc().targetBlends[0].blendEnable);
  MHWRender::MStateManager manager;
  CHECK_FALSE(manager.setBlendState(state));
  CHECK_FALSE(manager.getBlendState()->desc().targetBlends[0].blendEnable);
}
