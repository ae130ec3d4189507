#include <maya/MDagModifier.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnPlugin.h>
#include <maya/MPlug.h>

#include "host/api/plugin/plugin_record.h"
#include "quaddraw/addPolyCmd.h"
#include "quaddraw/addPolyNode.h"
#include "tests/toolkit/toolkit_session.h"

// The node that adds a polygon and its twin, and how it gets into a mesh's history and out again.

namespace {

/// The node's type, registered as a module would while it lives.
class registeredNode {
 public:
  explicit registeredNode(toolkitSession& toolkit) : toolkit_(toolkit) {
    record_->info.name = "addPolygons";
    REQUIRE(plugin().registerNode("qxAddPolyNode", addPolyNode::id, addPolyNode::creator,
                                  addPolyNode::initialize));
  }
  ~registeredNode() {
    toolkit_.run("file -f -new");
    CHECK(plugin().deregisterNode(addPolyNode::id));
  }

 private:
  MFnPlugin plugin() const {
    return MFnPlugin(host::api::Access::make<MObject>(new host::api::PluginRep(record_)), "tests",
                     "1", "Any");
  }
  toolkitSession& toolkit_;
  std::shared_ptr<host::api::PluginRecord> record_ = std::make_shared<host::api::PluginRecord>();
};

MPointArray makePoints(std::initializer_list<MPoint> list) {
  MPointArray points;
  for (const MPoint& point : list) points.append(point);
  return points;
}

/// A quad beside the unit plane, hinged on its edge at x = 0.5, and its twin on the other side a
/// little off.
addPolyEdit beside(const char* name) {
  addPolyEdit edit;
  edit.mesh = toolkitSession::path(name);
  edit.points = makePoints({{0.5, 0, 0.5}, {1.5, 0, 0.5}, {1.5, 0, -0.5}, {0.5, 0, -0.5}});
  edit.mirrorPoints =
      makePoints({{-0.55, 0, -0.5}, {-1.5, 0, -0.5}, {-1.5, 0, 0.5}, {-0.5, 0.05, 0.5}});
  edit.isMirrored = true;
  return edit;
}

struct meshCounts {
  int vertices, faces;
  bool operator==(const meshCounts& other) const {
    return vertices == other.vertices && faces == other.faces;
  }
};
meshCounts countsOf(const char* name) {
  const MFnMesh mesh(toolkitSession::path(name));
  return {mesh.numVertices(), mesh.numPolygons()};
}
const char* const kPlane = "file -f -new; polyPlane -n shape -sx 1 -sy 1 -w 1 -h 1";

bool isSame(const MPointArray& a, const MPointArray& b) {
  for (unsigned int i = 0; i < a.length() && i < b.length(); ++i)
    if (!(a[i] == b[i])) return false;
  return a.length() == b.length();
}

std::string nameOf(const MObject& node) {
  return MFnDependencyNode(node).name().asChar();
}

}  // namespace

TEST_CASE(
    "qxAddPolyNode: the polygon and its twin share the vertices they come near to, each within its "
    "own reach") {
  toolkitSession toolkit;
  registeredNode type(toolkit);
  for (const char* history : {" -ch 1", " -ch 0"}) {
    CAPTURE(history);
    toolkit.run(std::string(kPlane) + history);
    addPolyEdit edit = beside("shape");
    REQUIRE(edit.insert());
    CHECK(countsOf("shape") == meshCounts{8, 3});
    const std::string node = nameOf(edit.node);
    toolkit.run("setAttr " + node + ".nodeState 1");
    CHECK(countsOf("shape") == meshCounts{4, 1});
    toolkit.run("setAttr " + node + ".nodeState 0");
    // Half a millimetre off is another vertex for the polygon, though not for its twin.
    REQUIRE(edit.remove());
    edit.points[0].x += 0.005;
    REQUIRE(edit.insert());
    CHECK(countsOf("shape") == meshCounts{9, 3});
    REQUIRE(edit.remove());
    CHECK(countsOf("shape") == meshCounts{4, 1});
    edit.isMirrored = false;
    edit.points.setLength(2);
    REQUIRE(edit.insert());
    CHECK(countsOf("shape") == meshCounts{4, 1});
  }
}

TEST_CASE(
    "qxAddPolyNode: a polygon lands where it was drawn in the world, whatever transforms stand "
    "above "
    "the mesh; a matrix without a way back changes nothing") {
  toolkitSession toolkit;
  registeredNode type(toolkit);
  toolkit.run(std::string(kPlane) +
              "; group -n above shape; setAttr above.translate -type double3 10 2 0;"
              "setAttr above.rotateY 90; setAttr above.scaleX 2; setAttr shape.rotateX 30; setAttr "
              "shape.translateZ 4;");
  addPolyEdit edit = beside("shape");
  edit.isMirrored = false;
  const MMatrix above = edit.mesh.inclusiveMatrix();
  for (unsigned int i = 0; i < edit.points.length(); ++i) edit.points[i] *= above;
  REQUIRE(edit.insert());
  CHECK(countsOf("shape") == meshCounts{6, 2});
  CHECK(
      toolkitSession::points("shape", MSpace::kObject)[4].isEquivalent(MPoint(1.5, 0, 0.5), 1e-5));
  {
    const host::MessageCapture quiet;
    toolkit.run("setAttr above.scaleX 0");
    CHECK(countsOf("shape") == meshCounts{4, 1});
  }
  toolkit.run("setAttr above.scaleX 2");
  CHECK(countsOf("shape") == meshCounts{6, 2});
}

TEST_CASE("qxAddPolyNode: a polygon that folds up fails and the mesh passes as it came") {
  toolkitSession toolkit;
  registeredNode type(toolkit);
  toolkit.run(kPlane);
  addPolyEdit edit = beside("shape");
  edit.points = makePoints({{0.5, 0, 0.5}, {0.5, 0.0005, 0.5}, {0.5, 0, 0.5}});
  edit.isMirrored = false;
  const host::MessageCapture quiet;
  REQUIRE(edit.insert());
  CHECK(countsOf("shape") == meshCounts{4, 1});
}

TEST_CASE("qxAddPolyCmd: the polygon goes in, out and in again, with the tweaks where they were") {
  toolkitSession toolkit;
  registeredNode type(toolkit);
  toolkit.run(std::string(kPlane) + "; move -r 0 0.04 0 shape.vtx[0]");
  const MPointArray before = toolkitSession::points("shape");
  addPolyEdit edit = beside("shape");
  edit.hasTweakNode = true;
  addPolyCmd command(edit);
  for (int round = 0; round < 2; ++round) {
    REQUIRE(command.redoIt());
    toolkit.run(
        "string $tweaks[] = `ls -type polyTweak`; if (size($tweaks) != 1) error \"no tweak node\"");
    CHECK(countsOf("shape") == meshCounts{8, 3});
    CHECK(toolkitSession::points("shape")[0].isEquivalent(before[0], 1e-7));
    REQUIRE(command.undoIt());
    CHECK(isSame(toolkitSession::points("shape"), before));
    toolkit.run(
        "if (size(`ls -type qxAddPolyNode -type polyTweak`) != 0) error \"nodes are left\"");
  }
}

TEST_CASE(
    "qxAddPolyCmd: run from a script it refuses and changes nothing; without its node type nothing "
    "is left behind") {
  toolkitSession toolkit;
  toolkit.run(kPlane);
  toolkit.run("polyCube -n other");
  host::MessageCapture capture;
  toolkit.run("select shape other");
  addPolyCmd command;
  CHECK_FALSE(command.doIt(MArgList()));
  toolkit.run("select -cl");
  CHECK_FALSE(command.doIt(MArgList()));
  toolkit.run("select shape");
  CHECK_FALSE(command.doIt(MArgList()));
  const std::uint64_t hash = toolkit.hash();
  addPolyEdit edit = beside("shape");
  CHECK_FALSE(edit.insert());
  CHECK(toolkit.hash() == hash);
  const std::string text = capture.text(host::MessageKind::Error);
  for (const char* part : {"AddPolygon profile command does not work on multiple objects selected.",
                           "invalid Mesh shape path: ", "there was an error adding the polygon.",
                           "error creating add poly node"})
    CHECK(text.find(part) != std::string::npos);
}

TEST_CASE(
    "qxAddPolyCmd: a mesh without history has none after undo, and redo brings the same nodes") {
  toolkitSession toolkit;
  registeredNode type(toolkit);
  for (const char* tweaked : {"", "; setAttr shapeShape.pnts[1] 0.1 0.2 0.3"}) {
    CAPTURE(tweaked);
    toolkit.run(std::string(kPlane) + " -ch 0" + tweaked);
    const std::uint64_t before = toolkit.hash();
    addPolyEdit edit = beside("shape");
    edit.hasTweakNode = true;
    addPolyCmd command(edit);
    REQUIRE(command.redoIt());
    toolkit.run(
        "string $made[] = `ls -type qxAddPolyNode`; string $madeName = $made[0]; addAttr -ln mark "
        "$madeName");
    const std::uint64_t after = toolkit.hash();
    for (int round = 0; round < 2; ++round) {
      REQUIRE(command.undoIt());
      CHECK(toolkit.hash() == before);
      REQUIRE(command.redoIt());
      CHECK(toolkit.hash() == after);
    }
    REQUIRE(command.undoIt());
  }
}

TEST_CASE("qxAddPolyCmd: an edit of the node after it is undone and redone with it") {
  toolkitSession toolkit;
  registeredNode type(toolkit);
  toolkit.run(std::string(kPlane) + " -ch 0");
  addPolyEdit edit = beside("shape");
  addPolyCmd command(edit);
  REQUIRE(command.redoIt());
  toolkit.run("string $there[] = `ls -type qxAddPolyNode`; setAttr ($there[0] + \".nodeState\") 1");
  CHECK(countsOf("shape") == meshCounts{4, 1});
  toolkit.run("undo");
  CHECK(countsOf("shape") == meshCounts{8, 3});
  REQUIRE(command.undoIt());
  REQUIRE(command.redoIt());
  toolkit.run("redo");
  CHECK(countsOf("shape") == meshCounts{4, 1});
}
