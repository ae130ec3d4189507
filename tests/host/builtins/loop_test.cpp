// The loop: time that is stepped or waited for, idle work and redraws.
#include "host/cmd/loop.h"

#include <doctest/doctest.h>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/workspace/workspace.h"

using namespace host;

TEST_CASE("waiting calls each timer as often as it would be, in the order in which they are due") {
  const auto session = builtins::makeSession();
  cmd::Loop& loop = session->loop();
  std::string log;
  int fast = 0, always = 0;
  loop.timers().add(0.01, [&](double, double) { ++fast; });
  loop.timers().add(0.1, [&](double, double) { log += "b"; });
  loop.timers().add(0.25, [&](double, double) { log += "c"; });
  loop.wait(0.3);
  CHECK(fast == 30);
  CHECK(log == "bbcb");
  CHECK(loop.now() == doctest::Approx(0.3));
  loop.step();  // time stands still without a clock
  CHECK(fast == 30);
  loop.timers().add(0, [&](double, double) { ++always; });
  loop.wait(0);
  CHECK(always == 1);
  loop.wait(0.5);
  CHECK(always >= 50);
  CHECK(always <= 101);
}

TEST_CASE("a clock moves time in steps; what was waited for comes on top") {
  const auto session = builtins::makeSession();
  cmd::Loop& loop = session->loop();
  double clock = 1000;
  loop.setClock([&] { return clock; });
  std::vector<double> calls;
  loop.timers().add(1, [&](double now, double) { calls.push_back(now); });
  clock = 1000.75;
  loop.step();
  CHECK(calls.empty());
  loop.wait(0.5);
  REQUIRE(calls.size() == 1);
  clock = 990;  // a clock that is set back stops time, no more
  loop.step();
  clock = 990.8;
  loop.step();
  REQUIRE(calls.size() == 2);
  CHECK(calls[1] == doctest::Approx(2.05));
}

TEST_CASE("a turn runs timers, listeners, idle work and one redraw, in that order") {
  const auto session = builtins::makeSession();
  cmd::Loop& loop = session->loop();
  std::string log;
  loop.timers().addOnce(1, [&](double, double) {
    log += "timer ";
    loop.deferTask([&] { log += "task "; });
    loop.requestRedraw();
    loop.requestRedraw();
  });
  const Connection turned = loop.turned.connect([&] { log += "turned "; });
  const Connection drawing = loop.drawing.connect([&] { log += "drawn "; });
  loop.wait(1);
  CHECK(log == "timer turned task drawn ");
  loop.step();
  CHECK(log == "timer turned task drawn turned ");
  REQUIRE(session->executeLine("refresh"));
  CHECK(log.ends_with("turned drawn "));
}

TEST_CASE("what waits runs as if no script did: its lines are undone one by one") {
  const auto session = builtins::makeSession();
  REQUIRE(
      session->executeLine("evalDeferred \"polyCube -n a; polyCube -n b\"; "
                           "viewGesture -wait 0.1; undo; "
                           "print(`objExists a` + `objExists b`); polyCube -n c"));
  CHECK_FALSE(session->document().dagPath("a"));
  CHECK(session->document().dagPath("c"));
  // What waits can't wait itself, and quitting ends a wait.
  const MessageCapture said;
  REQUIRE(session->executeLine("evalDeferred \"viewGesture -wait 1\"; viewGesture -wait 1"));
  CHECK(said.text(MessageKind::Error).find("-wait ends it") != std::string::npos);
  const double before = session->loop().now();
  session->loop().timers().add(0.5, [&](double, double) { session->isQuitting = true; });
  session->loop().wait(10);
  CHECK(session->loop().now() == doctest::Approx(before + 0.5));
}

TEST_CASE("a button that rests is a hold, in a script's time") {
  class Holder final : public tools::ToolContext {
   public:
    Holder() : ToolContext("holder") {}
    void hold(const tools::InputEvent& event) override { holds.push_back(event); }
    std::vector<tools::InputEvent> holds;
  };
  const auto session = builtins::makeSession();
  const auto holder = std::make_shared<Holder>();
  REQUIRE(workspace::workspaceOf(*session).toolbox.add("holder", holder));
  REQUIRE(session->executeLine("setToolTo holder; viewGesture -press 10 20 -wait 0.4"));
  CHECK(holder->holds.empty());
  REQUIRE(session->executeLine("viewGesture -wait 0.2"));
  REQUIRE(holder->holds.size() == 1);
  CHECK(holder->holds[0].position.y == 20);
  REQUIRE(session->executeLine("viewGesture -drag 11 20 -wait 2 -release 11 20"));
  CHECK(holder->holds.size() == 1);
}
