#include <maya/MFnDependencyNode.h>
#include <maya/MPlug.h>

#include <cstdio>

#include "tests/toolkit/uv_hand.h"

// The mesh that UVs are laid out as, its link to the user's mesh by a node in the history, and the
// attributes that a mesh gets to be marked.

namespace {

constexpr const char* kBall = "file -f -new; polySphere -n ball -sx 8 -sy 6";

std::string selectAndBuild(const char* mesh) {
  return std::string("select ") + mesh + "; qxBuildUVObject";
}

}  // namespace

TEST_CASE("qxBuildUVObject: every UV is a vertex at ten units a UV unit, far below, in any unit") {
  toolkitSession toolkit;
  struct row {
    const char* unit;
    double centimetres;
  };
  for (const row& each : {row{"cm", 1.0}, row{"mm", 0.1}, row{"in", 2.54}, row{"m", 100.0}}) {
    CAPTURE(each.unit);
    toolkit.run(
        std::string("file -f -new; currentUnit -l ") + each.unit +
        "; polyPlane -n pl -sx 2 -sy 1 -ch 0; polyEditUV -r false -u 0.5 -v 0.25 pl.map[4];" +
        selectAndBuild("pl"));
    const MFnMesh flat(toolkitSession::path("polySurface1"));
    REQUIRE(flat.numVertices() == 6);
    CHECK(flat.numPolygons() == 2);
    MPoint at;
    REQUIRE(flat.getPoint(4, at, MSpace::kObject));
    CHECK(at.isEquivalent(MPoint(5 * each.centimetres, 0, 2.5 * each.centimetres),
                          1e-5 * each.centimetres));
    REQUIRE(flat.getPoint(4, at, MSpace::kWorld));
    CHECK(std::fabs(at.y + 10004 * each.centimetres) < 1e-3 * each.centimetres);
    CHECK(isNear(uvOf("pl", 4), 0.5, 0.25));
    toolkit.run("currentUnit -l cm");
  }
}

TEST_CASE("qxBuildUVObject: undo and redo are exact, whatever history and offsets the mesh has") {
  toolkitSession toolkit;
  for (const char* history : {" -ch 1", " -ch 0"})
    for (const char* tweaked : {"", "; move -r 0 0.3 0 ball.vtx[7]"})
      for (const char* group : {"", "; group -em -w -n uvGroup_QXMT"}) {
        CAPTURE(std::string(history) + tweaked + group);
        toolkit.run(std::string(kBall) + history + tweaked + group + "; select ball");
        const MPointArray points = toolkitSession::points("ball");
        const uvArrays uvs = uvsOf("ball");
        const std::uint64_t before = toolkit.hash();
        toolkit.run("qxBuildUVObject");
        CHECK(uvsOf("ball") == uvs);
        const MPointArray now = toolkitSession::points("ball");
        for (unsigned int i = 0; i < points.length(); ++i) CHECK(now[i] == points[i]);
        const std::uint64_t built = toolkit.hash();
        toolkit.run("move -r 1 0 2 polySurface1.vtx[3]");
        const std::uint64_t moved = toolkit.hash();
        for (int round = 0; round < 2; ++round) {
          toolkit.run("undo");
          CHECK(toolkit.hash() == built);
          toolkit.run("undo");
          CHECK(toolkit.hash() == before);
          toolkit.run("redo");
          toolkit.run("redo");
          CHECK(toolkit.hash() == moved);
        }
      }
}

TEST_CASE(
    "qxBuildUVObject: a second run finds the link and builds nothing; a group takes both in") {
  toolkitSession toolkit;
  toolkit.run(std::string(kBall) + "; group -em -w -n uvGroup_QXMT; " + selectAndBuild("ball"));
  toolkit.run("if (size(`listRelatives -c uvGroup_QXMT`) != 2) error \"not in the group\"");
  toolkit.run("if (size(`ls -sl`) != 0) error \"something is selected\"");
  toolkit.run("if (`getAttr polySurfaceShape2.intermediateObject` != 1) error \"it shows\"");
  toolkit.run("polySoftEdge -a 180 ball; " + selectAndBuild("ball"));
  toolkit.run("if (size(`ls -type uvEditNode`) != 1) error \"built twice\"");
  // Another mesh that takes from the first is not linked by that.
  toolkit.run("polySphere -n other -sx 8 -sy 6; transferAttributes -uvs 2 ball other;" +
              selectAndBuild("other"));
  toolkit.run("if (size(`ls -type uvEditNode`) != 2) error \"not built\"");
}

TEST_CASE("qxBuildUVObject: what it can't lay out stops it before anything is made") {
  toolkitSession toolkit;
  toolkit.run(std::string(kBall) + "; polyCube -n bad; polyMapDel bad.f[2]; select ball bad");
  const std::uint64_t before = toolkit.hash();
  for (const char* command : {"qxBuildUVObject", "addUVNodeMessageCmd"}) {
    CHECK(toolkit.failure(command).find(
              "at least one face on object |bad|badShape does not have uvs!\n") !=
          std::string::npos);
    toolkit.run("select ball persp");
    CHECK(toolkit.failure(command).find("build uv object cmd only works on polygon meshes\n") !=
          std::string::npos);
    toolkit.run("select ball bad");
    CHECK(toolkit.hash() == before);
  }
}

TEST_CASE("uvEditNode: vertices of the UV object are the UVs; where the object stands is not") {
  toolkitSession toolkit;
  toolkit.run(std::string(kBall) + "; " + selectAndBuild("ball"));
  const uvArrays before = uvsOf("ball");
  toolkit.run("move -r 1 0 -2 polySurface1.vtx[3]");
  CHECK(isNear(uvOf("ball", 3), before.u[3] + 0.1, before.v[3] - 0.2));
  toolkit.run("undo");
  CHECK(uvsOf("ball") == before);
  toolkit.run("move 30 -4 7 polySurface1; group -n above polySurface1; move 5 5 5 above");
  CHECK(uvsOf("ball") == before);
  toolkit.run("rename polySurface1 layout; scale 2 2 2 layout");
  CHECK(isNear(uvOf("ball", 3), before.u[3] * 2, before.v[3] * 2));
  toolkit.run("setAttr uvEditNode1.nodeState 1");
  CHECK(uvsOf("ball") == before);
  toolkit.run("setAttr uvEditNode1.nodeState 0");
  toolkit.run("delete layout");
  CHECK(uvsOf("ball") == before);
  toolkit.run("undo");
  CHECK(isNear(uvOf("ball", 3), before.u[3] * 2, before.v[3] * 2));
}

TEST_CASE("uvEditNode: it writes its own UV set, though another is current") {
  toolkitSession toolkit;
  toolkit.run(std::string(kBall) + "; " + selectAndBuild("ball") +
              "; polyUVSet -copy -uvSet map1 -newUVSet second ball;"
              "polyUVSet -currentUVSet -uvSet second ball");
  const uvArrays second = uvsOf("ball");
  toolkit.run("move -r 1 0 0 polySurface1.vtx[3]");
  CHECK(uvsOf("ball") == second);
  toolkit.run("polyUVSet -currentUVSet -uvSet map1 ball");
  CHECK(isNear(uvOf("ball", 3), second.u[3] + 0.1, second.v[3]));
}

TEST_CASE(
    "uvEditNode: edits of the UV object that change its vertices give the edit or a message") {
  toolkitSession toolkit;
  toolkit.run("polyPlane -n pl -sx 3 -sy 3; polyMapCut pl.e[*]; " + selectAndBuild("pl"));
  const uvArrays before = uvsOf("pl");
  REQUIRE(before.u.length() == 36);
  // Welded vertices weld their UVs.
  toolkit.run("polyMergeVertex -d 0.001 polySurface1.vtx[*]");
  CHECK(MFnMesh(toolkitSession::path("pl")).numUVs() == 16);
  toolkit.run("undo");
  CHECK(uvsOf("pl") == before);
  struct row {
    const char* edit;
    const char* message;
  };
  for (const row& each : {row{"polySmooth -dv 1 polySurface1", "cannot assign uvs on Mesh"},
                          row{"polyDelFacet polySurface1.f[0:4]", "cannot assign uvs on Mesh"},
                          row{"polyDelVertex polySurface1.vtx[6]", "cannot assign uvs on Mesh"}}) {
    CAPTURE(each.edit);
    const host::MessageCapture capture;
    toolkit.run(each.edit);
    CHECK(uvsOf("pl") == before);
    CHECK(capture.text(host::MessageKind::Error).find(each.message) != std::string::npos);
    toolkit.run("undo");
    CHECK(uvsOf("pl") == before);
  }
}

TEST_CASE("The nodes that write UVs are saved and opened with their data, copied and baked") {
  toolkitSession toolkit;
  const std::string file = std::string(std::tmpnam(nullptr)) + ".ma";
  struct row {
    const char* make;
    const char* type;
  };
  for (const row& each : {row{"qxBuildUVObject; move -r 1 0 2 polySurface1.vtx[3]", "uvEditNode"},
                          row{"uvRatio -uv 3", "qxModifyUvsNode"}}) {
    CAPTURE(each.type);
    toolkit.run(std::string(kBall) + "; select ball; " + each.make);
    const uvArrays made = uvsOf("ball");
    toolkit.run("file -rename \"" + file +
                "\"; file -f -s -type mayaAscii; file -f -new; file -f -o \"" + file + "\"");
    CHECK(uvsOf("ball") == made);
    toolkit.run(std::string("if (size(`ls -type ") + each.type + "`) != 1) error \"not saved\"");
    toolkit.run("duplicate -n plain ball");
    CHECK(uvsOf("plain") == made);
    toolkit.run("duplicate -un -n deep ball");
    CHECK(uvsOf("deep") == made);
    toolkit.run("delete -ch ball");
    CHECK(uvsOf("ball") == made);
    toolkit.run("if (size(`listHistory -pdo 1 ball`) != 0) error \"history is left\"");
    toolkit.run("delete -ch deep");
    toolkit.run(std::string("if (size(`ls -type ") + each.type +
                "`) != 0) error \"a node is left\"");
  }
  std::remove(file.c_str());
}

TEST_CASE("qxLoadUvObjectForMarking: load ties a mesh to its locator, unLoad cuts it, both undo") {
  toolkitSession toolkit;
  toolkit.run(std::string(kBall) + "; polyCube -n box; select ball.f[3] box");
  const std::uint64_t before = toolkit.hash();
  toolkit.run("qxLoadUvObjectForMarking -loadType \"load\"");
  const std::uint64_t loaded = toolkit.hash();
  for (const char* attribute :
       {"qxUvSelLocatorMessage", "qxUvMarkedEdgeArray", "qxUvAncorPointArray",
        "qxEdgeSelectionArray", "qxVertSelectionArray"})
    CHECK(MFnDependencyNode(toolkitSession::path("ball").node()).hasAttribute(attribute));
  toolkit.run(
      "if (size(`ls -type uvSelectionLocator`) != 2) error \"locators\";"
      "if (!`isConnected ballShape.qxUvMarkedEdgeArray qxUVSelectLocator.edgeArray`) error "
      "\"edges\";"
      "if (!`isConnected qxUVSelectLocator.message ballShape.qxUvSelLocatorMessage`) error \"tie\";"
      "if (!`isConnected qxUVSelectLocator.mOutPosition ballShape.visibility`) error \"shown\";"
      "if (`getAttr qxUVSelectLocator.template` != 1) error \"template\"");
  toolkit.run("qxLoadUvObjectForMarking -loadType \"load\"");
  toolkit.run("if (size(`ls -type uvSelectionLocator`) != 2) error \"loaded twice\"");
  toolkit.run("undo");
  CHECK(toolkit.hash() == loaded);
  toolkit.run("select ball.e[3] ball.e[7]; qxMarkUVInformation -me true; select ball");
  const std::uint64_t marked = toolkit.hash();
  toolkit.run("qxLoadUvObjectForMarking -loadType \"unLoad\"");
  toolkit.run("if (size(`ls -type uvSelectionLocator`) != 1) error \"a locator is left\"");
  toolkit.run("undo");
  CHECK(toolkit.hash() == marked);
  toolkit.run("redo");
  toolkit.run("qxLoadUvObjectForMarking -loadType \"load\"");
  for (int step = 0; step < 4; ++step) toolkit.run("undo");
  CHECK(toolkit.hash() == before);
  toolkit.run("select ball");
  const std::uint64_t plain = toolkit.hash();
  toolkit.run("qxLoadUvObjectForMarking -loadType \"unLoad\"");
  CHECK(toolkit.hash() == plain);
}

TEST_CASE("qxLoadUvObjectForMarking: a mesh that can't be tied is left as it was") {
  toolkitSession toolkit;
  toolkit.run(std::string(kBall) + "; setAttr -lock 1 ballShape.visibility; select ball");
  const std::uint64_t before = toolkit.hash();
  const std::string said = toolkit.failure("qxLoadUvObjectForMarking -loadType \"load\"");
  CHECK(said.find("cannot connect the mOutPositionPlug to the visibilityMeshPlug") !=
        std::string::npos);
  CHECK(toolkit.hash() == before);
  toolkit.failure("qxLoadUvObjectForMarking -loadType \"later\"");
  toolkit.failure("qxLoadUvObjectForMarking");
  toolkit.run("select persp");
  toolkit.failure("qxLoadUvObjectForMarking -loadType \"load\"");
}
