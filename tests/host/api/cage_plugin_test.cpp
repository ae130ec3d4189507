// Components of a plug-in's shapes: named, selected, moved, deleted, saved; drawn and picked by the
// class of the interface.
#include <filesystem>

#include "host/base/messages.h"
#include "host/workspace/workspace.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Cages : ApiScene {
  Cages() {
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/cage_shape.so"));
    run("createNode transform -n cage; createNode cageShape -n cageShape1 -p cage;"
        "createNode transform -n trail; createNode trailShape -n trailShape1 -p trail;"
        "select -cl");
  }
  ~Cages() { session.reset(); }
  host::MessageCapture quiet;

  std::string selected() { return text("stringArrayToString(`ls -sl`, \" \")"); }
  std::string place(const std::string& component, const std::string& flags = "") {
    return text("string $t = \"\"; for ($x in `xform -q -t " + flags + " " + component +
                "`) $t += $x + \" \"; $t");
  }
  std::uint64_t state() { return session->document().hash(); }
  /// A press and a release with the select tool in the view from the front.
  void click(const std::string& at) {
    run("viewGesture -pressAt " + at + " -releaseAt " + at + " modelPanel3");
  }
};

}  // namespace

TEST_CASE_FIXTURE(Cages, "components of a plug-in's shape are named as its class says") {
  run("select cage.vtx[3] cageShape1.vtx[0:1]");
  CHECK(selected() == "cage.vtx[0:1] cage.vtx[3]");
  CHECK(text("stringArrayToString(`ls -fl -sl`, \" \")") == "cage.vtx[0] cage.vtx[1] cage.vtx[3]");
  CHECK(text("size(`ls -fl cage.vtx[*]`)") == "12");
  CHECK(text("stringArrayToString(`ls cage.pt[4:5]`, \" \")") == "cage.vtx[4:5]");
  CHECK(text("size(`ls trail.vtx[2:9]`)") == "1");
  for (const char* none : {"cage.vtx[12]", "cage.vtx[5:12]", "cage.e[0]", "cage.vtx[0][1]"}) {
    CAPTURE(std::string(none));
    CHECK_FALSE(session->executeLine(std::string("select ") + none));
  }
  CHECK(selected() == "cage.vtx[0:1] cage.vtx[3]");
  CHECK(text("getAttr cage.answersClicks") == "1");
}

TEST_CASE_FIXTURE(Cages, "components move, turn and scale, and come back") {
  run("setAttr cage.r 0 90 0; setAttr cage.t 5 0 0; setAttr cage.sy -2");
  const std::uint64_t before = state();
  CHECK(place("cage.vtx[0]") == "-1 -1 -1 ");
  CHECK(place("cage.vtx[0]", "-ws") == "4 2 1 ");
  run("move -r 0 1 0 cage.vtx[0:3]");
  CHECK(place("cage.vtx[0]", "-ws") == "4 3 1 ");
  CHECK(place("cage.vtx[3]") == "1 -1.5 1 ");
  CHECK(place("cage.vtx[4]") == "-1 0 -1 ");
  const std::uint64_t moved = state();
  run("move -r -os 1 0 0 cage.vtx[0]; move 0 0 7 cage.vtx[1]; scale -r -p 5 3 0 1 0 1 cage.vtx[2];"
      "rotate -r -p 5 3 0 0 0 90 cage.vtx[3]; xform -ws -t 1 2 3 cage.vtx[4]");
  CHECK(place("cage.vtx[0]") == "0 -1.5 -1 ");
  CHECK(place("cage.vtx[1]", "-ws") == "0 0 7 ");
  CHECK(place("cage.vtx[4]", "-ws") == "1 2 3 ");
  const std::uint64_t after = state();
  for (int i = 0; i < 5; ++i) run("undo");
  CHECK(state() == moved);
  run("undo");
  CHECK(state() == before);
  for (int i = 0; i < 6; ++i) run("redo");
  CHECK(state() == after);
  CHECK(place("cage.vtx[1]", "-ws") == "0 0 7 ");
  CHECK(text("float $p[] = `pointPosition cage.vtx[4]`; $p[2]") == "3");
  CHECK(text("float $b[] = `exactWorldBoundingBox cage.vtx[4]`; $b[0] + $b[3]") == "2");
}

TEST_CASE_FIXTURE(Cages, "points that a class keeps itself are undone by its word") {
  run("move -r 0 2 0 trail.vtx[1:2]; scale -r -p 0 0 0 3 1 1 trail.vtx[2]");
  CHECK(place("trail.vtx[1]") + place("trail.vtx[2]") == "1 2 0 6 2 0 ");
  run("undo; undo");
  CHECK(place("trail.vtx[1]") + place("trail.vtx[2]") == "1 0 0 2 0 0 ");
  run("redo");
  CHECK(place("trail.vtx[*]") == "0 0 0 1 2 0 2 2 0 3 0 0 ");
  run("delete trail.vtx[0] trail.vtx[2]");
  CHECK(place("trail.vtx[*]") == "1 2 0 3 0 0 ");
  run("undo");
  CHECK(place("trail.vtx[*]") == "0 0 0 1 2 0 2 2 0 3 0 0 ");
  run("redo; undo");
  CHECK(text("size(`ls -fl trail.vtx[*]`)") == "4");
  CHECK_FALSE(session->executeLine("delete cage.vtx[0]"));  // it keeps its points
}

TEST_CASE_FIXTURE(Cages,
                  "moved control points are saved, copied and reach along a soft selection") {
  run("move -r 0 1 0 cage.vtx[8]");
  const std::string file = (std::filesystem::temp_directory_path() / "qxmt_cage.ma").string();
  run("file -f -rename \"" + file +
      "\"; file -f -save -type mayaAscii; file -f -new;"
      "file -f -open \"" +
      file + "\"");
  std::filesystem::remove(file);
  CHECK(place("cage.vtx[8]") == "-1 2 -1 ");
  run("duplicate -n again cage");
  CHECK(place("again.vtx[8]") == "-1 2 -1 ");
  run("undoInfo -swf 0; move -r 1 0 0 again.vtx[8]; undoInfo -swf 1");
  CHECK(place("cage.vtx[8]") == "-1 2 -1 ");
  run("softSelect -sse 1 -ssd 4 -ssc \"1,0,1,0,1,1\"; move -r 0 0 4 cage.vtx[0]; softSelect -sse "
      "0");
  CHECK(place("cage.vtx[0]") == "-1 -1 3 ");
  CHECK(place("cage.vtx[4]") == "-1 0 2 ");  // a quarter of the way
  CHECK(place("cage.vtx[1]") == "1 -1 1 ");  // half of it
}
