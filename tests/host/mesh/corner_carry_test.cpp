#include "host/mesh/corner_carry.h"

#include <doctest/doctest.h>

#include <cmath>

using namespace host;
using namespace host::mesh;

namespace {

/// A quad's corners with UVs at (0,0) (8,0) (8,4) (0,4); corner 4 of a second face shares UV 1.
UvSet sourceUvs() {
  return {"map1", {{0, 0}, {8, 0}, {8, 4}, {0, 4}}, {0, 1, 2, 3, 1, 2, kNone}};
}

/// New faces of these corner vertices.
Topology facesOf(const std::vector<std::vector<VertexId>>& faces) {
  Topology topology;
  for (const auto& face : faces) {
    topology.cornerVertices.insert(topology.cornerVertices.end(), face.begin(), face.end());
    topology.faceOffsets.push_back(static_cast<CornerId>(topology.cornerVertices.size()));
  }
  return topology;
}

using Blend = std::vector<CornerWeight>;

Vec2f uvAt(const UvSet& set, std::size_t corner) {
  return set.points[static_cast<std::size_t>(set.cornerIds[corner])];
}

}  // namespace

TEST_CASE("carry: a blend is the weighted mean of its parts, whatever its weights add up to") {
  for (const double size : {1.0, 0.01, 12.0, -3.0}) {
    CAPTURE(size);
    CornerSources corners;
    corners.add(Blend{{0, 0.25 * size}, {1, 0.75 * size}});
    corners.add(Blend{{0, 0.5 * size}, {1, 0.125 * size}, {2, 0.375 * size}});
    corners.add(Blend{{1, 0.25 * size}, {3, 0.5 * size}, {4, 0.25 * size}});  // 1 and 4: one UV
    const UvSet uvs = carryUvSet(sourceUvs(), facesOf({{0, 1, 2}}), corners);
    REQUIRE(uvs.cornerIds.size() == 3);
    CHECK(uvAt(uvs, 0) == Vec2f{6, 0});
    CHECK(uvAt(uvs, 1) == Vec2f{4, 1.5F});
    CHECK(uvAt(uvs, 2) == Vec2f{4, 2});
  }
}

TEST_CASE("carry: corners at one vertex share a new UV only where they blend alike") {
  CornerSources corners;
  const Blend near{{0, 0.75}, {1, 0.25}}, far{{0, 0.25}, {1, 0.75}};
  for (const Blend& blend : {near, far, near}) corners.add(blend);
  corners.add(Blend{{4, 1}, {0, 3}});  // the first's, from other corners and with other weights
  corners.add(near);                   // at another vertex
  corners.add(CornerId{2});
  const UvSet uvs = carryUvSet(sourceUvs(), facesOf({{5, 5, 5}, {5, 6, 7}}), corners);
  REQUIRE(uvs.cornerIds.size() == 6);
  CHECK(uvs.cornerIds[0] == uvs.cornerIds[2]);
  CHECK(uvs.cornerIds[0] == uvs.cornerIds[3]);
  CHECK(uvs.cornerIds[0] != uvs.cornerIds[1]);
  CHECK(uvs.cornerIds[0] != uvs.cornerIds[4]);
  CHECK(uvAt(uvs, 0) == Vec2f{2, 0});
  CHECK(uvAt(uvs, 1) == Vec2f{6, 0});
  CHECK(uvAt(uvs, 4) == Vec2f{2, 0});
  CHECK(uvAt(uvs, 5) == Vec2f{8, 4});
}

TEST_CASE("carry: parts without data leave the others their share; weights of zero share evenly") {
  CornerSources corners;
  corners.add(Blend{{0, 1}, {6, 8}, {1, 3}});
  corners.add(Blend{{0, 0}, {2, 0}});
  corners.add(Blend{{6, 5}, {3, 1}});
  const UvSet uvs = carryUvSet(sourceUvs(), facesOf({{0, 1, 2}}), corners);
  CHECK(uvAt(uvs, 0) == Vec2f{6, 0});
  CHECK(uvAt(uvs, 1) == Vec2f{4, 2});
  CHECK(uvAt(uvs, 2) == Vec2f{0, 4});
  // A corner without any takes the UVs from its whole face, colours only from itself.
  CornerSources open;
  for (const CornerId c : {0, 6, 1}) open.add(c);
  CHECK(carryUvSet(sourceUvs(), facesOf({{0, 1, 2}}), open).cornerIds ==
        std::vector<UvId>{kNone, kNone, kNone});
  const ColorSet colors{"c", 4, false, {{1, 0, 0, 0}, {0, 1, 0, 1}}, {0, 1, 0, 1, 1, 0, kNone}};
  const ColorSet carried = carryColorSet(colors, facesOf({{0, 1, 2}}), open);
  CHECK(carried.cornerIds == std::vector<Index>{0, kNone, 1});
}

TEST_CASE("carry: colours blend in all four channels, locked normals by direction") {
  const ColorSet colors{"c", 4, false, {{1, 0, 0.5F, 0}, {0, 1, 0.5F, 1}}, {0, 1, 0}};
  CornerSources corners;
  corners.add(Blend{{0, 3}, {1, 1}});
  corners.add(CornerId{0});
  corners.add(CornerId{1});
  const ColorSet carried = carryColorSet(colors, facesOf({{0, 1, 2}}), corners);
  CHECK(carried.colors[static_cast<std::size_t>(carried.cornerIds[0])] ==
        Color4f{0.75F, 0.25F, 0.5F, 0.25F});

  const LockedNormals normals{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {1, 1, 0}};
  CornerSources listed;
  listed.add(Blend{{0, 3}, {1, 4}});
  listed.add(Blend{{0, 1}, {2, 1}});
  listed.add(CornerId{1});
  const LockedNormals blended = carryLockedNormals(normals, listed);
  CHECK(blended.locked == std::vector<std::uint8_t>{1, 0, 1});
  CHECK(blended.normals[0].x == doctest::Approx(0.6));
  CHECK(blended.normals[0].y == doctest::Approx(0.8));
  CHECK(blended.normals[2] == Vec3f{0, 1, 0});
}
