#pragma once

#include <unordered_map>

#include "host/base/result.h"
#include "host/scene/document.h"
#include "host/viewport/scene_view.h"
#include "host/viewport/scene_walk.h"

namespace host::viewport {

struct GatherOptions {
  bool vertexMode = false;  ///< dots on the vertices of hilited meshes
  /// Show only these nodes and what hangs under them; none: show all.
  const std::unordered_set<const dg::Node*>* only = nullptr;
};

/// Copies what a view needs out of the document: every mesh shape instance that is visible, with
/// its world matrix, its selected components and how the object stands out.
///
/// Evaluates the meshes; one whose history fails is left out, as a viewer can't mend it. Selected
/// vertex-faces show at their vertices; UVs are not components of the view. Mesh arrays are shared,
/// not copied.
class MeshGatherer final : public PlaceVisitor {
 public:
  MeshGatherer(scene::Document& document, const PathStates& states, const GatherOptions& options)
      : document_(document), states_(states), options_(options) {}
  void visit(const ShownPlace& place) override;

  std::vector<RenderMesh> meshes;

 private:
  scene::Document& document_;
  const PathStates& states_;
  const GatherOptions& options_;
  /// By shape, without its place; none: it has no mesh.
  std::unordered_map<const dg::Node*, std::optional<RenderMesh>> shared_;
};

/// The meshes of a walk that nobody else joins. Warns when the places are too many.
[[nodiscard]] std::vector<RenderMesh> gatherMeshes(scene::Document& document,
                                                   const GatherOptions& options = {});

/// The mesh instance at a shape's path, as gatherMeshes gives it; to ask a picker about.
[[nodiscard]] Result<RenderMesh> gatherMesh(scene::Document& document, const scene::DagPath& shape);

/// The camera at a camera's path, or at the path of a transform above one.
/// @return an error naming the path when there is no camera
[[nodiscard]] Result<Camera> gatherCamera(const scene::DagPath& path);

}  // namespace host::viewport
