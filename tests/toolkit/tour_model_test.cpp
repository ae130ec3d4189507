#include <algorithm>

#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "host/mesh/shells.h"
#include "host/mesh/walks.h"
#include "host/nodes/mesh_shape.h"
#include "tests/toolkit/toolkit_session.h"

// The tour's model: a chain of selections, bevels, loops, extrusions, colours and the smooth, as a
// script strings them together.

namespace {

host::mesh::Mesh meshOf(toolkitSession& toolkit, const char* transform) {
  const auto path = toolkit.session->document().dagPath(transform);
  REQUIRE(path.has_value());
  auto mesh = host::nodes::evaluatedMesh(*path->toShape().node());
  REQUIRE(mesh.has_value());
  return *mesh;
}

/// Closed, consistently wound pieces of the same kind before and after.
void checkSolid(const host::mesh::Mesh& mesh) {
  CHECK(host::mesh::check(mesh).empty());
  CHECK(host::mesh::findShells(mesh).count == 5);
  host::Index open = 0;
  for (host::EdgeId e = 0; e < mesh.edgeCount(); ++e)
    open += mesh.adjacency().isManifoldEdge(e) ? 0 : 1;
  CHECK(open == 0);
  CHECK(host::mesh::allBorders(mesh).empty());
  CHECK(mesh.vertexCount() - mesh.edgeCount() + mesh.faceCount() == 2 * 5);
}

}  // namespace

TEST_CASE(
    "the tour's camera: five closed parts through every step, smoothed with colours, undone in one "
    "go") {
  toolkitSession toolkit;
  const host::MessageCapture quiet;
  toolkit.run("source \"qxmt_tour.mel\"; qxmtTourCamera_QXMT_Proc(\"\");");
  const host::mesh::Mesh model = meshOf(toolkit, "camera");
  checkSolid(model);
  CHECK(model.vertexCount() > 1000);
  toolkit.run("select camera");
  const std::uint64_t before = toolkit.hash();
  toolkit.run("qxESmoothCmd -nd 0");
  const host::mesh::Mesh smooth = meshOf(toolkit, "camera1");
  checkSolid(smooth);
  CHECK(smooth.faceCount() == 4 * model.cornerCount());
  REQUIRE(smooth.currentColorSet() >= 0);
  const auto& colors = smooth.colorSet(smooth.currentColorSet());
  CHECK(std::find(colors.cornerIds.begin(), colors.cornerIds.end(), host::kNone) ==
        colors.cornerIds.end());
  // Hard edges are kept: the camera hardly loses any of its size.
  const auto reach = [](const host::mesh::Mesh& mesh) {
    float x = 0, z = 0;
    for (const host::math::Vec3f& p : mesh.points()) x = std::max(x, p.x), z = std::max(z, p.z);
    return x + z;
  };
  CHECK(reach(smooth) > 0.98f * reach(model));
  toolkit.run("undo");
  CHECK(toolkit.hash() == before);
}
