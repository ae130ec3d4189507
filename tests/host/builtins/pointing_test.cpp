// What views show of what can be picked: dots in vertex mode, the component under the pointer.
#include <doctest/doctest.h>

#include "host/builtins/register.h"
#include "host/cmd/loop.h"
#include "host/workspace/workspace.h"

using namespace host;

namespace {

struct Pointing {
  std::unique_ptr<cmd::Session> session = builtins::makeSession();
  void run(const char* mel) { REQUIRE(session->executeLine(mel)); }
  viewport::RenderMesh box(const char* panel = "modelPanel4") {
    workspace::Views& views = workspace::workspaceOf(*session).views;
    const auto scene = workspace::gatherView(session->document(), views, *views.find(panel));
    REQUIRE(scene);
    REQUIRE(scene->meshes.size() == 1);
    return scene->meshes.front();
  }
};

}  // namespace

TEST_CASE("the component that a click would pick stands out under the pointer") {
  Pointing scene;
  scene.run("polyCube -n box; select -cl; setToolTo selectSuperContext");
  scene.run("viewGesture -hoverAt box.f[0] modelPanel4");
  CHECK(scene.box().hovered.isEmpty());  // objects are picked: nothing of them stands out

  scene.run("hilite box; selectType -ocm -alc 0; selectType -ocm -facet 1");
  scene.run("viewGesture -hoverAt box.f[0] modelPanel4");
  CHECK(scene.box().hovered.faces == std::vector<FaceId>{0});
  CHECK(scene.box("modelPanel1").hovered.isEmpty());  // the pointer is in another view
  scene.run("selectType -ocm -alc 0; selectType -ocm -vertex 1");
  scene.run("viewGesture -hoverAt box.vtx[3] modelPanel4");
  CHECK(scene.box().hovered.vertices == std::vector<VertexId>{3});
  CHECK(scene.box().hovered.faces.empty());
  scene.run("viewGesture -hover 1 1 modelPanel4");
  CHECK(scene.box().hovered.isEmpty());
  scene.run("viewGesture -hoverAt box.vtx[3] modelPanel4; setToolTo moveSuperContext");
  CHECK(scene.box().hovered.isEmpty());
}

TEST_CASE("hilited meshes show their vertices while those can be picked, and views are told") {
  Pointing scene;
  scene.run("polyCube -n box; select -cl; selectType -ocm -alc 0; selectType -ocm -vertex 1");
  CHECK_FALSE(scene.box().showVertices);
  int draws = 0;
  const auto connection = scene.session->loop().drawing.connect([&] { ++draws; });
  scene.session->loop().step();
  draws = 0;
  scene.run("hilite box");
  scene.session->loop().step();
  CHECK(draws == 1);
  CHECK(scene.box().showVertices);
  scene.run("selectType -ocm -alc 0; selectType -ocm -edge 1");
  CHECK_FALSE(scene.box().showVertices);
}
