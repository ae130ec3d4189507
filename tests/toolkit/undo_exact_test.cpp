#include <string>

#include "tests/toolkit/toolkit_session.h"

// Undo gives back the document, not only the positions: offsets as they were set, on vertices that
// were asked to move and on those that were not.

namespace {

const char* const kCommands[] = {
    "select -r shape.vtx[0:3]; qxStraightenCmd",
    "select -r shape.vtx[0:5]; qxCircleVertsCmd",
    "select -r shape.f[0:2]; qxMakePlanarCmd",
    "select -r shape.vtx[0:3]; qxSnapVertsToAxis",
    "select -r shape.vtx[0:3]; qxMergeVerts -id 7",
    "select -r shape ground; projectMeshOnMeshCmd -wd y",
    "select -r shape ground; qxTransferTopology",
    "select -r shape ground; qxTransferTopology -sp object",
};

/// An offset on a vertex that most commands move, on one that few do, and an empty one.
const char* const kTweaks =
    "setAttr shapeShape.pnts[2] 0.1 0.2 0.3; setAttr shapeShape.pnts[7] 0.7 0 -0.1; setAttr "
    "shapeShape.pnts[1] 0 0 0; setAttr shapeShape.pnts[6] 0 0 0;";

}  // namespace

TEST_CASE("reshaping a mesh that carries offsets undoes to the bit, with history and without") {
  toolkitSession toolkit;
  for (const char* history : {"0", "1"})
    for (const char* pose : kPoses)
      for (const char* command : kCommands) {
        CAPTURE(std::string(history));
        CAPTURE(std::string(pose));
        CAPTURE(std::string(command));
        toolkit.run(std::string("file -f -new; polyPlane -n ground -w 50 -h 50; move 0 -5 0 ground;"
                                "polyCube -n shape -ch ") +
                    history);
        toolkit.run(pose);
        toolkit.run(kTweaks);
        const std::string selection(command, std::string(command).find(';'));
        toolkit.run(selection);
        const std::uint64_t before = toolkit.hash();
        toolkit.run(std::string(command).substr(selection.size() + 1));
        const std::uint64_t after = toolkit.hash();
        CHECK(after != before);
        for (int round = 0; round < 2; ++round) {
          toolkit.run("undo");
          CHECK(toolkit.hash() == before);
          toolkit.run("redo");
          CHECK(toolkit.hash() == after);
        }
      }
}

TEST_CASE("offsets of vertices that a command does not move stay as they were set") {
  toolkitSession toolkit;
  for (const char* history : {"0", "1"}) {
    CAPTURE(std::string(history));
    toolkit.run(std::string("file -f -new; polyCube -n shape -ch ") + history +
                "; setAttr shapeShape.pnts[5] 0.1 0.2 0.3; select -r shape.vtx[0:2]; "
                "qxStraightenCmd");
    CHECK(toolkit.session->executeLine("getAttr shapeShape.pnts[5].pntx")->toFloat().value() ==
          0.1);
    CHECK(toolkit.session->executeLine("getAttr shapeShape.pnts[5].pntz")->toFloat().value() ==
          0.3);
  }
}

TEST_CASE("an edit after a reshaping is undone and redone with it") {
  toolkitSession toolkit;
  for (const char* history : {"0", "1"}) {
    CAPTURE(std::string(history));
    toolkit.run(std::string("file -f -new; polyCube -n shape -ch ") + history);
    toolkit.run(kTweaks);
    toolkit.run("select -r shape.vtx[0:3]");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxStraightenCmd");
    toolkit.run("move -r 0 0.3 0 shape.vtx[1:2]");
    toolkit.run("setAttr shapeShape.pnts[0] 0.5 0 0");
    const std::uint64_t after = toolkit.hash();
    toolkit.run("undo; undo; undo;");
    CHECK(toolkit.hash() == before);
    toolkit.run("redo; redo; redo;");
    CHECK(toolkit.hash() == after);
  }
}
