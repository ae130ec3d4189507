// Scene files keep what UV commands made: every node opens again, gives the same UVs to the bit,
// and still follows what feeds it.
#include <doctest/doctest.h>

#include <filesystem>
#include <string>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/mesh/check.h"
#include "host/mesh/hash.h"
#include "host/nodes/mesh_shape.h"

using namespace host;

namespace {

struct UvStep {
  const char* name;
  const char* nodeType;  ///< "" where no node is made
  const char* mel;       ///< on "ball", a sphere with history; "other" stands beside it
};

const UvStep kSteps[] = {
    {"planar", "polyPlanarProj",
     "polyPlanarProjection -md y -ro 10 20 30 -icx 0.2 -isu 0.5 -ra 15 ball.f[0:40]"},
    {"cylindrical", "polyCylProj", "polyCylindricalProjection -sc 1 -psu 360 -rx 30 ball.f[*]"},
    {"spherical", "polySphProj", "polySphericalProjection -isv 0.7 -sc 1 ball.f[20:70]"},
    {"automatic", "polyAutoProj",
     "polyAutoProjection -lm 1 -p 8 -o 0 -ps 0.4 -sc 1 -s 1 2 3 ball.f[*]"},
    {"a new set", "polyPlanarProj", "polyPlanarProjection -cm 1 -uvs seen -md b ball.f[*]"},
    {"moved", "polyMoveUV", "polyMoveUV -tu 0.5 -ra 30 -su 2 -pvu 0.3 -ran 0.5 ball.map[5:60]"},
    {"cut", "polyMapCut", "polyMapCut ball.e[10:30]; polyMapCut -e -mvr 0.3 polyMapCut1"},
    {"sewn", "polyMapSew", "polyMapCut ball.e[*]; polyMapSew ball.e[0:50]"},
    {"moved and sewn", "polyMapSewMove",
     "polyMapCut ball.e[*]; polyMapSewMove -lps 1 -nf 7 ball.e[0:70]"},
    {"deleted", "polyMapDel", "polyMapDel ball.f[3:9]"},
    {"merged", "polyMergeUV", "polyMergeUV -d 0.3 ball.map[*]"},
    {"normalized", "polyNormalizeUV", "polyNormalizeUV -nt 0 -pa 0 -nd 1 ball.f[0:20]"},
    {"flipped", "polyFlipUV", "polyFlipUV -ft 1 -l 0 ball.f[0:50]"},
    {"laid out", "polyLayoutUV", "polyLayoutUV -lm 1 -rbf 2 -ps 0.5 -se 2 -sc 2 ball"},
    {"straightened", "polyStraightenUVBorder",
     "polyStraightenUVBorder -c 0.4 -pl 0 -bo 0.2 -gt 2 ball.map[2:7]"},
    {"copied", "polyCopyUV", "polyCopyUV -cm 1 -uvs copied ball; polyFlipUV -uvs copied ball"},
    {"transferred by number", "polyTransfer", "polyTransfer -ao other ball"},
    {"transferred by place", "transferAttributes",
     "transferAttributes -uvs 2 -spa 0 -sx -1 -fuv 1 other ball"},
    {"unfolded", "polyOptUvs", "select -r ball.map[*]; unfold -i 40 -us 1 -s 0.1"},
    {"a rectangle", "polyUVRectangle", "polyUVRectangle ball.vtx[12] ball.vtx[39]"},
    {"tweaked", "polyTweakUV", "polyEditUV -u 0.25 -a 20 ball.map[3:30]"},
    {"forced", "polyTweakUV", "polyForceUV -unitize ball.f[4:30]"},
    {"several objects", "polyTweakUV", "select -r ball other; polyMultiLayoutUV -ps 0.4"},
    {"untangled", "polyTweakUV", "select -r ball.map[*]; untangleUV -mb circular"},
    {"pinned", "", "polyPinUV -v 0.5 ball.map[3:9]"},
    {"pinned with history", "polyPinUV", "polyPinUV -ch 1 ball.map[3:9]"},
};

void run(cmd::Session& session, const std::string& line) {
  const auto done = session.executeLine(line);
  CAPTURE(line);
  REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
}

std::uint64_t meshHash(cmd::Session& session) {
  const auto shape = session.document().node("ballShape");
  REQUIRE(shape);
  const auto mesh = nodes::evaluatedMesh(**shape);
  REQUIRE_MESSAGE(mesh.has_value(), (mesh ? std::string() : mesh.error().message));
  CHECK(mesh::check(*mesh).empty());
  return mesh::hashMesh(*mesh);
}

std::string pins(cmd::Session& session) {
  const auto weights = session.executeLine(
      "string $w = \"\"; for ($x in `polyPinUV -q -v "
      "ball.map[*]`) $w += $x + \" \"; $w");
  return weights ? weights->toText().value_or("") : "none";
}

}  // namespace

TEST_CASE("scene files keep every UV node: the same UVs to the bit, and live afterwards") {
  const std::string file = (std::filesystem::temp_directory_path() / "qxmt_uv_files.ma").string();
  for (const UvStep& step : kSteps) {
    CAPTURE(std::string(step.name));
    const MessageCapture quiet;
    const auto session = builtins::makeSession();
    run(*session,
        "polySphere -n other -sx 12 -sy 8; polyFlipUV other; polySphere -n ball -sx 12 -sy 8");
    const std::uint64_t plain = meshHash(*session);
    run(*session, step.mel);
    const std::uint64_t made = meshHash(*session);
    const std::string held = pins(*session);
    if (*step.nodeType != '\0') {
      const auto count =
          session->executeLine("size(`ls -type " + std::string(step.nodeType) + "`)");
      REQUIRE(count);
      CHECK(count->toInt().value_or(0) > 0);
    }
    CHECK((made != plain || held.find('1') != std::string::npos ||
           held.find("0.5") != std::string::npos));
    run(*session, "file -rename \"" + file + "\"; file -f -save -type mayaAscii");
    // What becomes of it when its source changes, before and after the way through the file.
    run(*session, "setAttr polySphere2.radius 2.5");
    const std::uint64_t changed = meshHash(*session);
    CHECK(changed != made);
    run(*session, "file -f -new; file -f -open \"" + file + "\"");
    CHECK(meshHash(*session) == made);
    CHECK(pins(*session) == held);
    run(*session, "setAttr polySphere2.radius 2.5");
    CHECK(meshHash(*session) == changed);
  }
  std::filesystem::remove(file);
}
