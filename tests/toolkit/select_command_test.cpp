#include <maya/MGlobal.h>
#include <maya/MStringArray.h>

#include "tests/toolkit/toolkit_session.h"

namespace {

MString joined(const MSelectionList& list) {
  MStringArray names;
  MString text;
  list.getSelectionStrings(names);
  for (unsigned int i = 0; i < names.length(); ++i) text += (i > 0 ? " " : "") + names[i];
  return text;
}
std::string selected() {
  MSelectionList list;
  MGlobal::getActiveSelectionList(list);
  return joined(list).asChar();
}
std::string hilited() {
  MSelectionList list;
  MGlobal::getHiliteList(list);
  return joined(list).asChar();
}
/// What selecting names gives, as the selection prints it.
std::string selectionOf(toolkitSession& toolkit, const char* names) {
  toolkit.run(std::string("select -r ") + names);
  return selected();
}

}  // namespace

TEST_CASE(
    "qxSelectCmd: borders of faces, hard edges of whole objects and both together, on every "
    "selected object") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyPlane -name grid -sx 4 -sy 4 -ch 0; polyCube -name box -ch 0; "
      "polySoftEdge -a 180 -ch 0 grid;");
  // A cube's edges are hard. Around the inner faces 5, 6, 9 and 10 of the grid lie eight edges.
  const std::string ring =
      selectionOf(toolkit, "`polyListComponentConversion -te -border grid.f[5:6] grid.f[9:10]`");
  const std::string faceEdges = selectionOf(toolkit, "`polyListComponentConversion -te box.f[0]`");
  const std::string all = selectionOf(toolkit, "box.e[0:11]");
  CHECK(ring != all);

  toolkit.run("select -r grid.f[5:6] grid.f[9:10]; qxSelectCmd -be 1");
  CHECK(selected() == ring);
  CHECK(hilited().find("grid") != std::string::npos);
  toolkit.run(
      "if (`currentCtx` != \"selectSuperContext\" || !`selectMode -q -component` || !`selectType "
      "-q -eg`) error \"mode\"");

  toolkit.run("select -r box.f[0]; qxSelectCmd -borderEdge true");
  CHECK(selected() == faceEdges);
  toolkit.run("select -r box.f[0]; qxSelectCmd -he 1");
  CHECK(selected() == all);
  toolkit.run("select -r box; qxSelectCmd -hardEdge on");
  CHECK(selected() == all);
  toolkit.run("select -r grid.f[5:6] grid.f[9:10] box.f[0]; qxSelectCmd -be 1");
  CHECK(selected() == ring + " " + faceEdges);
  toolkit.run("select -r grid.f[5:6] grid.f[9:10] box; qxSelectCmd -be 1 -he 1");
  CHECK(selected() == ring + " " + all);
}

TEST_CASE(
    "qxSelectCmd: undo brings the earlier selection back and leaves the hilite on the edges' "
    "objects; redo the edges") {
  toolkitSession toolkit;
  toolkit.run("file -f -new; polyCube -name box; polyCube -name other; select -r box.f[2];");
  const std::string before = selected();
  toolkit.run("qxSelectCmd -be 1");
  const std::string edges = selected();
  CHECK(edges != before);
  for (int round = 0; round < 2; ++round) {
    toolkit.run("undo");
    CHECK(selected() == before);
    CHECK(hilited().find("box") != std::string::npos);
    toolkit.run("redo");
    CHECK(selected() == edges);
  }
}

TEST_CASE("qxSelectCmd: without edges to find it fails and nothing changes") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polySphere -name ball; polySoftEdge -a 180 ball; polyPlane -name grid; "
      "setToolTo moveSuperContext;");
  const auto refuses = [&](const std::string& select, const std::string& command,
                           const char* text) {
    CAPTURE(select);
    CAPTURE(command);
    toolkit.run(select);
    const std::string before = selected(), hilite = hilited();
    const std::uint64_t hash = toolkit.hash();
    CHECK(toolkit.failure(command).find(text) != std::string::npos);
    CHECK(selected() == before);
    CHECK(hilited() == hilite);
    CHECK(toolkit.hash() == hash);
    toolkit.run("if (`currentCtx` != \"moveSuperContext\") error \"tool\"");
  };
  refuses("select -cl", "qxSelectCmd -he 1", "");
  refuses("select -r ball", "qxSelectCmd", "ask for border edges");
  refuses("select -r ball.f[*]", "qxSelectCmd -be 1",
          "faces that have a border");  // all of a closed mesh
  refuses("select -r grid.vtx[3]", "qxSelectCmd -be 1", "faces that have a border");
  refuses("select -r ball persp", "qxSelectCmd -he 1", "no hard edges");
}

TEST_CASE("qxSelectCmd: all objects whose edges are selected stay hilited") {
  toolkitSession toolkit;
  toolkit.run("polyCube -n a; polyCube -n b; select -r a b; qxSelectCmd -he 1;");
  toolkit.run("if (size(`ls -hl`) != 2) error \"not all are hilited\"");
}
