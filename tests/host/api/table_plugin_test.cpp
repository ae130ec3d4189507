// Arrays of compounds and plug-in data between nodes that a plug-in adds.
#include <maya/MFnDependencyNode.h>
#include <maya/MFnPluginData.h>
#include <maya/MPlug.h>
#include <maya/MPxData.h>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Table : ApiScene {
  Table() {
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/table_node.so"));
    run("createNode tableNode -n t; setAttr t.rows[2].amount 3; setAttr t.rows[2].weight 2;"
        "setAttr t.rows[9].amount 4;");
  }
  ~Table() { session.reset(); }
  host::MessageCapture quiet;
  double number(const std::string& mel) { return run(mel).toFloat().value_or(-1e9); }
};

}  // namespace

TEST_CASE_FIXTURE(Table,
                  "array outputs: elements stand where the inputs do, come and go with them") {
  CHECK(number("getAttr t.results[2].product") == 6);
  CHECK(number("getAttr t.results[9].product") == 4);
  CHECK(number("getAttr t.results[9].share") == doctest::Approx(0.4));
  CHECK(number("getAttr -size t.results") == 2);
  run("setAttr t.rows[5].amount 10");
  CHECK(number("getAttr t.results[9].share") == doctest::Approx(0.2));
  CHECK(number("getAttr -size t.results") == 3);
  run("setAttr t.rows[2].amount 0");
  CHECK(number("getAttr t.results[9].product") == 4);
  const MPlug results = MFnDependencyNode(node("t")).findPlug("results", true);
  CHECK(results.evaluateNumElements() == 2);
  CHECK(results[0].logicalIndex() == 5);
  CHECK(results[0].child(0).asDouble() == 10);
  run("undo; undo");
  CHECK(number("getAttr t.results[2].product") == 6);
}

TEST_CASE_FIXTURE(Table, "array outputs: what evaluation added for a step goes with the step") {
  CHECK(number("getAttr t.results[9].product") == 4);
  const auto before = session->document().hash();
  run("setAttr t.rows[5].amount 10");
  CHECK(number("getAttr t.results[5].product") == 10);
  CHECK(number("getAttr -size t.results") == 3);
  const auto after = session->document().hash();
  run("undo");
  CHECK(number("getAttr -size t.results") == 2);
  CHECK(session->document().hash() == before);
  run("redo");
  CHECK(number("getAttr -size t.results") == 3);
  CHECK(session->document().hash() == after);
  // A step on something else leaves the array alone, and so does one on what is connected.
  run("createNode transform -n a; connectAttr t.results[5].product a.tx");
  run("setAttr t.rows[5].amount 11");
  CHECK(number("getAttr a.tx") == 11);
  run("undo");
  CHECK(number("getAttr a.tx") == 10);
  // An element that is only asked for is no edit, and an edit of it afterwards is one.
  const auto asked = session->document().hash();
  CHECK(number("getAttr t.results[77].product") == 0);
  CHECK(session->document().hash() == asked);
}

TEST_CASE_FIXTURE(Table, "array outputs drive others, element by element, through changes") {
  run("createNode transform -n a; connectAttr t.results[9].product a.tx;"
      "connectAttr t.results[2].share a.ty; createNode tableNode -n u;"
      "connectAttr a.tx u.rows[0].weight; setAttr u.rows[0].amount 3;");
  CHECK(number("getAttr a.tx") == 4);
  CHECK(number("getAttr a.ty") == doctest::Approx(0.6));
  CHECK(number("getAttr u.results[0].product") == 12);
  run("setAttr t.rows[9].amount 6");
  CHECK(number("getAttr u.results[0].product") == 18);
  CHECK(number("getAttr a.ty") == doctest::Approx(0.5));
}

TEST_CASE_FIXTURE(Table, "plug-in data goes along connections of its type only") {
  run("createNode tallyReader -n r; createNode transform -n a;");
  CHECK(number("getAttr r.sum") == -1);
  run("connectAttr t.tally r.inTally");
  CHECK(number("getAttr r.sum") == 10);
  CHECK(number("getAttr r.count") == 2);
  run("setAttr t.rows[2].weight 0.5");
  CHECK(number("getAttr r.sum") == 5.5);
  const MObject data = MFnDependencyNode(node("t")).findPlug("tally", true).asMObject();
  MStatus status;
  const MFnPluginData fn(data, &status);
  REQUIRE(status);
  CHECK(fn.typeId() == MTypeId(0x00123410));
  CHECK(fn.constData()->name() == "tally");
  CHECK_FALSE(session->executeLine("connectAttr t.tally a.tx").has_value());
  CHECK_FALSE(session->executeLine("connectAttr -f a.tx r.inTally").has_value());
  CHECK(number("getAttr r.sum") == 5.5);
  run("disconnectAttr t.tally r.inTally; setAttr t.rows[2].weight 7;");
  CHECK_FALSE(session->pluginLoader->unload("table_node", false));  // its nodes are in use
}

TEST_CASE_FIXTURE(Table,
                  "plug-in data is set by its words, saved and opened, and bad words are told") {
  run("createNode tallyReader -n r; setAttr r.inTally -type \"tally\" 7.5 3;");
  CHECK(number("getAttr r.sum") == 7.5);
  CHECK(number("getAttr r.count") == 3);
  CHECK_FALSE(session->executeLine("setAttr r.inTally -type \"tally\" 7.5 -3").has_value());
  CHECK_FALSE(session->executeLine("setAttr r.inTally -type \"tally\"  \"x\"").has_value());
  CHECK(number("getAttr r.count") == 3);
  run("file -rename \"" QXMT_BINARY_DIR
      "/tally.ma\"; file -save; file -f -new;"
      "file -f -open \"" QXMT_BINARY_DIR "/tally.ma\"");
  CHECK(number("getAttr r.sum") == 7.5);
  CHECK(number("getAttr r.count") == 3);
}
