#include "tests/toolkit/uv_hand.h"

// The link of a UV object and its mesh by callbacks.

namespace {

std::string linkedBall(const char* history) {
  return std::string("file -f -new; polySphere -n ball -sx 8 -sy 6") + history +
         "; polyEditUV -su 0.3 -sv 0.7 ball.map[*]; select ball; addUVNodeMessageCmd";
}

}  // namespace

TEST_CASE("addUVNodeMessageCmd: a drag is on the mesh at once, and so are its undo and redo") {
  toolkitSession toolkit;
  for (const char* history : {" -ch 1", " -ch 0"}) {
    CAPTURE(history);
    toolkit.run(std::string("file -f -new; polySphere -n ball -sx 8 -sy 6") + history +
                "; polyEditUV -su 0.3 -sv 0.7 ball.map[*]; select ball");
    const uvArrays uvs = uvsOf("ball");
    const std::uint64_t before = toolkit.hash();
    toolkit.run("addUVNodeMessageCmd");
    CHECK(uvsOf("ball") == uvs);
    const std::uint64_t linked = toolkit.hash();
    toolkit.run("move -r 1 0 -2 polySurface1.vtx[3]");
    CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.1, uvs.v[3] - 0.2));
    const std::uint64_t moved = toolkit.hash();
    toolkit.run("move -r 0 0 5 polySurface1.vtx[3:5]; undo");
    CHECK(toolkit.hash() == moved);
    toolkit.run("undo");
    CHECK(uvsOf("ball") == uvs);
    CHECK(toolkit.hash() == linked);
    toolkit.run("undo");
    CHECK(toolkit.hash() == before);
    toolkit.run("redo");
    toolkit.run("redo");
    CHECK(toolkit.hash() == moved);
    toolkit.run("move -r 1 0 0 polySurface1.vtx[3]");
    CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.2, uvs.v[3] - 0.2));
    // Twice over is once.
    toolkit.run(
        "select ball; addUVNodeMessageCmd; if (size(`ls -type mesh`) != 3) error \"twice\"");
  }
}

TEST_CASE("addUVNodeMessageCmd: moving, renaming and parenting the object, and UV sets") {
  toolkitSession toolkit;
  toolkit.run(linkedBall(" -ch 1"));
  const uvArrays uvs = uvsOf("ball");
  toolkit.run("rename polySurface1 layout");
  toolkit.run("move -r 2 0 0 layout");
  CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.2, uvs.v[3]));
  toolkit.run("group -n above layout");
  CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.2, uvs.v[3]));
  toolkit.run("undo");
  toolkit.run("undo");
  CHECK(uvsOf("ball") == uvs);
  toolkit.run(
      "polyUVSet -copy -uvSet map1 -newUVSet second ball;"
      "polyUVSet -currentUVSet -uvSet second ball; move -r 1 0 0 layout.vtx[3]");
  CHECK(isNear(uvOf("ball", 3), uvs.u[3], uvs.v[3]));
  toolkit.run("polyUVSet -currentUVSet -uvSet map1 ball");
  CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.1, uvs.v[3]));
}

TEST_CASE("addUVNodeMessageCmd: edits that change the vertices are refused with a message, once") {
  toolkitSession toolkit;
  for (const char* history : {" -ch 1", " -ch 0"})
    for (const char* edit : {"polyMergeVertex -d 3 polySurface1.vtx[*]", "polySmooth polySurface1",
                             "polyDelFacet polySurface1.f[0:30]"}) {
      CAPTURE(std::string(history) + edit);
      toolkit.run(linkedBall(history));
      const uvArrays uvs = uvsOf("ball");
      const host::MessageCapture capture;
      toolkit.run(std::string(edit) + "; move -r 1 0 0 polySurface1.vtx[0]");
      CHECK(uvsOf("ball") == uvs);
      CHECK(capture.text(host::MessageKind::Error) ==
            "cannot set uvs on Mesh |ball|ballShape ..number of points do not match\n");
      toolkit.run("undo");
      toolkit.run("move -r 1 0 0 polySurface1.vtx[3]");
      CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.1, uvs.v[3]));
    }
}

TEST_CASE("addUVNodeMessageCmd: links outlive deletions that are undone, and nothing else") {
  toolkitSession toolkit;
  for (const char* history : {" -ch 1", " -ch 0"}) {
    CAPTURE(history);
    toolkit.run(linkedBall(history));
    const uvArrays uvs = uvsOf("ball");
    toolkit.run("delete polySurface1; undo; move -r 1 0 0 polySurface1.vtx[3]");
    CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.1, uvs.v[3]));
    toolkit.run("delete ball; move -r 1 0 0 polySurface1.vtx[3]; undo; undo");
    CHECK(isNear(uvOf("ball", 3), uvs.u[3] + 0.1, uvs.v[3]));
    toolkit.run(
        "move -r 1 0 0 polySurface1.vtx[3]; delete -ch ball; move -r 1 0 0 polySurface1.vtx[4]");
    toolkit.run("delete polySurface1 polySurface2; flushUndo; select ball; addUVNodeMessageCmd");
    const uvArrays left = uvsOf("ball");
    toolkit.run("move -r 1 0 0 polySurface1.vtx[3]");
    CHECK(isNear(uvOf("ball", 3), left.u[3] + 0.1, left.v[3]));
  }
}

TEST_CASE("addUVNodeMessageCmd: ten meshes follow ten objects, also into a new scene") {
  toolkitSession toolkit;
  toolkit.run(
      "string $all[]; int $i; for ($i = 0; $i < 10; ++$i) { polySphere -n (\"ball\" + $i) -sx 6 "
      "-sy 4;"
      " $all[$i] = \"ball\" + $i; } select $all; addUVNodeMessageCmd");
  std::vector<uvArrays> before;
  for (int i = 0; i < 10; ++i) before.push_back(uvsOf(("ball" + std::to_string(i)).c_str()));
  toolkit.run("string $shapes[] = `ls -type mesh \"polySurface*\"`;");
  toolkit.run("move -r 1 0 0 polySurface1.vtx[2] polySurface19.vtx[5]");
  for (int i = 0; i < 10; ++i) {
    const uvArrays now = uvsOf(("ball" + std::to_string(i)).c_str());
    CAPTURE(i);
    CHECK(largestStep(before[static_cast<std::size_t>(i)], now) ==
          doctest::Approx(i == 0 || i == 9 ? 0.1 : 0.0).epsilon(1e-4));
  }
  toolkit.run("file -f -new; polySphere -n ball -sx 8 -sy 6; select ball; addUVNodeMessageCmd;");
  const uvArrays uvs = uvsOf("ball");
  toolkit.run("move -r 1 0 0 polySurface1.vtx[2]");
  CHECK(largestStep(uvs, uvsOf("ball")) == doctest::Approx(0.1).epsilon(1e-4));
}

TEST_CASE("The module goes while links are alive: the objects stay and drive nothing") {
  toolkitSession toolkit;
  toolkit.run(linkedBall(" -ch 1"));
  const uvArrays uvs = uvsOf("ball");
  toolkit.run("unloadPlugin -f qxModelingToolkit; move -r 1 0 0 polySurface1.vtx[3]");
  CHECK(uvsOf("ball") == uvs);
}
