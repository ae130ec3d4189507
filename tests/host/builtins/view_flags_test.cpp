// What a view is told to show shows, and what it is told to hide is gone: each flag by its picture.
#include <doctest/doctest.h>

#include <cstdlib>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/workspace/workspace.h"

using namespace host;

namespace {

/// A scene with one of everything, from above and in front.
struct Stage {
  std::unique_ptr<cmd::Session> session = builtins::makeSession();

  Stage() {
    run("polyCube -n box -w 3 -h 3 -d 3 -ch 0; polyTorus -n ring -r 2 -sr 0.7 -ch 0; move 5 0 0 "
        "ring; polySphere -n ball -r 1.5 -ch 0; move -5 0 0 ball");
    run("spaceLocator -n mark; move 0 4 0 mark; curve -n way -d 1 -p -6 3 0 -p -3 5 0 -p -2 3 0; "
        "pointLight -n lamp; move 4 4 0 lamp");
    // Half of the bones are inside of the box.
    run("select -cl; joint -n hip -p 0 0 0; joint -n knee -p 0 0 3; joint -n foot -p 0 -1 5");
    run("shadingNode -asShader lambert -n paint; shadingNode -asTexture checker -n squares; "
        "connectAttr squares.outColor paint.color; select -r ball; hyperShade -assign paint; "
        "select -cl; setAttr persp.rotate -type double3 -30 20 0; viewFit -all");
    edit("-displayAppearance smoothShaded -wireframeOnShaded 0 -grid 0");
  }
  [[nodiscard]] bool canDraw() const {
    return workspace::workspaceOf(*session).views.offscreen().has_value();
  }
  void run(const std::string& mel) const {
    CAPTURE(mel);
    REQUIRE(session->executeLine(mel).has_value());
  }
  void edit(const std::string& flags) const { run("modelEditor -e " + flags + " modelPanel4"); }
  [[nodiscard]] viewport::Image picture() const {
    auto& views = workspace::workspaceOf(*session).views;
    auto image =
        workspace::renderView(session->document(), views, *views.find("modelPanel4"), {240, 160});
    REQUIRE(image.has_value());
    return std::move(*image);
  }
};

/// Pixels that a person would tell apart.
int difference(const viewport::Image& a, const viewport::Image& b) {
  int count = 0;
  for (std::size_t i = 0; i < a.rgba.size(); i += 4)
    for (std::size_t c = 0; c < 3; ++c)
      if (std::abs(int{a.rgba[i + c]} - int{b.rgba[i + c]}) > 8) {
        ++count;
        break;
      }
  return count;
}

}  // namespace

TEST_CASE("view flags: every one changes the picture, and back") {
  const Stage stage;
  if (!stage.canDraw()) return;
  stage.run("select -r box knee");
  const viewport::Image before = stage.picture();
  for (const auto& [on, off] : std::initializer_list<std::pair<const char*, const char*>>{
           {"-polymeshes 0", "-polymeshes 1"},
           {"-locators 0", "-locators 1"},
           {"-lights 0", "-lights 1"},
           {"-nurbsCurves 0", "-nurbsCurves 1"},
           {"-joints 0", "-joints 1"},
           {"-jointXray 1", "-jointXray 0"},
           {"-allObjects 0", "-allObjects 1"},
           {"-grid 1", "-grid 0"},
           {"-selectionHiliteDisplay 0", "-selectionHiliteDisplay 1"},
           {"-xray 1", "-xray 0"},
           {"-displayTextures 1", "-displayTextures 0"},
           {"-useDefaultMaterial 1", "-useDefaultMaterial 0"},
           {"-wireframeOnShaded 1", "-wireframeOnShaded 0"},
           {"-displayAppearance wireframe", "-displayAppearance smoothShaded"},
           {"-displayAppearance flatShaded", "-displayAppearance smoothShaded"},
           {"-displayAppearance boundingBox", "-displayAppearance smoothShaded"},
           {"-displayAppearance points", "-displayAppearance smoothShaded"},
           {"-displayLights all", "-displayLights default"},
           {"-displayLights none", "-displayLights default"},
           {"-displayLights flat", "-displayLights default"}}) {
    CAPTURE(on);
    stage.edit(on);
    CHECK(difference(stage.picture(), before) > 10);
    stage.edit(off);
    CHECK(stage.picture().rgba == before.rgba);
  }
  // Nothing is left of any kind, not even of what is selected.
  stage.edit("-allObjects 0");
  const viewport::Image bare = stage.picture();
  stage.edit("-allObjects 1");
  stage.run("hide -all");
  CHECK(stage.picture().rgba == bare.rgba);
}

TEST_CASE("view flags: those that ask for another picture and can't have it say so") {
  const Stage stage;
  const viewport::Image before = stage.canDraw() ? stage.picture() : viewport::Image{};
  for (const char* flag : {"shadows", "fogging", "smoothWireframe", "activeComponentsXray"}) {
    CAPTURE(flag);
    const MessageCapture said;
    stage.edit("-" + std::string(flag) + " 1");
    CHECK(said.text(MessageKind::Warning).find("-" + std::string(flag) + " is kept") !=
          std::string::npos);
    if (stage.canDraw()) CHECK(stage.picture().rgba == before.rgba);
  }
}

TEST_CASE("what a mesh, a joint and an override say of how they show is seen") {
  const Stage stage;
  if (!stage.canDraw()) return;
  const viewport::Image before = stage.picture();
  for (const auto& [on, off] : std::initializer_list<std::pair<const char*, const char*>>{
           {"setAttr boxShape.displaySmoothMesh 2", "setAttr boxShape.displaySmoothMesh 0"},
           {"setAttr boxShape.displayVertices 1", "setAttr boxShape.displayVertices 0"},
           {"setAttr boxShape.displayCenter 1", "setAttr boxShape.displayCenter 0"},
           {"setAttr boxShape.displayTriangles 1", "setAttr boxShape.displayTriangles 0"},
           {"setAttr boxShape.displayMapBorders 1", "setAttr boxShape.displayMapBorders 0"},
           {"setAttr boxShape.displayEdges 2", "setAttr boxShape.displayEdges 0"},
           {"setAttr hip.drawStyle 2", "setAttr hip.drawStyle 0"},
           {"setAttr hip.radius 3", "setAttr hip.radius 1"},
           {"setAttr mark.template 1", "setAttr mark.template 0"},
           {"setAttr box.overrideEnabled 1; setAttr box.overrideDisplayType 1",
            "setAttr box.overrideDisplayType 0; setAttr box.overrideEnabled 0"},
           {"setAttr hip.overrideEnabled 1; setAttr hip.overrideColor 13",
            "setAttr hip.overrideColor 0; setAttr hip.overrideEnabled 0"},
           {"setAttr way.overrideEnabled 1; setAttr way.overrideColor 17",
            "setAttr way.overrideColor 0; setAttr way.overrideEnabled 0"}}) {
    CAPTURE(on);
    stage.run(on);
    CHECK(difference(stage.picture(), before) > 4);
    stage.run(off);
    CHECK(stage.picture().rgba == before.rgba);
  }
  // Normals of faces, of vertices, and of vertices of each face: three pictures.
  stage.run("setAttr boxShape.displayNormal 1; setAttr boxShape.normalType 0");
  const viewport::Image ofFaces = stage.picture();
  stage.run("setAttr boxShape.normalType 1");
  const viewport::Image ofVertices = stage.picture();
  stage.run("setAttr boxShape.normalType 2");
  const viewport::Image ofCorners = stage.picture();
  CHECK(difference(ofFaces, before) > 10);
  CHECK(difference(ofFaces, ofVertices) > 10);
  CHECK(difference(ofVertices, ofCorners) > 10);
}

TEST_CASE("isolated views show the marks of what they show alone") {
  const Stage stage;
  if (!stage.canDraw()) return;
  stage.run("select -r box; isolateSelect -state 1 modelPanel4; select -cl");
  const viewport::Image alone = stage.picture();
  stage.edit("-locators 0 -lights 0 -nurbsCurves 0 -joints 0");
  CHECK(stage.picture().rgba == alone.rgba);
}

TEST_CASE("nothing of a closed surface's far side shows at its silhouettes") {
  const Stage stage;
  if (!stage.canDraw()) return;
  stage.edit("-locators 0 -lights 0 -nurbsCurves 0 -joints 0");
  for (const char* look : {"smoothShaded", "flatShaded"}) {
    CAPTURE(look);
    stage.edit("-backfaceCulling 0 -displayAppearance " + std::string(look));
    const viewport::Image both = stage.picture();
    stage.edit("-backfaceCulling 1");
    CHECK(difference(stage.picture(), both) < 5);  // a rim's sample or two may fall either way
  }
}
