#pragma once

#include "host/nodes/type_builder.h"

namespace host::nodes {

/// Registers cluster, whose geometry follows the matrix of a handle, each vertex by its weight, and
/// clusterHandle, the shape that stands for it.
///
/// A point goes to the world by geomMatrix (by the geometry's own place where none is stored), from
/// there by bindPreMatrix and matrix, and back. With `relative` only what the handle itself does
/// counts, not what is above it; the handle was bound where its own transform did nothing.
void registerCluster(dg::TypeRegistry& types);

}  // namespace host::nodes
