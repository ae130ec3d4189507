// What views show of a soft selection: its colours where it reaches, nothing beyond, and no work
// for what has not changed.
#include "host/builtins/tools/soft_colors.h"

#include <doctest/doctest.h>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/mesh/point_moves.h"
#include "host/workspace/workspace.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;

namespace {

/// A plane of 16 by 16 faces, half a unit each, from above: 20 pixels a unit.
struct Stage {
  std::unique_ptr<cmd::Session> session = builtins::makeSession();
  viewport::Image picture;

  Stage() {
    run("polyPlane -n p -w 8 -h 8 -sx 16 -sy 16 -ch 0; setAttr topShape.orthographicWidth 12;"
        "modelEditor -e -grid 0 -displayAppearance wireframe modelPanel1; select p.vtx[144]");
    view().options.axisGizmo = false;
  }
  workspace::View& view() { return *workspace::workspaceOf(*session).views.find("modelPanel1"); }
  void run(const std::string& mel) const {
    CAPTURE(mel);
    REQUIRE(session->executeLine(mel).has_value());
  }
  bool draw() {
    auto& views = workspace::workspaceOf(*session).views;
    if (!views.offscreen()) return false;
    auto image = workspace::renderView(session->document(), views, view(), {240, 160});
    REQUIRE(image.has_value());
    picture = std::move(*image);
    return true;
  }
  /// The strongest red and green within a few pixels of a place of the plane.
  std::pair<int, int> at(double x, double z) const {
    std::pair<int, int> most;
    for (int j = -2; j <= 2; ++j)
      for (int i = -2; i <= 2; ++i) {
        const std::uint8_t* p =
            picture.pixel(120 + static_cast<int>(x * 20) + i, 80 + static_cast<int>(z * 20) + j);
        if (p[0] < p[2] + 40) continue;  // of the wire and the background
        most = {std::max<int>(most.first, p[0]), std::max<int>(most.second, p[1])};
      }
    return most;
  }
};

}  // namespace

TEST_CASE("a soft selection shows yellow at the selected, then red, and dark where it ends") {
  const MessageCapture quiet;
  Stage stage;
  if (!stage.draw()) return;
  CHECK(stage.at(1.5, 0).first == 0);
  stage.run("softSelect -sse 1 -ssd 3 -ssc \"1,0,1,0,1,1\"");
  stage.draw();
  const auto [nearRed, nearGreen] = stage.at(0.5, 0);
  CHECK(nearRed > 200);
  CHECK(nearGreen > 120);
  const auto [red, green] = stage.at(1.5, 0);
  CHECK(red > 180);
  CHECK(green < 90);
  CHECK(stage.at(2.5, 0).first < red);
  CHECK(stage.at(3.5, 0).first == 0);
  stage.run("currentUnit -l m; softSelect -ssd 0.01");
  stage.draw();
  CHECK(stage.at(0.5, 0).first > 150);
  CHECK(stage.at(1.5, 0).first == 0);
  stage.run("currentUnit -l cm; softSelect -ssd 3 -scc \"0,0,1,0,1,0,0,1,1,1\"");
  stage.draw();
  CHECK(stage.at(0.5, 0).first == 0);  // blue now
  stage.run("softSelect -ssr; softSelect -ssd 3; select p");
  stage.draw();
  CHECK(stage.at(0.5, 0).first == 0);  // no components
  stage.run("select p.vtx[144]; softSelect -efc 0");
  stage.draw();
  CHECK(stage.at(0.5, 0).first == 0);
}

TEST_CASE("by the surface a soft selection does not leap over gaps") {
  const MessageCapture quiet;
  Stage stage;
  if (!stage.draw()) return;
  stage.run(
      "delete p.f[112:127]; select p.vtx[144]; softSelect -sse 1 -ssd 2 -ssf 0 -ssc "
      "\"1,0,1,1,1,1\"");
  stage.draw();
  const bool leaps = stage.at(0, 1).first > 0 || stage.at(0.5, 1).first > 0;
  stage.run("softSelect -ssf 1");
  stage.draw();
  CHECK(leaps);
  CHECK(stage.at(0, 1).first == 0);
  CHECK(stage.at(0.5, 1).first == 0);
  CHECK(stage.at(0.5, -0.5).first > 0);
}

TEST_CASE("the colours of a soft selection cost what has changed") {
  builtins::SoftColors colors;
  builtins::SoftColors::Settings settings;
  settings.soft.isOn = true;
  settings.soft.distance = 0.6;
  settings.colors = {{0, {1, 1, 0}}, {1, {0, 0, 0}}};
  viewport::SceneView scene;
  viewport::RenderMesh mesh;
  mesh.id = 7;
  mesh.mesh = zoo::zooMesh("grid");
  mesh.selected.vertices = {0};
  scene.meshes.push_back(mesh);
  const auto show = [&](bool isDragging = false) {
    const std::size_t before = colors.worked();
    colors.show(scene, settings, isDragging);
    return colors.worked() - before;
  };
  const std::size_t all = at(mesh.mesh.vertexCount());
  CHECK(show() == all);
  REQUIRE(scene.meshes[0].reach);
  CHECK(show() == 0);
  // A vertex that is told to have moved into reach, or out of it, is looked at alone.
  const std::size_t reached = scene.meshes[0].reach->vertices.size();
  const VertexId last(mesh.mesh.vertexCount() - 1);
  const std::vector<VertexId> moved{last};
  const std::vector<math::Vec3f> places{scene.meshes[0].mesh.point(0).toFloat()};
  mesh::movePoints(scene.meshes[0].mesh, moved, places);
  CHECK(show() == 1);
  CHECK(scene.meshes[0].reach->vertices.size() == reached + 1);
  CHECK(scene.meshes[0].reach->vertices.back() == last);
  // While the pointer drags the shares stay, whatever moves.
  scene.meshes[0].mesh.editPoints()[0] = {50, 0, 0};
  CHECK(show(true) == 0);
  CHECK(show() == all);
  CHECK(scene.meshes[0].reach->vertices.size() == 1);
  ++settings.revision;
  CHECK(show() == all);
}
