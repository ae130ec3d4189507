#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers locator: a shape without a surface. Shapes that plug-ins draw derive from it.
void registerLocator(dg::TypeRegistry& types);

}  // namespace host::nodes
