#include <maya/MFloatVectorArray.h>
#include <maya/MIntArray.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include "tests/toolkit/toolkit_session.h"

// Taking shape or normals over from another mesh, judged against surfaces that are known
// everywhere.

namespace {

int unplaced(toolkitSession& toolkit, const std::string& command) {
  const std::uint64_t before = toolkit.hash();
  const auto result = toolkit.session->executeLine(command);
  REQUIRE_MESSAGE(result.has_value(), (result ? std::string() : result.error().message));
  const std::uint64_t after = toolkit.hash();
  for (int round = 0; round < 2; ++round) {
    toolkit.run("undo");
    CHECK(toolkit.hash() == before);
    toolkit.run("redo");
    CHECK(toolkit.hash() == after);
  }
  return static_cast<int>(result->intValue());
}

double largestDifference(const MPointArray& a, const MPointArray& b) {
  REQUIRE(a.length() == b.length());
  double largest = 0;
  for (unsigned int i = 0; i < a.length(); ++i) largest = std::max(largest, a[i].distanceTo(b[i]));
  return largest;
}

/// The corner normals of a mesh in world space, one after the other.
std::vector<MVector> shading(const char* name) {
  const MFnMesh mesh(toolkitSession::path(name));
  MFloatVectorArray normals;
  MIntArray counts, ids;
  REQUIRE(mesh.getNormals(normals, MSpace::kWorld));
  REQUIRE(mesh.getNormalIds(counts, ids));
  std::vector<MVector> shown;
  for (const int id : ids) shown.emplace_back(normals[static_cast<unsigned int>(id)]);
  return shown;
}

double largestTurn(const std::vector<MVector>& a, const std::vector<MVector>& b) {
  REQUIRE(a.size() == b.size());
  double largest = 0;
  for (std::size_t i = 0; i < a.size(); ++i) largest = std::max(largest, (a[i] - b[i]).length());
  return largest;
}

}  // namespace

TEST_CASE(
    "qxTransferTopology: every vertex comes to lie on the second mesh, in every pose and on its "
    "own side") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    toolkit.run(
        "file -f -new; polySphere -name shape -sx 12 -sy 8 -r 1; polyCube -name box -w 40 -h 40 -d "
        "40;");
    toolkit.run(pose);
    const MPointArray before = toolkitSession::points("shape");
    toolkit.run("select -r shape box");
    CHECK(unplaced(toolkit, "qxTransferTopology") == 0);
    for (const MPoint& p : toolkitSession::points("shape"))
      CHECK(std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}) ==
            doctest::Approx(20).epsilon(1e-5));
    toolkit.run("undo");
    CHECK(largestDifference(toolkitSession::points("shape"), before) == 0);
  }
}

TEST_CASE("qxTransferTopology: vertices go along their normals, mirrored meshes too") {
  toolkitSession toolkit;
  for (const char* scale : {"1 1 1", "-1 1 1"}) {
    CAPTURE(std::string(scale));
    toolkit.run(
        "file -f -new; polySphere -name shape -sx 20 -sy 14 -r 1; polyCube -name box -w 6 -h 6 -d "
        "6;"
        "setAttr shape.scale -type double3 " +
        std::string(scale));
    const MPointArray before = toolkitSession::points("shape");
    toolkit.run("select -r shape box; qxTransferTopology");
    const MPointArray after = toolkitSession::points("shape");
    for (unsigned int i = 0; i < after.length(); ++i)  // from the middle of a ball that is outwards
      CHECK((MVector(after[i]).normal() ^ MVector(before[i]).normal()).length() < 0.05);
  }
}

TEST_CASE("qxTransferTopology: landmarks carry the mesh to where its counterpart is") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polySphere -name shape -sx 12 -sy 8 -ch 0; scale 1 1.5 0.7 shape.vtx[*];"
      "duplicate -name there shape; select -r shape.vtx[5] there.vtx[5]; move 50 3 0 there;");
  MPointArray there = toolkitSession::points("there");
  CHECK(unplaced(toolkit, "qxTransferTopology") == 0);
  CHECK(largestDifference(toolkitSession::points("shape"), there) < 1e-4);
  toolkit.run("undo; select -r shape there;");
  CHECK(unplaced(toolkit, "qxTransferTopology -lm 5 5") == 0);
  CHECK(largestDifference(toolkitSession::points("shape"), there) < 1e-4);

  // Turned and stretched, four landmarks that span space say all of it.
  toolkit.run(
      "undo; setAttr there.rotate -type double3 60 100 20; setAttr there.scale -type double3 2 1 "
      "0.5;");
  there = toolkitSession::points("there");
  toolkit.run(
      "select -r shape.vtx[0] shape.vtx[30] shape.vtx[50] shape.vtx[85]"
      " there.vtx[0] there.vtx[30] there.vtx[50] there.vtx[85]");
  CHECK(unplaced(toolkit, "qxTransferTopology") == 0);
  CHECK(largestDifference(toolkitSession::points("shape"), there) < 1e-3);
  // In object space nothing was turned.
  toolkit.run("undo; select -r shape there;");
  const MPointArray own = toolkitSession::points("shape");
  CHECK(unplaced(toolkit, "qxTransferTopology -space object") == 0);
  CHECK(largestDifference(toolkitSession::points("shape"), own) < 1e-5);
}

TEST_CASE("qxTransferTopology: the same faces in another order are matched from one face of each") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyTorus -name shape -sx 7 -sy 5; delete shape.f[12]; delete shape.f[20];");
  const MFnMesh shape(toolkitSession::path("shape"));
  const MPointArray points = toolkitSession::points("shape");
  MIntArray counts, connects;
  REQUIRE(shape.getVertices(counts, connects));
  std::mt19937 random(5);
  std::vector<int> vertexTo(points.length()), faceOrder(counts.length()), starts{0};
  std::iota(vertexTo.begin(), vertexTo.end(), 0);
  std::iota(faceOrder.begin(), faceOrder.end(), 0);
  std::shuffle(vertexTo.begin(), vertexTo.end(), random);
  std::shuffle(faceOrder.begin(), faceOrder.end(), random);
  for (const int count : counts) starts.push_back(starts.back() + count);
  MPointArray moved(points.length());
  for (unsigned int v = 0; v < points.length(); ++v)
    moved[static_cast<unsigned int>(vertexTo[v])] =
        MPoint(points[v].z * 2, points[v].x + 7, points[v].y * points[v].y);
  MIntArray movedCounts, movedConnects;
  for (const int face : faceOrder) {
    const int count = counts[static_cast<unsigned int>(face)];
    movedCounts.append(count);
    for (int k = 0; k < count; ++k) {  // every loop starts at some other corner
      const int corner = starts[static_cast<std::size_t>(face)] + (k + face) % count;
      movedConnects.append(
          vertexTo[static_cast<std::size_t>(connects[static_cast<unsigned int>(corner)])]);
    }
  }
  MFnMesh made;
  made.create(static_cast<int>(moved.length()), static_cast<int>(movedCounts.length()), moved,
              movedCounts, movedConnects);
  toolkit.run("rename polySurface1 other");
  const auto faceIn = std::find(faceOrder.begin(), faceOrder.end(), 4) - faceOrder.begin();
  toolkit.run("select -r shape.f[4] other.f[" + std::to_string(faceIn) + "]");
  CHECK(unplaced(toolkit, "qxTransferTopology -order true") == 0);
  const MPointArray after = toolkitSession::points("shape");
  for (unsigned int v = 0; v < after.length(); ++v)
    CHECK(after[v].isEquivalent(moved[static_cast<unsigned int>(vertexTo[v])], 1e-5));
  // A face whose surroundings differ matches nothing.
  const auto wrong = std::find(faceOrder.begin(), faceOrder.end(), 20) - faceOrder.begin();
  toolkit.run("undo; select -r shape.f[4] other.f[" + std::to_string(wrong) + "]");
  const std::uint64_t before = toolkit.hash();
  CHECK(toolkit.failure("qxTransferTopology -order true").find("not the same around face 4") !=
        std::string::npos);
  CHECK(toolkit.hash() == before);
}

TEST_CASE("qxTransferTopology: symmetric results, limited reach and their report") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 6 -sy 2 -w 6 -h 2; polyPlane -name bumps -sx 30 -sy "
      "10 -w 8 -h 4;");
  MPointArray bumps = toolkitSession::points("bumps");
  for (MPoint& p : bumps) p.y = 0.3 * std::sin(1.3 * p.x + 0.4 * p.z);
  toolkitSession::setPoints("bumps", bumps);
  toolkit.run("select -r shape bumps");
  CHECK(unplaced(toolkit, "qxTransferTopology -sy x") == 0);
  const MPointArray after = toolkitSession::points("shape");
  double highest = 0;
  for (unsigned int row = 0; row < 3; ++row)
    for (unsigned int i = 0; i < 7; ++i) {
      const MPoint &here = after[7 * row + i], &there = after[7 * row + 6 - i];
      CHECK(here.isEquivalent(MPoint(-there.x, there.y, there.z), 1e-6));
      highest = std::max(highest, std::fabs(here.y));
    }
  CHECK(highest > 0.01);

  // Off the origin, and where the two stand apart, the result is symmetric where the shape is.
  for (const auto& [own, theirs] : {std::pair(5, 5), {0, 7}, {7, 0}, {-40, 3}}) {
    CAPTURE(own);
    CAPTURE(theirs);
    toolkit.run(
        "file -f -new; polySphere -n shape -r 1.2 -sx 12 -sy 8; polySphere -n ball -r 1 -sx "
        "40 -sy 30; move " +
        std::to_string(own) + " 0 0 shape; move " + std::to_string(theirs) +
        " 0 0 ball; select -r shape ball");
    CHECK(unplaced(toolkit, "qxTransferTopology -sy x") == 0);
    for (const MPoint& p : toolkitSession::points("shape"))
      CHECK(p.distanceTo(MPoint(theirs, 0, 0)) == doctest::Approx(1).epsilon(0.01));
  }
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 6 -sy 2 -w 6 -h 2; polyPlane -name bumps -sx 30 -sy "
      "10 -w 8 -h 4;");
  toolkitSession::setPoints("bumps", bumps);

  toolkit.run("setAttr bumps.translate -type double3 6 0 0; select -r shape bumps;");
  const MPointArray flat = toolkitSession::points("shape");
  CHECK(unplaced(toolkit, "qxTransferTopology -md 0.5") == 15);  // the five columns left of x = 1.5
  const MPointArray moved = toolkitSession::points("shape");
  for (unsigned int i = 0; i < moved.length(); ++i)
    if (flat[i].x < 1.5) CHECK(moved[i] == flat[i]);
  toolkit.run("undo; currentUnit -l mm;");
  CHECK(unplaced(toolkit, "qxTransferTopology -md 5") == 15);
}

TEST_CASE(
    "qxTransferVertexNormals: a copy takes over every corner, hard edges and all, in every pose") {
  toolkitSession toolkit;
  for (const char* pose : kPoses) {
    CAPTURE(pose);
    // A cylinder has hard rims, smooth sides and n-gon caps.
    toolkit.run(
        "file -f -new; polyCylinder -name source -sx 12 -sy 3 -sz 1; polySoftEdge -a 40 -ch 0 "
        "source;"
        "duplicate -name shape source; polySoftEdge -a 0 -ch 0 shape;");
    toolkit.run(pose);
    std::string posed(pose);
    for (std::size_t at; (at = posed.find("shape")) != std::string::npos;)
      posed.replace(at, 5, "source");
    for (std::size_t at; (at = posed.find("above")) != std::string::npos;)
      posed.replace(at, 5, "over");
    toolkit.run(posed);
    const std::vector<MVector> wanted = shading("source"), before = shading("shape");
    CHECK(largestTurn(wanted, before) > 0.1);
    toolkit.run("select -r shape source");
    CHECK(unplaced(toolkit, "qxTransferVertexNormals") == 0);
    CHECK(largestTurn(shading("shape"), wanted) < 1e-3);
    toolkit.run("undo");
    CHECK(largestTurn(shading("shape"), before) == 0);
  }
}

TEST_CASE(
    "qxTransferVertexNormals: another tessellation shows the interpolated normals; reach and "
    "selection limit it") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polySphere -name source -sx 48 -sy 32 -r 2; polyCube -name shape -w 2 -h 2 -d "
      "2 -sx 3 -sy 3 -sz 3;"
      "select -r shape source");
  CHECK(unplaced(toolkit, "qxTransferVertexNormals -md 0.8") ==
        24);  // the middles of the sides are farther away
  toolkit.run("undo");
  CHECK(unplaced(toolkit, "qxTransferVertexNormals") == 0);
  const MPointArray points = toolkitSession::points("shape");
  MIntArray counts, connects;
  REQUIRE(MFnMesh(toolkitSession::path("shape")).getVertices(counts, connects));
  const std::vector<MVector> shown = shading("shape");
  for (unsigned int c = 0; c < connects.length(); ++c)
    CHECK((shown[c] - MVector(points[static_cast<unsigned int>(connects[c])]).normal()).length() <
          0.02);

  toolkit.run("undo");
  const std::vector<MVector> before = shading("shape");
  toolkit.run("select -r shape.vtx[0] source");
  CHECK(unplaced(toolkit, "qxTransferVertexNormals") == 0);
  const std::vector<MVector> one = shading("shape");
  for (unsigned int c = 0; c < connects.length(); ++c)
    CHECK(((one[c] - before[c]).length() > 0.1) == (connects[c] == 0));
}

TEST_CASE(
    "transfer commands: their flags explain themselves and bad ones are refused with the scene "
    "unchanged") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polySphere -name shape; polyCube -name box; createNode mesh -name empty; "
      "select -r shape box;");
  for (const char* command : {"qxTransferTopology", "qxTransferVertexNormals"}) {
    CAPTURE(command);
    const auto help = toolkit.session->executeLine(std::string(command) + " -help");
    REQUIRE(help.has_value());
    CHECK(help->printText().find("-maxDistance") != std::string::npos);
    const auto refuses = [&](const std::string& select, const std::string& flags,
                             const char* text) {
      CAPTURE(flags);
      toolkit.run(select);
      const std::uint64_t before = toolkit.hash();
      CHECK(toolkit.failure(command + flags).find(text) != std::string::npos);
      CHECK(toolkit.hash() == before);
    };
    for (const char* select : {"select -cl", "select -r shape", "select -r shape box empty"})
      refuses(select, "", "select two meshes");
    refuses("select -r shape empty", "", "has no faces");
    refuses("select -r empty box", "", "has no faces");
    refuses("select -r shape persp", "", "only polygon meshes");
    refuses("select -r shape box", " -space sideways", "the space is world or object");
    refuses("select -r shape box", " -md -1", "can't be negative");
  }
  const auto refuses = [&](const std::string& select, const std::string& flags, const char* text) {
    CAPTURE(flags);
    toolkit.run(select);
    CHECK(toolkit.failure("qxTransferTopology" + flags).find(text) != std::string::npos);
  };
  refuses("select -r shape box", " -sy w", "the symmetry is x, y, z or none");
  refuses("select -r shape.vtx[0:2] box.vtx[0]", "", "landmarks are pairs: 3 vertices");
  refuses("select -r shape box", " -lm 3 999", "no vertices 3 and 999");
  refuses("select -r shape box", " -lm 3 1 -lm 3 2", "two landmarks lie in one place");
  refuses("select -r shape box", " -o true", "select one face of each mesh");
}

TEST_CASE(
    "qxTransferTopology: symmetry across a plane of the mesh's own, and meshes that have none") {
  toolkitSession toolkit;
  toolkit.run(
      "file -f -new; polyPlane -name shape -sx 6 -sy 2 -w 6 -h 2; polyPlane -name bumps -sx 30 -sy "
      "10 -w 8 -h 4; move -r 20 0 0 shape bumps");
  MPointArray bumps = toolkitSession::points("bumps");
  for (MPoint& p : bumps) p.y = 0.3 * std::sin(1.3 * p.x + 0.4 * p.z);
  toolkitSession::setPoints("bumps", bumps);
  toolkit.run("select -r shape bumps");
  CHECK(unplaced(toolkit, "qxTransferTopology -sy x") == 0);
  const MPointArray after = toolkitSession::points("shape");
  for (unsigned int row = 0; row < 3; ++row)
    for (unsigned int i = 0; i < 7; ++i) {
      const MPoint &here = after[7 * row + i], &there = after[7 * row + 6 - i];
      CHECK(here.isEquivalent(MPoint(40 - there.x, there.y, there.z), 1e-4));
    }
  toolkit.run(
      "undo; move -r 0.3 0.1 0.2 shape.vtx[0:8]; move -r 0 0.4 -0.3 shape.vtx[0:4]; select -r "
      "shape bumps");
  CHECK(toolkit.failure("qxTransferTopology -sy z").find("is not symmetric across z") !=
        std::string::npos);
}
