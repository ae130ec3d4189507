// A plug-in's transform with a matrix of its own moves what hangs below it.
#include <maya/MFnTransform.h>

#include <cmath>
#include <filesystem>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Swing : ApiScene {
  Swing() {
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/swing_transform.so"));
    run("createNode swingTransform -n swing; createNode transform -n seat -p swing;"
        "setAttr seat.t 0 -2 0; setAttr swing.t 1 10 0;");
  }
  ~Swing() { session.reset(); }
  host::MessageCapture quiet;
  /// Where the seat is in the world.
  MPoint seat() { return MPoint() * path("seat").inclusiveMatrix(); }
};

}  // namespace

TEST_CASE_FIXTURE(Swing, "a matrix of its own moves children and shapes, with undo and redo") {
  CHECK(seat().isEquivalent(MPoint(1, 8, 0), 1e-9));
  run("setAttr swing.swing 90");
  CHECK(seat().isEquivalent(MPoint(1, 10, -2), 1e-9));
  run("undo");
  CHECK(seat().isEquivalent(MPoint(1, 8, 0), 1e-9));
  run("redo");
  CHECK(seat().isEquivalent(MPoint(1, 10, -2), 1e-9));
  run("setAttr swing.ty 0");
  CHECK(seat().isEquivalent(MPoint(1, 0, -2), 1e-9));
  CHECK(text("float $at[] = `xform -q -ws -t seat`; $at[2]") == "-2");
  run("polyCube -n box -ch 0; parent -r box seat;");
  CHECK(text("float $box[] = `exactWorldBoundingBox box`; $box[5]") == "-1.5");
}

TEST_CASE_FIXTURE(Swing, "the class holds what it is given within its limit, and may refuse it") {
  run("setAttr swing.swing 400");
  CHECK(text("getAttr swing.swing") == "90");
  CHECK(seat().isEquivalent(MPoint(1, 10, -2), 1e-9));
  CHECK(text("catch(`setAttr swing.swing (1e308 * 10)`)") == "1");
  CHECK(text("getAttr swing.swing") == "90");
  run("undo");
  CHECK(text("getAttr swing.swing") == "0");
  // What arrives by a connection is held as well.
  run("createNode transform -n crank; connectAttr crank.tx swing.swing; setAttr crank.tx -45");
  CHECK(seat().isEquivalent(MPoint(1, 10 - std::sqrt(2.0), std::sqrt(2.0)), 1e-9));
  run("setAttr crank.tx -300");
  CHECK(seat().isEquivalent(MPoint(1, 10, 2), 1e-9));
}

TEST_CASE_FIXTURE(Swing, "copies and files have the matrix of their values") {
  run("setAttr swing.swing 90; duplicate -n other swing; setAttr other.tx 5");
  CHECK(text("float $at[] = `xform -q -ws -t \"other|seat\"`; $at[0] + \" \" + $at[2]") == "5 -2");
  const std::string file = (std::filesystem::temp_directory_path() / "qxmt_swing.ma").string();
  run("delete other; file -f -rename \"" + file +
      "\"; file -f -save -type mayaAscii; file -f -open \"" + file + "\"");
  std::filesystem::remove(file);
  CHECK(seat().isEquivalent(MPoint(1, 10, -2), 1e-9));
  MFnTransform transform(path("swing"));
  CHECK(transform.transformationMatrix().isEquivalent(path("swing").inclusiveMatrix()));
}
