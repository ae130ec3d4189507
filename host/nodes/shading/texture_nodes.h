#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers texture2d and the textures derived from it, and place2dTexture.
void registerTextureNodes(dg::TypeRegistry& types);

}  // namespace host::nodes
