// Meshes that follow joints, by the commands, in files, and for a plug-in that reads and writes
// weights.
#include <maya/MDoubleArray.h>
#include <maya/MFnSkinCluster.h>

#include <cmath>
#include <filesystem>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

/// A beam along x from 0 to 4 that two joints at 0 and 2 hold.
struct Beam : ApiScene {
  Beam() {
    REQUIRE(session->pluginLoader->load(QXMT_BINARY_DIR "/test_plugins/skin_weights.so"));
    run("polyCube -n beam -w 4 -h 1 -d 1 -sx 4 -ch 0; move -r 2 0 0 beam.vtx[0:19];"
        "select -cl; joint -n hip -p 0 0 0; joint -n knee -p 2 0 0;"
        "skinCluster -n skin -mi 1 hip beam;");
  }
  ~Beam() { session.reset(); }
  host::MessageCapture quiet;

  double number(const std::string& mel) { return run(mel).toFloat().value_or(-1e9); }
  MPoint place(const std::string& vertex) {
    run("float $at[] = `pointPosition -w " + vertex + "`;");
    return {number("$at[0]"), number("$at[1]"), number("$at[2]")};
  }
  /// A vertex at the end of the beam, and one at its beginning.
  const char* end = "beam.vtx[4]";
  const char* begin = "beam.vtx[0]";
};

}  // namespace

TEST_CASE_FIXTURE(Beam, "a bound mesh stays where it is, and follows its joints") {
  CHECK(place(end).isEquivalent(MPoint(4, -0.5, 0.5), 1e-6));
  run("setAttr knee.rz 90");
  CHECK(place(end).isEquivalent(MPoint(2.5, 2, 0.5), 1e-5));
  CHECK(place(begin).isEquivalent(MPoint(0, -0.5, 0.5), 1e-6));
  run("setAttr hip.ty 3");
  CHECK(place(begin).isEquivalent(MPoint(0, 2.5, 0.5), 1e-6));
  CHECK(place(end).isEquivalent(MPoint(2.5, 5, 0.5), 1e-5));
  run("setAttr skin.envelope 0.5");
  CHECK(place(begin).isEquivalent(MPoint(0, 1, 0.5), 1e-6));
  run("setAttr skin.envelope 1; setAttr skin.nodeState 1");
  CHECK(place(end).isEquivalent(MPoint(4, -0.5, 0.5), 1e-6));
}

TEST_CASE_FIXTURE(Beam, "weights mix, normalize, and stay what they are without normalizing") {
  run("setAttr knee.ty 2; skinPercent -tv knee 0.25 skin beam.vtx[0]");
  CHECK(place(begin).y == doctest::Approx(0));
  CHECK(number("skinPercent -q -t hip skin beam.vtx[0]") == doctest::Approx(0.75));
  run("undo");
  CHECK(place(begin).y == doctest::Approx(-0.5));
  run("redo; skinCluster -e -nw 0 skin; skinPercent -tv hip 0 skin beam.vtx[0]");
  CHECK(number("skinPercent -q -t knee skin beam.vtx[0]") == doctest::Approx(0.25));
  CHECK(place(begin).y == doctest::Approx(0));  // three quarters follow nothing
  run("skinCluster -e -nw 2 skin");
  CHECK(place(begin).y == doctest::Approx(1.5));
}

TEST_CASE_FIXTURE(Beam,
                  "dual quaternions keep the girth where matrices mixed half and half lose it") {
  run("skinPercent -tv knee 0.5 skin beam.vtx[2] beam.vtx[7] beam.vtx[12] beam.vtx[17];"
      "setAttr knee.rx 180");
  const auto girth = [&] { return std::hypot(place("beam.vtx[2]").y, place("beam.vtx[2]").z); };
  CHECK(girth() == doctest::Approx(0).epsilon(1e-6));
  run("skinCluster -e -sm 1 skin");
  CHECK(girth() == doctest::Approx(std::sqrt(0.5)));
  run("skinCluster -e -sm 2 skin");
  CHECK(girth() == doctest::Approx(0).epsilon(1e-6));
  run("setAttr skin.blendWeights[2] 1");
  CHECK(girth() == doctest::Approx(std::sqrt(0.5)));
}

TEST_CASE_FIXTURE(Beam, "turned and scaled objects are bound where they stand") {
  run("polyCube -n box -ch 0; setAttr box.r 0 90 0; setAttr box.s 2 1 -1; setAttr box.t 0 0 7;"
      "skinCluster -n other -tsb hip box;");
  const MPoint before = place("box.vtx[3]");
  run("setAttr hip.tx 5");
  CHECK(place("box.vtx[3]").isEquivalent(before + MVector(5, 0, 0), 1e-5));
}

TEST_CASE_FIXTURE(Beam, "influences come and go; unbinding leaves the mesh at rest") {
  CHECK(text("string $all[] = `skinCluster -q -inf skin`; $all[0] + \" \" + $all[1]") ==
        "hip knee");
  run("spaceLocator -n far; skinCluster -e -ai far skin; skinPercent -tv far 0.5 skin beam.vtx[4];"
      "setAttr far.tz 2");
  CHECK(place(end).z == doctest::Approx(1.5));
  run("skinCluster -e -ri far skin");
  CHECK(text("size(`skinCluster -q -inf skin`)") == "2");
  CHECK(place(end).z == doctest::Approx(0.5));
  run("setAttr knee.rz 90");
  run("skinCluster -e -ub skin");
  CHECK(text("objExists skin") == "0");
  CHECK(place(end).isEquivalent(MPoint(4, -0.5, 0.5), 1e-6));
  run("undo");
  CHECK(place(end).isEquivalent(MPoint(2.5, 2, 0.5), 1e-5));
}

TEST_CASE_FIXTURE(Beam, "a skin is saved and opened as it was") {
  const std::string file = (std::filesystem::temp_directory_path() / "qxmt_skin.ma").string();
  run("skinPercent -tv knee 0.25 skin beam.vtx[0]; setAttr knee.ty 2; file -f -rename \"" + file +
      "\"; file -f -save -type mayaAscii; file -f -open \"" + file + "\"");
  std::filesystem::remove(file);
  CHECK(place(begin).y == doctest::Approx(0));
  CHECK(text("nodeType skin") == "skinCluster");
}

TEST_CASE_FIXTURE(Beam, "a plug-in reads weights and writes them with undo of its own") {
  const std::string all = text("exportSkin");
  CHECK(all.substr(0, all.find(';')) == "0 hip=1");
  run("giveToJoint -sc skin -j knee -w 0.5 beam.vtx[0:1]");
  CHECK(text("exportSkin").substr(0, 19) == "0 hip=0.5 knee=0.5;");
  run("undo");
  CHECK(text("exportSkin") == all);
  run("redo; setAttr knee.ty 2");
  CHECK(place(begin).y == doctest::Approx(0.5));

  MFnSkinCluster skin(node("skin"));
  CHECK(skin.indexForInfluenceObject(path("knee")) == 1);
  MSelectionList points;
  MDoubleArray weights;
  CHECK(skin.getPointsAffectedByInfluence(path("hip"), points, weights));
  CHECK(weights.length() > 2);
  CHECK_FALSE(skin.getWeights(path("beam"), MObject(), 7, weights));
  CHECK_FALSE(skin.getWeights(path("hip"), MObject(), 0, weights));
}
