#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers what stands for nodes whose types are not there (unknown, unknownDag,
/// unknownTransform), and script nodes, which do nothing by themselves.
void registerUnknownNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
