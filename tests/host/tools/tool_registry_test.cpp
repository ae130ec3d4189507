#include "host/tools/tool_registry.h"

#include <doctest/doctest.h>

#include "host/viewport/camera_moves.h"

namespace host::tools {
namespace {

/// Writes down what it is told.
class Recorder final : public ToolContext {
 public:
  Recorder(std::string nameIn, std::vector<std::string>& logIn)
      : ToolContext("recorder"), name_(std::move(nameIn)), log_(logIn) {}
  void setup(const InputEvent&) override { note("setup"); }
  void cleanup() override { note("cleanup"); }
  void press(const InputEvent&) override {
    note("press");
    if (onPress) onPress();
  }
  void drag(const InputEvent&) override { note("drag"); }
  void release(const InputEvent&) override { note("release"); }
  void hold(const InputEvent&) override { note("hold"); }
  void moved(const InputEvent&) override { note("moved"); }
  bool key(const InputEvent& event) override { return event.key == "a"; }
  void deleteAction() override { note("delete"); }
  void complete() override { note("complete"); }
  void abort() override { note("abort"); }
  std::function<void()> onPress;

 private:
  void note(const char* what) { log_.push_back(name_ + " " + what); }
  std::string name_;
  std::vector<std::string>& log_;
};

InputEvent mouse(InputKind kind, double x, double y, MouseButton button = MouseButton::Left) {
  InputEvent event;
  event.kind = kind;
  event.position = {x, y};
  event.button = button;
  return event;
}

InputEvent keyPress(const char* key) {
  InputEvent event;
  event.kind = InputKind::KeyPress;
  event.key = key;
  return event;
}

using Log = std::vector<std::string>;

TEST_CASE("input goes to the current tool, whole gestures to the tool that got the press") {
  Log log;
  Timers timers;
  ToolRegistry registry(timers);
  auto one = std::make_shared<Recorder>("one", log);
  REQUIRE(registry.add("one", one));
  REQUIRE(registry.add("two", std::make_shared<Recorder>("two", log)));
  CHECK_FALSE(registry.add("one", one));
  CHECK_FALSE(registry.setCurrent("three"));
  CHECK(registry.currentName() == "selectSuperContext");

  REQUIRE(registry.setCurrent("one"));
  CHECK_FALSE(registry.handle(mouse(InputKind::Drag, 1, 1)));  // no press came before
  registry.handle(mouse(InputKind::Move, 1, 1, MouseButton::None));
  registry.handle(mouse(InputKind::Press, 1, 1));
  registry.handle(mouse(InputKind::Drag, 2, 2));
  registry.handle(mouse(InputKind::Release, 2, 2));
  REQUIRE(registry.setCurrent("two"));
  CHECK(log == Log{"one setup", "one moved", "one press", "one drag", "one release", "one cleanup",
                   "two setup"});
  CHECK(registry.lastEvent().position.x == 2);

  log.clear();
  CHECK(registry.handle(keyPress("a")));
  CHECK(registry.handle(keyPress("Return")));
  CHECK(registry.handle(keyPress("Escape")));
  CHECK(registry.handle(keyPress("Delete")));
  CHECK_FALSE(registry.handle(keyPress("F5")));
  CHECK(log == Log{"two complete", "two abort", "two delete"});
}

TEST_CASE("a tool may remove itself while it works; the select tool follows") {
  Log log;
  Timers timers;
  ToolRegistry registry(timers);
  auto tool = std::make_shared<Recorder>("tool", log);
  tool->onPress = [&] { CHECK(registry.remove("tool")); };
  REQUIRE(registry.add("tool", tool));
  tool.reset();
  REQUIRE(registry.setCurrent("tool"));
  registry.handle(mouse(InputKind::Press, 1, 1));
  CHECK(registry.currentName() == "selectSuperContext");
  CHECK_FALSE(registry.handle(mouse(InputKind::Release, 1, 1)));
  CHECK(log == Log{"tool setup", "tool press", "tool cleanup"});
  CHECK_FALSE(registry.remove("selectSuperContext"));
  CHECK(registry.uniqueName("tool") == "tool1");
}

TEST_CASE("a button that rests is a hold, by the clock that is stepped") {
  Log log;
  Timers timers;
  ToolRegistry registry(timers);
  REQUIRE(registry.add("tool", std::make_shared<Recorder>("tool", log)));
  REQUIRE(registry.setCurrent("tool"));
  log.clear();
  timers.step(10);
  registry.handle(mouse(InputKind::Press, 1, 1));
  timers.step(10.4);
  CHECK(log == Log{"tool press"});
  timers.step(10.6);
  timers.step(12);
  CHECK(log == Log{"tool press", "tool hold"});
  registry.handle(mouse(InputKind::Release, 1, 1));
  registry.handle(mouse(InputKind::Press, 1, 1));
  registry.handle(mouse(InputKind::Drag, 2, 1));
  timers.step(20);
  CHECK(log.back() == "tool drag");
}

TEST_CASE("with Alt the camera moves and the tool hears nothing") {
  Log log;
  Timers timers;
  ToolRegistry registry(timers);
  viewport::SceneView view;
  view.camera = viewport::defaultPerspectiveCamera();
  registry.tumble.pivot = TumblePivot::CenterOfInterest;
  registry.views.scene = [&](const std::string&) { return Result<viewport::SceneView>(view); };
  registry.views.setCamera = [&](const std::string&, const viewport::Camera& camera) {
    view.camera = camera;
    return Result<void>();
  };
  REQUIRE(registry.add("tool", std::make_shared<Recorder>("tool", log)));
  REQUIRE(registry.setCurrent("tool"));
  log.clear();
  const viewport::Camera before = view.camera;
  InputEvent press = mouse(InputKind::Press, 100, 100);
  press.alt = true;
  registry.handle(press);
  registry.handle(
      mouse(InputKind::Drag, 160, 100));  // Alt may go up first: the gesture stays what it was
  registry.handle(mouse(InputKind::Release, 160, 100));
  viewport::Camera expected = before;
  viewport::tumbleByDrag(expected, view.port, before.centerOfInterestPoint(), 60, 0);
  CHECK(view.camera == expected);
  CHECK(log.empty());
}

TEST_CASE(
    "a hold belongs to the press: what it says comes from there, and what ends the press ends it") {
  /// Writes down the holds that it hears of.
  class Holder final : public ToolContext {
   public:
    Holder() : ToolContext("holder") {}
    void hold(const InputEvent& event) override { holds.push_back(event); }
    std::vector<InputEvent> holds;
  };
  Timers timers;
  ToolRegistry registry(timers);
  const auto holder = std::make_shared<Holder>();
  REQUIRE(registry.add("holder", holder));
  REQUIRE(registry.setCurrent("holder"));
  InputEvent press = mouse(InputKind::Press, 30, 40, MouseButton::Middle);
  press.shift = true;
  press.panel = "side";
  registry.handle(press);
  timers.step(ToolRegistry::kHoldDelay);
  REQUIRE(holder->holds.size() == 1);
  CHECK(holder->holds[0].kind == InputKind::Hold);
  CHECK(holder->holds[0].position.x == 30);
  CHECK(holder->holds[0].button == MouseButton::Middle);
  CHECK(holder->holds[0].shift);
  CHECK(holder->holds[0].panel == "side");
  // A release, another tool and a second press that starts the time anew.
  registry.handle(mouse(InputKind::Release, 30, 40, MouseButton::Middle));
  registry.handle(press);
  registry.handle(mouse(InputKind::Release, 30, 40, MouseButton::Middle));
  timers.step(10);
  registry.handle(press);
  REQUIRE(registry.setCurrent("selectSuperContext"));
  REQUIRE(registry.setCurrent("holder"));
  timers.step(20);
  CHECK(holder->holds.size() == 1);
  registry.handle(press);
  timers.step(20.4);
  registry.handle(press);
  timers.step(20.8);
  CHECK(holder->holds.size() == 1);
  timers.step(20.9);
  CHECK(holder->holds.size() == 2);
}

TEST_CASE("contexts by name: built-in ones stay, names are free again, and all hear of a change") {
  Log log;
  Timers timers;
  ToolRegistry registry(timers);
  int changes = 0;
  const Connection counting = registry.currentChanged.connect([&] { ++changes; });
  CHECK(registry.names().size() == 7);
  for (const std::string& name : registry.names()) {
    CAPTURE(name);
    CHECK(registry.isBuiltin(name));
    CHECK_FALSE(registry.find(name)->title.empty());
    CHECK_FALSE(registry.remove(name));
    CHECK(registry.setCurrent(name));
  }
  CHECK(changes == 7);
  CHECK_FALSE(registry.add("", std::make_shared<Recorder>("nameless", log)));
  CHECK_FALSE(registry.remove("none"));
  for (int round = 0; round < 2; ++round) {
    CHECK(registry.uniqueName("tool") == "tool1");
    REQUIRE(registry.add("tool1", std::make_shared<Recorder>("tool", log)));
    CHECK(registry.uniqueName("tool") == "tool2");
    CHECK_FALSE(registry.isBuiltin("tool1"));
    REQUIRE(registry.remove("tool1"));
  }
  // The same tool again is set up anew; a failed choice changes nothing.
  REQUIRE(registry.add("tool", std::make_shared<Recorder>("tool", log)));
  REQUIRE(registry.setCurrent("tool"));
  REQUIRE(registry.setCurrent("tool"));
  CHECK(log == Log{"tool setup", "tool cleanup", "tool setup"});
  changes = 0;
  CHECK_FALSE(registry.setCurrent("none"));
  CHECK(changes == 0);
  CHECK(registry.currentName() == "tool");
}

}  // namespace
}  // namespace host::tools
