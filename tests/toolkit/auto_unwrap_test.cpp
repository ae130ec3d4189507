#include <maya/MFloatArray.h>

#include "host/base/cancel.h"
#include "tests/toolkit/toolkit_session.h"

// Unwrapping along seams: what becomes of the UVs, and what is left alone.

namespace {

struct uvs {
  MFloatArray u, v;
  MIntArray counts, ids;

  bool operator==(const uvs& other) const {
    const auto same = [](const auto& a, const auto& b) {
      if (a.length() != b.length()) return false;
      for (unsigned int i = 0; i < a.length(); ++i)
        if (a[i] != b[i]) return false;
      return true;
    };
    return same(u, other.u) && same(v, other.v) && same(counts, other.counts) &&
           same(ids, other.ids);
  }
};

struct unwrapScene : toolkitSession {
  static uvs read(const char* mesh) {
    uvs all;
    const MFnMesh meshFn(path(mesh));
    REQUIRE(meshFn.getUVs(all.u, all.v));
    REQUIRE(meshFn.getAssignedUVs(all.counts, all.ids));
    return all;
  }
  std::vector<std::string> texts(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->toTexts();
  }
  int number(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->toInt().value_or(-12345);
  }
  int shells(const char* mesh) {
    unsigned int count = 0;
    MIntArray ids;
    REQUIRE(MFnMesh(path(mesh)).getUvShellsIds(ids, count));
    return static_cast<int>(count);
  }
  void checkSound(const std::string& mesh) {
    const auto report = texts("polyUVReport -flipped -overlapping " + mesh);
    REQUIRE(report.size() == 2);
    CHECK(std::stod(report[0]) == 0);
    CHECK(std::stod(report[1]) == 0);
  }
};

}  // namespace

TEST_CASE("a cut around a sphere gives two shells that lie in the square; undo is exact") {
  unwrapScene scene;
  scene.run(
      "polySphere -n ball -sx 12 -sy 8 -ch 1; setAttr ball.ry 30; select -r ball;"
      "qxLoadUvObjectForMarking -loadType \"load\"; select -r ball.e[36:47];"
      "qxMarkUVInformation -me 1; select -r ball.vtx[3]");
  const uvs before = unwrapScene::read("ball");
  const auto history = scene.texts("listHistory ball");
  const auto nodes = scene.texts("ls");
  scene.run("qxAutoUnwrap -unwrapType \"normal\"");
  const uvs after = unwrapScene::read("ball");
  CHECK(scene.shells("ball") == 2);
  scene.checkSound("ball");
  for (unsigned int i = 0; i < after.u.length(); ++i) {
    CHECK((after.u[i] >= 0 && after.u[i] <= 1));
    CHECK((after.v[i] >= 0 && after.v[i] <= 1));
  }
  CHECK(scene.texts("listHistory ball") == history);
  CHECK(scene.texts("ls") == nodes);
  CHECK(scene.texts("ls -sl") == std::vector<std::string>{"ball.vtx[3]"});
  scene.run("undo");
  CHECK(unwrapScene::read("ball") == before);
  CHECK(scene.texts("ls -sl") == std::vector<std::string>{"ball.vtx[3]"});
  scene.run("redo");
  CHECK(unwrapScene::read("ball") == after);
  scene.run("undo");
  CHECK(unwrapScene::read("ball") == before);
}

TEST_CASE("straight: faces are unit squares, sewn along all edges but the seams") {
  unwrapScene scene;
  scene.run(
      "polyPlane -n plane -w 4 -h 2 -sx 4 -sy 2 -ch 0; select -r plane;"
      "qxLoadUvObjectForMarking -loadType \"load\";"
      "select -r `polyListComponentConversion -fv -te -in plane.vtx[2] plane.vtx[7] "
      "plane.vtx[12]`; qxMarkUVInformation -me 1; select -r plane");
  const std::uint64_t before = scene.hash();
  scene.run("qxAutoUnwrap -unwrapType \"straight\"");
  CHECK(scene.shells("plane") == 2);
  scene.checkSound("plane");
  const MFnMesh mesh(toolkitSession::path("plane"));
  double side = 0;
  for (int face = 0; face < mesh.numPolygons(); ++face)
    for (int corner = 0; corner < 4; ++corner) {
      float u0 = 0, v0 = 0, u1 = 0, v1 = 0;
      mesh.getPolygonUV(face, corner, u0, v0);
      mesh.getPolygonUV(face, (corner + 1) % 4, u1, v1);
      const double length = std::hypot(u1 - u0, v1 - v0);
      if (side == 0) side = length;
      CHECK(length == doctest::Approx(side).epsilon(1e-4));
    }
  scene.run("undo");
  CHECK(scene.hash() == before);
}

TEST_CASE("a mesh that was never loaded, with no UVs, one of two sets, from the hilite list") {
  unwrapScene scene;
  scene.run(
      "polyCylinder -n pipe -sx 8 -sy 2 -sc 1 -cuv 0 -ch 0; polyMapDel pipe.f[*];"
      "select -r pipe; DeleteHistory");
  scene.run("qxAutoUnwrap -unwrapType \"normal\"");
  CHECK(unwrapScene::read("pipe").u.length() > 0);
  CHECK(scene.shells("pipe") >= 1);
  scene.run("undo");
  CHECK(unwrapScene::read("pipe").u.length() == 0);

  scene.run(
      "polyCube -n box -ch 0; polyUVSet -create -uvSet \"second\" box;"
      "polyUVSet -currentUVSet -uvSet \"second\" box; polyAutoProjection -ch 0 box;"
      "select -cl; hilite box");
  const auto first =
      scene.texts("polyUVSet -currentUVSet -uvSet \"map1\" box; polyEditUV -q box.map[*]");
  scene.run("polyUVSet -currentUVSet -uvSet \"second\" box; select -cl; hilite box");
  scene.run("qxAutoUnwrap -unwrapType \"straight\"");
  CHECK(scene.shells("box") == 1);
  scene.run("polyUVSet -currentUVSet -uvSet \"map1\" box");
  CHECK(scene.texts("polyEditUV -q box.map[*]") == first);
}

TEST_CASE("words it doesn't know, nothing to work on, and a user who stops it change nothing") {
  unwrapScene scene;
  scene.run("polySphere -n ball; polyCube -n box; select -r ball box");
  const std::uint64_t before = scene.hash();
  const std::size_t steps = scene.session->undo().itemCount();
  {
    const host::MessageCapture messages;
    scene.run("qxAutoUnwrap -unwrapType \"wild\"");
    CHECK(messages.text(host::MessageKind::Warning).find("wild") != std::string::npos);
  }
  CHECK(scene.session->undo().itemCount() == steps);
  CHECK(scene.hash() == before);
  host::requestCancel();
  CHECK(scene.failure("qxAutoUnwrap -unwrapType \"normal\"").find("nothing was changed") !=
        std::string::npos);
  host::clearCancel();
  CHECK(scene.hash() == before);
  scene.run("select -cl; hilite -u `ls -hl`");
  CHECK(scene.failure("qxAutoUnwrap -unwrapType \"normal\"").find("select a polygon mesh") !=
        std::string::npos);
}
