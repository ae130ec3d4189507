#pragma once

#include <cmath>
#include <vector>

#include "host/mesh/mesh.h"

namespace bench {

/// A closed, bumpy torus of about `quads` quads, numbered row by row as primitives are: neither
/// flat nor uniform.
inline host::mesh::Mesh bumpyTorus(host::Index quads) {
  using host::Index;
  const auto across = static_cast<Index>(std::sqrt(quads / 2.0));
  const Index around = quads / across;
  std::vector<host::math::Vec3f> points;
  std::vector<host::VertexId> corners;
  for (Index i = 0; i < around; ++i)
    for (Index j = 0; j < across; ++j) {
      const double a = 2 * 3.14159265358979 * i / around, b = 2 * 3.14159265358979 * j / across;
      const double tube = 1 + 0.15 * std::sin(9 * a) * std::sin(5 * b);
      const double r = 3 + tube * std::cos(b);
      points.push_back(
          host::math::Vec3(r * std::cos(a), tube * std::sin(b), r * std::sin(a)).toFloat());
      const Index i1 = (i + 1) % around * across, j1 = (j + 1) % across;
      corners.insert(corners.end(), {i * across + j, i * across + j1, i1 + j1, i1 + j});
    }
  const std::vector<Index> counts(corners.size() / 4, 4);
  return *host::mesh::buildMesh(std::move(points), counts, corners);
}

}  // namespace bench
