#pragma once

#include "host/dg/node.h"

namespace host::nodes {

/// Registers camera: a shape that looks along its -z. Apertures in inches, focal length in mm, clip
/// planes in cm.
void registerCamera(dg::TypeRegistry& types);

}  // namespace host::nodes
