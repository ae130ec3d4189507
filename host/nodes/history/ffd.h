#pragma once

#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerFfd(dg::TypeRegistry& types);  ///< the deformer of `registerLattices`

}  // namespace host::nodes
