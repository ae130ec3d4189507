#include "host/nodes/unknown_nodes.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerUnknownNodes(dg::TypeRegistry& types) {
  TypeBuilder(types, "unknown", {}, typeCode("UNKN")).finish();
  TypeBuilder(types, "unknownDag", "shape", typeCode("UNKD")).finish();
  TypeBuilder(types, "unknownTransform", "transform", typeCode("UNKT")).finish();
}

}  // namespace host::nodes
