#include "tests/toolkit/random_edits.h"
#include "tests/toolkit/toolkit_session.h"

namespace {

/// Every line of a script must leave the scene as it was when it is taken back, and as it had made
/// it when it is done again, however often.
void checkBackAndForth(const std::vector<std::string>& lines) {
  toolkitSession host;
  std::vector<std::uint64_t> states = {host.hash()};
  for (const std::string& line : lines) {
    host.run(line);
    states.push_back(host.hash());
  }
  for (int round = 0; round < 3; ++round) {
    for (std::size_t i = lines.size(); i-- > 0;) {
      CAPTURE(lines[i]);
      host.run("undo");
      CHECK(host.hash() == states[i]);
    }
    for (std::size_t i = 0; i < lines.size(); ++i) {
      CAPTURE(lines[i]);
      host.run("redo");
      CHECK(host.hash() == states[i + 1]);
    }
  }
}

}  // namespace

TEST_CASE("undo: what comes after a plug-in's command is redone on the nodes that its redo makes") {
  for (const char* after : {"group A1", "setAttr A1.ty 2", "delete A1", "polySoftEdge -a 20 A1",
                            "polyExtrudeFacet -ltz 1 A1.f[2]", "polyTriangulate A1",
                            "polyBevel A1.e[3]", "instance A1", "group -em -n G; parent A1 G"}) {
    CAPTURE(after);
    checkBackAndForth({"polyCube -n A", "select -r A", "qxESmoothCmd", after});
  }
}

TEST_CASE(
    "undo: a smooth that found nothing to smooth leaves the same selection when it is redone") {
  checkBackAndForth({"polyCube -n A", "polyCube -n B", "group -n G A B", "select -r G",
                     "qxESmoothCmd", "select -r A G", "qxESmoothCmd", "setAttr A1.ty 2"});
}

TEST_CASE("undo: what was deleted with undo off is refused with a message, and others go on") {
  toolkitSession host;
  host.run("polySphere -n B; setAttr B.tx 3;");
  host.run("polyCube -n A");
  host.run("setAttr A.tx 2");
  host.run("undoInfo -swf off; delete A; undoInfo -swf on");
  const std::uint64_t before = host.hash();
  CHECK(host.failure("undo").find("deleted") != std::string::npos);
  CHECK(host.hash() == before);
  host.run("undo");  // all of A's are forgotten with the first
  CHECK_FALSE(host.session->document().node("B"));
  host.run("redo");
  CHECK(host.hash() == before);
}

TEST_CASE("undo: a group that lost a member with undo off") {
  toolkitSession host;
  host.run("polyCube -n A");
  host.run("polyCube -n B");
  host.run("group A B");
  host.run("undoInfo -stateWithoutFlush off; delete A; undoInfo -stateWithoutFlush on");
  const std::uint64_t before = host.hash();
  CHECK_FALSE(host.failure("undo").empty());
  CHECK(host.hash() == before);
}

TEST_CASE("undo: random edits with chunks, undo off, plug-in commands and callbacks in between") {
  toolkitSession host;
  const auto run = [&](unsigned seed, int steps) {
    CAPTURE(seed);
    host.run("file -f -new; undoInfo -swf on");
    randomEdits edits(*host.session, seed);
    for (int i = 0; i < steps && edits.fault().empty(); ++i) edits.step();
    if (edits.fault().empty()) edits.finish();
    std::string tail;
    for (const std::string& line : edits.lines()) tail += line + '\n';
    INFO(tail);
    REQUIRE(edits.fault() == "");
  };
  for (unsigned seed = 1; seed < 400; ++seed) run(seed, 30);
  run(10815, 300);  // what a node that comes and goes drove holds what it held before
}
