#include "host/nodes/smooth_preview.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "host/dg/graph.h"
#include "host/ops/smooth/smooth_mesh.h"
#include "host/scene/display_rules.h"

namespace host::nodes {

SmoothPreview smoothPreviewOf(dg::Node& shape) {
  SmoothPreview result;
  result.mode = static_cast<int>(scene::numberOr(shape, "displaySmoothMesh", 0));
  if (result.mode == 0) return result;
  result.level = std::clamp(static_cast<int>(scene::numberOr(shape, "smoothLevel", 2)), 0, 4);
  result.keepsBorder = scene::numberOr(shape, "keepBorder", 0) != 0;
  result.keepsHardEdges = scene::numberOr(shape, "keepHardEdge", 0) != 0;
  result.smoothsUvs = scene::numberOr(shape, "smoothUVs", 1) != 0;
  result.continuity = std::clamp(scene::numberOr(shape, "continuity", 1), 0.0, 1.0);
  return result;
}

Result<PreviewMesh> makePreview(const mesh::Mesh& mesh, const SmoothPreview& how) {
  PreviewMesh preview{mesh, mesh::Origins::identity(mesh.faceCount())};
  const mesh::ProvenanceTrail trail(mesh);
  PerElement<FaceId, FaceId> faces(mesh.faceCount());
  std::iota(faces.begin(), faces.end(), 0);
  ops::SmoothOptions options;
  options.divisions = how.level;
  options.continuity = how.continuity;
  options.keepBorder = how.keepsBorder;
  options.keepHardEdges = how.keepsHardEdges;
  options.smoothUVs = how.smoothsUvs;
  HOST_TRY(ops::smoothMesh(preview.mesh, faces, options));
  if (const auto origin = trail.to(preview.mesh)) preview.faces = origin->faces;
  return preview;
}

}  // namespace host::nodes
