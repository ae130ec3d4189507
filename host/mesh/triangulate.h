#pragma once

#include <array>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::mesh {

/// Three positions in a loop, in the loop's direction.
using LoopTriangle = std::array<Index, 3>;

/// Splits a loop of n points into exactly n - 2 triangles, appended to `out`. The same loop always
/// gives the same triangles.
///
/// Triangles and convex loops make a fan from the first point; a quad that is concave or folded is
/// cut along its other diagonal; a loop of 5 to 32 points that is not plane (the corner of a bevel)
/// takes the triangulation of least area, which has no dents, cubic in its points; other loops are
/// cut ear by ear in the plane across `normal` (the loop's Newell normal). Loops that cross
/// themselves or have no area still give n - 2 triangles, some of them turned over or flat. Linear
/// for convex loops; for others an ear costs the reflex points near it.
void triangulateLoop(std::span<const Vec3> loop, const Vec3& normal,
                     std::vector<LoopTriangle>& out);

/// Triangles of a whole mesh as corners. Face f has faceSize(f) - 2 of them, from firstTriangle(f)
/// on.
struct Triangulation {
  std::vector<std::array<CornerId, 3>> triangles;
  [[nodiscard]] static Index firstTriangle(const Mesh& mesh, FaceId f) {
    return mesh.firstCorner(f) - 2 * f;
  }
};

/// Triangulates all faces as triangulateLoop does. Linear in corners for convex faces, parallel.
[[nodiscard]] Triangulation triangulate(const Mesh& mesh);
/// The triangles of one face, as positions in its loop (add firstCorner for corners).
[[nodiscard]] std::vector<LoopTriangle> triangulateFace(const Mesh& mesh, FaceId face);

}  // namespace host::mesh
