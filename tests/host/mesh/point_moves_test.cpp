#include "host/mesh/point_moves.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tests/zoo/mesh_zoo.h"

using namespace host;
using mesh::Mesh;
using mesh::Vec3f;

namespace {

Mesh sheet() {
  return zoo::meshZoo(zoo::Has::Faces | zoo::Has::Uvs).front().build();
}

}  // namespace

TEST_CASE("movePoints: meshes that were handed out keep what they are, however others move on") {
  // Every mesh is a value: against a plain copy of each one's points, in any order of moves, other
  // edits and forgetting.
  std::mt19937 random(11);
  struct State {
    Mesh mesh;
    std::vector<Vec3f> wanted;
    int uvs = 0;
  };
  std::vector<State> states;
  const Mesh first = sheet();
  const auto count = static_cast<unsigned>(first.vertexCount());
  REQUIRE(count > 3);
  states.push_back({first, {first.points().begin(), first.points().end()}, 0});
  for (int round = 0; round < 4000; ++round) {
    State next = states[random() % states.size()];
    if (random() % 20 == 0) {
      next.wanted[1] = {static_cast<float>(round), 0, 0};
      next.mesh.editPoints()[1] = next.wanted[1];
    } else if (random() % 20 == 0) {
      next.mesh.addUvSet({"more", {}, {}});
      ++next.uvs;
    } else {
      std::vector<VertexId> vertices;
      std::vector<Vec3f> places;
      for (int i = 0; i < 3; ++i) {
        const auto v = static_cast<VertexId>(random() % count);
        if (std::ranges::count(vertices, v) > 0) continue;
        vertices.push_back(v);
        places.push_back({static_cast<float>(round), static_cast<float>(i), 0});
        next.wanted[at(v)] = places.back();
      }
      mesh::movePoints(next.mesh, vertices, places);
    }
    if (states.size() < 6)
      states.push_back(next);
    else
      states[random() % states.size()] = next;
    for (const State& state : states) {
      REQUIRE(std::ranges::equal(state.mesh.points(), state.wanted));
      REQUIRE(state.mesh.uvSetCount() == first.uvSetCount() + state.uvs);
    }
    for (const State& a : states)
      for (const State& b : states) {
        const auto moved = mesh::movedSince(a.mesh, b.mesh);
        if (!moved) continue;
        for (std::size_t v = 0; v < a.wanted.size(); ++v)
          if (a.wanted[v] != b.wanted[v])
            REQUIRE(std::ranges::count(*moved, static_cast<VertexId>(v)) > 0);
      }
  }
}

TEST_CASE("movePoints: a state that nobody looks at any more is brought up to date, not copied") {
  Mesh held = sheet();
  std::vector<const Vec3f*> places;
  for (int step = 0; step < 12; ++step) {
    const Mesh seen = held;  // as a view keeps it till its next frame
    const VertexId v = step % 3;
    const Vec3f place{static_cast<float>(step), 0, 0};
    mesh::movePoints(held, {&v, 1}, {&place, 1});
    REQUIRE(mesh::movedSince(held, seen).has_value());
    CHECK(mesh::movedSince(held, seen)->size() == 1);
    if (std::ranges::find(places, held.points().data()) == places.end())
      places.push_back(held.points().data());
  }
  CHECK(places.size() <= 2);
}
