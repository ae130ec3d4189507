// Random rows of UV commands over meshes of every kind: what they leave is sound, and undo and redo
// give every state back bit for bit.
#include <doctest/doctest.h>

#include <random>
#include <string>
#include <vector>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/mesh/check.h"
#include "host/nodes/mesh_shape.h"

using namespace host;

namespace {

const std::vector<std::string> kCommands = {
    "polyEditUV -u 0.1 -a 20 -su 1.5 X.map[*]",
    "polyEditUV -r 0 -u 0.5 X.map[1:3]",
    "polyEditUVShell -v 0.2 X.map[0]",
    "polyMapCut X.e[2:9]",
    "polyMapSew X.e[4:12]",
    "polyMapSewMove X.e[0:7]",
    "polyMapSewMove X.e[*]",
    "polyPlanarProjection -md y X.f[0:3]",
    "polyCylindricalProjection X",
    "polyAutoProjection -p 6 X",
    "polyForceUV -unitize X.f[1:2]",
    "polyFlipUV X.f[0:3]",
    "polyNormalizeUV -nt 0 X",
    "polyMergeUV -d 0.01 X.map[*]",
    "polyMapDel X.f[1]",
    "unfold -i 20 -ps 0 X.map[*]",
    "unfold -i 5 -ps 1 X.map[0:2]",
    "polyLayoutUV -l 2 -rbf 1 -ps 0.2 X",
    "polyLayoutUV -l 2 -se 2 X",
    "polyLayoutUV -l 1 -lm 0 X",
    "polyMultiLayoutUV -l 2 X",
    "untangleUV -mb circular X.map[*]",
    "untangleUV -relax harmonic X.map[*]",
    "polyMoveUV -tu 0.1 -ran 1 X.map[0:5]",
    "polyPinUV X.map[0:1]",
    "polyPinUV -ch 1 -v 0.5 X.map[2]",
    "polyPinUV -op 3 X",
    "polyCopyUV -uvi map1 -uvs other -cm 1 X",
    "polyUVStretchColor X",
    "polyUVSet -currentUVSet -uvSet map1 X",
    "polyUVSet -currentUVSet -uvSet other X",
    "polyDelFacet X.f[2]",
    "polySubdivideFacet -dv 1 X.f[0]",
    "DeleteHistory X",
};

const std::vector<std::string> kMeshes = {
    "polySphere -n X -sx 8 -sy 6 -ch 0",
    "polyTorus -n X -sx 8 -sy 6",
    "polyCube -n X -cuv 0 -ch 0; scale -r -2 1 3 X",
    "polyCylinder -n X -sx 7 -ch 0; polyDelEdge -ch 0 X.e[2]; instance -n Y X",
    "polyPlane -n X -sx 4 -sy 4 -ch 0; polyEditUV -su 0 -sv 0 X.map[*]",
    "polyCube -n X -ch 0; scale -r 1 0 1 X.vtx[*]",
};

void checkMeshes(cmd::Session& session) {
  const auto found = session.document().resolve("X");
  REQUIRE(found);
  for (const scene::SelectionItem& item : found->items()) {
    const auto mesh = nodes::evaluatedMesh(*item.path.toShape().node());
    REQUIRE(mesh);
    CHECK(mesh::check(*mesh) == std::vector<std::string>{});
  }
}

}  // namespace

TEST_CASE("random rows of UV commands leave sound meshes and are taken back bit for bit") {
  const MessageCapture quiet;
  for (std::size_t kind = 0; kind < kMeshes.size(); ++kind) {
    CAPTURE(kMeshes[kind]);
    const auto session = builtins::makeSession();
    REQUIRE(session->executeLine(kMeshes[kind]));
    std::mt19937 random(static_cast<unsigned>(kind + 1));
    std::vector<std::uint64_t> hashes{session->document().hash()};
    std::size_t done = 0;
    for (int step = 0; step < 50; ++step) {
      const std::string& line = kCommands[random() % kCommands.size()];
      CAPTURE(line);
      const bool isDone = session->executeLine(line).has_value();
      const std::uint64_t now = session->document().hash();
      // What fails leaves everything as it was.
      if (!isDone) CHECK(now == hashes.back());
      done += isDone;
      if (now != hashes.back()) hashes.push_back(now);
      checkMeshes(*session);
    }
    CHECK(done > 15);
    for (int round = 0; round < 2; ++round) {
      const std::uint64_t last = session->document().hash();
      for (std::size_t i = hashes.size() - 1; i-- > 0;) {
        while (session->undo().canUndo() && session->document().hash() == hashes[i + 1])
          REQUIRE(session->undo().undo());
        CHECK(session->document().hash() == hashes[i]);
      }
      while (session->undo().canRedo()) REQUIRE(session->undo().redo());
      CHECK(session->document().hash() == last);
    }
  }
}
