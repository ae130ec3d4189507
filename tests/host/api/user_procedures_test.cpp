// Procedures that a user names like commands change what scripts do, not what the API does.
#include <maya/MFileIO.h>
#include <maya/MFnDagNode.h>
#include <maya/MGlobal.h>
#include <maya/MSelectionMask.h>

#include <filesystem>

#include "tests/host/api/api_scene.h"

namespace {

/// A scene with a cube in which every command that the API could lean on has been taken over.
struct TakenOver : ApiScene {
  TakenOver() {
    run("polyCube -n box; select -cl; global int $hijacked;");
    for (const char* name : {"select", "selectMode", "selectType", "hilite", "duplicate",
                             "instance", "currentTime", "file", "menuItem", "deleteUI", "ls"})
      run(std::string("global proc ") + name + "() { global int $hijacked; $hijacked++; }");
  }
  ~TakenOver() { CHECK(run("$now = $hijacked").toInt().value() == 0); }
};

}  // namespace

TEST_CASE("selecting, modes and masks don't go through the user's procedures") {
  TakenOver scene;
  MSelectionList list;
  REQUIRE(list.add("box.f[0:2]"));
  REQUIRE(MGlobal::selectCommand(list));
  MSelectionList now;
  MGlobal::getActiveSelectionList(now);
  CHECK(ApiScene::textOf(now) == "box.f[0:2]");
  CHECK(scene.session->undo().undoName() == "select");
  MSelectionList more;
  REQUIRE(more.add("box.f[2:3]"));
  REQUIRE(MGlobal::selectCommand(more, MGlobal::kXORWithList));
  MGlobal::getActiveSelectionList(now);
  CHECK(ApiScene::textOf(now) == "box.f[0:1] box.f[3]");

  CHECK(MGlobal::selectionMode() == MGlobal::kSelectObjectMode);
  REQUIRE(MGlobal::setSelectionMode(MGlobal::kSelectComponentMode));
  CHECK(MGlobal::selectionMode() == MGlobal::kSelectComponentMode);
  MSelectionMask mask(MSelectionMask::kSelectMeshEdges);
  mask.addMask(MSelectionMask::kSelectMeshUVs);
  REQUIRE(MGlobal::setComponentSelectionMask(mask));
  const MSelectionMask read = MGlobal::componentSelectionMask();
  CHECK(read.intersects(MSelectionMask::kSelectMeshEdges));
  CHECK(read.intersects(MSelectionMask::kSelectMeshUVs));
  CHECK_FALSE(read.intersects(MSelectionMask::kSelectMeshVerts));
  REQUIRE(MGlobal::setObjectSelectionMask(MSelectionMask(MSelectionMask::kSelectMeshes)));
  CHECK(MGlobal::objectSelectionMask().intersects(MSelectionMask::kSelectMeshes));
  CHECK_FALSE(MGlobal::objectSelectionMask().intersects(MSelectionMask::kSelectCameras));
}

TEST_CASE("selectCommand takes a set's members, as the command does") {
  ApiScene scene;
  scene.run("polyCube -n box; sets -n some box.f[1:2]; select -cl");
  MSelectionList list;
  REQUIRE(list.add(ApiScene::node("some")));
  REQUIRE(MGlobal::selectCommand(list));
  MSelectionList now;
  MGlobal::getActiveSelectionList(now);
  CHECK(ApiScene::textOf(now) == "box.f[1:2]");
}

TEST_CASE("copies, time and files don't go through the user's procedures") {
  TakenOver scene;
  MFnDagNode box(ApiScene::node("box"));
  MStatus status;
  MFnDagNode copy(box.duplicate(false, false, &status));
  REQUIRE(status);
  CHECK(copy.name() == "box1");
  MFnDagNode instance(box.duplicate(true, false, &status));
  REQUIRE(status);
  CHECK(instance.childCount() == 1);
  CHECK(instance.child(0) == box.child(0));

  REQUIRE(MGlobal::viewFrame(12.5));
  CHECK(scene.run("getAttr time1.outTime").toFloat().value() == doctest::Approx(12.5));

  const std::string name = "it's a \"name\"; quit.ma";
  const auto file = std::filesystem::temp_directory_path() / name;
  REQUIRE(MFileIO::saveAs(file.c_str(), "mayaAscii", true));
  CHECK(std::filesystem::exists(file));
  CHECK(MFileIO::fileType() == "mayaAscii");
  REQUIRE(MFileIO::newFile(true));
  REQUIRE(MFileIO::open(file.c_str(), nullptr, true));
  CHECK(MFileIO::currentFile() == file.c_str());
  CHECK(ApiScene::path("box1").isValid());
  REQUIRE(MFileIO::newFile(true));
  REQUIRE(MFileIO::importFile(file.c_str(), nullptr, false, "space"));
  CHECK(ApiScene::path("space:box").isValid());
  std::filesystem::remove(file);
}
