#pragma once

#include "host/math/box.h"
#include "host/nodes/type_builder.h"
#include "host/scene/dag.h"

namespace host::nodes {

/// Registers containerBase, entity, dagNode, shape, geometryShape, deformableShape, controlPoint,
/// surfaceShape: what transforms and shapes have in common. World matrices follow the parents', one
/// element an instance.
void registerDagBaseTypes(dg::TypeRegistry& types);

/// The box around a node in the space of its parent: a shape's own extent, or all below a
/// transform, by its matrix.
[[nodiscard]] math::Box boundingBoxOf(Node& dagNode);

}  // namespace host::nodes
