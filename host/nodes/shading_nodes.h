#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers the materials (lambert, blinn, phong, surfaceShader, particleCloud, file) and what
/// links lights to them. They carry attributes and connections; nothing here renders.
void registerShadingNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
