#include <doctest/doctest.h>
#include <maya/MArgParser.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MPxContextCommand.h>
#include <maya/MPxSelectionContext.h>
#include <maya/MPxToolCommand.h>

#include "host/api/plugin/plugin_record.h"
#include "host/api/session/host_session.h"
#include "host/base/messages.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

int toolCommandsAlive = 0;

/// Creates a node named after how far a drag went, to have something to undo.
class StrokeCommand final : public MPxToolCommand {
 public:
  StrokeCommand() { ++toolCommandsAlive; }
  ~StrokeCommand() override { --toolCommandsAlive; }
  static void* creator() { return new StrokeCommand; }
  MStatus doIt(const MArgList& args) override {
    length = args.asInt(0);
    return redoIt();
  }
  MStatus redoIt() override {
    MString name("stroke");
    name += length;
    return MGlobal::executeCommand("createNode transform -name " + name);
  }
  MStatus undoIt() override {
    MString name("stroke");
    name += length;
    return MGlobal::executeCommand("delete " + name);
  }
  bool isUndoable() const override { return true; }
  MStatus finalize() override {
    MArgList command;
    command.addArg(commandString());
    command.addArg(length);
    return doFinalize(command);
  }
  int length = 0;
};

/// Drags in the legacy way, draws a circle at the pointer in the other.
class StrokeContext final : public MPxSelectionContext {
 public:
  StrokeContext() { setTitleString("Stroke Tool"); }
  void toolOnSetup(MEvent&) override { setHelpString("Drag"); }
  MStatus doPress(MEvent& event) override {
    short y = 0;
    if (event.isModifierControl() && event.mouseButton() == MEvent::kMiddleMouse)
      throw std::runtime_error("no");
    return event.getPosition(start, y);
  }
  MStatus doRelease(MEvent& event) override {
    short x = 0, y = 0;
    event.getPosition(x, y);
    auto* command = static_cast<StrokeCommand*>(newToolCommand());
    command->length = x - start;
    command->redoIt();
    return command->finalize();
  }
  MStatus doPtrMoved(MEvent& event, MHWRender::MUIDrawManager& drawMgr,
                     const MHWRender::MFrameContext&) override {
    short x = 0, y = 0;
    event.getPosition(x, y);
    drawMgr.beginDrawable();
    drawMgr.setColor(MColor(1, 0, 0));
    drawMgr.circle2d(MPoint(x, y), 20, true);
    drawMgr.endDrawable();
    return MS::kSuccess;
  }
  short start = 0;
  int width = 1;
};

class StrokeContextCommand final : public MPxContextCommand {
 public:
  static void* creator() { return new StrokeContextCommand; }
  MStatus appendSyntax() override {
    MSyntax own = syntax();
    return own.addFlag("-w", "-width", MSyntax::kLong);
  }
  MPxContext* makeObj() override { return context = new StrokeContext; }
  MStatus doEditFlags() override {
    MArgParser given = parser();
    if (given.isFlagSet("-w")) given.getFlagArgument("-w", 0, context->width);
    return MS::kSuccess;
  }
  MStatus doQueryFlags() override {
    return parser().isFlagSet("-w") ? setResult(context->width) : MStatus(MS::kFailure);
  }
  StrokeContext* context = nullptr;
};

struct Fixture {
  Fixture() {
    record->info.name = "strokes";
    const MObject object = Access::make<MObject>(new PluginRep(record));
    MFnPlugin plugin(object);
    REQUIRE(plugin.registerContextCommand("strokeContext", StrokeContextCommand::creator,
                                          "strokeCmd", StrokeCommand::creator));
  }
  ~Fixture() {
    session->undo().flush();
    record->removeAll();
    CHECK(toolCommandsAlive == 0);
  }
  mel::Value run(const std::string& line) {
    const auto value = session->executeLine(line);
    REQUIRE_MESSAGE(value.has_value(), line);
    return *value;
  }
  void mouse(tools::InputKind kind, double x,
             tools::MouseButton button = tools::MouseButton::Left) {
    tools::InputEvent event;
    event.kind = kind;
    event.position = {x, 50};
    event.button = button;
    workspace::workspaceOf(*session).toolbox.handle(event);
  }
  std::unique_ptr<cmd::Session> session = makeHostSession();
  std::shared_ptr<PluginRecord> record = std::make_shared<PluginRecord>();
};

TEST_CASE_FIXTURE(Fixture, "a context command makes, edits and queries named contexts") {
  CHECK(run("strokeContext").string() == "strokeContext1");
  CHECK(run("strokeContext -w 7 thick").string() == "thick");
  CHECK(run("strokeContext -q -w thick").intValue() == 7);
  CHECK(run("strokeContext -q -width strokeContext1").intValue() == 1);
  run("strokeContext -e -width 3 -image1 \"stroke.png\" strokeContext1");
  CHECK(run("strokeContext -q -w strokeContext1").intValue() == 3);
  CHECK(run("strokeContext -q -image1 strokeContext1").string() == "stroke.png");
  CHECK(run("strokeContext -exists thick").intValue() == 1);
  CHECK(run("strokeContext -exists thin").intValue() == 0);
  MessageCapture quiet;
  CHECK_FALSE(session->executeLine("strokeContext thick"));
  CHECK_FALSE(session->executeLine("strokeContext -q -w thin"));
  CHECK_FALSE(session->executeLine("strokeContext -bogus"));
  CHECK(workspace::workspaceOf(*session).toolbox.find("thick")->title == "Stroke Tool");
}

TEST_CASE_FIXTURE(Fixture, "a gesture runs the tool's command, which undo takes back") {
  run("strokeContext; setToolTo strokeContext1");
  CHECK(MGlobal::currentToolContext() == "strokeContext1");
  mouse(tools::InputKind::Press, 10);
  mouse(tools::InputKind::Drag, 20);
  mouse(tools::InputKind::Release, 52);
  CHECK(run("objExists stroke42").intValue() == 1);
  run("undo");
  CHECK(run("objExists stroke42").intValue() == 0);
  run("redo");
  CHECK(run("objExists stroke42").intValue() == 1);
  run("strokeCmd 5");
  CHECK(run("objExists stroke5").intValue() == 1);
}

TEST_CASE_FIXTURE(
    Fixture,
    "the built-in tools select with a click and move what is selected along with the pointer") {
  run("polyCube -name box; select -cl; setToolTo moveSuperContext");
  workspace::View& view = workspace::workspaceOf(*session).views.active();
  const double middle = view.port.width / 2.0;
  const auto drag = [&](double x, double y, tools::MouseButton button) {
    tools::InputEvent event;
    event.button = button;
    event.kind = tools::InputKind::Press;
    event.position = {middle, view.port.height / 2.0};
    workspace::workspaceOf(*session).toolbox.handle(event);
    event.kind = tools::InputKind::Release;
    event.position = {x, y};
    workspace::workspaceOf(*session).toolbox.handle(event);
  };
  drag(middle, view.port.height / 2.0, tools::MouseButton::Left);
  CHECK(run("ls -sl").toTexts() == mel::StringArray{"box"});
  drag(middle + 80, view.port.height / 2.0 + 30, tools::MouseButton::Middle);
  const auto scene = workspace::gatherView(session->document(), view);
  REQUIRE(scene);
  const auto at =
      viewport::ViewProjection(scene->camera, scene->port)
          .worldToView(math::transformPoint(math::Vec3{0, 0, 0}, scene->meshes[0].world));
  CHECK(at.x == doctest::Approx(middle + 80).epsilon(0.001));
  CHECK(at.y == doctest::Approx(view.port.height / 2.0 + 30).epsilon(0.001));
  run("undo; undo");
  CHECK(run("ls -sl").toTexts().empty());
}

TEST_CASE_FIXTURE(Fixture, "what a tool draws under the pointer is in the picture") {
  run("strokeContext; setToolTo strokeContext1");
  mouse(tools::InputKind::Move, 100, tools::MouseButton::None);
  auto& views = workspace::workspaceOf(*session).views;
  const auto scene = workspace::gatherView(session->document(), views, views.active());
  REQUIRE(scene);
  REQUIRE(scene->extra.items.size() == 1);
  CHECK(scene->extra.items[0].space == viewport::Space::Screen);
  CHECK(viewport::check(scene->extra).empty());
  const auto image = workspace::renderView(session->document(), views, views.active(), {200, 100});
  if (!image) return;  // a machine without an OpenGL driver
  const std::uint8_t* pixel = image->pixel(105, 100 - 50);
  CHECK(int(pixel[0]) > 200);
  CHECK(int(pixel[1]) < 60);
}

TEST_CASE_FIXTURE(Fixture, "what a tool throws is reported; unloading leaves no tool behind") {
  run("strokeContext; setToolTo strokeContext1");
  {
    MessageCapture messages;
    tools::InputEvent event;
    event.kind = tools::InputKind::Press;
    event.button = tools::MouseButton::Middle;
    event.control = true;
    workspace::workspaceOf(*session).toolbox.handle(event);
    CHECK(messages.text(MessageKind::Error).find("Stroke Tool") != std::string::npos);
  }
  MFnPlugin plugin(Access::make<MObject>(new PluginRep(record)));
  CHECK(plugin.registerContextCommand("strokeContext", StrokeContextCommand::creator) ==
        MS::kFailure);
  CHECK(plugin.deregisterContextCommand("strokeContext", "strokeCmd"));
  CHECK_FALSE(plugin.deregisterContextCommand("strokeContext"));
  CHECK(run("currentCtx").string() == "selectSuperContext");
  CHECK(run("contextInfo -exists strokeContext1").intValue() == 0);
}

}  // namespace
}  // namespace host::api
