#include <maya/MFnIntArrayData.h>

#include <algorithm>

#include "tests/toolkit/tool_hand.h"

// The UV select tool, seen from above on a plane of 4 x 4 faces of 1 cm: vertex 12 and the origin
// in the middle, rows of 5.

namespace {

using names = toolHand::names;
using numbers = std::vector<int>;

struct uvHand : toolHand {
  explicit uvHand(const char* mesh = "polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4 -ch 0") {
    run(mesh);
    run("select -r plane; qxLoadUvObjectForMarking -loadType \"load\"");
    mirror(false);
    run("uvSelectContext uvTool; setToolTo uvTool");
  }
  static numbers list(const char* attribute) {
    MSelectionList list;
    MPlug plug;
    REQUIRE(list.add(MString("planeShape.") + attribute));
    REQUIRE(list.getPlug(0, plug));
    const MIntArray array = MFnIntArrayData(plug.asMObject()).array();
    numbers found;
    for (unsigned int i = 0; i < array.length(); ++i) found.push_back(array[i]);
    return found;
  }
  static numbers seams() { return list("qxUvMarkedEdgeArray"); }
  static numbers anchors() { return list("qxUvAncorPointArray"); }

  [[nodiscard]] place edge(int index) { return at("plane.e[" + std::to_string(index) + "]"); }
  [[nodiscard]] place vertex(int index) { return at("plane.vtx[" + std::to_string(index) + "]"); }
  /// A click that is no second half of a double one.
  void pick(place where, heldKeys keys = {}, host::tools::MouseButton button = kLeft) {
    wait(1.0);
    click(where, button, keys);
  }
  [[nodiscard]] static unsigned int lit() {
    MSelectionList list;
    MPlug plug;
    if (!list.add("qxUVSelectHoverLocator.cparr") || !list.getPlug(0, plug)) return 0;
    const MObject data = plug.asMObject();
    return data.isNull() ? 0 : MFnPointArrayData(data).array().length();
  }
  /// The edges between vertices that follow each other.
  numbers edgesAlong(const numbers& vertices) {
    numbers edges;
    for (std::size_t i = 1; i < vertices.size(); ++i) {
      const auto found = texts("ls -fl `polyListComponentConversion -fv -te -in plane.vtx[" +
                               std::to_string(vertices[i - 1]) + "] plane.vtx[" +
                               std::to_string(vertices[i]) + "]`");
      REQUIRE(found.size() == 1);
      edges.push_back(std::stoi(found[0].substr(found[0].find('[') + 1)));
    }
    std::sort(edges.begin(), edges.end());
    return edges;
  }
  /// The edge from a vertex to the one in the next row.
  int rung(int vertex) { return edgesAlong({vertex, vertex + 5})[0]; }
  numbers rungs(const numbers& vertices) {
    numbers edges;
    for (const int vertex : vertices) edges.push_back(rung(vertex));
    std::sort(edges.begin(), edges.end());
    return edges;
  }
  numbers selectedEdges() { return list("qxEdgeSelectionArray"); }
  numbers selectedVertices() { return list("qxVertSelectionArray"); }
};

}  // namespace

TEST_CASE("UV select tool: what it makes at the start is gone at the end") {
  toolHand hand;
  hand.run(
      "polyPlane -n plane -ch 0; select -r plane; qxLoadUvObjectForMarking -loadType \"load\"");
  hand.run("doMenuComponentSelection(\"plane\", \"edge\"); select -r plane.e[3]");
  const std::uint64_t before = hand.hash();
  const std::size_t steps = hand.undoItems();
  hand.run("uvSelectContext uvTool; setToolTo uvTool");
  CHECK(hand.undoItems() == steps);
  CHECK(hand.texts("contextInfo -t uvTool") == names{"Uv Select Tool"});
  CHECK(hand.selected() == names{"plane.e[3]"});
  CHECK(uvHand::list("qxEdgeSelectionArray") == numbers{3});
  hand.run("select -r plane.vtx[2] plane.e[1:2]");
  CHECK(uvHand::list("qxEdgeSelectionArray") == numbers{1, 2});
  CHECK(uvHand::list("qxVertSelectionArray") == numbers{2});
  hand.run("select -r plane.e[3]; setToolTo selectSuperContext");
  CHECK(hand.hash() == before);
}

TEST_CASE("UV select tool: hover lights up vertices and edges of loaded meshes only") {
  uvHand hand;
  hand.run("polyPlane -n other -w 2 -h 2 -sx 1 -sy 1 -ch 0; move 6 0 0 other; hilite other");
  const auto expect = [&](toolHand::place where, unsigned int corners) {
    hand.hover(where);
    CHECK(uvHand::lit() == corners);
  };
  expect(hand.vertex(12), 1);
  expect(hand.pixel(0.5, 0, 0), 2);
  expect(hand.pixel(0.5, 0, 0.5), 0);  // a face
  expect(hand.at("other.vtx[0]"), 0);
  hand.option("checkBox -e -v 0 multicomp_QXMT_CB");
  expect(hand.vertex(12), 2);  // the mode's edges alone
  hand.run("setAttr plane.visibility 0");
  expect(hand.pixel(0.5, 0, 0), 0);
}

TEST_CASE("UV select tool: clicks replace and remove, strokes paint, a loop by a double click") {
  uvHand hand;
  const int middle = hand.edgesAlong({11, 12})[0];
  hand.pick(hand.edge(middle));
  CHECK(hand.selectedEdges() == numbers{middle});
  hand.pick(hand.vertex(7));
  CHECK(hand.selectedEdges().empty());
  CHECK(hand.selectedVertices() == numbers{7});
  hand.pick(hand.vertex(7), kControl);
  CHECK(hand.selectedVertices().empty());

  // Across the rungs between two rows.
  hand.stroke(hand.edge(hand.rung(6)), hand.edge(hand.rung(9)), toolHand::kLeft, {}, 40);
  CHECK(hand.selectedEdges() == hand.rungs({6, 7, 8, 9}));
  hand.run("undo");
  CHECK(hand.selectedEdges().empty());
  hand.run("redo");
  hand.stroke(hand.edge(hand.rung(6)), hand.edge(hand.rung(7)), toolHand::kLeft, kControl, 40);
  CHECK(hand.selectedEdges() == hand.rungs({8, 9}));

  hand.pick(hand.edge(middle));
  hand.click(hand.edge(middle));
  CHECK(hand.selectedEdges() == hand.edgesAlong({10, 11, 12, 13, 14}));
  hand.run("undo");
  CHECK(hand.selectedEdges() == numbers{middle});
  hand.pick(hand.edge(middle));
  hand.wait(0.6);  // too late for a double click
  hand.click(hand.edge(middle));
  CHECK(hand.selectedEdges() == numbers{middle});
  hand.pick(hand.pixel(5, 0, 5));
  CHECK(hand.selected().empty());
}

TEST_CASE("UV select tool: Shift adds the shortest way in the world, strokes with it paint on") {
  uvHand hand;
  hand.pick(hand.vertex(10));
  hand.pick(hand.vertex(14), kShift);
  CHECK(hand.selectedEdges() == hand.edgesAlong({10, 11, 12, 13, 14}));
  CHECK(hand.selectedVertices().empty());  // the ends are no anchors to be
  hand.pick(hand.vertex(24), kShift);      // goes on from there
  CHECK(hand.selectedEdges() == [&] {
    numbers all = hand.edgesAlong({10, 11, 12, 13, 14, 19, 24});
    return all;
  }());
  // Undone, the next way begins where the one before ended.
  hand.run("undo");
  hand.pick(hand.vertex(4), kShift);
  CHECK(hand.selectedEdges() == hand.edgesAlong({10, 11, 12, 13, 14, 9, 4}));

  const int first = hand.edgesAlong({0, 1})[0], last = hand.edgesAlong({3, 4})[0];
  hand.pick(hand.edge(first));
  hand.pick(hand.edge(last), kShift);
  CHECK(hand.selectedEdges() == hand.edgesAlong({0, 1, 2, 3, 4}));
  hand.stroke(hand.edge(hand.rung(11)), hand.edge(hand.rung(13)), toolHand::kLeft, kShift, 40);
  numbers both = hand.edgesAlong({0, 1, 2, 3, 4});
  const numbers painted = hand.rungs({11, 12, 13});
  both.insert(both.end(), painted.begin(), painted.end());
  std::sort(both.begin(), both.end());
  CHECK(hand.selectedEdges() == both);

  // A detour round what is long in the world, however the object's own lengths are.
  hand.run("setAttr plane.scaleX 0.25; move -r -os 0 0 0 plane; select -cl");
  hand.pick(hand.vertex(0));
  hand.pick(hand.vertex(24), kShift);
  CHECK(hand.selectedEdges().size() == 8);
}

TEST_CASE("UV select tool: with both keys the way keeps to creases and follows the cursor") {
  // A ridge along the row of vertices 5 to 9.
  uvHand hand;
  hand.run("move -r 0 1.5 0 plane.vtx[5:9]; select -cl");
  hand.pick(hand.vertex(0));
  hand.pick(hand.vertex(4), kShift);
  CHECK(hand.selectedEdges() == hand.edgesAlong({0, 1, 2, 3, 4}));
  hand.run("select -cl");
  hand.pick(hand.edge(hand.edgesAlong({5, 6})[0]));
  hand.press(hand.edge(hand.edgesAlong({6, 7})[0]), toolHand::kLeft, kBoth);
  CHECK(hand.selectedEdges() == hand.edgesAlong({5, 6, 7}));
  hand.dragTo(hand.edge(hand.edgesAlong({8, 9})[0]), toolHand::kLeft, kBoth);
  CHECK(hand.selectedEdges() == hand.edgesAlong({5, 6, 7, 8, 9}));
  hand.release(hand.edge(hand.edgesAlong({8, 9})[0]), toolHand::kLeft, kBoth);
  CHECK(hand.selectedEdges() == hand.edgesAlong({5, 6, 7, 8, 9}));
  hand.run("undo");
  CHECK(hand.selectedEdges() == hand.edgesAlong({5, 6}));
  // The border is a crease: on a wide plane the way along it is the cheaper one.
  hand.run("move -r 0 -1.5 0 plane.vtx[5:9]; setAttr plane.scaleX 3; select -cl");
  hand.pick(hand.vertex(16));
  hand.pick(hand.vertex(18), kBoth);
  CHECK(hand.selectedEdges() == hand.edgesAlong({16, 21, 22, 23, 18}));
}

TEST_CASE("UV select tool: the middle button marks and unmarks, one step of undo each") {
  uvHand hand;
  hand.run("select -r plane.e[3] plane.e[7] plane.vtx[12]");
  const std::uint64_t before = hand.hash();
  const std::size_t steps = hand.undoItems();
  hand.pick(hand.pixel(5, 0, 5), {}, toolHand::kMiddle);
  CHECK(uvHand::seams() == numbers{3, 7});
  CHECK(uvHand::anchors() == numbers{12});
  CHECK(hand.selected().empty());
  CHECK(hand.undoItems() == steps + 1);
  hand.run("undo");
  CHECK(hand.hash() == before);
  hand.run("redo");
  CHECK(uvHand::seams() == numbers{3, 7});
  CHECK(hand.selected().empty());

  hand.run("select -r plane.e[7] plane.vtx[12]");
  hand.pick(hand.pixel(5, 0, 5), kControl, toolHand::kMiddle);
  CHECK(uvHand::seams() == numbers{3});
  CHECK(uvHand::anchors().empty());

  // With nothing selected the stroke marks what it passes over.
  hand.stroke(hand.edge(hand.rung(11)), hand.edge(hand.rung(13)), toolHand::kMiddle, {}, 40);
  numbers painted = hand.rungs({11, 12, 13});
  painted.push_back(3);
  std::sort(painted.begin(), painted.end());
  CHECK(uvHand::seams() == painted);
  hand.run("undo");
  CHECK(uvHand::seams() == numbers{3});
  hand.pick(hand.edge(3), kControl, toolHand::kMiddle);
  CHECK(uvHand::seams().empty());
  const std::size_t after = hand.undoItems();
  hand.pick(hand.pixel(5, 0, 5), {}, toolHand::kMiddle);  // nothing there, nothing selected
  CHECK(hand.undoItems() == after);
}

TEST_CASE("UV select tool: seams are drawn corner by corner with the middle button and Shift") {
  uvHand hand;
  hand.pick(hand.vertex(6));
  for (const int corner : {8, 18, 16}) hand.pick(hand.vertex(corner), kShift, toolHand::kMiddle);
  hand.pick(hand.vertex(6), kShift, toolHand::kMiddle);
  numbers round = hand.edgesAlong({6, 7, 8, 13, 18, 17, 16, 11, 6});
  CHECK(uvHand::seams() == round);
  CHECK(uvHand::anchors().empty());
  hand.run("undo");
  CHECK(uvHand::seams() == hand.edgesAlong({6, 7, 8, 13, 18, 17, 16}));
  hand.pick(hand.vertex(11), kShift, toolHand::kMiddle);
  CHECK(uvHand::seams() == hand.edgesAlong({6, 7, 8, 13, 18, 17, 16, 11}));
}

TEST_CASE("UV select tool: with mirroring on both halves are picked, followed and marked") {
  uvHand hand;
  hand.mirror(true);
  hand.pick(hand.vertex(10));
  CHECK(hand.selectedVertices() == numbers{10, 14});
  hand.pick(hand.vertex(11), kShift);
  numbers both = hand.edgesAlong({10, 11});
  both.push_back(hand.edgesAlong({13, 14})[0]);
  std::sort(both.begin(), both.end());
  CHECK(hand.selectedEdges() == both);
  CHECK(hand.selectedVertices().empty());
  hand.pick(hand.pixel(5, 0, 5), {}, toolHand::kMiddle);
  CHECK(uvHand::seams() == both);
}

TEST_CASE("UV select tool: edits, deletion, another scene and unloading in mid-work") {
  uvHand hand;
  hand.pick(hand.vertex(10));
  hand.hover(hand.vertex(14));
  hand.run("move -r 0 2 0 plane.vtx[12]; select -r plane.vtx[10]");
  hand.pick(hand.vertex(14), kShift);
  CHECK(hand.selectedEdges().size() == 6);  // round the peak
  hand.run("delete plane.f[0:3]; select -cl");
  hand.hover(hand.pixel(0.5, 0, 0));
  hand.pick(hand.pixel(-1.5, 0, 1), kShift);
  CHECK(hand.selectedEdges().size() >= 1);
  hand.press(hand.pixel(-0.5, 0, 1), toolHand::kLeft);
  hand.run("select -r plane; qxLoadUvObjectForMarking -loadType \"unLoad\"");
  hand.dragTo(hand.pixel(0.5, 0, 1), toolHand::kLeft);
  hand.release(hand.pixel(0.5, 0, 1), toolHand::kLeft);
  hand.pick(hand.pixel(0.5, 0, 1));
  hand.run("undo; undo; undo; redo");
  hand.run("delete plane");
  hand.pick(hand.pixel(0.5, 0, 1), kShift);
  hand.press(hand.pixel(0.5, 0, 1), toolHand::kMiddle);
  hand.run("file -f -new");
  hand.release(hand.pixel(0.5, 0, 1), toolHand::kMiddle);
  hand.run(
      "polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4; select -r plane;"
      "qxLoadUvObjectForMarking -loadType \"load\"");
  hand.pick(hand.vertex(12));
  CHECK(hand.selectedVertices() == numbers{12});
}
