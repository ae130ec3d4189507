#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers objectSet, shadingEngine, partition and the lists that sets of a scene hang on.
void registerSetNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
