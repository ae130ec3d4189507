#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers what stands for nodes whose types are not there (unknown, unknownDag,
/// unknownTransform), and for referenced files (reference).
void registerUnknownNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
