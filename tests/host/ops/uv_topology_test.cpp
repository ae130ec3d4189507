#include "host/ops/uv/uv_topology.h"

#include <algorithm>

#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

TEST_CASE("uvTopology: shells partition the faces and UVs that the set has") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces | Has::Uvs)) {
    INFO(entry.name);
    const Mesh mesh = entry.build();
    for (int set = 0; set < mesh.uvSetCount(); ++set) {
      const UvTopology topology = uvTopology(mesh, set);
      Index faces = 0;
      for (Index s = 0; s < topology.shellCount; ++s)
        for (const FaceId f : topology.faces.of(s)) {
          CHECK(topology.shellOfFace[at(f)] == s);
          for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
            CHECK(topology.shellOfUv[at(mesh.cornerUv(set, c))] == s);
          ++faces;
        }
      const auto without = std::ranges::count(topology.shellOfFace, kNone);
      CHECK(faces + without == mesh.faceCount());
    }
  }
}

TEST_CASE(
    "uvTwins and uvBorderLoops: twins answer each other, loops hold every border corner once") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces | Has::Uvs, Has::NonManifold)) {
    INFO(entry.name);
    const Mesh mesh = entry.build();
    const mesh::Adjacency& adjacency = mesh.adjacency();
    const std::vector<CornerId> twins = uvTwins(mesh, 0);
    std::vector<int> visits(twins.size(), 0);
    for (const std::vector<CornerId>& loop : uvBorderLoops(mesh, 0, twins))
      for (std::size_t i = 0; i < loop.size(); ++i) {
        ++visits[at(loop[i])];
        const CornerId next = loop[(i + 1) % loop.size()];
        CHECK(mesh.cornerUv(0, adjacency.nextCorner(loop[i])) == mesh.cornerUv(0, next));
      }
    for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
      if (twins[at(c)] >= 0) CHECK(twins[at(twins[at(c)])] == c);
      const bool isBorder = mesh.cornerUv(0, c) != kNone && twins[at(c)] == kUvBorder;
      CHECK(visits[at(c)] == (isBorder ? 1 : 0));
    }
  }
}
