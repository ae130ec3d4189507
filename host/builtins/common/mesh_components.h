#pragma once

#include "host/nodes/mesh_components.h"

namespace host::builtins {

using nodes::componentFromIds;
using nodes::componentIds;
using nodes::MeshItem;
using nodes::meshItems;
using nodes::meshKind;

}  // namespace host::builtins
