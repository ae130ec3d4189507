#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers light, renderLight and the kinds of lights. Lights shine along their -Z; angles are in
/// radians.
void registerLights(dg::TypeRegistry& types);

}  // namespace host::nodes
