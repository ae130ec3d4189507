#include <algorithm>
#include <cmath>

#include "tests/toolkit/toolkit_session.h"

// Circling, flattening, snapping and merging vertices, through MEL on posed meshes.

namespace {

std::string refusal(toolkitSession& toolkit, const std::string& select,
                    const std::string& command) {
  toolkit.run(select);
  const std::uint64_t before = toolkit.hash();
  const std::string text = toolkit.failure(command);
  CHECK(toolkit.hash() == before);
  return text;
}
bool mentions(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

/// Undo and redo give back the document before and after a command, bit for bit.
void checkUndo(toolkitSession& toolkit, std::uint64_t before) {
  const std::uint64_t after = toolkit.hash();
  CHECK(after != before);
  for (int round = 0; round < 2; ++round) {
    toolkit.run("undo");
    CHECK(toolkit.hash() == before);
    toolkit.run("redo");
    CHECK(toolkit.hash() == after);
  }
}

}  // namespace

TEST_CASE(
    "qxCircleVertsCmd: the corners and middles of a square hole go on the circle through the far "
    "corners") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    toolkit.run("file -f -new; polyPlane -name shape -sx 4 -sy 4 -w 4 -h 4;");
    toolkit.run(pose);
    // The loop of eight around the middle of the grid, square in world space.
    const int loop[] = {6, 7, 8, 13, 18, 17, 16, 11};
    const MPoint places[] = {{-1, 0, 1}, {0, 0, 1},  {1, 0, 1},   {1, 0, 0},
                             {1, 0, -1}, {0, 0, -1}, {-1, 0, -1}, {-1, 0, 0}};
    MPointArray all = toolkitSession::points("shape");
    for (unsigned int i = 0; i < all.length(); ++i)
      all[i] = MPoint(static_cast<double>(i % 5) - 2, 0, 2 - static_cast<double>(i / 5));
    toolkitSession::setPoints("shape", all);
    for (int i = 0; i < 8; ++i) toolkitSession::setPoint("shape", loop[i], places[i]);
    toolkit.run("select -r shape.vtx[6:8] shape.vtx[11] shape.vtx[13] shape.vtx[16:18]");
    const MPointArray square = toolkitSession::points("shape");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxCircleVertsCmd");
    const MPointArray after = toolkitSession::points("shape");
    const double step = 2 * std::sqrt(2.0) * std::sin(3.141592653589793 / 8);
    for (int i = 0; i < 8; ++i) {
      const MPoint here = after[static_cast<unsigned int>(loop[i])];
      const MPoint next = after[static_cast<unsigned int>(loop[(i + 1) % 8])];
      CHECK(here.distanceTo(MPoint()) == doctest::Approx(std::sqrt(2.0)).epsilon(1e-5));
      CHECK(here.distanceTo(next) == doctest::Approx(step).epsilon(1e-5));
      CHECK(std::fabs(here.y) < 1e-5);
    }
    CHECK(after[12].isEquivalent(MPoint(0, 0, 0), 1e-5));
    checkUndo(toolkit, before);
  }
}

TEST_CASE("qxCircleVertsCmd: too little for a circle is refused") {
  toolkitSession toolkit;
  toolkit.run("file -f -new; polyPlane -name shape -sx 4 -sy 4; polyCube -name other;");
  (void)refusal(toolkit, "select -cl", "qxCircleVertsCmd");
  (void)refusal(toolkit, "select -r shape.vtx[0:1]", "qxCircleVertsCmd");
  toolkit.run("polyPlane -name needle -sx 4 -sy 1 -ch 0; scale 0 1 0 needle.vtx[*]");
  (void)refusal(toolkit, "select -r needle.vtx[0:4]", "qxCircleVertsCmd");  // one place
  CHECK(mentions(refusal(toolkit, "select -r shape.vtx[0:5] other.vtx[0]", "qxCircleVertsCmd"),
                 "Only works on one object at a time!"));
}

TEST_CASE("qxMakePlanarCmd: a bent patch lands on one world plane through its mean") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    toolkit.run("file -f -new; polyPlane -name shape -sx 3 -sy 3 -w 3 -h 3;");
    toolkit.run("move -r 0 0.3 0 shape.vtx[5]; move -r 0.1 -0.2 0 shape.vtx[10];");
    toolkit.run(pose);
    const MPointArray bent = toolkitSession::points("shape");
    toolkit.run("select -r shape.f[4]");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxMakePlanarCmd");
    const MPointArray flat = toolkitSession::points("shape");
    const unsigned int corners[] = {5, 6, 10, 9};
    MPoint bentMean, flatMean;
    for (const unsigned int c : corners) {
      bentMean += MVector(bent[c]) * 0.25;
      flatMean += MVector(flat[c]) * 0.25;
    }
    CHECK(flatMean.isEquivalent(bentMean, 1e-4));
    const MVector normal = ((flat[6] - flat[5]) ^ (flat[10] - flat[5])).normal();
    for (const unsigned int c : corners) {
      CHECK(std::fabs((flat[c] - flatMean) * normal) < 1e-4);
      CHECK(((flat[c] - bent[c]) ^ normal).length() < 1e-4);  // straight onto the plane
    }
    CHECK(flat[0].isEquivalent(bent[0], 1e-9));
    checkUndo(toolkit, before);
  }
}

TEST_CASE("qxMakePlanarCmd: opposite faces and selections without faces leave the mesh sound") {
  toolkitSession toolkit;
  toolkit.run("file -f -new; polyCube -name shape; polyCube -name other;");
  (void)refusal(toolkit, "select -cl", "qxMakePlanarCmd");
  (void)refusal(toolkit, "select -r shape.e[0:3]", "qxMakePlanarCmd");
  CHECK(mentions(refusal(toolkit, "select -r shape.f[0] other.f[0]", "qxMakePlanarCmd"),
                 "Only works on one object at a time!"));
  toolkit.run("select -r shape.f[1] shape.f[3]");
  (void)toolkit.session->executeLine("qxMakePlanarCmd");
  for (const MPoint& p : toolkitSession::points("shape"))
    CHECK((std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z)));
}

TEST_CASE("qxSnapVertsToAxis: the world coordinate becomes zero on posed meshes, the others stay") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    toolkit.run("file -f -new; polyCube -name shape;");
    toolkit.run(pose);
    toolkitSession::setPoint("shape", 2, MPoint(0.002, 1.5, -3));
    toolkit.run("select -r shape.vtx[2] shape.vtx[5]");
    const MPointArray was = toolkitSession::points("shape");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxSnapVertsToAxis");
    const MPointArray now = toolkitSession::points("shape");
    for (unsigned int i = 0; i < now.length(); ++i) {
      const MPoint expected(i == 2 || i == 5 ? 0 : was[i].x, was[i].y, was[i].z);
      CHECK(now[i].isEquivalent(expected, 1e-5));
    }
    checkUndo(toolkit, before);
  }
  toolkit.run("polyCube -name other");
  (void)refusal(toolkit, "select -cl", "qxSnapVertsToAxis");
  (void)refusal(toolkit, "select -r shape.e[0]", "qxSnapVertsToAxis");
  CHECK(mentions(refusal(toolkit, "select -r shape.vtx[0] other.vtx[0]", "qxSnapVertsToAxis"),
                 "Only works on one object at a time!"));
}

TEST_CASE(
    "qxMergeVerts: vertices gather at the target, with the mirror at the target of their side") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    toolkit.run(
        "file -f -new; polyPlane -name shape -sx 4 -sy 1;");  // rows 0..4 and 5..9 across x = 0
    toolkit.run(pose);
    const MPointArray was = toolkitSession::points("shape");
    toolkit.run("select -r shape.vtx[0:1]");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxMergeVerts -id 6");
    MPointArray now = toolkitSession::points("shape");
    CHECK(now.length() == was.length());
    for (unsigned int i = 0; i < now.length(); ++i)
      CHECK(now[i].isEquivalent(was[i < 2 ? 6 : i], 1e-5));
    checkUndo(toolkit, before);
    toolkit.run("undo; select -r shape.vtx[0:4]; qxMergeVerts -mr true -ax 0 -id 9 -mId 5;");
    now = toolkitSession::points("shape");
    for (unsigned int i = 0; i < 5; ++i) {
      CHECK(now[i].isEquivalent(was[i < 2 ? 5 : 9], 1e-5));
    }
  }
}

TEST_CASE("qxMergeVerts: refusals name the reason and change nothing") {
  toolkitSession toolkit;
  toolkit.run("file -f -new; polyPlane -name shape -sx 4 -sy 1; polyCube -name other;");
  CHECK(mentions(refusal(toolkit, "select -r shape.vtx[0]", "qxMergeVerts -id 1"),
                 "mergeVert command failed: Selected Verts cannot be merged"));
  CHECK(mentions(
      refusal(toolkit, "select -r shape.vtx[0:1]", "qxMergeVerts -id 1 -mr true -mId 2 -ax 0"),
      "mergeVert command failed: Selected Verts cannot be merged"));
  for (const char* select : {"select -cl", "select -r shape.vtx[0:1] other.vtx[0]"})
    CHECK(mentions(refusal(toolkit, select, "qxMergeVerts -id 1"),
                   "mergeVert command does not work with multiple objects selected."));
  (void)refusal(toolkit, "select -r shape.vtx[0:1]", "qxMergeVerts -id 999");
}

TEST_CASE("qxCircleVertsCmd: a straight row goes on a circle in the surface, in its order") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(std::string(pose));
    toolkit.run("file -f -new; polyPlane -name shape -sx 4 -sy 2 -w 4 -h 2 -ch 0;");
    toolkit.run(pose);
    const MPointArray row = toolkitSession::points("shape");
    MVector normal;
    REQUIRE(MFnMesh(toolkitSession::path("shape")).getVertexNormal(7, normal, MSpace::kWorld));
    toolkit.run("select -r shape.vtx[5:9]");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxCircleVertsCmd");
    const MPointArray circle = toolkitSession::points("shape");
    const double radius = row[7].distanceTo(row[5]);
    for (unsigned int i = 5; i < 10; ++i) {
      CHECK(circle[i].distanceTo(row[7]) == doctest::Approx(radius).epsilon(1e-4));
      CHECK(std::fabs((circle[i] - row[7]) * normal) < 1e-4 * radius);
      CHECK(circle[i].distanceTo(circle[i < 9 ? i + 1 : 5]) ==
            doctest::Approx(2 * radius * std::sin(3.141592653589793 / 5)).epsilon(1e-4));
    }
    checkUndo(toolkit, before);
  }
}

TEST_CASE(
    "with the mirror on, faces that all lie on one side or on the centre line are flattened") {
  toolkitSession toolkit;
  toolkit.run(
      "qx_modeling_tool_ui; modelingWindow_QXMT_Proc; uiGesture -set 1 mirror_QXMT_CB; uiGesture "
      "-set 1 mirrorX_QXMT_RB; uiGesture -set 1 objectSpace_QXMT_RB");
  const char* const kChoices[] = {"shape.f[0:1]", "shape.f[4:5]", "shape.f[2]",
                                  "shape.f[2] shape.f[7]"};
  for (const char* faces : kChoices) {
    CAPTURE(faces);
    toolkit.run(
        "file -f -new; modelingWindow_QXMT_Proc; polyPlane -name shape -sx 5 -sy 2 -w 5 -h 2 -ch 0;"
        "setAttr shape.rotate -type double3 20 40 60");
    MPointArray bent = toolkitSession::points("shape", MSpace::kObject);
    for (unsigned int i = 0; i < bent.length(); ++i) bent[i].y = 0.1 * ((i * i) % 7);
    toolkitSession::setPoints("shape", bent, MSpace::kObject);
    toolkit.run(std::string("select -r ") + faces);
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxMakePlanarCmd");
    checkUndo(toolkit, before);
  }
}

TEST_CASE("vertices exactly on the mirror plane count as positive, however the object stands") {
  toolkitSession toolkit;
  for (int pose = 0; pose < 40; ++pose) {
    CAPTURE(pose);
    toolkit.run(
        "file -f -new; polyPlane -name shape -sx 4 -sy 3 -ch 0; setAttr shape.rotate -type "
        "double3 " +
        std::to_string(37 * pose) + " " + std::to_string(11 * pose) + " " +
        std::to_string(53 * pose) + "; setAttr shape.translate -type double3 0." +
        std::to_string(pose) + " 3 -7; setAttr shape.scaleX 1." + std::to_string(pose));
    const MPointArray was = toolkitSession::points("shape");
    toolkit.run("select -r shape.vtx[*]; qxMergeVerts -mr 1 -ax 0 -id 4 -mId 0");
    const MPointArray now = toolkitSession::points("shape");
    for (unsigned int i = 0; i < now.length(); ++i)
      CHECK(now[i].isEquivalent(was[i % 5 < 2 ? 0 : 4], 1e-5));
  }
}

TEST_CASE("qxMergeVerts: redo takes the side of the mirror space that the command ran in") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; modelingWindow_QXMT_Proc; uiGesture -set 1 objectSpace_QXMT_RB; polyPlane "
      "-name shape -sx 4 "
      "-sy 1 -ch 0; move 20 0 0 shape; select -r shape.vtx[0:4]; qxMergeVerts -mr 1 -ax 0 -id 4 "
      "-mId 0;");
  const MPointArray merged = toolkitSession::points("shape");
  toolkit.run("undo; uiGesture -set 1 worldSpace_QXMT_RB; redo");
  const MPointArray again = toolkitSession::points("shape");
  for (unsigned int i = 0; i < merged.length(); ++i) CHECK(again[i] == merged[i]);
}

TEST_CASE("qxStraightenCmd: of ends that are equally far the first one is taken") {
  toolkitSession toolkit;
  // The corners of a square: the first is one end, the one across from it the other.
  toolkit.run("file -f -new; polyPlane -name shape -sx 2 -sy 1 -ch 0");
  for (const int v : {0, 1, 2, 3})
    toolkitSession::setPoint("shape", v, MPoint(v == 0 || v == 3 ? 1 : -1, v < 2 ? 1 : -1, 0));
  toolkit.run("select -r shape.vtx[0:3]; qxStraightenCmd");
  const MPointArray after = toolkitSession::points("shape");
  CHECK(after[0].isEquivalent(MPoint(1, 1, 0), 1e-6));
  CHECK(after[2].isEquivalent(MPoint(-1, -1, 0), 1e-6));
  CHECK(after[1].isEquivalent(MPoint(0, 0, 0), 1e-6));
}
