// Edits of UVs in place, merging, straightening, and transfer between meshes.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/math/euler.h"
#include "host/mesh/shells.h"
#include "host/ops/query/uv_place.h"
#include "host/ops/uv/cut_uvs.h"
#include "host/ops/uv/edit_uvs.h"
#include "host/ops/uv/straighten_uvs.h"
#include "host/ops/uv/transfer_attributes.h"
#include "host/ops/uv/uv_ids.h"
#include "host/ops/uv/uv_rectangle.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

mesh::Vec2f placeOf(const Mesh& mesh, int set, CornerId c) {
  return mesh.uvSet(set).points[at(mesh.cornerUv(set, c))];
}

}  // namespace

TEST_CASE("UVs are scaled, then turned about the pivot, then moved") {
  mesh::UvSet set{"map1", {{2, 1}}, {}};
  UvTransform transform;
  transform.pivotU = 1;
  transform.pivotV = 1;
  transform.scaleU = 3;
  transform.angle = std::numbers::pi / 2;
  transform.shiftV = 10;
  transformUvs(set, std::vector<UvId>{0}, transform);
  CHECK(set.points[0].u == doctest::Approx(1));
  CHECK(set.points[0].v == doctest::Approx(14));
}

TEST_CASE("normalising fills the square, keeps the ratio when asked, and parts single faces") {
  Mesh mesh = zoo::gridMesh(4, 2);
  UvTransform away;
  away.scaleU = 6;
  away.scaleV = 2;
  away.shiftU = 5;
  transformUvs(mesh.editUvSet(0), uvsOfFaces(mesh, 0, zoo::allFaces(mesh)), away);
  Mesh kept = mesh, stretched = mesh, single = mesh;
  normalizeUvs(kept, 0, zoo::allFaces(kept));
  UvBox box = uvBox(kept.uvSet(0), uvsOfFaces(kept, 0, zoo::allFaces(kept)));
  CHECK(box.width() == doctest::Approx(1));
  CHECK(box.height() == doctest::Approx(1.0 / 3));
  CHECK(box.centerV() == doctest::Approx(0.5));
  normalizeUvs(stretched, 0, zoo::allFaces(stretched), {.keepsRatio = false});
  box = uvBox(stretched.uvSet(0), uvsOfFaces(stretched, 0, zoo::allFaces(stretched)));
  CHECK(box.width() == doctest::Approx(1));
  CHECK(box.height() == doctest::Approx(1));
  normalizeUvs(single, 0, zoo::allFaces(single), {.isCollective = false});
  CHECK(mesh::findUvShells(single, 0).count == 8);
  requireSound(single);
}

TEST_CASE("flipping twice gives the map back, and turns its area over in between") {
  Mesh mesh = zoo::gridMesh(3, 3);
  const auto faces = zoo::allFaces(mesh);
  const double area = uvArea(mesh, 0, 4);
  for (const FlipUvsOptions options : {FlipUvsOptions{false, true}, FlipUvsOptions{true, false}}) {
    Mesh flipped = mesh;
    flipUvs(flipped, 0, faces, options);
    CHECK(uvArea(flipped, 0, 4) == doctest::Approx(-area));
    flipUvs(flipped, 0, faces, options);
    for (CornerId c = 0; c < mesh.cornerCount(); ++c)
      CHECK(placeOf(flipped, 0, c).u == doctest::Approx(placeOf(mesh, 0, c).u));
  }
}

TEST_CASE("merging joins UVs of one vertex within the distance, and of no two vertices") {
  Mesh mesh = zoo::gridMesh(5, 5);
  unshareUvs(mesh, 0, zoo::allFaces(mesh));
  CHECK(mesh.uvSet(0).points.size() == 100);
  Mesh far = mesh;
  std::vector<UvId> all(100);
  for (UvId uv = 0; uv < 100; ++uv) all[at(uv)] = uv;
  CHECK(mergeUvs(mesh, 0, all, 0) == 64);
  requireSound(mesh);
  CHECK(mesh::findUvShells(mesh, 0).count == 1);
  // However far: as many UVs as vertices, each at its vertex' corners.
  CHECK(mergeUvs(far, 0, all, 100) == 64);
  for (CornerId c = 0; c < far.cornerCount(); ++c) CHECK(placeOf(far, 0, c) == placeOf(mesh, 0, c));
  UvTransform away;
  away.shiftU = 0.5;
  Mesh moved = zoo::gridMesh(2, 1);
  cutUvs(moved, 0, zoo::allEdges(moved));
  transformUvs(moved.editUvSet(0), uvsOfFaces(moved, 0, std::vector<FaceId>{1}), away);
  std::vector<UvId> some(moved.uvSet(0).points.size());
  for (std::size_t uv = 0; uv < some.size(); ++uv) some[uv] = static_cast<UvId>(uv);
  CHECK(mergeUvs(moved, 0, some, 0.4) == 0);
  CHECK(mergeUvs(moved, 0, some, 0.6) == 2);
}

TEST_CASE("edits of UVs over the zoo keep meshes sound, without UVs too") {
  overZoo([](Mesh mesh, std::mt19937& random, double chance) {
    const int set = mesh.currentUvSet();
    for (int round = 0; round < 8; ++round) {
      const auto faces = randomIds<FaceId>(random, mesh.faceCount(), chance);
      const auto uvs =
          randomIds<UvId>(random, static_cast<Index>(mesh.uvSet(set).points.size()), chance);
      switch (random() % 7) {
        case 0:
          unitizeUvs(mesh, set, faces);
          break;
        case 1:
          unshareUvs(mesh, set, faces);
          break;
        case 2:
          deleteUvs(mesh, set, faces);
          break;
        case 3:
          normalizeUvs(mesh, set, faces, {.isCollective = random() % 2 == 0});
          break;
        case 4:
          mergeUvs(mesh, set, uvs, 0.3);
          break;
        case 5:
          flipUvs(mesh, set, faces);
          break;
        default:
          (void)straightenUvBorders(mesh, set, uvs);
          break;
      }
      requireSound(mesh);
    }
  });
}

TEST_CASE("a straightened border lies on the line between its ends, or on an arc") {
  Mesh mesh = zoo::gridMesh(8, 2);
  // The first row of UVs, bent.
  std::vector<UvId> row;
  for (UvId uv = 0; uv < 9; ++uv) row.push_back(uv);
  for (const UvId uv : row)
    mesh.editUvSet(0).points[at(uv)].v += 0.05f * static_cast<float>(uv * (8 - uv));
  const Mesh bent = mesh;
  const auto moved = straightenUvBorders(mesh, 0, row);
  REQUIRE(moved);
  CHECK(*moved == 7);
  const auto& points = mesh.uvSet(0).points;
  for (const UvId uv : row) CHECK(points[at(uv)].v == doctest::Approx(points[0].v));
  CHECK(points[0] == bent.uvSet(0).points[0]);
  CHECK(points[8] == bent.uvSet(0).points[8]);
  CHECK(points[12] == bent.uvSet(0).points[12]);
  // Evenly spaced on a half circle.
  Mesh round = bent;
  REQUIRE(straightenUvBorders(round, 0, row, {.curvature = 1, .preserveLength = 0}));
  const auto middle = mesh::Vec2f{(points[0].u + points[8].u) / 2, points[0].v};
  for (const UvId uv : row) {
    const mesh::Vec2f p = round.uvSet(0).points[at(uv)];
    CHECK(std::hypot(p.u - middle.u, p.v - middle.v) == doctest::Approx(0.5).epsilon(1e-4));
  }
  // Gaps are bridged, a border that is listed all around has no ends.
  Mesh gapped = bent;
  const auto bridged = straightenUvBorders(gapped, 0, std::vector<UvId>{0, 3, 8});
  REQUIRE(bridged);
  CHECK(*bridged == 7);
  std::vector<UvId> all(bent.uvSet(0).points.size());
  for (std::size_t uv = 0; uv < all.size(); ++uv) all[uv] = static_cast<UvId>(uv);
  CHECK(!straightenUvBorders(gapped, 0, all));
}

TEST_CASE("UVs transferred between coinciding surfaces agree, seams included") {
  Mesh source = zoo::gridMesh(4, 4);
  cutUvs(source, 0,
         std::vector<EdgeId>{source.adjacency().findEdge(2, 7), source.adjacency().findEdge(7, 12),
                             source.adjacency().findEdge(12, 17),
                             source.adjacency().findEdge(17, 22)});
  UvTransform away;
  away.shiftU = 5;
  std::vector<FaceId> right;
  for (FaceId f = 0; f < 16; ++f)
    if (f % 4 >= 2) right.push_back(f);
  transformUvs(source.editUvSet(0), uvsOfFaces(source, 0, right), away);
  REQUIRE(mesh::findUvShells(source, 0).count == 2);
  // The same sheet, cut finer and moved elsewhere in the world.
  Mesh target = zoo::gridMesh(8, 8);
  std::vector<math::Vec3f> points;
  for (const auto& p : target.points()) points.push_back({p.x / 2, p.y, p.z / 2});
  target.setPoints(points);
  for (const TransferSearch search : {TransferSearch::Closest, TransferSearch::AlongNormal}) {
    Mesh taken = target;
    TransferAttributesOptions options;
    options.uvs = TransferSets::All;
    options.search = search;
    const math::Matrix4 there =
        math::eulerToMatrix({0.3, 1, 2}) * math::Matrix4::translation({1, 2, 3});
    std::vector<math::Vec3f> turned;
    for (VertexId v = 0; v < taken.vertexCount(); ++v)
      turned.push_back(math::transformPoint(taken.point(v), there).toFloat());
    taken.setPoints(turned);
    options.toSource = *math::inverse(there);
    options.fromSource = there;
    REQUIRE(transferAttributes(taken, source, options));
    requireSound(taken);
    CHECK(mesh::findUvShells(taken, 0).count == 2);
    for (FaceId f = 0; f < 64; ++f)
      CHECK(uvArea(taken, 0, f) == doctest::Approx(uvArea(source, 0, 0) / 4).epsilon(1e-3));
  }
}

TEST_CASE("transfer by numbers copies, and says where the faces differ") {
  Mesh source = zoo::gridMesh(3, 2), target = zoo::gridMesh(3, 2);
  flipUvs(source, 0, zoo::allFaces(source));
  source.addUvSet({"second", {}, {}});
  Mesh other = target;
  REQUIRE(copyByTopology(target, source, {.points = true}));
  CHECK(target == source);
  TransferAttributesOptions options;
  options.uvs = TransferSets::Current;
  options.space = TransferSpace::Component;
  REQUIRE(transferAttributes(other, source, options));
  CHECK(other.uvSet(0) == source.uvSet(0));
  Mesh small = zoo::gridMesh(2, 2), before = small;
  CHECK(!copyByTopology(small, source));
  CHECK(!transferAttributes(small, source, options));
  CHECK(small == before);
}

TEST_CASE("the rectangle between two vertices fills the square, face up, and no other faces") {
  Mesh mesh = zoo::gridMesh(5, 4);
  const Mesh before = mesh;
  // Columns 1 to 3, rows 1 to 2, from either diagonal.
  for (const auto& [a, b] : {std::pair<VertexId, VertexId>{7, 22}, {10, 19}, {22, 7}}) {
    const auto faces = mapUvRectangle(mesh, 0, a, b);
    REQUIRE(faces);
    requireSound(mesh);
    CHECK(faces->size() == 6);
    for (const FaceId f : *faces) {
      const UvBox box = uvBox(mesh.uvSet(0), uvsOfFaces(mesh, 0, std::vector<FaceId>{f}));
      CHECK(box.width() * box.height() == doctest::Approx(1.0 / 6));
      CHECK(uvArea(mesh, 0, f) > 0);
    }
    CHECK(placeOf(mesh, 0, 0) == placeOf(before, 0, 0));
  }
  const Mesh mapped = mesh;
  CHECK(!mapUvRectangle(mesh, 0, 7, 7));
  CHECK(!mapUvRectangle(mesh, 0, 7, 8));
  CHECK(mesh == mapped);
}
