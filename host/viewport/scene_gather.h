#pragma once

#include <optional>
#include <unordered_set>

#include "host/base/result.h"
#include "host/scene/document.h"
#include "host/viewport/scene_view.h"

namespace host::viewport {

struct GatherOptions {
  bool vertexMode = false;  ///< dots on the vertices of hilited meshes
  /// Show only these nodes and what hangs under them; none: show all.
  const std::unordered_set<const dg::Node*>* only = nullptr;
};

/// Copies what a view needs out of the document: every mesh shape instance that is visible, with
/// its world matrix, its selected components and how the object stands out.
///
/// Evaluates the meshes; one whose history fails is left out, as a viewer can't mend it.
/// Intermediate shapes and all below something invisible are left out. Selected vertex-faces show
/// at their vertices; UVs are not components of the view. Linear in the hierarchy and the
/// selection; mesh arrays are shared, not copied.
[[nodiscard]] std::vector<RenderMesh> gatherMeshes(scene::Document& document,
                                                   const GatherOptions& options = {});

/// What a node's draw override says of lines that stand for it; nothing where it has none.
struct LineLooks {
  bool isTemplate = false;
  std::optional<Rgba> color;
};
[[nodiscard]] std::optional<LineLooks> lineLooks(dg::Node& node);

/// The mesh instance at a shape's path, as gatherMeshes gives it; to ask a picker about.
[[nodiscard]] Result<RenderMesh> gatherMesh(scene::Document& document, const scene::DagPath& shape);

/// The camera at a camera's path, or at the path of a transform above one.
/// @return an error naming the path when there is no camera
[[nodiscard]] Result<Camera> gatherCamera(const scene::DagPath& path);

}  // namespace host::viewport
