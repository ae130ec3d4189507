#include <algorithm>
#include <cmath>

#include "tests/toolkit/toolkit_session.h"

// Smoothed copies that keep their hard edges.

namespace {

/// What an expression of MEL gives, as text.
std::string text(toolkitSession& toolkit, const std::string& expression) {
  CAPTURE(expression);
  const auto value = toolkit.session->executeLine("global proc string answer() { return (" +
                                                  expression + "); } answer();");
  REQUIRE(value.has_value());
  return value->toText().value_or("");
}

/// How far the mesh reaches along the diagonal, object space.
double reach(const char* name) {
  double farthest = 0;
  for (const MPoint& p : toolkitSession::points(name, MSpace::kObject))
    farthest = std::max(farthest, p.x + p.y + p.z);
  return farthest;
}
int faces(const char* name) {
  return MFnMesh(toolkitSession::path(name)).numPolygons();
}

/// Runs the command, which reports, in one line an object, that hosts refuse to tie a message to a
/// number.
void smooth(toolkitSession& toolkit, const std::string& command = "qxESmoothCmd") {
  const host::MessageCapture capture;
  CAPTURE(command);
  REQUIRE(toolkit.session->executeLine(command).has_value());
  std::string said = capture.text(host::MessageKind::Error);
  const std::string line = "cannot connect the message to the message\n";
  REQUIRE(said.rfind(line, 0) == 0);
  while (said.rfind(line, 0) == 0) said.erase(0, line.size());
  CHECK(said == "");
}

}  // namespace

TEST_CASE(
    "qxESmoothCmd: a hard cube keeps its shape but for the last step, a soft one goes round") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    toolkit.run("file -f -new; polyCube -n shape;");
    toolkit.run(pose);
    toolkit.run("select shape");
    smooth(toolkit);
    CHECK(faces("shape1") == 6 * 4 * 4 * 4);
    // One step without creases on squares of a quarter: a corner of three faces goes in by 2/9 of
    // one along each axis.
    CHECK(reach("shape1") == doctest::Approx(1.5 - 3 * 0.25 * 2 / 9).epsilon(1e-5));
    CHECK(text(toolkit, "size(`listHistory -pdo 1 shape1`)") == "0");
    CHECK(text(toolkit,
               "`getAttr shape.intermediateObject` + size(`ls -sl`) + `getAttr shape1.io`") == "1");
    CHECK(toolkitSession::path("shape1").inclusiveMatrix().isEquivalent(
        toolkitSession::path("shape").inclusiveMatrix()));
  }
  toolkit.run("file -f -new; polyCube -n shape; polySoftEdge -a 180 -ch 0 shape; select shape");
  smooth(toolkit);
  CHECK(reach("shape1") < 1.0);
}

TEST_CASE(
    "qxESmoothCmd: creases only where edges are hard, none left behind; -numDiv adds levels") {
  toolkitSession toolkit;
  // Only the rim of the top face is hard.
  toolkit.run(
      "file -f -new; polyCube -n shape; polySoftEdge -a 180 -ch 0 shape; polySoftEdge -a 0 -ch 0 "
      "shape.f[1]; select shape");
  smooth(toolkit, "qxESmoothCmd -nd 0");
  CHECK(faces("shape1") == 6 * 4 * 4);
  MUintArray edges;
  MDoubleArray creases;
  MFnMesh(toolkitSession::path("shape1")).getCreaseEdges(edges, creases);
  for (unsigned int i = 0; i < creases.length(); ++i) CHECK(creases[i] == 0);
  double top = 0, bottom = 0;
  for (const MPoint& p : toolkitSession::points("shape1")) {
    top = std::max(top, p.y);
    bottom = std::min(bottom, p.y);
  }
  CHECK(top == doctest::Approx(0.5));
  CHECK(bottom > -0.45);
  toolkit.run("select shape");
  smooth(toolkit, "qxESmoothCmd -numDiv 2");
  CHECK(faces("shape2") == 6 * 4 * 4 * 4 * 4);
}

TEST_CASE(
    "qxESmoothCmd: each selected object once, in order; components, shapes and groups are "
    "skipped") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyCube -n a; polyPlane -sx 1 -sy 1 -n b; polyCube -n c; polyCube -n d; "
      "polyCube -n e; group -n g e;");
  toolkit.run("instance -n twin a; select -r b c.vtx[0] dShape a g twin");
  smooth(toolkit);
  CHECK(text(toolkit, "size(`ls -tr \"a?\" \"b?\" \"c?\" \"d?\" \"g?\" \"twin?\"`)") == "3");
  CHECK(faces("b1") == 64);
  CHECK(faces("a1") == 384);
  CHECK(text(toolkit, "`getAttr c.io` + `getAttr d.io` + `getAttr g.io`") == "0");
  CHECK(text(toolkit, "`getAttr a.io` + `getAttr b.io` + `getAttr twin.io`") == "3");
}

TEST_CASE(
    "qxESmoothCmd: undo shows the objects and takes the copies, whatever had been done to them; "
    "redo smooths again") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyCube -n a; polySphere -n b; setAttr b.tx 3; createSmoothSet_QXMT_Proc; "
      "select a b");
  const std::uint64_t before = toolkit.hash();
  smooth(toolkit);
  const MPointArray smooth1 = toolkitSession::points("a1");
  for (int round = 0; round < 3; ++round) {
    toolkit.run("undo");
    CHECK(toolkit.hash() == before);
    {
      const host::MessageCapture quiet;
      toolkit.run("redo");
    }
    const MPointArray again = toolkitSession::points("a1");
    CHECK(again.length() == smooth1.length());
    for (unsigned int i = 0; i < again.length(); ++i) CHECK(again[i] == smooth1[i]);
    CHECK(text(toolkit, "`getAttr a.io` + `getAttr b.io` + size(`ls -tr \"a?\" \"b?\"`)") == "4");
  }
  toolkit.run("undo; sets -add qxTSmoothObjectsSet a b; select a b");
  smooth(toolkit);
  toolkit.run("undo");
  CHECK(text(toolkit, "size(`sets -q qxTSmoothObjectsSet`)") == "0");
  // Those too that were hidden before.
  toolkit.run("hide a; setAttr b.intermediateObject 1; select a b");
  smooth(toolkit);
  toolkit.run("undo");
  CHECK(text(toolkit, "`getAttr a.v` + `getAttr b.v` + `getAttr a.io` + `getAttr b.io`") == "2");
}

TEST_CASE(
    "qxESmoothCmd: nothing selected, words that are no numbers and objects that can't be smoothed "
    "change nothing") {
  toolkitSession toolkit;
  toolkit.run("file -f -new; polyCube -n a; select -cl");
  for (const char* command :
       {"qxESmoothCmd", "select a; qxESmoothCmd -nd \"two\"", "select a; qxESmoothCmd -nd -9"}) {
    const std::uint64_t before = toolkit.hash();
    (void)toolkit.failure(command);
    toolkit.run("select -cl");
    CHECK(toolkit.hash() == before);
  }
}

TEST_CASE("qxESmoothCmd: an object that can't be hidden stays as it was, with what was selected") {
  toolkitSession toolkit;
  toolkit.run("file -f -new; polyCube -n a; setAttr -lock 1 a.intermediateObject; select a");
  const std::uint64_t before = toolkit.hash();
  (void)toolkit.failure("qxESmoothCmd");
  CHECK(toolkit.hash() == before);
}

TEST_CASE("qxESmoothCmd: what was done before an object failed stays, and can be undone") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyCube -n a; polyCube -n b; polyCube -n c; setAttr -lock 1 "
      "b.intermediateObject; select a b c");
  const std::uint64_t before = toolkit.hash();
  (void)toolkit.failure("qxESmoothCmd");
  CHECK(text(toolkit, "size(`ls -tr \"a1\" \"b1\" \"c1\"`)") == "1");
  CHECK(text(toolkit, "`getAttr a.intermediateObject`") == "1");
  CHECK(text(toolkit, "stringArrayToString(`ls -sl`, \" \")") == "a b c");
  const std::uint64_t after = toolkit.hash();
  toolkit.run("undo");
  CHECK(toolkit.hash() == before);
  toolkit.run("redo");
  CHECK(toolkit.hash() == after);
}

TEST_CASE("qxESmoothCmd: an edit of the copy is undone and redone with it") {
  toolkitSession toolkit;
  toolkit.run("file -f -new; polyCube -n a; select a");
  const std::uint64_t before = toolkit.hash();
  smooth(toolkit);
  toolkit.run("setAttr a1.tx 4; move -r 0 1 0 a1.vtx[0]");
  const std::uint64_t after = toolkit.hash();
  toolkit.run("undo; undo");
  CHECK(toolkit.hash() == before);
  toolkit.run("redo; redo");
  CHECK(toolkit.hash() == after);
}
