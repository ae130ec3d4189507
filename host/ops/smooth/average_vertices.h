#pragma once

#include <span>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

struct AverageVerticesOptions {
  int iterations = 10;
  double alpha = 0.5;  ///< how much of the way back counts from the first place, not the last one
  double beta = 0.7;   ///< how much of the way back is the vertex's own, not its neighbours'
};

/// Evens out vertices without shrinking what they make up.
///
/// Each round takes every listed vertex to the mean of its neighbours along edges and part of the
/// way back (Vollmer, Mencl and Mueller, Improved Laplacian Smoothing of Noisy Surface Meshes,
/// 1999). Vertices without edges stay. Topology and corner data stay. Linear in the mesh for the
/// first round, in the vertices for the others.
/// @return an error for a bad id or number, with `mesh` untouched.
Result<void> averageVertices(Mesh& mesh, std::span<const VertexId> vertices,
                             const AverageVerticesOptions& options = {});

}  // namespace host::ops
