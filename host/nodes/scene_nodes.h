#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers what a scene keeps its settings in: time, lists of shaders and lights, render globals,
/// layers and their managers, script.
void registerSceneNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
