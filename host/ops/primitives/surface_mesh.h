#pragma once

#include "host/math/nurbs_surface.h"
#include "host/mesh/mesh.h"

namespace host::ops {

struct SurfaceMeshOptions {
  int divisionsU = 3;  ///< pieces of a span
  int divisionsV = 3;
  bool triangles = false;  ///< two triangles for each quad
};

/// Cuts a curved surface into quads along lines of its parameters.
///
/// Vertices: row by row along U, each along V; closed and periodic directions meet in one row, and
/// rows that come to one place (poles) are one vertex with triangles around it. Faces in the same
/// order, with the surface's normals. UVs run over the unit square by the parameters, not shared
/// across the seam. Linear in the faces.
/// @return an error for a bad surface or divisions below 1
[[nodiscard]] Result<mesh::Mesh> surfaceMesh(const math::NurbsSurface& surface,
                                             const SurfaceMeshOptions& options = {});

}  // namespace host::ops
