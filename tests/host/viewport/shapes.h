#pragma once

#include <vector>

#include "host/mesh/mesh.h"
#include "host/viewport/instance_id.h"
#include "host/viewport/scene_view.h"

namespace host::viewport::test {

inline mesh::Mesh build(std::vector<math::Vec3f> points, const std::vector<Index>& counts,
                        const std::vector<VertexId>& vertices) {
  return mesh::buildMesh(std::move(points), counts, vertices).value();
}

/// A cube of edge 2 about the origin; faces: front (+z), right (+x), back, left, top, bottom, wound
/// outwards.
inline mesh::Mesh cube() {
  return build({{-1, -1, 1},
                {1, -1, 1},
                {1, 1, 1},
                {-1, 1, 1},
                {-1, -1, -1},
                {1, -1, -1},
                {1, 1, -1},
                {-1, 1, -1}},
               {4, 4, 4, 4, 4, 4},
               {0, 1, 2, 3, 1, 5, 6, 2, 5, 4, 7, 6, 4, 0, 3, 7, 3, 2, 6, 7, 4, 5, 1, 0});
}

/// A flat grid of cells x cells unit quads in the plane z = 0, centred on the origin, facing +z.
inline mesh::Mesh grid(int cells) {
  std::vector<math::Vec3f> points;
  for (int y = 0; y <= cells; ++y)
    for (int x = 0; x <= cells; ++x)
      points.push_back({static_cast<float>(x) - static_cast<float>(cells) / 2,
                        static_cast<float>(y) - static_cast<float>(cells) / 2, 0});
  std::vector<VertexId> loops;
  for (int y = 0; y < cells; ++y)
    for (int x = 0; x < cells; ++x) {
      const VertexId corner = y * (cells + 1) + x;
      loops.insert(loops.end(), {corner, corner + 1, corner + cells + 2, corner + cells + 1});
    }
  return build(std::move(points), std::vector<Index>(static_cast<std::size_t>(cells * cells), 4),
               loops);
}

/// A shape of its own at its first place.
inline RenderMesh object(mesh::Mesh mesh, std::uint64_t shape, const Matrix4& world = {}) {
  RenderMesh result;
  result.id = instanceId(shape, 0);
  result.mesh = std::move(mesh);
  result.world = world;
  return result;
}

/// A 640 x 480 shaded view along -z from z = 10.
inline SceneView frontView() {
  SceneView scene;
  scene.port = {640, 480};
  lookAt(scene.camera, {0, 0, 10}, {0, 0, 0});
  return scene;
}

}  // namespace host::viewport::test
