#include <doctest/doctest.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MPxContextCommand.h>

#include <memory>
#include <string>

#include "host/api/plugin/plugin_record.h"
#include "host/api/session/host_session.h"
#include "host/workspace/workspace.h"
#include "shared/tool/toolContext.h"
#include "tests/toolkit/toolkit_session.h"

namespace {

std::string story;  ///< what the tools were told, a letter or a word each

/// Tells what it is told; a stroke moves s along x, an edit a step, as one undo step.
template <class Base>
class storyTool final : public toolContext<Base> {
 public:
  ~storyTool() override { story += "~"; }

 private:
  void enter(MEvent&) override {
    story += "(";
    MSelectionList list;
    MDagPath mesh;
    if (list.add("s") == MS::kSuccess && list.getDagPath(0, mesh) == MS::kSuccess &&
        mesh.extendToShape() == MS::kSuccess)
      this->run.watch(mesh);
  }
  void leave() override { story += ")"; }
  MStatus press(MEvent&) override {
    story += "P";
    this->run.chunk.open();
    return edit();
  }
  MStatus drag(MEvent&) override {
    story += "D";
    return edit();
  }
  MStatus release(MEvent&) override {
    story += "R";
    return MS::kSuccess;
  }
  void cancelStroke() override { story += "C"; }
  void meshGone() override { story += "gone "; }
  void sceneEnds() override { story += "ends "; }
  void sceneBegins() override { story += "begins "; }
  static MStatus edit() { return MGlobal::executeCommand("move -r 1 0 0 s", false, true); }
};

template <class Base>
class storyCommand final : public MPxContextCommand {
 public:
  static void* creator() { return new storyCommand; }
  MPxContext* makeObj() override { return new storyTool<Base>; }
};

class stage {
 public:
  stage() {
    story.clear();
    record->info.name = "stories";
    const MObject object = host::api::Access::make<MObject>(new host::api::PluginRep(record));
    MFnPlugin plugin(object);
    REQUIRE(plugin.registerContextCommand("plainStory", storyCommand<MPxContext>::creator));
    REQUIRE(plugin.registerContextCommand("pickStory", storyCommand<MPxSelectionContext>::creator));
    run("polyCube -n s; select -r s; plainStory plain; pickStory pick; undoInfo -state on");
  }
  ~stage() { record->removeAll(); }
  void run(const std::string& mel) {
    CAPTURE(mel);
    REQUIRE(session->executeLine(mel));
  }
  double x() { return session->executeLine("getAttr s.tx")->toFloat().value(); }
  void mouse(host::tools::InputKind kind,
             host::tools::MouseButton button = host::tools::MouseButton::Left) {
    host::tools::InputEvent event;
    event.kind = kind;
    event.position = {10, 50};
    event.button = button;
    host::workspace::workspaceOf(*session).toolbox.handle(event);
  }
  std::unique_ptr<host::cmd::Session> session = host::api::makeHostSession();
  std::shared_ptr<host::api::PluginRecord> record = std::make_shared<host::api::PluginRecord>();
};

constexpr auto kPress = host::tools::InputKind::Press, kDrag = host::tools::InputKind::Drag,
               kRelease = host::tools::InputKind::Release;

}  // namespace

TEST_CASE_FIXTURE(stage, "a tool's stroke is one undo step, on either base") {
  for (const char* tool : {"plain", "pick"}) {
    CAPTURE(tool);
    story.clear();
    run(std::string("setAttr s.tx 0; setToolTo ") + tool);
    mouse(kPress);
    mouse(kDrag);
    mouse(kDrag);
    mouse(kRelease);
    CHECK(story == "(PDDR");
    CHECK(x() == 3.0);
    run("undo");
    CHECK(x() == 0.0);
    run("redo");
    CHECK(x() == 3.0);
    run("setToolTo selectSuperContext");
    CHECK(story == "(PDDR)");
    CHECK(activeToolCount() == 0);
  }
}

TEST_CASE_FIXTURE(stage, "a stroke that another tool cuts off is cancelled and its step closes") {
  run("setToolTo plain");
  mouse(kPress);
  run("setToolTo selectSuperContext");
  CHECK(story == "(PC)");
  run("setAttr s.ty 5");
  run("undo");
  CHECK(x() == 1.0);  // the later edit alone: it is no part of the stroke's step
  run("undo");
  CHECK(x() == 0.0);
}

TEST_CASE_FIXTURE(stage, "a tool hears once that its mesh goes, and lives on") {
  run("setToolTo plain");
  mouse(kPress);
  run("delete s");
  CHECK(story == "(PCgone ");
  run("undo; setToolTo selectSuperContext");
  CHECK(story == "(PCgone )");
}

TEST_CASE_FIXTURE(stage, "another scene cancels the stroke and the tool goes on in it") {
  run("setToolTo plain");
  mouse(kPress);
  run("file -f -new");
  CHECK(story == "(PCends begins ");
  run("polyCube -n s");
  mouse(kPress);
  mouse(kRelease);
  CHECK(story == "(PCends begins PR");
  CHECK(x() == 1.0);
  run("setToolTo selectSuperContext; delete s; file -f -new");
  CHECK(story == "(PCends begins PR)");
}

TEST_CASE_FIXTURE(stage, "a tool that is deleted in the user's hand leaves nothing behind") {
  run("setToolTo plain");
  mouse(kPress);
  REQUIRE(host::workspace::workspaceOf(*session).toolbox.remove("plain"));
  CHECK(story == "(PC)~");
  CHECK(activeToolCount() == 0);
  run("delete s; file -f -new");
  CHECK(story == "(PC)~");
}
