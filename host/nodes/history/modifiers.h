#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Each registers one type of history node.
void registerPolyTweak(dg::TypeRegistry& types);  ///< adds `tweak` offsets to points
void registerDeleteComponent(
    dg::TypeRegistry& types);  ///< deletes faces, then edges, then vertices
void registerTransformGeometry(dg::TypeRegistry& types);  ///< moves the whole mesh by a matrix
void registerNamedSetNodes(dg::TypeRegistry& types);  ///< make, copy and delete UV and colour sets
void registerGroupNodes(dg::TypeRegistry& types);     ///< groupId and groupParts
void registerDeformers(dg::TypeRegistry& types);      ///< what deformers of plug-ins derive from

}  // namespace host::nodes
