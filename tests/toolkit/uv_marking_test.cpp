#include <maya/MFnIntArrayData.h>
#include <maya/MPlug.h>

#include "tests/toolkit/toolkit_session.h"

// Seams and anchors: the command that marks them, and the locator that shows them.

namespace {

using numbers = std::vector<int>;
constexpr auto kError = host::MessageKind::Error, kWarning = host::MessageKind::Warning;

bool holds(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

struct markedPlane : toolkitSession {
  markedPlane() {
    run("polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4 -ch 0; select -r plane;"
        "qxLoadUvObjectForMarking -loadType \"load\"");
  }

  static numbers list(const char* attribute, const char* shape = "planeShape") {
    MSelectionList names;
    MPlug plug;
    MObject data;
    REQUIRE(names.add(MString(shape) + "." + attribute));
    REQUIRE(names.getPlug(0, plug));
    if (!plug.getValue(data)) return {-1};
    const MIntArray array = MFnIntArrayData(data).array();
    numbers found;
    for (unsigned int i = 0; i < array.length(); ++i) found.push_back(array[i]);
    return found;
  }
  static numbers seams() { return list("qxUvMarkedEdgeArray"); }
  static numbers anchors() { return list("qxUvAncorPointArray"); }
  /// What is said of one kind while a line runs, which may fail.
  std::string said(host::MessageKind kind, const std::string& mel) {
    const host::MessageCapture capture;
    (void)session->executeLine(mel);
    return capture.text(kind);
  }
  std::vector<std::string> selected() { return session->executeLine("ls -sl -fl")->toTexts(); }
};

}  // namespace

TEST_CASE("marks are sorted, each once; unmarking takes out what is selected") {
  markedPlane scene;
  scene.run("select -r plane.e[7]; select -add plane.e[3]; qxMarkUVInformation -me true");
  CHECK(scene.seams() == numbers{3, 7});
  scene.run("qxMarkUVInformation -markEdge 1");
  CHECK(scene.seams() == numbers{3, 7});
  scene.run("select -r plane.e[0] plane.e[7]; qxMarkUVInformation -unMarkEdge 1");
  CHECK(scene.seams() == numbers{3});
  scene.run("select -r plane.vtx[5] plane.vtx[2]; qxMarkUVInformation -mv 1");
  CHECK(scene.anchors() == numbers{2, 5});
  CHECK(scene.seams() == numbers{3});
  scene.run("select -r plane.vtx[2]; qxMarkUVInformation -umv 1");
  CHECK(scene.anchors() == numbers{5});
}

TEST_CASE("of several operations the first in the flags' order is done; with none it fails") {
  markedPlane scene;
  scene.run("select -r plane.e[1] plane.vtx[1]; qxMarkUVInformation -mv 1 -me 1");
  CHECK(scene.seams() == numbers{1});
  CHECK(scene.anchors().empty());
  scene.run("qxMarkUVInformation -me 0 -mv 1");
  CHECK(scene.anchors() == numbers{1});
  const std::uint64_t before = scene.hash();
  CHECK(scene.failure("qxMarkUVInformation").find("-me") != std::string::npos);
  CHECK_FALSE(scene.failure("qxMarkUVInformation -me 0").empty());
  CHECK_FALSE(scene.failure("qxMarkUVInformation -me \"edge\"").empty());
  CHECK(scene.hash() == before);
}

TEST_CASE("undo of a mark brings list and selection back, and shows it in the selection arrays") {
  markedPlane scene;
  scene.run("select -r plane.e[2]; qxMarkUVInformation -me 1");
  scene.run("select -r plane.e[9:11] plane.vtx[4]");
  scene.run("qxMarkUVInformation -me 1");
  scene.run("select -cl");
  scene.run("undo; undo");
  CHECK(scene.seams() == numbers{2});
  CHECK(scene.selected() ==
        std::vector<std::string>{"plane.e[9]", "plane.e[10]", "plane.e[11]", "plane.vtx[4]"});
  CHECK(scene.list("qxEdgeSelectionArray") == numbers{9, 10, 11});
  CHECK(scene.list("qxVertSelectionArray") == numbers{4});
  scene.run("redo");
  CHECK(scene.seams() == numbers{2, 9, 10, 11});
}

TEST_CASE("two meshes are marked at once, one that isn't loaded is told and left out") {
  markedPlane scene;
  scene.run("polyCube -n box -ch 0; select -r box.e[4] plane.e[6]");
  CHECK(holds(scene.said(kError, "qxMarkUVInformation -me 1"),
              "Object does not have a marked edge array. Try loading the object again!"));
  CHECK(scene.seams() == numbers{6});
  CHECK(holds(scene.said(kError, "select -r box.vtx[4]; qxMarkUVInformation -mv 1"),
              "Object does not have a marked vert array. Try loading the object again!"));
  scene.run("select -r box; qxLoadUvObjectForMarking -loadType \"load\"");
  scene.run("select -r box.e[4] plane.e[8]; qxMarkUVInformation -me 1");
  CHECK(scene.seams() == numbers{6, 8});
  CHECK(scene.list("qxUvMarkedEdgeArray", "boxShape") == numbers{4});
  scene.run("undo");
  CHECK(scene.seams() == numbers{6});
  CHECK(scene.list("qxUvMarkedEdgeArray", "boxShape").empty());
  // What goes meanwhile is told when the mark is taken back.
  scene.run(
      "redo; undoInfo -swf 0; select -r box; qxLoadUvObjectForMarking -loadType \"unLoad\";"
      "undoInfo -swf 1");
  CHECK(holds(scene.said(kError, "undo"), "Try loading the object again!"));
  CHECK(scene.seams() == numbers{6});
}

TEST_CASE("instances share their marks; objects selected whole are not marked") {
  markedPlane scene;
  scene.run("instance -n other plane; select -r plane.e[1] other.e[2]; qxMarkUVInformation -me 1");
  CHECK(scene.seams() == numbers{1, 2});
  CHECK(holds(scene.said(kWarning, "select -r plane; qxMarkUVInformation -me 1"),
              "no edges are selected"));
  CHECK(scene.seams() == numbers{1, 2});
}

TEST_CASE("marks beyond a mesh that lost edges are dropped with one warning; locked ones stay") {
  markedPlane scene;
  scene.run("select -r plane.e[1] plane.e[39]; qxMarkUVInformation -me 1");
  scene.run("delete plane.f[15]");
  CHECK(holds(scene.said(kWarning, "select -r plane.e[3]; qxMarkUVInformation -me 1"),
              "has changed since it was marked: 1 of its seams are gone."));
  CHECK(scene.seams() == numbers{1, 3});
  scene.run("undo");
  CHECK(scene.seams() == numbers{1, 39});
  scene.run("setAttr -lock 1 planeShape.qxUvMarkedEdgeArray");
  const std::uint64_t before = scene.hash();
  CHECK(scene.failure("qxMarkUVInformation -me 1").find("locked") != std::string::npos);
  CHECK(scene.hash() == before);
}
