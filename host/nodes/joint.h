#pragma once

#include "host/math/transform.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerJoint(dg::TypeRegistry& types);

}  // namespace host::nodes
