#include <fstream>
#include <sstream>

#include "tests/host/io/ma/ma_fixture.h"
#include "tests/zoo/mesh_zoo.h"
#include "host/mesh/check.h"
#include "host/mesh/hash.h"

using namespace host;
using io::test::MaScene;

namespace {

/// Saves the scene, opens that twice over, and wants the same of it every time.
void checkRoundTrip(MaScene& scene) {
  const std::string saved = scene.save();
  MaScene opened;
  opened.open(saved);
  const std::string again = opened.save();
  CHECK(again == saved);
  MaScene reopened;
  reopened.open(again);
  CHECK(reopened->hash() == opened->hash());
}

}  // namespace

TEST_CASE("saved scenes: every zoo mesh comes back bit for bit") {
  for (const zoo::ZooMesh& each : zoo::meshZoo()) {
    CAPTURE(each.name);
    MaScene scene;
    dg::Node& shape = scene.make("mesh", "theShape");
    REQUIRE(nodes::setStoredMesh(shape, each.mesh));
    MaScene opened;
    opened.open(scene.save());
    const mesh::Mesh mesh = opened.mesh("theShape");
    CHECK(mesh::check(mesh).empty());
    CHECK(mesh.topology() == each.mesh.topology());
    CHECK(std::ranges::equal(mesh.points(), each.mesh.points()));
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
      if (!each.has(zoo::Has::LockedNormals))
        REQUIRE(mesh.isEdgeSmooth(e) == each.mesh.isEdgeSmooth(e));
      REQUIRE(mesh.edgeCrease(e) == each.mesh.edgeCrease(e));
    }
    REQUIRE(mesh.uvSetCount() == each.mesh.uvSetCount());
    for (int s = 0; s < mesh.uvSetCount(); ++s) {
      CHECK(mesh.uvSet(s).name == each.mesh.uvSet(s).name);
      CHECK(mesh.uvSet(s).points == each.mesh.uvSet(s).points);
      for (CornerId c = 0; c < mesh.cornerCount(); ++c)
        REQUIRE(mesh.cornerUv(s, c) == each.mesh.cornerUv(s, c));
    }
    REQUIRE(mesh.colorSetCount() == each.mesh.colorSetCount());
    for (int s = 0; s < mesh.colorSetCount(); ++s)
      CHECK(mesh.colorSet(s) == each.mesh.colorSet(s));
    CHECK(std::ranges::equal(mesh.invisibleFaces(), each.mesh.invisibleFaces()));
    for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
      REQUIRE(mesh.isNormalLocked(c) == each.mesh.isNormalLocked(c));
      if (mesh.isNormalLocked(c))
        REQUIRE(mesh.lockedNormals().normals[static_cast<std::size_t>(c)] ==
                each.mesh.lockedNormals().normals[static_cast<std::size_t>(c)]);
    }
    checkRoundTrip(opened);
  }
}
