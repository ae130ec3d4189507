#include <limits>
#include <string>
#include <vector>

#include "tests/toolkit/toolkit_session.h"

// What every command makes of input that it can't work with: the words it says, and the scene as it
// was.

namespace {

constexpr const char* kOneObject = "Only works on one object at a time!";
constexpr const char* kMergeObjects =
    "mergeVert command does not work with multiple objects selected.";
constexpr const char* kTwoObjects = "this function only works with 2 objects selected";
constexpr const char* kMeshes = "select two meshes";
constexpr const char* kSilent = "";  ///< fails, and the host alone says so

struct badInput {
  const char* command;
  const char* good;       ///< a selection of "shape" that it works on
  const char* nothing;    ///< what it says with nothing selected
  const char* twoMeshes;  ///< ... with components of two meshes
  const char* faceless;   ///< ... with a mesh without faces
};

const badInput kCommands[] = {
    {"qxStraightenCmd", "shape.vtx[0:4]", kSilent, kOneObject, kSilent},
    {"qxCircleVertsCmd", "shape.vtx[0:2] shape.vtx[5:7]", kSilent, kOneObject, kSilent},
    {"qxMakePlanarCmd", "shape.f[0:3]", kSilent, kOneObject, kSilent},
    {"qxSnapVertsToAxis", "shape.vtx[0:4]", kSilent, kOneObject, kSilent},
    {"qxMergeVerts -id 1", "shape.vtx[0:4]", kMergeObjects, kMergeObjects,
     "mergeVert command failed: Selected Verts cannot be merged"},
    {"projectMeshOnMeshCmd -wd y", "shape other", kTwoObjects, nullptr, kTwoObjects},
    {"qxTransferTopology", "shape other", kMeshes, nullptr, kMeshes},
    {"qxTransferVertexNormals", "shape other", kMeshes, nullptr, kMeshes},
    {"qxSelectCmd -be 1", "shape.f[0:3]", kSilent, nullptr, "faces that have a border"},
    {"qxSelectCmd -he 1", "shape", kSilent, nullptr, "no hard edges"},
};

void makeScene(toolkitSession& toolkit) {
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 4 -sy 4 -ch 0; polyCube -name other -ch 0; "
      "createNode mesh -name empty;"
      "select -cl;");
  MPointArray points = toolkitSession::points("shape");
  for (unsigned int i = 0; i < points.length(); ++i) points[i].y = 0.1 * ((i * 7) % 5);
  toolkitSession::setPoints("shape", points);
}

/// Undoing a selection of edges leaves their objects hilited, which the document's hash tells.
bool leavesHilite(const std::string& command) {
  return command.find("qxSelectCmd") == 0;
}

void checkRefusal(toolkitSession& toolkit, const badInput& input, const char* why,
                  const char* text) {
  CAPTURE(std::string(input.command));
  CAPTURE(std::string(why));
  const std::uint64_t before = toolkit.hash();
  const std::string said = toolkit.failure(input.command);
  CHECK_MESSAGE(said.find(text) != std::string::npos, said);
  CHECK(toolkit.hash() == before);
}

}  // namespace

TEST_CASE("bad input: nothing, two meshes, no faces, words that are no flags") {
  toolkitSession toolkit;
  makeScene(toolkit);
  for (const badInput& input : kCommands) {
    toolkit.run("select -cl");
    checkRefusal(toolkit, input, "nothing selected", input.nothing);
    if (input.twoMeshes) {
      toolkit.run(std::string("select -r ") + input.good + " other.vtx[0:2] other.f[0]");
      checkRefusal(toolkit, input, "two meshes", input.twoMeshes);
    }
    toolkit.run("select -r empty");
    checkRefusal(toolkit, input, "a mesh without faces", input.faceless);
    toolkit.run(std::string("select -r ") + input.good);
    for (const char* words : {" -noSuchFlag 3", " shape persp lambert1", " \"§$%&/()\" 5 -7"}) {
      badInput garbled = input;
      const std::string text = input.command + std::string(words);
      garbled.command = text.c_str();
      checkRefusal(toolkit, garbled, "garbage", kSilent);
    }
  }
}

TEST_CASE("bad input: components that were deleted since they were selected count no more") {
  toolkitSession toolkit;
  for (const badInput& input : kCommands) {
    CAPTURE(std::string(input.command));
    makeScene(toolkit);
    // A later mesh of the same name has four vertices only; the selection still lists what the
    // first one had.
    toolkit.run(std::string("select -r ") + input.good);
    MFnMesh shape(toolkitSession::path("shape"));
    MPointArray corners;
    for (int i = 0; i < 4; ++i) corners.append(MPoint(i % 2, 0.2 * i, i / 2));
    const int loop[] = {0, 1, 3, 2};
    REQUIRE(shape.createInPlace(4, 1, corners, MIntArray(1, 4), MIntArray(loop, 4)));
    const std::uint64_t before = toolkit.hash();
    const host::MessageCapture quiet;
    if (toolkit.session->executeLine(input.command)) toolkit.run("undo");
    const std::uint64_t after = toolkit.hash();
    if (!leavesHilite(input.command)) CHECK(after == before);
    toolkit.run("undo; redo;");
  }
}

TEST_CASE("bad input: positions that are no numbers are named, and nothing moves") {
  toolkitSession toolkit;
  for (const double bad :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
    for (const badInput& input : kCommands) {
      if (leavesHilite(input.command)) continue;  // a selection has no positions
      makeScene(toolkit);
      toolkitSession::setPoint("shape", 1, MPoint(0.5, bad, 0));
      toolkit.run(std::string("select -r ") + input.good);
      checkRefusal(toolkit, input, "a vertex nowhere",
                   "vertex 1 has a position that is not a number");
    }
}

TEST_CASE("a million selected vertices are no trouble for any command, and come back") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 1000 -sy 999 -w 100 -h 100 -ch 0; polyPlane -name "
      "other -w 300 -h 300 -sx 4 -sy 4 -ch 0;"
      "move -r 0 0.3 0 shape.vtx[5] shape.vtx[500000];");
  struct row {
    const char *select, *command;
  };
  for (const row& each : std::vector<row>{{"shape.vtx[*]", "qxStraightenCmd"},
                                          {"shape.vtx[*]", "qxCircleVertsCmd"},
                                          {"shape.f[*]", "qxMakePlanarCmd"},
                                          {"shape.vtx[*]", "qxSnapVertsToAxis"},
                                          {"shape.vtx[*]", "qxMergeVerts -id 7 -mr 1 -mId 9 -ax 0"},
                                          {"shape.f[*]", "qxSelectCmd -be 1"},
                                          {"shape other", "projectMeshOnMeshCmd -wd y"},
                                          {"shape other", "qxTransferTopology"},
                                          {"shape other", "qxTransferVertexNormals"}}) {
    CAPTURE(std::string(each.command));
    toolkit.run(std::string("select -r ") + each.select);
    const std::uint64_t before = toolkit.hash();
    const host::MessageCapture quiet;
    toolkit.run(each.command);
    CHECK(toolkit.hash() != before);
    toolkit.run("undo");
    if (!leavesHilite(each.command)) CHECK(toolkit.hash() == before);
  }
}
