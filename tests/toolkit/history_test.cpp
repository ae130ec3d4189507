#include <maya/MDGModifier.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MGlobal.h>
#include <maya/MStringArray.h>

#include "host/mesh/hash.h"
#include "shared/mesh/mathHelper.h"
#include "tests/toolkit/zoo_scene.h"

// A node put into a mesh's history and taken out again.

namespace {

MObject makeNode(const char* type) {
  MDGModifier modifier;
  MStatus status;
  const MObject node = modifier.createNode(type, &status);
  REQUIRE(status);
  REQUIRE(modifier.doIt());
  return node;
}

std::string driverOfShape(const char* shape) {
  MStringArray plugs;
  MGlobal::executeCommand(MString("listConnections -p 1 -s 1 -d 0 ") + shape + ".inMesh", plugs);
  return plugs.length() > 0 ? plugs[0].asChar() : "";
}

std::uint64_t meshHash(toolkitSession& toolkit, const char* shape) {
  const auto node = toolkit.session->document().node(shape);
  REQUIRE(node.has_value());
  const auto mesh = host::nodes::evaluatedMesh(**node);
  REQUIRE(mesh.has_value());
  return host::mesh::hashMesh(*mesh);
}

struct situation {
  const char* name;
  const char* make;  ///< a mesh "shape" with shape node "shapeShape"
};
const situation kSituations[] = {
    {"no history", "polyCube -ch 0 -name shape"},
    {"no history, tweaks",
     "polyCube -ch 0 -name shape; setAttr shapeShape.pnts[3] 0.1 -0.25 1e-7; setAttr "
     "shapeShape.pnts[6] 0 0.3 0"},
    {"history", "polyCube -name shape"},
    {"history, tweaks", "polyCube -name shape; move -r 0.1 0.2 0.3 shape.vtx[2:4]"},
    {"history, tweaks, edges made hard",
     "polyCube -name shape; move -r 0.1 0.2 0.3 shape.vtx[2:4]; polySoftEdge -a 0 -ch 0 shape"},
    {"an instance",
     "polyCube -ch 0 -name shape; instance -name other shape; setAttr other.tx 3; setAttr "
     "shapeShape.pnts[1] 0 1 0"},
    {"a tilted, mirrored transform",
     "polyCube -ch 0 -name shape; setAttr shape.sx -2; setAttr shape.rz 33; setAttr "
     "shapeShape.pnts[1] 0 1 0"},
    {"children and a second shape",
     "polyCube -ch 0 -name shape; polySphere -ch 0 -name second; parent -s -r secondShape shape; "
     "polyCube -name child; parent child shape"},
    {"other units",
     "polyCube -ch 0 -name shape; setAttr shapeShape.pnts[3] 0.1 -0.25 1e-7; currentUnit -l m"},
};

/// A session that knows `liftNode`, a node with inMesh, outMesh and a height.
struct historySession : toolkitSession {
  historySession() { run("loadPlugin \"" QXMT_BINARY_DIR "/test_plugins/lift_node.so\""); }
};

unsigned int countOf(const char* pattern) {
  MStringArray names;
  MGlobal::executeCommand(MString("ls ") + pattern, names);
  return names.length();
}

}  // namespace

TEST_CASE("history: a node goes in and out again, and the mesh is what it was, bit for bit") {
  historySession toolkit;
  const mathHelper math;
  for (const situation& from : kSituations)
    for (const bool usesTweak : {true, false}) {
      CAPTURE(std::string(from.name));
      CAPTURE(usesTweak);
      toolkit.run("file -f -new; currentUnit -l cm");
      toolkit.run(from.make);
      toolkit.run("select -r shape");
      const MDagPath path = toolkitSession::path("|shape|shapeShape");
      const std::uint64_t before = meshHash(toolkit, "shapeShape");
      const bool hadHistory = !driverOfShape("shapeShape").empty();
      const unsigned int transforms = countOf("-type transform"),
                         tweaks = countOf("-type polyTweak");
      for (int round = 0; round < 2; ++round) {
        const MObject node = makeNode("liftNode"),
                      tweak = usesTweak ? makeNode("polyTweak") : MObject();
        REQUIRE(math.insertNodeInHistory(path, node, tweak));
        CHECK(driverOfShape("shapeShape") == "liftNode1.outMesh");
        CHECK(meshHash(toolkit, "shapeShape") == before);
        CHECK(countOf("\"shapeShapeOrig*\"") == (hadHistory ? 0u : 1u));
        CHECK(countOf("-sl") == 1);
        CHECK(countOf("-type transform") == transforms);
        MPointArray low = toolkitSession::points("shapeShape", MSpace::kObject);
        toolkit.run("setAttr liftNode1.height 2");
        const MPointArray high = toolkitSession::points("shapeShape", MSpace::kObject);
        for (unsigned int i = 0; i < low.length(); ++i)
          CHECK(high[i].y == doctest::Approx(low[i].y + 2));
        REQUIRE(math.removeNodeFromHistory(path, node, tweak));
        CHECK(countOf("-type liftNode") == 0);
        CHECK(countOf("-type polyTweak") == tweaks);
        CHECK(meshHash(toolkit, "shapeShape") == before);
      }
    }
}

TEST_CASE("history: in and out of every mesh in every pose, with a tweak on each vertex") {
  historySession toolkit;
  const mathHelper math;
  for (const host::zoo::ZooMesh& zoo : host::zoo::meshZoo())
    for (const char* pose : {"", kHardPoses[0], kHardPoses[1]}) {
      CAPTURE(zoo.name);
      const MDagPath path = showMesh(toolkit, zoo.mesh, pose);
      for (int v = 0; v < zoo.mesh.vertexCount(); ++v)
        toolkit.run("setAttr shapeShape.pnts[" + std::to_string(v) + "] 0.1 " +
                    std::to_string(v * 0.37) + " -1e-6");
      const std::uint64_t before = meshHash(toolkit, "shapeShape");
      const MObject node = makeNode("liftNode"), tweak = makeNode("polyTweak");
      REQUIRE(math.insertNodeInHistory(path, node, tweak));
      CHECK(meshHash(toolkit, "shapeShape") == before);
      REQUIRE(math.removeNodeFromHistory(path, node, tweak));
      CHECK(meshHash(toolkit, "shapeShape") == before);
    }
}

TEST_CASE(
    "history: tweaks move in front of the node and only they; nodes stack up and leave from the "
    "middle") {
  historySession toolkit;
  const mathHelper math;
  toolkit.run("polyCube -name shape; setAttr shapeShape.pnts[5] 0.5 0 -0.125;");
  const MDagPath path = toolkitSession::path("shape");
  const std::uint64_t before = meshHash(toolkit, "shapeShape");
  const MObject first = makeNode("liftNode"), tweak = makeNode("polyTweak");
  REQUIRE(math.insertNodeInHistory(path, first, tweak));
  const MPlug moved = MFnDependencyNode(tweak).findPlug("tweak").elementByLogicalIndex(5);
  CHECK(moved.child(0).asDouble() == 0.5);
  CHECK(moved.child(2).asDouble() == -0.125);
  CHECK(MFnDependencyNode(path.node())
            .findPlug("pnts")
            .elementByLogicalIndex(5)
            .child(0)
            .asDouble() == 0.0);
  const MObject second = makeNode("liftNode");
  REQUIRE(math.insertNodeInHistory(path, second, makeNode("polyTweak")));
  CHECK(meshHash(toolkit, "shapeShape") == before);
  REQUIRE(math.removeNodeFromHistory(path, first, tweak));
  CHECK(driverOfShape("shapeShape") == "liftNode2.outMesh");
  CHECK(meshHash(toolkit, "shapeShape") == before);
  toolkit.run("setAttr liftNode2.height 1");
  CHECK(meshHash(toolkit, "shapeShape") != before);
}

TEST_CASE("history: what can't be put in is refused with the scene as it was") {
  historySession toolkit;
  const mathHelper math;
  toolkit.run(
      "polyCube -ch 0 -name shape; setAttr shapeShape.pnts[3] 1 2 3; select -r shape.vtx[3];");
  const MDagPath path = toolkitSession::path("shape");
  const MObject node = makeNode("liftNode"), tweak = makeNode("polyTweak"),
                taken = makeNode("liftNode");
  toolkit.run(
      "polySphere -ch 0 -name other; connectAttr otherShape.outMesh liftNode2.inMesh; select -r "
      "shape.vtx[3];");
  const std::uint64_t before = toolkit.hash();
  CHECK_FALSE(math.insertNodeInHistory(path, makeNode("polyTweak")));
  toolkit.run("delete polyTweak2");
  CHECK_FALSE(math.insertNodeInHistory(path, node, makeNode("liftNode")));
  toolkit.run("delete liftNode3");
  CHECK_FALSE(math.insertNodeInHistory(path, MObject()));
  CHECK_FALSE(math.insertNodeInHistory(MDagPath(), node, tweak));
  CHECK_FALSE(math.insertNodeInHistory(toolkitSession::path("persp"), node, tweak));
  CHECK_FALSE(math.removeNodeFromHistory(path, node, tweak));
  CHECK(toolkit.hash() == before);
  {
    const host::MessageCapture capture;
    CHECK_FALSE(math.insertNodeInHistory(path, taken, tweak));
    CHECK(capture.text(host::MessageKind::Error).find("error setting tweaks on node") !=
          std::string::npos);
  }
  CHECK(countOf("\"shapeShapeOrig*\"") == 0);
  CHECK(toolkitSession::points("shape", MSpace::kObject)[3].isEquivalent(MPoint(1.5, 2.5, 3.5)));
  const MDagPath gone = deletedPath(toolkit);
  CHECK_FALSE(math.insertNodeInHistory(gone, makeNode("liftNode")));
}

TEST_CASE("history: a node is taken out of the history it is in, of no other shape's") {
  historySession toolkit;
  const mathHelper math;
  toolkit.run("polyCube -name shape; polyCube -name other; setAttr otherShape.pnts[1] 0.1 0 0");
  const MObject node = makeNode("liftNode"), tweak = makeNode("polyTweak");
  REQUIRE(math.insertNodeInHistory(toolkitSession::path("shape"), node, tweak));
  const std::uint64_t before = toolkit.hash();
  CHECK_FALSE(math.removeNodeFromHistory(toolkitSession::path("other"), node, tweak));
  CHECK(toolkit.hash() == before);
  toolkit.run("file -f -new");
}

TEST_CASE(
    "history: tweaks come out as they are in every unit, and a failed insertion leaves none") {
  historySession toolkit;
  const mathHelper math;
  for (const char* unit : {"mm", "cm", "m", "km", "in", "ft", "yd", "mi"}) {
    CAPTURE(std::string(unit));
    toolkit.run(
        "file -f -new; currentUnit -l cm; polyCube -name shape; setAttr "
        "shapeShape.pnts[3] 0.1 -0.7 1e-3; currentUnit -l " +
        std::string(unit));
    const MPointArray before = toolkitSession::points("shape");
    const MObject node = makeNode("liftNode"), tweak = makeNode("polyTweak");
    REQUIRE(math.insertNodeInHistory(toolkitSession::path("shape"), node, tweak));
    const MPointArray after = toolkitSession::points("shape");
    for (unsigned int i = 0; i < after.length(); ++i) CHECK(after[i] == before[i]);
    toolkit.run("currentUnit -l cm");
  }
  toolkit.run(
      "file -f -new; polyCube -name shape; setAttr shapeShape.pnts[3] 0.1 0 0; setAttr -lock 1 "
      "shapeShape.inMesh");
  const MObject node = makeNode("liftNode"), tweak = makeNode("polyTweak");
  const std::uint64_t before = toolkit.hash();
  const host::MessageCapture quiet;
  CHECK_FALSE(math.insertNodeInHistory(toolkitSession::path("shape"), node, tweak));
  CHECK(toolkit.hash() == before);
  toolkit.run("file -f -new");
}
