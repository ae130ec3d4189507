#include "host/mesh/provenance.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <random>
#include <set>

#include "host/mesh/rebuild.h"
#include "tests/zoo/mesh_zoo.h"

namespace host::mesh {

namespace {

/// Origins of `count` components out of `sources` old ones, of all kinds of stretches.
Origins randomOrigins(std::mt19937& random, Index sources, int pieces) {
  Origins origins;
  for (int i = 0; i < pieces; ++i) {
    const auto source = static_cast<Index>(random() % static_cast<unsigned>(sources));
    const auto count = static_cast<Index>(1 + random() % 5);
    switch (random() % 4) {
      case 0:
        origins.addRun(source, std::min(count, sources - source));
        break;
      case 1:
        origins.addSame(source, count);
        break;
      case 2:
        origins.addSame(kNone, count);
        break;
      default:
        origins.add(source);
    }
  }
  return origins;
}

std::vector<Index> sourcesOf(const Origins& origins) {
  std::vector<Index> sources;
  for (Index i = 0; i < origins.size(); ++i) sources.push_back(origins.at(i));
  return sources;
}

}  // namespace

TEST_CASE("Sets of components follow random origins as looking each one up says") {
  std::mt19937 random(7);
  constexpr Index kSources = 60;
  for (int round = 0; round < 300; ++round) {
    Origins origins;
    if (round % 2 == 0) origins.addRun(0, static_cast<Index>(random() % kSources));
    const Origins rest = randomOrigins(random, kSources, static_cast<int>(random() % 20));
    for (const Index source : sourcesOf(rest)) origins.add(source);
    const std::vector<Index> sources = sourcesOf(origins);
    std::vector<std::vector<Index>> sets(4);
    for (Index i = 0; i < kSources; ++i) sets[random() % 4].push_back(i);
    sets.push_back({});
    const std::vector<std::span<const Index>> spans(sets.begin(), sets.end());
    const std::vector<CarriedIds> carried = carryIds(origins, spans);
    for (std::size_t s = 0; s < sets.size(); ++s) {
      std::vector<Index> expected;
      for (std::size_t i = 0; i < sources.size(); ++i)
        if (std::ranges::binary_search(sets[s], sources[i]))
          expected.push_back(static_cast<Index>(i));
      CAPTURE(round);
      CAPTURE(s);
      CHECK((carried[s].same ? sets[s] : carried[s].ids) == expected);
    }
  }
}

TEST_CASE("Origins put after one another are the origins of both steps") {
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    const Origins first = randomOrigins(random, 30, 12);
    const Origins second = randomOrigins(random, first.size(), 12);
    const Origins both = second.after(first);
    REQUIRE(both.size() == second.size());
    for (Index i = 0; i < both.size(); ++i)
      CHECK(both.at(i) == (second.at(i) == kNone ? kNone : first.at(second.at(i))));
  }
}

TEST_CASE("A trail follows rebuilt meshes step by step, and knows nothing of others") {
  const Mesh start = zoo::zooMesh("cube");
  const ProvenanceTrail trail(start);
  MeshRebuilder first(start);
  first.keepAllVertices();
  first.copyFaces(2, 6);
  const Mesh fewer = first.finish({.dropUnusedVertices = true}).mesh;
  MeshRebuilder second(fewer);
  second.keepAllVertices();
  second.copyFace(3);
  second.copyFace(1);
  const Mesh two = second.finish({.dropUnusedVertices = true}).mesh;
  const auto origin = trail.to(two);
  REQUIRE(origin);
  CHECK(sourcesOf(origin->faces) == std::vector<Index>{5, 3});
  for (VertexId v = 0; v < two.vertexCount(); ++v)
    CHECK(two.point(v) == start.point(origin->vertices.at(v)));
  for (EdgeId e = 0; e < two.edgeCount(); ++e) {
    const EdgeVertices now = two.edge(e), before = start.edge(origin->edges.at(e));
    CHECK(std::set<VertexId>{origin->vertices.at(now.a), origin->vertices.at(now.b)} ==
          std::set{before.a, before.b});
  }
  CHECK_FALSE(trail.to(zoo::zooMesh("tetrahedron")));
}

}  // namespace host::mesh
