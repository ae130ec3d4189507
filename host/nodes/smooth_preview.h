#pragma once

#include "host/base/result.h"
#include "host/dg/node.h"
#include "host/mesh/provenance.h"

namespace host::nodes {

/// What a mesh shape is shown as instead of its mesh while displaySmoothMesh is on.
struct SmoothPreview {
  int mode = 0;   ///< 0 off, 1 with the mesh's own wire as a cage, 2 alone
  int level = 2;  ///< divisions
  bool keepsBorder = false, keepsHardEdges = false, smoothsUvs = true;
  double continuity = 1;
  friend bool operator==(const SmoothPreview&, const SmoothPreview&) = default;
};
[[nodiscard]] SmoothPreview smoothPreviewOf(dg::Node& shape);

/// The smoothed mesh, and for each of its faces the one that it is a piece of.
struct PreviewMesh {
  mesh::Mesh mesh;
  mesh::Origins faces;
};
[[nodiscard]] Result<PreviewMesh> makePreview(const mesh::Mesh& mesh, const SmoothPreview& how);

}  // namespace host::nodes
