#include <GL/gl.h>
#include <maya/M3dView.h>
#include <maya/MBoundingBox.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>

#include <cstdlib>

#include "host/api/view/draw_registry.h"
#include "host/workspace/workspace.h"
#include "modeling/locatorOverrides.h"
#include "modeling/locatorPicture.h"
#include "tests/toolkit/toolkit_session.h"

// The locators of the interactive tools: what they show, by the legacy way and by draw overrides.

namespace {

struct locatorScene : toolkitSession {
  locatorScene() {
    views().setActive("modelPanel1");
    run("modelEditor -e -grid 0 modelPanel1");
  }
  ~locatorScene() { (void)session->executeLine("file -f -new"); }
  locatorScene(const locatorScene&) = delete;
  locatorScene& operator=(const locatorScene&) = delete;
  host::workspace::Views& views() { return host::workspace::workspaceOf(*session).views; }

  static MPlug plug(const char* name) {
    MSelectionList list;
    MPlug found;
    REQUIRE(list.add(name));
    REQUIRE(list.getPlug(0, found));
    return found;
  }
  static void setPoints(const char* name, std::initializer_list<MPoint> points) {
    MPointArray array;
    for (const MPoint& point : points) array.append(point);
    REQUIRE(plug(name).setMObject(MFnPointArrayData().create(array)));
  }
  static void setWeights(std::initializer_list<double> weights) {
    MDoubleArray array;
    for (const double weight : weights) array.append(weight);
    REQUIRE(plug("shown.ssrparr").setMObject(MFnDoubleArrayData().create(array)));
  }
  host::viewport::Image picture(bool isLegacy) {
    run(std::string("modelEditor -e -rendererName ") +
        (isLegacy ? "base_OpenGL_Renderer" : "vp2Renderer") + " modelPanel1");
    auto& view = *views().find("modelPanel1");
    view.options.axisGizmo = false;
    auto image = host::workspace::renderView(session->document(), views(), view, {300, 200});
    return image ? *image : host::viewport::Image{};
  }
};

/// Pixels that differ by more than a tenth in some channel.
int differences(const host::viewport::Image& a, const host::viewport::Image& b) {
  REQUIRE(a.rgba.size() == b.rgba.size());
  int count = 0;
  for (std::size_t i = 0; i < a.rgba.size(); i += 4) {
    bool differs = false;
    for (std::size_t k = 0; k < 3; ++k) differs |= std::abs(a.rgba[i + k] - b.rgba[i + k]) > 25;
    count += differs;
  }
  return count;
}

/// Pixels near a colour.
int pixelsOf(const host::viewport::Image& image, int r, int g, int b) {
  int count = 0;
  for (std::size_t i = 0; i < image.rgba.size(); i += 4)
    count += std::abs(image.rgba[i] - r) < 30 && std::abs(image.rgba[i + 1] - g) < 30 &&
             std::abs(image.rgba[i + 2] - b) < 30;
  return count;
}

}  // namespace

TEST_CASE("locators: attributes by their names, and the fixed box whatever is shown") {
  locatorScene scene;
  scene.run("createNode drawLocator -n shown; createNode pinLocator -n pins");
  for (const char* name :
       {"pointArray", "ssRadiusValArray", "radiusPointArray", "componentPointArray", "outPosition",
        "parr", "ssrparr", "rparr", "cparr", "opos"})
    scene.run(std::string("if (!`attributeQuery -n shown -ex ") + name + "`) error " + name);
  for (const char* name : {"pointArray", "mInMesh", "mInWorldMatrix", "mInTransVisibile",
                           "mOutPosition", "parr", "mIwmtx", "mInTVis", "mOpos"})
    scene.run(std::string("if (!`attributeQuery -n pins -ex ") + name + "`) error " + name);
  for (const char* node : {"shown", "pins"}) {
    MSelectionList list;
    MDagPath path;
    REQUIRE(list.add(node));
    REQUIRE(list.getDagPath(0, path));
    const MBoundingBox box = MFnDagNode(path).boundingBox();
    CHECK(box.min().isEquivalent(MPoint(-0.17, 0, -0.7), 1e-6));
    CHECK(box.max().isEquivalent(MPoint(0.17, 0, 0.3), 1e-6));
  }
  const DrawLocatorDrawOverride drawn((MObject()));
  CHECK(drawn.boundingBox(MDagPath(), MDagPath()).max().isEquivalent(MPoint(0.17, 0, 0.3), 1e-6));
}

TEST_CASE("locators: both ways of drawing give one picture") {
  locatorScene scene;
  scene.run(
      "polyPlane -n ground -w 18 -h 12 -sx 6 -sy 4 -ch 0; createNode transform -n holder; "
      "createNode drawLocator -n shown -p holder; select -cl");
  const auto bare = scene.picture(false);
  if (bare.rgba.empty()) return;  // a machine without an OpenGL driver
  CHECK(differences(bare, scene.picture(true)) == 0);

  struct {
    const char* what;
    std::initializer_list<MPoint> component;
    int r, g, b, least, most;
  } const kComponents[] = {
      {"vertex", {MPoint(3, 0, 3)}, 255, 255, 0, 30, 80},
      {"edge", {MPoint(-6, 0, -3), MPoint(6, 0, -3)}, 255, 0, 0, 200, 420},
      {"face",
       {MPoint(0, 0, 0), MPoint(3, 0, 0), MPoint(3, 0, 3), MPoint(0, 0, 3)},
       51,
       51,
       255,
       300,
       600},
  };
  for (const auto& each : kComponents) {
    CAPTURE(std::string(each.what));
    scene.setPoints("shown.cparr", each.component);
    const auto legacy = scene.picture(true), drawn = scene.picture(false);
    const int shown = pixelsOf(legacy, each.r, each.g, each.b);
    CHECK(shown >= each.least);
    CHECK(shown <= each.most);
    CHECK(pixelsOf(drawn, each.r, each.g, each.b) >= each.least);
    CHECK(differences(legacy, drawn) <= 30 + shown / 5);  // rims of points and lines
  }
  scene.setPoints("shown.cparr", {});
  scene.setPoints("shown.rparr", {MPoint(-5, 0, -3), MPoint(5, 0, -3), MPoint(5, 0, 3)});
  scene.setPoints("shown.parr", {MPoint(-7, 0, 0), MPoint(-6, 0, 0)});
  scene.setWeights({0.0, 1.0});
  auto legacy = scene.picture(true), drawn = scene.picture(false);
  CHECK(pixelsOf(legacy, 0, 255, 0) > 400);
  CHECK(pixelsOf(legacy, 255, 0, 0) > 20);
  CHECK(pixelsOf(legacy, 0, 255, 255) > 20);
  CHECK(differences(legacy, drawn) < 400);
  // One weight too many hides the points and nothing else.
  scene.setWeights({0.0, 1.0, 0.5});
  for (const bool isLegacy : {true, false}) {
    const auto image = scene.picture(isLegacy);
    CHECK(pixelsOf(image, 255, 0, 0) == 0);
    CHECK(pixelsOf(image, 0, 255, 255) == 0);
    CHECK(pixelsOf(image, 0, 255, 0) > 400);
  }
  // It moves with its transform; with nothing to show it draws nothing.
  scene.run("setAttr holder.tx 100");
  CHECK(differences(scene.picture(true), bare) == 0);
  CHECK(differences(scene.picture(false), bare) == 0);
}

TEST_CASE("locators: points and preview of a quad look the same both ways, also behind a surface") {
  locatorScene scene;
  scene.run(
      "polyPlane -n ground -w 18 -h 12 -sx 6 -sy 4 -ch 0; createNode transform -n holder; "
      "createNode quadDrawLocator -n shown -p holder; select -cl");
  const auto bare = scene.picture(false);
  if (bare.rgba.empty()) return;
  for (const double height : {0.5, -0.5}) {
    CAPTURE(height);
    scene.setPoints("shown.geoparr", {});
    scene.setPoints("shown.parr", {MPoint(-6, height, -3), MPoint(-3, height, -3)});
    auto legacy = scene.picture(true), drawn = scene.picture(false);
    int shown = pixelsOf(legacy, 0, 255, 0);
    CHECK(shown >= 2 * 40);
    CHECK(shown <= 2 * 80);
    CHECK(differences(legacy, drawn) <= 2 * 20);
    scene.setPoints("shown.parr", {});
    scene.setPoints("shown.geoparr", {MPoint(0, height, 0), MPoint(6, height, 0),
                                      MPoint(6, height, 3), MPoint(0, height, 3)});
    legacy = scene.picture(true), drawn = scene.picture(false);
    shown = differences(legacy, bare);
    CHECK(shown > 600);  // half of 60 by 30
    CHECK(shown < 1200);
    CHECK(differences(drawn, bare) > 600);
    CHECK(differences(legacy, drawn) <= 30 + shown / 20);
  }
  scene.setPoints("shown.geoparr", {});
  CHECK(differences(scene.picture(true), bare) == 0);
  CHECK(differences(scene.picture(false), bare) == 0);
}

TEST_CASE("locators: pins stand on the pinned vertices of their mesh, wherever it goes") {
  locatorScene scene;
  scene.run(
      "polyPlane -n ground -w 8 -h 8 -sx 2 -sy 2; createNode transform -n holder; createNode "
      "pinLocator -n pins -p holder; connectAttr groundShape.outMesh pins.mInMesh; "
      "connectAttr groundShape.worldMatrix[0] pins.mInWorldMatrix; setAttr ground.ry 30; "
      "setAttr holder.tx 3; select -cl");
  const auto bare = scene.picture(false);
  if (bare.rgba.empty()) return;
  const MIntArray pinned = [] {
    MIntArray ids(1, 8);
    ids.append(0);
    ids.append(99);  // the mesh has no such vertex
    return ids;
  }();
  MIntArray ids = pinned;
  REQUIRE(scene.plug("pins.parr").setMObject(MFnIntArrayData().create(ids)));
  for (const char* move : {"setAttr ground.tx -2", "move -r 1 0 1 ground.vtx[8]",
                           "polySubdivideFacet -dv 1 -ch 1 ground; select -cl"}) {
    CAPTURE(std::string(move));
    scene.run(move);
    scene.run("setAttr pins.mInTVis 0; select -cl");
    const auto hidden = scene.picture(true);
    CHECK(pixelsOf(hidden, 0, 255, 0) == 0);
    scene.run("setAttr pins.mInTVis 1");
    const auto legacy = scene.picture(true), drawn = scene.picture(false);
    CHECK(pixelsOf(legacy, 0, 255, 0) >= 60);
    CHECK(differences(legacy, drawn) < 40);
    // 10 pixels a centimetre.
    const MPointArray points = scene.points("ground");
    for (const unsigned int vertex : {8u, 0u}) {
      const int x = 150 + static_cast<int>(std::lround(points[vertex].x * 10)),
                y = 100 + static_cast<int>(std::lround(points[vertex].z * 10));
      const std::uint8_t* dot = legacy.pixel(x, y);
      CHECK(dot[1] > 200);
      CHECK(dot[0] < 60);
    }
  }
}

TEST_CASE("locators: the legacy way leaves OpenGL as it found it, blending off") {
  locatorScene scene;
  if (scene.picture(true).rgba.empty()) return;
  M3dView view = M3dView::active3dView();
  facePattern::acquire();
  REQUIRE(facePattern::bytes() != nullptr);
  for (int row = 0; row < 32; ++row)
    for (int column = 0; column < 4; ++column)
      CHECK(int(facePattern::bytes()[row * 4 + column]) == (row % 2 == 0 ? 0xAA : 0x55));
  locatorSets sets;
  for (int i = 0; i < 4; ++i) {
    sets.points.append(MPoint(i, 0, 0));
    sets.weights.append(i / 3.0);
    sets.outline.append(MPoint(i, 0, 1));
  }
  for (int corners = 1; corners <= 4; ++corners) {
    sets.component.append(MPoint(corners % 2, 0, corners / 2));
    REQUIRE(view.beginGL());
    glPointSize(3);
    glLineWidth(2);
    glEnable(GL_BLEND);
    drawWithGl(sets, facePattern::bytes());
    GLfloat value = 0;
    GLint depth = 0;
    glGetFloatv(GL_POINT_SIZE, &value);
    CHECK(value == 3);
    glGetFloatv(GL_LINE_WIDTH, &value);
    CHECK(value == 2);
    CHECK_FALSE(glIsEnabled(GL_BLEND));
    CHECK_FALSE(glIsEnabled(GL_POLYGON_STIPPLE));
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
    const GLint before = depth;
    drawPinsWithGl(sets.points, MMatrix());
    glGetIntegerv(GL_ATTRIB_STACK_DEPTH, &depth);
    CHECK(depth == before);
    CHECK_FALSE(glIsEnabled(GL_POINT_SMOOTH));
    CHECK_FALSE(glIsEnabled(GL_BLEND));
    CHECK(glGetError() == GL_NO_ERROR);
    view.endGL();
  }
  facePattern::release();
}
