#include "host/nodes/unknown_nodes.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerUnknownNodes(dg::TypeRegistry& types) {
  TypeBuilder(types, "unknown", {}, typeCode("UNKN")).finish();
  TypeBuilder(types, "unknownDag", "shape", typeCode("UNKD")).finish();
  TypeBuilder(types, "unknownTransform", "transform", typeCode("UNKT")).finish();

  // Scripts that a scene brings along. They are values like others; who opens the scene says
  // whether they run.
  TypeBuilder script(types, "script", {}, typeCode("SCRP"));
  script.add(text("before", "b"));
  script.add(text("after", "a"));
  script.add(choice("scriptType", "st",
                    {"Demand", "Open/Close", "GUI Open/Close", "UI Configuration", "Time Changed",
                     "Scene Configuration"}));
  script.add(choice("sourceType", "stp", {"MEL", "Python"}));
  script.add(boolean("ignoreReferenceEdits", "ire", true));
  script.finish();
}

}  // namespace host::nodes
