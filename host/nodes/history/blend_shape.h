#pragma once

#include "host/nodes/type_builder.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Registers blendShape: points move towards those of targets, as far as the targets' weights say.
///
/// `weight[t]` is how much of target t is added to each geometry g. `inputTarget[g].
/// inputTargetGroup[t].inputTargetItem[i]` is how the target looks at the weight (i - 5000) / 1000:
/// 6000 at one, others in between and beyond. Between them, and from zero where the geometry is as
/// it came, points go in straight lines; past the last the line goes on. An item is a mesh in
/// `inputGeomTarget`, or offsets in object space in `inputPointsTarget` of the vertices that
/// `inputComponentsTarget` lists in order. Offsets of all targets add up. `targetWeights` of a
/// target and `baseWeights` of a geometry scale them by vertex.
/// `origin` says where meshes are compared: in the world, in their own spaces, or in these with
/// `baseOrigin` and `targetOrigin` on one another. With `parallelBlender` the targets are other
/// deformers' results. Vertices that a mesh lacks stay where they are.
void registerBlendShape(dg::TypeRegistry& types);

[[nodiscard]] bool isParallelBlender(Node& blend);
/// The numbers of the targets, ascending; those that have but a weight included.
[[nodiscard]] std::vector<Index> blendTargets(Node& blend);
/// Where the mesh of a target arrives that is reached at a weight.
[[nodiscard]] Plug blendTargetPlug(Node& blend, Index geometry, Index target, double weight);
/// The weights that a target has shapes for, ascending.
[[nodiscard]] std::vector<double> blendTargetWeights(Node& blend, Index geometry, Index target);

/// Lets a mesh be what a target looks like at a weight. A first one names the target after it.
/// @return an error when the place is taken, with the document as it was
Result<void> addBlendTarget(scene::Document& document, Node& blend, Index geometry, Index target,
                            Node& shape, double weight);
/// Takes that away; a target without any left goes, with its weight and its name.
Result<void> removeBlendTarget(scene::Document& document, Node& blend, Index geometry, Index target,
                               double weight);
/// Why a mesh can't be a target for another, by their topology; empty when it can.
[[nodiscard]] std::string blendMismatch(Node& base, Node& target);

/// Has blendShape nodes keep what meshes that are about to be deleted make of their targets, as
/// offsets. With the nodes go those below them.
Result<void> keepBlendTargets(scene::Document& document, const std::vector<Node*>& going);

}  // namespace host::nodes
