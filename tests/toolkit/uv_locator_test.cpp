#include "host/workspace/workspace.h"
#include "tests/toolkit/tool_hand.h"

// What shows of seams, anchors and selections on a loaded mesh, in both viewports, and what
// doesn't.

namespace {

struct shownMarks : toolHand {
  shownMarks() {
    run("modelEditor -e -grid 0 modelPanel1; polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4 -ch 0; "
        "select -r "
        "plane; qxLoadUvObjectForMarking -loadType \"load\"; select -r plane.e[10:20]; "
        "qxMarkUVInformation -me 1; select -r plane.vtx[12]; qxMarkUVInformation -mv 1; select "
        "-cl");
  }
  ~shownMarks() { (void)session->executeLine("file -f -new"); }
  shownMarks(const shownMarks&) = delete;
  shownMarks& operator=(const shownMarks&) = delete;

  struct counts {
    int seams = 0, anchors = 0;
    [[nodiscard]] bool areShown() const { return seams > 100 && anchors > 10; }
    [[nodiscard]] bool areHidden() const { return seams == 0 && anchors == 0; }
  };
  /// Pixels in the colours of the marks.
  counts seen(bool isLegacy) {
    run(std::string("modelEditor -e -rendererName ") +
        (isLegacy ? "base_OpenGL_Renderer" : "vp2Renderer") + " modelPanel1");
    auto& views = host::workspace::workspaceOf(*session).views;
    auto& view = *views.find("modelPanel1");
    view.options.axisGizmo = false;
    const auto image = host::workspace::renderView(session->document(), views, view, {400, 300});
    REQUIRE(image.has_value());
    counts found;
    for (std::size_t i = 0; i + 3 < image->rgba.size(); i += 4) {
      const int r = image->rgba[i], g = image->rgba[i + 1], b = image->rgba[i + 2];
      if (r < 30 && g > 140 && g < 190 && b > 230) ++found.seams;
      if (r < 30 && g > 230 && b < 30) ++found.anchors;
    }
    return found;
  }
  void expectShown() {
    for (const bool isLegacy : {true, false}) {
      CAPTURE(isLegacy);
      const counts found = seen(isLegacy);
      CAPTURE(found.seams);
      CAPTURE(found.anchors);
      CHECK(found.areShown());
    }
  }
  void expectHidden() {
    for (const bool isLegacy : {true, false}) {
      CAPTURE(isLegacy);
      CHECK(seen(isLegacy).areHidden());
    }
  }
};

}  // namespace

TEST_CASE("marks show in both viewports, move and hide with their mesh, and cannot be clicked") {
  shownMarks scene;
  scene.expectShown();
  scene.run(
      "setAttr plane.translate -type double3 1 0 1; setAttr plane.rotateY 30; group -n above "
      "plane; setAttr above.scaleX 0.7");
  scene.expectShown();
  scene.run("setAttr plane.visibility 0");
  scene.expectHidden();
  scene.run("setAttr plane.visibility 1; setAttr above.visibility 0");
  scene.expectHidden();
  scene.run(
      "setAttr above.visibility 1; xform -ws -t 0 0 0 plane; setAttr plane.rotateY 0; setAttr "
      "above.scaleX 1; select -cl; selectMode -object; setToolTo selectSuperContext");
  scene.expectShown();
  scene.click(scene.at("plane.e[10]"));
  CHECK(scene.selected() == toolHand::names{"plane"});
  scene.run("select -r plane; qxLoadUvObjectForMarking -loadType \"unLoad\"; select -cl");
  scene.expectHidden();
  scene.run("undo; select -cl");
  scene.expectShown();
  scene.run("delete plane");
  scene.expectHidden();
}

TEST_CASE("marks of a mesh that lost faces: what is there still shows; saved and opened again") {
  shownMarks scene;
  scene.run("select -r plane.f[12:15]; delete; select -cl");
  scene.expectShown();
  scene.run("file -rename \"" QXMT_BINARY_DIR
            "/uv marks.ma\"; file -f -save -type \"mayaAscii\"; file -f "
            "-open \"" QXMT_BINARY_DIR "/uv marks.ma\"; modelEditor -e -grid 0 modelPanel1");
  CHECK(scene.number("size(`getAttr planeShape.qxUvMarkedEdgeArray`)") == 11);
  scene.expectShown();
}
