// What is put off until nothing else runs: deferred scripts, jobs, and their order.
#include <doctest/doctest.h>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/cmd/loop.h"

using namespace host;

namespace {

struct Said {
  std::string output, errors;
};

/// Runs a line, then all that waits.
Said runAll(cmd::Session& session, const std::string& mel) {
  const MessageCapture said;
  CAPTURE(mel);
  CHECK(session.executeLine(mel));
  while (session.loop().runIdle()) {
  }
  return {said.text(MessageKind::Print), said.text(MessageKind::Error)};
}

}  // namespace

TEST_CASE(
    "deferred scripts run in their order, after the line; those of low priority when nothing else "
    "waits") {
  const auto session = builtins::makeSession();
  CHECK(runAll(*session, "evalDeferred \"print 1\"; evalDeferred(\"print 2\"); print 0;").output ==
        "012");
  CHECK(runAll(*session,
               "evalDeferred -lowestPriority \"print 9\"; evalDeferred \"print 1\"; evalDeferred "
               "-lp \"print 8\"; evalDeferred \"print 2\";")
            .output == "1298");
  // One that defers another: the new one comes after those that wait, and before low priority.
  CHECK(runAll(*session,
               "evalDeferred -lp \"print 9\"; evalDeferred \"evalDeferred \\\"print 3\\\"; print "
               "1\"; evalDeferred \"print 2\";")
            .output == "1239");
  // What one of low priority defers comes before the next of them.
  CHECK(runAll(*session,
               "evalDeferred -lp \"evalDeferred \\\"print 2\\\"; print 1\"; evalDeferred -lp "
               "\"print 3\"; print 0")
            .output == "0123");
  // It runs among the globals: what the procedure held is gone.
  CHECK(runAll(*session,
               "global int $gDeferred = 4; proc later() { int $gLocal = 5; evalDeferred "
               "\"$gDeferred += 1; print $gDeferred\"; } later; $gDeferred = 6;")
            .output == "7");
}

TEST_CASE(
    "an error in a deferred script is said and stops that script alone; each is a step of undo") {
  const auto session = builtins::makeSession();
  const Said said = runAll(*session,
                           "evalDeferred \"print 1; error \\\"bad\\\"; print 2\"; evalDeferred "
                           "\"print 3\"; evalDeferred \"int $x = ;\"; evalDeferred \"print 4\";");
  CHECK(said.output == "134");
  CHECK(said.errors.find("bad") != std::string::npos);
  CHECK(said.errors.find("Syntax error") != std::string::npos);
  CHECK(runAll(*session, "catchQuiet(evalDeferred(\"error \\\"late\\\"\")); print \"now\"")
            .errors.find("late") != std::string::npos);

  runAll(*session,
         "createNode transform -n first; evalDeferred \"createNode transform -n second; createNode "
         "transform -n third\"; evalDeferred \"createNode transform -n fourth\"");
  const auto there = [&] {
    return runAll(
               *session,
               "for ($n in {\"first\", \"second\", \"third\", \"fourth\"}) print(`objExists $n`)")
        .output;
  };
  CHECK(there() == "1111");
  runAll(*session, "undo");
  CHECK(there() == "1110");
  runAll(*session, "undo");
  CHECK(there() == "1000");
  runAll(*session, "redo; redo");
  CHECK(there() == "1111");
}

TEST_CASE(
    "jobs run before deferred scripts, once for many changes, and again when they cause one") {
  const auto session = builtins::makeSession();
  runAll(*session, "polyCube -n box; global int $gRuns = 0; select -cl");
  runAll(*session,
         "scriptJob -attributeChange box.tx \"print \\\"[tx]\\\"\"; scriptJob -event "
         "SelectionChanged \"print \\\"[sel]\\\"\"");
  CHECK(runAll(*session,
               "evalDeferred \"print \\\"[later]\\\"\"; setAttr box.tx 1; setAttr box.tx 2; select "
               "box; select -cl")
            .output == "[tx][sel][later]");
  CHECK(runAll(*session, "setAttr box.ty 1; print \"-\"").output == "-");
  // A job that changes what it waits for runs until it rests.
  runAll(*session,
         "scriptJob -killWithScene -attributeChange box.ry \"if (`getAttr box.ry` < 3) setAttr "
         "box.ry (`getAttr box.ry` + 1); $gRuns++\"");
  CHECK(runAll(*session,
               "setAttr box.ry 1; print \"set \"; evalDeferred -lp \"print(`getAttr box.ry`)\"")
            .output == "set 3");
  CHECK(runAll(*session, "print $gRuns").output == "3");
  // One that fails is there for the next time; one that runs once is not.
  runAll(*session,
         "int $bad = `scriptJob -attributeChange box.sx \"error \\\"job\\\"\"`; scriptJob -runOnce "
         "true -attributeChange box.sx \"print \\\"once\\\"\"");
  const Said first = runAll(*session, "setAttr box.sx 2"),
             second = runAll(*session, "setAttr box.sx 3");
  CHECK(first.output == "once");
  CHECK(second.output.empty());
  CHECK(first.errors.find("job") != std::string::npos);
  CHECK(second.errors.find("job") != std::string::npos);
  // A job may kill itself or be killed while it waits.
  CHECK(runAll(*session,
               "scriptJob -kill $bad; global int $gSelf; $gSelf = `scriptJob -attributeChange "
               "box.sy \"print \\\"mine\\\"; scriptJob -kill $gSelf\"`; setAttr box.sy 2")
            .output == "mine");
  CHECK(runAll(*session, "setAttr box.sy 3; print \"-\"").output == "-");
  CHECK(runAll(*session,
               "int $j = `scriptJob -attributeChange box.sz \"print \\\"never\\\"\"`; setAttr "
               "box.sz 2; scriptJob -kill $j; print \"-\"")
            .output == "-");
  // A new scene ends those that belong to the old one.
  const std::string before = runAll(*session, "print(size(`scriptJob -lj`))").output;
  runAll(*session, "file -f -new");
  CHECK(runAll(*session, "print(size(`scriptJob -lj`))").output != before);
}
