#pragma once

#include <doctest/doctest.h>

#include <random>
#include <set>
#include <string>
#include <vector>

#include "host/mesh/adjacency.h"
#include "host/mesh/check.h"
#include "tests/zoo/mesh_zoo.h"

namespace host::ops::testing {

using mesh::Mesh;
using zoo::Has;

/// Fails with the sentences of check() when a mesh is not sound.
inline void requireSound(const Mesh& mesh) {
  const std::vector<std::string> faults = mesh::check(mesh);
  REQUIRE_MESSAGE(faults.empty(), (faults.empty() ? "" : faults.front()));
}

/// Some of the ids [0, count), each with the given chance.
template <AnyId Id>
std::vector<Id> randomIds(std::mt19937& random, Index count, double chance) {
  std::vector<Id> ids;
  for (Index i = 0; i < count; ++i)
    if (random() < chance * 4294967296.0) ids.push_back(i);
  return ids;
}

/// Calls `body(mesh, random, chance)` for every zoo mesh that has faces, with several densities of
/// selections.
template <class Body>
void overZoo(Body body, Has required = Has::Faces, Has excluded = Has::Anything) {
  std::mt19937 random(5);
  for (const zoo::ZooMesh& entry : zoo::meshZoo(required, excluded)) {
    INFO(entry.name);
    for (const double chance : {0.0, 0.1, 0.3, 0.6, 1.0}) {
      INFO(chance);
      body(entry.build(), random, chance);
    }
  }
}

/// The face loops as point positions, each starting at its smallest point: equal for meshes equal
/// up to ids.
inline std::multiset<std::vector<std::array<float, 3>>> geometryOf(const Mesh& mesh) {
  std::multiset<std::vector<std::array<float, 3>>> loops;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    std::vector<std::array<float, 3>> loop;
    for (const VertexId v : mesh.faceVertices(f)) {
      const auto p = mesh.points()[static_cast<std::size_t>(v)];
      loop.push_back({p.x, p.y, p.z});
    }
    std::rotate(loop.begin(), std::min_element(loop.begin(), loop.end()), loop.end());
    loops.insert(loop);
  }
  return loops;
}

}  // namespace host::ops::testing
