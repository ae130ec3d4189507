#pragma once

#include "host/nodes/type_builder.h"

namespace host::nodes {

/// Registers tweak: what is moved by hand on a shape that is deformed, in front of its deformers.
/// `vlist[geometry].vertex[point]` are offsets of the vertices of a mesh, `plist[geometry].
/// controlPoints[point]` of the points of any geometry; both add up. With `relativeTweak` off they
/// are places instead of offsets. A file's connection from an element of `vlist` to the
/// `tweakLocation` of a mesh says where the host's own tools put what is moved there.
void registerTweak(dg::TypeRegistry& types);

}  // namespace host::nodes
