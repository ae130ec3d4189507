// Components of a plug-in's shapes: named, selected, moved, deleted, saved; drawn and picked by the
// class of the interface.
#include <maya/MItGeometry.h>

#include "tests/host/api/shape_stage.h"

namespace {

struct Cages : ShapeStage {
  Cages() : ShapeStage(QXMT_BINARY_DIR "/test_plugins/cage_shape.so") {
    run("createNode transform -n cage; createNode cageShape -n cageShape1 -p cage;"
        "createNode transform -n trail; createNode trailShape -n trailShape1 -p trail;"
        "select -cl");
  }
};

constexpr ShapeStage::Rgb kLeadWire{66, 255, 163}, kWire{0, 5, 97}, kDots{199, 0, 199},
    kChosen{255, 255, 0};

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
  run("undo");  // one line is one step
  CHECK(state() == moved);
  run("undo");
  CHECK(state() == before);
  run("redo");
  run("redo");
  CHECK(state() == after);
  CHECK(place("cage.vtx[1]", "-ws") == "0 0 7 ");
  CHECK(text("float $p[] = `pointPosition cage.vtx[4]`; $p[2]") == "3");
  CHECK(text("float $b[] = `exactWorldBoundingBox cage.vtx[4]`; $b[0] + $b[3]") == "2");
}

TEST_CASE_FIXTURE(Cages, "points that a class keeps itself are undone by its word") {
  run("move -r 0 2 0 trail.vtx[1:2]; scale -r -p 0 0 0 3 1 1 trail.vtx[2]");
  CHECK(place("trail.vtx[1]") + place("trail.vtx[2]") == "1 2 0 6 2 0 ");
  run("undo");
  CHECK(place("trail.vtx[1]") + place("trail.vtx[2]") == "1 0 0 2 0 0 ");
  run("redo");
  CHECK(place("trail.vtx[*]") == "0 0 0 1 2 0 6 2 0 3 0 0 ");
  run("delete trail.vtx[0] trail.vtx[2]");
  CHECK(place("trail.vtx[*]") == "1 2 0 3 0 0 ");
  run("undo");
  CHECK(place("trail.vtx[*]") == "0 0 0 1 2 0 6 2 0 3 0 0 ");
  run("redo");
  run("undo");
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

TEST_CASE_FIXTURE(Cages, "MItGeometry walks over a plug-in's shape and moves its points") {
  run("setAttr cage.tx 10");
  MSelectionList list;
  REQUIRE(list.add("cage.vtx[4:5]"));
  MDagPath path;
  MObject component;
  REQUIRE(list.getDagPath(0, path, component));
  CHECK(MItGeometry(path).count() == 12);
  MItGeometry points(path, component);
  REQUIRE(points.count() == 2);
  CHECK(points.index() == 4);
  CHECK(points.position(MSpace::kWorld).x == 9);
  points.next();
  CHECK(points.setPosition(MPoint(0.1, 0.2, 0.3), MSpace::kWorld));
  points.next();
  CHECK(place("cage.vtx[5]", "-ws") == "0.1 0.2 0.3 ");
  MPointArray all;
  CHECK(points.allPositions(all));
  CHECK(all[0].x == -1);
}

TEST_CASE_FIXTURE(Cages, "a class of the interface draws a shape as its state asks") {
  if (!canDraw()) return;
  for (const char* renderer : {"vp2Renderer", "base_OpenGL_Renderer"}) {
    CAPTURE(std::string(renderer));
    run(std::string("modelEditor -e -rendererName ") + renderer + " modelPanel3; select -cl");
    draw();
    CHECK(count(-1, 0.5, kWire) > 3);
    CHECK(count(1, 0, kDots) == 0);
    run("select cage");
    draw();
    CHECK(count(-1, 0.5, kLeadWire) > 3);
    run("hilite cage; select cage.vtx[5]");
    draw();
    CHECK(count(-1, 0, kDots, 4) > 15);
    CHECK(count(1, 0, kChosen, 5) > 15);
    CHECK(count(-1, 0, kChosen, 5) == 0);
    run("select -cl; hilite -u cage; setAttr cage.v 0");
    draw();
    CHECK(count(-1, 0.5, kWire) == 0);
    run("setAttr cage.v 1; instance -n twin cage; setAttr twin.t 4 0 0; setAttr twin.s -1 0.5 1;"
        "select twin");
    draw();
    CHECK(count(-1, 0.6, kWire) > 3);
    CHECK(count(5, 0.4, kLeadWire) > 3);
    CHECK(count(5, 0.7, kLeadWire) == 0);
    run("delete twin; modelEditor -e -pluginShapes 0 modelPanel3");
    draw();
    CHECK(count(-1, 0.5, kWire) == 0);
    run("modelEditor -e -pluginShapes 1 modelPanel3");
  }
}

TEST_CASE_FIXTURE(Cages, "plug-ins' shapes are clicked and framed by rectangles") {
  if (!canDraw()) return;
  run("setAttr trail.t 2 2 0");
  click(-1, 0.5);
  CHECK(selected() == "cage");
  click(3, 2);  // it draws nothing: by its box
  CHECK(selected() == "trail");
  click(0, 3);
  CHECK(selected().empty());
  drag(-4, -3, 5, 3);
  CHECK(selected() == "trail cage");
  run("setAttr cage.answersClicks 0");
  click(-1, 0.5);  // its class says that it is not hit
  CHECK(selected().empty());
  run("setAttr cage.answersClicks 1; polyPlane -n wall -ax 0 0 1 -w 4 -h 4; setAttr wall.tz 5");
  click(3, 2);
  CHECK(selected() == "trail");
  run("setAttr wall.tx 3; setAttr wall.ty 2");
  click(3, 2);
  CHECK(selected() == "wall");
  run("setAttr trail.overrideEnabled 1; setAttr trail.overrideDisplayType 2; delete wall");
  click(3, 2);
  CHECK(selected().empty());
}

TEST_CASE_FIXTURE(Cages, "points are clicked, framed and dragged by hand") {
  if (!canDraw()) return;
  run("selectMode -component; selectType -allComponents 0 -vertex 1");
  click(-1, 0.5);
  CHECK(text("stringArrayToString(`ls -hl`, \" \")") == "cage");
  click(1, 0);
  CHECK(selected() == "cage.vtx[7]");  // the nearer of two
  drag(-2, 0.5, 2, 1.5);
  CHECK(selected() == "cage.vtx[8:11]");
  run("hilite -r trail; select -cl");
  click(2, 0);
  CHECK(selected() == "trail.vtx[2]");  // the host looks itself
  run("hilite -r cage; select cage.vtx[8:11]; setToolTo moveSuperContext");
  const std::uint64_t before = state();
  drag(0, 0, 1, 0.5, "-button 2");
  CHECK(place("cage.vtx[8]") == "0 1.5 -1 ");
  CHECK(place("cage.vtx[11]") == "2 1.5 1 ");
  const std::uint64_t after = state();
  run("undo");
  CHECK(state() == before);
  run("redo");
  CHECK(state() == after);
}

TEST_CASE_FIXTURE(Cages, "what draws lines is clicked by them, and framed") {
  run("spaceLocator -n cross; setAttr cross.t 3 2 0; curve -n way -d 1 -p -4 -3 0 -p 4 -3 0;"
      "select -cl; joint -n bone -p -4 2 0; select -cl");
  click(3, 2.5);
  CHECK(selected() == "cross");
  click(-1.5, -3);
  CHECK(selected() == "way");
  click(-4, 2.5);
  CHECK(selected() == "bone");
  drag(2, 1, 5, 3);
  CHECK(selected() == "cross");
  run("polyPlane -n wall -ax 0 0 1 -w 2 -h 2; setAttr wall.t -4 2 5; select -cl");
  click(-4, 2.5);
  CHECK(selected() == "wall");
  run("modelEditor -e -jointXray 1 modelPanel3");
  click(-4, 2.5);  // it shows through
  CHECK(selected() == "bone");
  run("select way; viewFit -f 1 front");
  CHECK(text("getAttr frontShape.orthographicWidth") == "8");
  CHECK(text("getAttr front.ty") == "-3");
  run("viewFit -f 1 front cage.vtx[0:1]");
  CHECK(text("getAttr frontShape.orthographicWidth") == "2");
  run("camera -n eye; move 7 0 0; viewFit front");
  CHECK(text("getAttr front.tx") == "7");
}
