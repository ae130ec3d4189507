#include <algorithm>
#include <cmath>

#include "tests/toolkit/toolkit_session.h"

// Dropping one mesh onto another, judged against an endless slope whose height is known everywhere.

namespace {

/// A large plane named "ground", turned so that it slopes; "shape" is a small sphere in some pose,
/// selected first.
void makeScene(toolkitSession& toolkit, const char* pose, const char* slope) {
  toolkit.run(
      "file -f -new; polySphere -name shape -sx 8 -sy 6 -r 1; polyPlane -name ground -w 4000 -h "
      "4000 -sx 3 -sy 3;");
  toolkit.run(pose);
  toolkit.run(slope);
  toolkit.run("select -r shape ground");
}

/// The ground as a plane in the space that `toSpace` leads to.
struct slopeIn {
  MPoint place;
  MVector normal;
  explicit slopeIn(const MMatrix& toSpace) {
    const MPointArray corners = toolkitSession::points("ground");
    place = corners[0] * toSpace;
    normal = (corners[3] * toSpace - place) ^ (corners[12] * toSpace - place);
  }
  /// Moves a point along an axis onto the plane.
  MPoint under(MPoint point, unsigned int axis) const {
    point[axis] += (place - point) * normal / normal[axis];
    return point;
  }
};

MPointArray expectedAfter(const MPointArray& before, unsigned int axis, const MMatrix& toSpace) {
  const slopeIn slope(toSpace);
  MPointArray after = before;
  double base = 1e30;
  for (MPoint& p : after) {
    p *= toSpace;
    base = std::min(base, p[axis]);
  }
  for (MPoint& p : after) {
    const double offset = p[axis] - base;
    p = slope.under(p, axis);
    p[axis] += offset;
    p *= toSpace.inverse();
  }
  return after;
}

double largestDifference(const MPointArray& a, const MPointArray& b) {
  REQUIRE(a.length() == b.length());
  double largest = 0;
  for (unsigned int i = 0; i < a.length(); ++i) largest = std::max(largest, a[i].distanceTo(b[i]));
  return largest;
}

constexpr const char* kSlope =
    "setAttr ground.rotate -type double3 25 0 -15; setAttr ground.translate -type double3 1 -4 2;";

}  // namespace

TEST_CASE(
    "projectMeshOnMeshCmd: every vertex lands at its height above the lowest, along each axis and "
    "in every pose") {
  toolkitSession toolkit;
  const char* const axes[] = {"x", "y", "z"};
  const char* const slopes[] = {
      "setAttr ground.rotate -type double3 10 20 70; setAttr ground.scaleX -1;", kSlope,
      "setAttr ground.rotate -type double3 75 10 0; group -name under ground; move 0 0 3 under;"};
  for (const char* pose : kPoses)
    for (unsigned int axis = 0; axis < 3; ++axis) {
      CAPTURE(pose);
      CAPTURE(axis);
      makeScene(toolkit, pose, slopes[axis]);
      const MPointArray before = toolkitSession::points("shape"),
                        ground = toolkitSession::points("ground");
      const std::uint64_t hash = toolkit.hash();
      toolkit.run(std::string("projectMeshOnMeshCmd -wd \"") + axes[axis] + "\"");
      const MPointArray expected = expectedAfter(before, axis, MMatrix());
      CHECK(largestDifference(toolkitSession::points("shape"), expected) < 1e-4);
      CHECK(largestDifference(toolkitSession::points("ground"), ground) == 0);
      const std::uint64_t after = toolkit.hash();
      toolkit.run("undo");
      CHECK(toolkit.hash() == hash);
      toolkit.run("redo");
      CHECK(toolkit.hash() == after);
    }
}

TEST_CASE(
    "projectMeshOnMeshCmd: objectYRotation falls along the object's own Y and leaves the target "
    "untouched") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    makeScene(toolkit, pose, kSlope);
    const MMatrix toObject = toolkitSession::path("shape").inclusiveMatrixInverse();
    const MPointArray before = toolkitSession::points("shape"),
                      ground = toolkitSession::points("ground");
    const std::uint64_t hash = toolkit.hash();
    toolkit.run("projectMeshOnMeshCmd -wrapDirection objectYRotation");
    CHECK(largestDifference(toolkitSession::points("shape"), expectedAfter(before, 1, toObject)) <
          1e-3);
    CHECK(largestDifference(toolkitSession::points("ground"), ground) == 0);
    toolkit.run("undo");
    CHECK(toolkit.hash() == hash);
  }
}

TEST_CASE(
    "projectMeshOnMeshCmd: rays look both ways, and a vertex beside the target goes to the plane "
    "of the origin") {
  toolkitSession toolkit;
  // A strip of five vertices a row at y = 3 and 5 over a step that is narrower than the strip.
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 4 -sy 1 -w 4 -h 1; polyPlane -name step -w 2.5 -h 4 "
      "-sx 1 -sy 1;");
  for (int i = 0; i < 10; ++i)
    toolkitSession::setPoint("shape", i, MPoint(i % 5 - 2, i < 5 ? 3 : 5, i < 5 ? 0.5 : -0.5));
  for (const double height : {1.0, 4.0, 8.0}) {  // below, between, above
    toolkit.run("setAttr step.translateY " + std::to_string(height) +
                "; select -r shape step; projectMeshOnMeshCmd -wd y");
    const MPointArray after = toolkitSession::points("shape");
    for (unsigned int i = 0; i < 10; ++i) {
      const bool isOver = i % 5 >= 1 && i % 5 <= 3;
      CHECK(after[i].y == doctest::Approx((isOver ? height : 0.0) + (i < 5 ? 0 : 2)));
    }
    toolkit.run("undo");
  }
}

TEST_CASE("projectMeshOnMeshCmd: what can't be dropped is refused with the scene unchanged") {
  toolkitSession toolkit;
  const auto refuses = [&](const std::string& select, const std::string& command,
                           const char* text) {
    CAPTURE(select);
    toolkit.run(select);
    const std::uint64_t before = toolkit.hash();
    CHECK(toolkit.failure(command).find(text) != std::string::npos);
    CHECK(toolkit.hash() == before);
  };
  makeScene(
      toolkit, "",
      "polyCube -name third; createNode mesh -name empty; createNode transform -name nothing;");
  for (const char* select : {"select -cl", "select -r shape", "select -r shape ground third"})
    refuses(select, "projectMeshOnMeshCmd -wd y",
            "this function only works with 2 objects selected");
  refuses("select -r shape ground", "projectMeshOnMeshCmd", "");
  refuses("select -r shape ground", "projectMeshOnMeshCmd -wd \"sideways\"",
          "x, y, z or objectYRotation");
  refuses("select -r shape ground", "projectMeshOnMeshCmd -wd", "");  // says so on standard error
  refuses("select -r shape nothing", "projectMeshOnMeshCmd -wd y", "only polygon meshes");
  refuses("select -r shape empty", "projectMeshOnMeshCmd -wd y", "has no faces");
  refuses("setAttr shape.scaleX 0; select -r shape ground",
          "projectMeshOnMeshCmd -wd objectYRotation", "scaled to nothing");
}
