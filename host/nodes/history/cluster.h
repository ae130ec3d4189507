#pragma once

#include "host/nodes/type_builder.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Registers cluster and clusterHandle: points that follow a transform, by weights.
///
/// A handle is a shape below the transform; its `clusterTransforms` drive the `clusterXforms` of
/// the node, one matrix after the other: from the handle up to the weighted node, this one's own,
/// and what is above it. The weighted node is the handle's transform unless `weightedNode` is
/// connected to another above it. Points go to the world by the geometry's matrix and follow there;
/// with `relative` the transforms above the weighted node are left out, so that what moves object
/// and handle alike does not count twice. `bindPreMatrix` comes first: the inverse of where the
/// handle was when nothing was to move. Without a handle `matrix` takes its place.
/// `weightList[geometry].weights` turn and scale a point part of the way about the handle's
/// `origin`, along an arc; `angleInterpolation` says which way round. With another weighted node
/// weights scale only what that one does.
void registerCluster(dg::TypeRegistry& types);

/// Makes the handle shape of a cluster below a transform and connects the two.
Result<Node*> addClusterHandle(scene::Document& document, Node& cluster, Node& transform,
                               const math::Vec3& origin);
/// The shape that drives a cluster; null when none does.
[[nodiscard]] Node* clusterHandleOf(Node& cluster);
/// The transform whose doings weights scale; null when there is no handle.
[[nodiscard]] Node* clusterWeightedNode(Node& cluster);
/// Has a cluster be at rest as its handle stands now.
Result<void> bindCluster(Node& cluster);

}  // namespace host::nodes
