#include <cmath>

#include "tests/toolkit/toolkit_session.h"

namespace {

/// A plane named "shape" of two rows with three vertices each (the first: 0 1 2), posed, its first
/// row bent in world space.
void makeBentRow(toolkitSession& toolkit, const char* pose) {
  toolkit.run("file -f -new; polyPlane -name shape -sx 2 -sy 1;");
  toolkit.run(pose);
  toolkitSession::setPoint("shape", 0, MPoint(0, 0, 0));
  toolkitSession::setPoint("shape", 1, MPoint(1, 0.2, 0));
  toolkitSession::setPoint("shape", 2, MPoint(2, 0, 0));
}

MPoint middleAfter(toolkitSession& toolkit, const std::string& command) {
  const MPointArray before = toolkitSession::points("shape");
  toolkit.run(command);
  const MPointArray after = toolkitSession::points("shape");
  for (unsigned int i = 0; i < after.length(); ++i)
    if (i != 1) CHECK(after[i].isEquivalent(before[i], 1e-5));
  const MPoint middle = after[1];
  toolkit.run("undo");
  return middle;
}

}  // namespace

TEST_CASE(
    "qxStraightenCmd: a bent row straightens in world space whatever the transform, and kept axes "
    "stay") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    makeBentRow(toolkit, pose);
    toolkit.run("select -r shape.vtx[0:2]");
    CHECK(middleAfter(toolkit, "qxStraightenCmd").isEquivalent(MPoint(1, 0, 0), 1e-5));
    CHECK(middleAfter(toolkit, "qxStraightenCmd -ax all -av true")
              .isEquivalent(MPoint(1, 0, 0), 1e-5));
    CHECK(middleAfter(toolkit, "qxStraightenCmd -axis y").isEquivalent(MPoint(1, 0.2, 0), 1e-5));
    CHECK(middleAfter(toolkit, "qxStraightenCmd -ax x").isEquivalent(MPoint(1, 0, 0), 1e-5));
    CHECK(middleAfter(toolkit, "qxStraightenCmd -ax Y")
              .isEquivalent(MPoint(1, 0, 0), 1e-5));  // no axis of that name
    // The same vertices through their edges, and twice.
    toolkit.run(
        "select -r shape.vtx[1] `polyListComponentConversion -te -internal shape.vtx[0:2]`");
    CHECK(middleAfter(toolkit, "qxStraightenCmd").isEquivalent(MPoint(1, 0, 0), 1e-5));
  }
}

TEST_CASE("qxStraightenCmd: undo gives the document back bit for bit, redo the result") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    makeBentRow(toolkit, pose);
    toolkit.run("select -r shape.vtx[0:2]");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("qxStraightenCmd");
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

TEST_CASE(
    "qxStraightenCmd: a mirrored selection of equal halves makes two lines, an unequal one a "
    "single line") {
  toolkitSession toolkit;
  // A row of seven across x = 0; both halves bent upwards.
  toolkit.run("file -f -new; polyPlane -name shape -sx 6 -sy 1 -w 6 -h 1;");
  for (const int v : {0, 6}) toolkitSession::setPoint("shape", v, MPoint(v - 3, 0, 0.5));
  for (const int v : {1, 5}) toolkitSession::setPoint("shape", v, MPoint(v - 3, 1.3, 0.5));
  for (const int v : {2, 4}) toolkitSession::setPoint("shape", v, MPoint(v - 3, 2, 0.5));
  toolkitSession::setPoint("shape", 3, MPoint(0, 5, 0.5));

  toolkit.run("select -r shape.vtx[0:2] shape.vtx[4:6]; qxStraightenCmd -axm x");
  MPointArray split = toolkitSession::points("shape");
  CHECK(split[0].isEquivalent(MPoint(-3, 0, 0.5), 1e-5));
  CHECK(split[2].isEquivalent(MPoint(-1, 2, 0.5), 1e-5));
  CHECK(std::fabs(split[1].y - (split[1].x + 3)) < 1e-5);  // on the line of its own side
  CHECK(std::fabs(split[5].y - (3 - split[5].x)) < 1e-5);
  toolkit.run("undo");

  // The vertex on the plane counts as positive, so the sides differ and all make one line.
  toolkit.run("select -r shape.vtx[0:6]; qxStraightenCmd -axm x");
  MPointArray whole = toolkitSession::points("shape");
  MVector along = whole[6] - whole[0];
  for (unsigned int i = 1; i < 6; ++i) CHECK(((whole[i] - whole[0]) ^ along).length() < 1e-4);
}

TEST_CASE("qxStraightenCmd: what can't be straightened is refused and changes nothing") {
  toolkitSession toolkit;
  makeBentRow(toolkit, "");
  toolkit.run("polyCube -name other");
  const auto refuses = [&](const std::string& select, const std::string& command) {
    toolkit.run(select);
    const std::uint64_t before = toolkit.hash();
    const std::string text = toolkit.failure(command);
    CHECK(toolkit.hash() == before);
    return text;
  };
  (void)refuses("select -cl", "qxStraightenCmd");
  CHECK(refuses("select -r shape.vtx[0:2] other.vtx[0]", "qxStraightenCmd")
            .find("Only works on one object at a time!") != std::string::npos);
  (void)refuses("select -r shape.f[0]", "qxStraightenCmd");
  (void)refuses("select -r shape", "qxStraightenCmd");
  (void)refuses("select -r shape.vtx[0:2]", "qxStraightenCmd -noSuchFlag 1");
}

TEST_CASE("qxStraightenCmd: single vertices and coinciding ones stay where they are") {
  toolkitSession toolkit;
  makeBentRow(toolkit, kPoses[2]);
  const auto staysPut = [&](const char* select) {
    toolkit.run(select);
    const MPointArray before = toolkitSession::points("shape", MSpace::kObject);
    toolkit.run("qxStraightenCmd");
    const MPointArray after = toolkitSession::points("shape", MSpace::kObject);
    for (unsigned int i = 0; i < before.length(); ++i) CHECK(before[i] == after[i]);
  };
  staysPut("select -r shape.vtx[1]");
  for (const int v : {0, 1, 2}) toolkitSession::setPoint("shape", v, MPoint(4, 4, 4));
  staysPut("select -r shape.vtx[0:2]");
}

TEST_CASE("qxStraightenCmd: a mesh with history keeps it and undoes") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 4 -sy 4; move -r 0 0.1 0 shape.vtx[7]; select -r "
      "shape.vtx[5:9];");
  const std::uint64_t before = toolkit.hash();
  toolkit.run("qxStraightenCmd");
  CHECK(std::fabs(toolkitSession::points("shape")[7].y) < 1e-6);
  toolkit.run("if (!size(`listHistory shape`)) error \"history is gone\"; undo;");
  CHECK(toolkit.hash() == before);
}
