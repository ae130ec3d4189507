#include <doctest/doctest.h>
#include <maya/MDrawRegistry.h>
#include <maya/MFnPlugin.h>
#include <maya/MHWGeometryUtilities.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MSelectionList.h>
#include <maya/MViewport2Renderer.h>

#include "host/api/plugin/plugin_record.h"
#include "host/api/session/host_session.h"
#include "host/api/view/draw_registry.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

int preparedAlive = 0;
int callbacks = 0;

class Marker final : public MPxLocatorNode {
 public:
  static void* creator() { return new Marker; }
  static MStatus initialize() { return MS::kSuccess; }
};

/// Draws itself: an X on the spot.
class OldMarker final : public MPxLocatorNode {
 public:
  static void* creator() { return new OldMarker; }
  static MStatus initialize() { return MS::kSuccess; }
  void draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle,
            M3dView::DisplayStatus status) override {
    ++draws;
    lastStatus = status;
    if (!view.beginGL()) return;
    view.setDrawColor(MColor(0, 1, 0));
    view.drawText("XXXXXXXXXX", MPoint(0, 0, 0), M3dView::kCenter);
    view.endGL();
  }
  static inline int draws = 0;
  static inline M3dView::DisplayStatus lastStatus = M3dView::kNoStatus;
};

struct Prepared final : MUserData {
  Prepared() : MUserData(false) { ++preparedAlive; }
  ~Prepared() override { --preparedAlive; }
  MColor color;
};

void countCall(const MHWRender::MDrawContext& context, const MUserData* data) {
  MMatrix world = context.getMatrix(MHWRender::MFrameContext::kWorldMtx);
  callbacks += data != nullptr && world[3][0] > 0 ? 1 : 0;
}

class MarkerOverride final : public MHWRender::MPxDrawOverride {
 public:
  static MPxDrawOverride* creator(const MObject& object) { return new MarkerOverride(object); }
  explicit MarkerOverride(const MObject& object) : MPxDrawOverride(object, countCall) {}
  bool hasUIDrawables() const override { return true; }
  MUserData* prepareForDraw(const MDagPath& path, const MDagPath&, const MHWRender::MFrameContext&,
                            MUserData* old) override {
    auto* data = dynamic_cast<Prepared*>(old);
    if (!data) data = new Prepared;
    data->color = MHWRender::MGeometryUtilities::wireframeColor(path);
    return data;
  }
  void addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& drawer,
                      const MHWRender::MFrameContext& frame, const MUserData* data) override {
    double x = 0, y = 0;
    drawer.beginDrawable();
    drawer.setColor(static_cast<const Prepared*>(data)->color);
    drawer.sphere(MPoint(0, 0, 0), 1.0, true);
    if (frame.worldToViewport(MPoint(0, 0, 0), x, y)) drawer.text2d(MPoint(x, y), "origin");
    drawer.endDrawable();
    drawer.line(MPoint(), MPoint(1, 1, 1));  // outside a drawable: nothing
  }
};

struct Fixture {
  Fixture() {
    record->info.name = "markers";
    MFnPlugin plugin(Access::make<MObject>(new PluginRep(record)));
    const MString drawn("drawdb/geometry/testMarker"), old("drawdb/geometry/oldMarker");
    REQUIRE(plugin.registerNode("testMarker", MTypeId(0x70001), Marker::creator, Marker::initialize,
                                MPxNode::kLocatorNode, &drawn));
    REQUIRE(plugin.registerNode("oldMarker", MTypeId(0x70002), OldMarker::creator,
                                OldMarker::initialize, MPxNode::kLocatorNode, &old));
    REQUIRE(MHWRender::MDrawRegistry::registerDrawOverrideCreator(drawn, "markers",
                                                                  MarkerOverride::creator));
  }
  ~Fixture() {
    MHWRender::MDrawRegistry::deregisterDrawOverrideCreator("drawdb/geometry/testMarker",
                                                            "markers");
    CHECK(preparedAlive == 0);
    session->newScene();
    record->removeAll();
  }
  void run(const std::string& line) {
    REQUIRE_MESSAGE(session->executeLine(line).has_value(), line);
  }
  viewport::SceneView gather() {
    auto& views = workspace::workspaceOf(*session).views;
    auto scene = workspace::gatherView(session->document(), views, views.active());
    REQUIRE(scene);
    return *scene;
  }
  std::unique_ptr<cmd::Session> session = makeHostSession();
  std::shared_ptr<PluginRecord> record = std::make_shared<PluginRecord>();
};

MDagPath pathNamed(const char* name) {
  MSelectionList list;
  list.add(name);
  MDagPath path;
  list.getDagPath(0, path);
  return path;
}

TEST_CASE_FIXTURE(Fixture, "a draw override's items stand in the view where its node stands") {
  run("createNode transform -n where; move 2 0 0 where; createNode testMarker -p where -n mark; "
      "select -cl");
  viewport::SceneView scene = gather();
  REQUIRE(scene.extra.items.size() == 1);
  CHECK(scene.extra.texts.size() == 1);
  CHECK(scene.extra.items[0].world[3][0] == doctest::Approx(2));
  CHECK(viewport::check(scene.extra).empty());
  CHECK(preparedAlive == 1);
  (void)gather();
  CHECK(preparedAlive == 1);  // what was prepared is kept for the next frame

  const MDagPath mark = pathNamed("mark");
  CHECK(MHWRender::MGeometryUtilities::displayStatus(mark) == MHWRender::kDormant);
  const viewport::Rgba dormant = scene.extra.items[0].color;
  run("select where");
  CHECK(MHWRender::MGeometryUtilities::displayStatus(mark) == MHWRender::kLead);
  CHECK_FALSE(gather().extra.items[0].color == dormant);
  run("setAttr where.visibility 0");
  CHECK(MHWRender::MGeometryUtilities::displayStatus(mark) == MHWRender::kInvisible);
  CHECK(gather().extra.items.empty());
  run("setAttr where.visibility 1; delete where");
  CHECK(gather().extra.items.empty());
  CHECK(preparedAlive == 0);
}

TEST_CASE_FIXTURE(Fixture,
                  "pictures show plug-ins' locators, by override and by their own drawing") {
  run("createNode transform -n a; move 2 0 0 a; createNode testMarker -p a; createNode oldMarker; "
      "select -cl");
  auto& views = workspace::workspaceOf(*session).views;
  views.setActive("modelPanel3");  // from the front
  callbacks = OldMarker::draws = 0;
  const auto image = workspace::renderView(session->document(), views, views.active(), {300, 200});
  if (!image) return;  // a machine without an OpenGL driver
  CHECK(OldMarker::draws == 1);
  CHECK(OldMarker::lastStatus == M3dView::kDormant);
  CHECK(callbacks == 1);
  // 30 cm across 300 pixels: the sphere is 20 pixels right of the middle.
  const viewport::Rgba expected = gather().extra.items[0].color;
  const std::uint8_t* ball = image->pixel(170, 100);
  CHECK(int(ball[0]) == doctest::Approx(expected.r * 255 * expected.a).epsilon(0.5));
  int greens = 0;
  for (int x = 90; x < 210; ++x)
    for (int y = 80; y < 105; ++y) {
      const std::uint8_t* p = image->pixel(x, y);
      greens += p[1] > 180 && p[0] < 120 && p[2] < 120 ? 1 : 0;
    }
  CHECK(greens > 20);
}

TEST_CASE_FIXTURE(Fixture,
                  "draw overrides are registered once and found by the longest classification") {
  using MHWRender::MDrawRegistry;
  CHECK(MDrawRegistry::registerDrawOverrideCreator("drawdb/geometry/testMarker", "markers",
                                                   MarkerOverride::creator) == MS::kFailure);
  CHECK(MDrawRegistry::deregisterDrawOverrideCreator("drawdb/geometry/none", "markers") ==
        MS::kFailure);
  REQUIRE(MDrawRegistry::registerDrawOverrideCreator("drawdb/geometry/testMarker/sub", "more",
                                                     MarkerOverride::creator));
  const auto registrantOf = [](const char* classification) {
    const auto* entry = drawRegistry().find(classification);
    return entry ? entry->registrant : std::string();
  };
  CHECK(registrantOf("drawdb/geometry/testMarker/sub/leaf") == "more");
  CHECK(registrantOf("shader/surface:drawdb/geometry/testMarker/other") == "markers");
  CHECK(registrantOf("drawdb/geometry/testMarkers").empty());
  CHECK(MDrawRegistry::deregisterDrawOverrideCreator("drawdb/geometry/testMarker/sub", "more"));
  CHECK(MHWRender::MRenderer::theRenderer()->drawAPIIsOpenGL());
}

}  // namespace
}  // namespace host::api
