#include "host/nodes/unknown_nodes.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerUnknownNodes(dg::TypeRegistry& types) {
  TypeBuilder(types, "unknown", {}, typeCode("UNKN")).finish();
  TypeBuilder(types, "unknownDag", "shape", typeCode("UNKD")).finish();
  TypeBuilder(types, "unknownTransform", "transform", typeCode("UNKT")).finish();
  // What it stands for is written as statements of its own.
  TypeBuilder reference(types, "reference", {}, typeCode("REFN"));
  reference.add(array(text("fileNames", "fn")));
  reference.add(hidden(notStored(dg::makeTyped("referenceState", "rfst", "referenceState"))));
  reference.finish();
}

}  // namespace host::nodes
