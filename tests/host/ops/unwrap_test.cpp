#include "host/ops/uv/unwrap.h"

#include <numeric>

#include "host/mesh/shells.h"
#include "host/ops/uv/seams.h"
#include "host/ops/uv/separate_uvs.h"
#include "host/ops/uv/untangle_uvs.h"
#include "tests/host/ops/ops_testing.h"

using namespace host;
using namespace host::ops;
using namespace host::ops::testing;

namespace {

/// A row of three quads whose UVs go right, back over the first, and right again.
Mesh foldedStrip() {
  std::vector<mesh::Vec3f> points;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 2; ++j) points.push_back({static_cast<float>(i), static_cast<float>(j), 0});
  const std::vector<VertexId> vertices{0, 2, 3, 1, 2, 4, 5, 3, 4, 6, 7, 5};
  Mesh mesh = *mesh::buildMesh(points, std::vector<Index>{4, 4, 4}, vertices);
  mesh::UvSet set{.name = "map1", .points = {}, .cornerIds = {}};
  for (const float u : {0.0f, 0.5f, 0.1f, 0.6f})
    for (const float v : {0.0f, 0.5f}) set.points.push_back({u, v});
  set.cornerIds = copyIds<UvId>(vertices);
  mesh.setUvSet(0, std::move(set));
  return mesh;
}

std::vector<Index> allShells(const Mesh& mesh) {
  std::vector<Index> shells(static_cast<std::size_t>(mesh::findUvShells(mesh, 0).count));
  std::iota(shells.begin(), shells.end(), 0);
  return shells;
}

/// Whether some fan of a face has a triangle that stands against the face: reports count those.
bool hasBentFans(const Mesh& mesh) {
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const auto vertices = mesh.faceVertices(f);
    std::vector<mesh::Vec3> fan;
    mesh::Vec3 normal;
    const mesh::Vec3 first = mesh.point(vertices[0]);
    for (std::size_t k = 1; k + 1 < vertices.size(); ++k) {
      fan.push_back(
          math::cross(mesh.point(vertices[k]) - first, mesh.point(vertices[k + 1]) - first));
      normal += fan.back();
    }
    for (const mesh::Vec3& each : fan)
      if (math::dot(each, normal) < 0) return true;
  }
  return false;
}

}  // namespace

TEST_CASE("unwrap: every zoo mesh gets UVs without flips and overlaps, or a reason") {
  for (const zoo::ZooMesh& entry : zoo::meshZoo(Has::Faces))
    for (const bool cutsAngles : {false, true}) {
      INFO(entry.name);
      std::vector<Mesh> meshes{entry.build()};
      const Mesh before = meshes[0];
      std::vector<SeamFlags> seams{cutsAngles ? angleSeams(before, 40) : hardEdgeSeams(before)};
      const auto done = unwrap(meshes, std::move(seams), {.mapSize = 64});
      if (!done) {
        CHECK(!done.error().message.empty());
        CHECK(meshes[0] == before);
        continue;
      }
      requireSound(meshes[0]);
      const UvReport& report = done->front().report;
      CHECK(report.mirrored == 0);
      if (!hasBentFans(before)) {
        CHECK(report.flipped == 0);
        CHECK(report.overlapping == 0);
      }
      // Where pieces meet in a slit of one edge a shell may have to stay; it is named then.
      const auto bits = [](Has has) { return static_cast<std::uint32_t>(has); };
      if ((bits(entry.properties) & bits(Has::Manifold)) != 0) CHECK(done->front().left.empty());
    }
}

TEST_CASE("seamsBetween names what is no edge; seams of a folded strip part its faces") {
  const Mesh mesh = foldedStrip();
  const std::vector<std::pair<VertexId, VertexId>> good{{2, 3}}, bad{{0, 7}}, far{{0, 99}};
  const auto seams = seamsBetween(mesh, good);
  REQUIRE(seams);
  Mesh cut = mesh;
  cut.setUvSet(0, uvsBetweenSeams(mesh, *seams, "map1"));
  CHECK(mesh::findUvShells(cut, 0).count == 2);
  CHECK(seamsBetween(mesh, bad).error().message.find("0 and 7") != std::string::npos);
  CHECK(seamsBetween(mesh, far).error().message.find("99") != std::string::npos);
}

TEST_CASE("separateUvs parts folds, and overlaps where asked") {
  const std::vector<FaceId> faces{0, 1, 2};
  Mesh mesh = foldedStrip();
  CHECK(separateUvs(mesh, 0, faces, false) == 2);
  requireSound(mesh);
  Mesh upright = foldedStrip();
  for (std::size_t i = 4; i < 8; ++i) upright.editUvSet(0).points[i].u += 1.0f;
  CHECK(separateUvs(upright, 0, faces, true) == 0);
}

TEST_CASE("untangleUvs turns faces back, on a frame too") {
  for (const auto border : {UntangleOptions::MapBorder::Keep, UntangleOptions::MapBorder::Circular,
                            UntangleOptions::MapBorder::ShapeSquare}) {
    Mesh mesh = foldedStrip();
    UntangleOptions options;
    options.mapBorder = border;
    options.pinBorder = false;
    const auto done = untangleUvs(mesh, 0, allShells(mesh), {}, options);
    REQUIRE(done);
    REQUIRE_MESSAGE(done->left.empty(), (done->left.empty() ? "" : done->left[0]));
    CHECK(uvReport(mesh, 0)->flipped == 0);
    CHECK(uvReport(mesh, 0)->mirrored == 0);
  }
}
