#include "host/tools/recording.h"

#include <doctest/doctest.h>

#include "host/tools/hand.h"
#include "host/tools/recorder.h"

namespace host::tools {
namespace {

RecordedStep eventAt(double time, InputKind kind, double x, double y) {
  RecordedStep step;
  step.time = time;
  step.event.kind = kind;
  step.event.panel = "modelPanel4";
  step.event.position = {x, y};
  step.event.button = MouseButton::Left;
  return step;
}

RecordedStep stepOf(RecordedStep::Kind kind, double time, std::string text = {}) {
  RecordedStep step;
  step.kind = kind;
  step.time = time;
  step.text = std::move(text);
  return step;
}

Recording example() {
  Recording recording;
  recording.scene = "my scenes/a\\b.ma";
  RecordedView view;
  view.panel = "modelPanel4";
  view.camera = "persp";
  view.port = {960, 540};
  view.style = "wireOnShaded";
  view.xray = view.isIsolated = true;
  view.isolated = {"|a|b", "c"};
  recording.views = {view, RecordedView{}};
  recording.views[1].panel = "modelPanel1";
  recording.views[1].camera = "top";
  recording.cameras = {{"persp", {{"translate", {0.1, 1e-300, -28}}, {"focalLength", {35}}}}};
  recording.activePanel = "modelPanel4";
  recording.settings = {"selectMode -component"};
  recording.selection = {"|a|b.vtx[0:3]", "c"};
  recording.hilite.emplace();
  recording.tool = "slide1 slideContext";
  recording.toolSettings = {"slideContext -e -name \"x\ny\" slide1"};
  recording.steps = {eventAt(0, InputKind::Enter, 1.0 / 3, 2), eventAt(0.1, InputKind::Press, 1, 2),
                     stepOf(RecordedStep::Kind::Turn, 0.25),
                     stepOf(RecordedStep::Kind::Tool, 0.5, "moveSuperContext"),
                     stepOf(RecordedStep::Kind::Line, 1, "print \"a\\n\";\n// two lines\r\n")};
  InputEvent& press = recording.steps[1].event;
  press.shift = press.control = press.alt = true;
  press.pressure = 0.1;
  press.tiltX = -20;
  RecordedStep key = eventAt(1, InputKind::KeyPress, 5, 6);
  key.event.key = "Return";
  key.event.button = MouseButton::None;
  recording.steps.push_back(key);
  return recording;
}

TEST_CASE("a recording read back from its text is the same to the bit") {
  const Recording before = example();
  const std::string text = formatRecording(before);
  const auto after = parseRecording(text);
  REQUIRE_MESSAGE(after.has_value(), (after ? std::string() : after.error().message));
  CHECK(after->scene == before.scene);
  CHECK(after->views == before.views);
  CHECK(after->cameras == before.cameras);
  CHECK(after->settings == before.settings);
  CHECK(after->selection == before.selection);
  CHECK(after->hilite == before.hilite);
  CHECK(after->tool == before.tool);
  CHECK(after->toolSettings == before.toolSettings);
  REQUIRE(after->steps.size() == before.steps.size());
  CHECK(after->steps[1].event.shift);
  CHECK(after->steps[1].event.pressure == 0.1);
  CHECK(after->steps[0].event.position.x == 1.0 / 3);
  CHECK(after->steps[4].text == before.steps[4].text);
  CHECK(after->steps[5].event.key == "Return");
  CHECK(formatRecording(*after) == text);
  CHECK(parseRecording("# gestures 1\r\n\r\n# nothing\r\n0 turn\r\n")->steps.size() == 1);
}

TEST_CASE("what is no recording is refused by its line") {
  const auto errorOf = [](const std::string& line) {
    const auto read = parseRecording("# gestures 1\n" + line);
    return read ? std::string("none") : read.error().message;
  };
  CHECK(parseRecording("print 1;").error().message.find("This is no recording") == 0);
  CHECK(errorOf("dance") == "Line 2 of the recording: 'dance' is nothing that a recording has.");
  CHECK(errorOf("0 dance").find("'dance' is nothing that happens") != std::string::npos);
  CHECK(errorOf("0 press modelPanel4 1").find("the place is missing") != std::string::npos);
  CHECK(errorOf("0 press modelPanel4 1 1e999").find("is no number") != std::string::npos);
  CHECK(errorOf("0 press modelPanel4 1 2 hard").find("'hard' says nothing") != std::string::npos);
  CHECK(errorOf("0 press").find("the view is missing") != std::string::npos);
  CHECK(errorOf("0 tool").find("the tool is missing") != std::string::npos);
  CHECK(errorOf("-1 turn").find("time begins at 0") != std::string::npos);
  CHECK(errorOf("1 turn\n0.5 turn").find("time goes back") != std::string::npos);
  CHECK(errorOf("view p 0 10 persp").find("no view has 0 x 10") != std::string::npos);
  CHECK(errorOf("view p 9 9 persp bright").find("'bright'") != std::string::npos);
  CHECK(errorOf("camera persp translate 1 2").find("translate is missing") != std::string::npos);
}

TEST_CASE("cutting a text off or changing a byte never does worse than an error") {
  const std::string text = formatRecording(example());
  for (std::size_t i = 0; i < text.size(); ++i) {
    static_cast<void>(parseRecording(text.substr(0, i)));
    std::string changed = text;
    changed[i] = static_cast<char>(changed[i] ^ 0x15);
    static_cast<void>(parseRecording(changed));
  }
}

TEST_CASE("reducing leaves what the condition needs, in gestures that a hand can make") {
  Recording recording;
  for (int gesture = 0; gesture < 6; ++gesture) {
    const double x = 10 * gesture;
    recording.steps.push_back(eventAt(gesture, InputKind::Press, x, 0));
    for (int drag = 1; drag <= 5; ++drag) {
      recording.steps.push_back(stepOf(RecordedStep::Kind::Turn, gesture));
      recording.steps.push_back(eventAt(gesture, InputKind::Drag, x + drag, 0));
    }
    recording.steps.push_back(eventAt(gesture, InputKind::Release, x + 5, 0));
    recording.steps.push_back(stepOf(RecordedStep::Kind::Line, gesture, "line"));
  }
  // The fault needs the third gesture's fourth drag and any line after it.
  int trials = 0;
  const auto holds = [&](const Recording& tried) {
    ++trials;
    bool isDown = false, wasDragged = false;
    for (const RecordedStep& step : tried.steps) {
      if (step.kind == RecordedStep::Kind::Line && wasDragged) return true;
      if (step.kind != RecordedStep::Kind::Event) continue;
      const InputKind kind = step.event.kind;
      CHECK((kind == InputKind::Press) != isDown);
      isDown = kind != InputKind::Release;
      if (kind == InputKind::Drag && step.event.position.x == 24) wasDragged = true;
    }
    CHECK_FALSE(isDown);
    return false;
  };
  const Recording reduced = reduceRecording(recording, holds);
  REQUIRE(reduced.steps.size() == 4);
  CHECK(reduced.steps[1].event.position.x == 24);
  CHECK(reduced.steps[3].kind == RecordedStep::Kind::Line);
  CHECK(trials < 120);
  CHECK(stepsUntil(recording, 0) == 0);
  CHECK(stepsUntil(recording, 2) == 4);  // the press, a drag, and the turn before each event
  CHECK(stepsUntil(recording, 1000) == recording.steps.size());
}

TEST_CASE("a hand makes only what a mouse can, and tells of the view that it comes to") {
  std::string log;
  Hand hand([&](const InputEvent& event) {
    log += std::to_string(static_cast<int>(event.kind)) + event.panel +
           (event.button == MouseButton::Middle ? "m " : " ");
  });
  const auto word = [](InputKind kind) { return std::to_string(static_cast<int>(kind)); };
  REQUIRE(hand.use({.panel = "a", .button = MouseButton::Middle}));
  REQUIRE(hand.hover({1, 1}));
  REQUIRE(hand.press({1, 1}));
  CHECK_FALSE(hand.press({1, 1}));
  CHECK_FALSE(hand.hover({1, 1}));
  CHECK_FALSE(hand.use({.panel = "b"}));
  REQUIRE(hand.use({.panel = "a", .shift = true}));
  REQUIRE(hand.drag({2, 2}));
  REQUIRE(hand.release({2, 2}));
  CHECK_FALSE(hand.drag({2, 2}));
  REQUIRE(hand.use({.panel = "b"}));
  CHECK_FALSE(hand.state().shift);
  REQUIRE(hand.hover({1, 1}));
  CHECK(log == word(InputKind::Enter) + "a " + word(InputKind::Move) + "a " +
                   word(InputKind::Press) + "am " + word(InputKind::Drag) + "am " +
                   word(InputKind::Release) + "am " + word(InputKind::Enter) + "b " +
                   word(InputKind::Move) + "b ");
}

}  // namespace
}  // namespace host::tools
