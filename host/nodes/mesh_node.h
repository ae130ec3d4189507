#pragma once

#include "host/nodes/type_builder.h"

namespace host::nodes {

/// Registers the mesh shape: outMesh is inMesh with the overridden corner data and the tweaks;
/// worldMesh[i] is that by the matrix of instance i. Everything not tweaked is shared with what
/// arrives.
void registerMesh(dg::TypeRegistry& types);

/// Long name of the hidden attribute with the corner data that replaces what arrives from the
/// history.
inline constexpr const char* kMeshOverrideAttribute = "cornerDataOverride";

[[nodiscard]] bool hasTweaks(Node& shape);    ///< elements in `pnts`
[[nodiscard]] bool hasOverride(Node& shape);  ///< corner data of its own

}  // namespace host::nodes
