#include "host/viewport/mesh_patch.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <random>
#include <set>

#include "host/mesh/point_moves.h"
#include "host/viewport/vertex_patches.h"
#include "tests/zoo/mesh_zoo.h"

using namespace host;
using namespace host::viewport;

namespace {

/// What a corner of a triangle shows.
struct Shown {
  Vec3f place, normal;
  friend bool operator==(const Shown&, const Shown&) = default;
};

std::vector<Shown> trianglesOf(const MeshBuffers& buffers) {
  std::vector<Shown> shown;
  for (const std::uint32_t place : *buffers.triangles)
    shown.push_back({buffers.surface->positions[place], buffers.surface->normals[place]});
  return shown;
}

}  // namespace

TEST_CASE("mesh buffers: mended around what has moved they show what buffers built anew show") {
  std::mt19937 random(5);
  std::uniform_real_distribution<float> number(-0.4F, 0.4F);
  for (const zoo::ZooMesh& zoo : zoo::meshZoo(zoo::Has::Faces))
    for (const bool flat : {false, true}) {
      CAPTURE(zoo.name);
      CAPTURE(flat);
      const SurfaceContent content{.flat = flat};
      mesh::Mesh mesh = zoo.build();
      MeshDrawCache cache;
      cache.buffers(1, mesh, content);
      for (int round = 0; round < 12; ++round) {
        const int count = 1 + round % 4;
        std::vector<VertexId> vertices;
        std::vector<Vec3f> places;
        for (int i = 0; i < count; ++i) {
          const auto v = static_cast<VertexId>(random() % at(mesh.vertexCount()));
          if (std::ranges::count(vertices, v) > 0) continue;
          vertices.push_back(v);
          const Vec3f now = mesh.points()[at(v)];
          places.push_back(
              {now.x + number(random), now.y + number(random), now.z + number(random)});
        }
        // Told of by who moved them, or to be found by looking.
        if (round % 2 == 0) {
          mesh::movePoints(mesh, vertices, places);
        } else {
          for (std::size_t i = 0; i < vertices.size(); ++i)
            mesh.editPoints()[at(vertices[i])] = places[i];
        }
        CHECK(cache.box(1, mesh).min == buildMeshBuffers(mesh, content).box.min);
        const MeshBuffers& mended = cache.buffers(1, mesh, content);
        const MeshBuffers fresh = buildMeshBuffers(mesh, content);
        REQUIRE(trianglesOf(mended) == trianglesOf(fresh));
        CHECK(mended.points->positions == fresh.points->positions);
        CHECK(mended.points->normals == fresh.points->normals);
        CHECK(mended.box.min == fresh.box.min);
        CHECK(mended.box.max == fresh.box.max);
      }
    }
}

TEST_CASE("mesh buffers: one vertex of many that was written in place builds nothing anew") {
  const auto meshes = zoo::meshZoo(zoo::Has::Faces | zoo::Has::Closed);
  const auto largest = std::ranges::max_element(
      meshes, {}, [](const zoo::ZooMesh& zoo) { return zoo.build().vertexCount(); });
  mesh::Mesh mesh = largest->build();
  MeshDrawCache cache;
  const VertexData* const before = cache.buffers(1, mesh).points.get();
  mesh.editPoints()[1].x += 1e-3F;
  const MeshBuffers& after = cache.buffers(1, mesh);
  CHECK(after.points.get() == before);
  CHECK(after.points->positions[1].x == mesh.points()[1].x);
}

TEST_CASE(
    "mesh buffers: arrays that somebody holds are left alone; patches tell what has changed") {
  mesh::Mesh mesh = zoo::meshZoo(zoo::Has::Faces | zoo::Has::Closed).front().build();
  MeshDrawCache cache;
  const VertexDataPtr held = cache.buffers(1, mesh).points;
  const std::vector<Vec3f> before = held->positions;
  const VertexId v = 0;
  Vec3f place{9, 9, 9};
  mesh::movePoints(mesh, {&v, 1}, {&place, 1});
  CHECK(cache.buffers(1, mesh).points != held);
  CHECK(held->positions == before);
  // Many small moves: the patches kept tell of each vertex that differs from the revision before.
  if (mesh.vertexCount() < 5) return;
  std::vector<Vec3f> copy = cache.buffers(1, mesh).points->positions;
  std::uint64_t revision = patchesOf(cache.buffers(1, mesh).points).revision;
  for (int round = 0; round < 5; ++round) {
    place.x += 1;
    mesh::movePoints(mesh, {&v, 1}, {&place, 1});
    const MeshBuffers& now = cache.buffers(1, mesh);
    const VertexPatches& told = patchesOf(now.points);
    CHECK(told.revision == revision + 1);
    for (const VertexPatch& patch : told.patches)
      if (patch.revision > revision)
        for (const std::uint32_t changed : patch.vertices)
          copy[changed] = now.points->positions[changed];
    revision = told.revision;
    CHECK(copy == now.points->positions);
  }
}
