#include "host/nodes/set_nodes.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

namespace {

/// Destinations that take whatever stands for an object: a message, an instance's groups.
AttributePtr anything(const std::string& longName, const std::string& shortName) {
  AttributePtr attribute = dg::makeAttribute(longName, shortName, AttributeType::Generic);
  attribute->storable = false;
  attribute->disconnectBehavior = dg::DisconnectBehavior::Delete;
  return attribute;
}

AttributePtr messages(const std::string& longName, const std::string& shortName) {
  AttributePtr attribute = unordered(message(longName, shortName));
  attribute->disconnectBehavior = dg::DisconnectBehavior::Delete;
  return attribute;
}

}  // namespace

void registerSetNodes(dg::TypeRegistry& types) {
  TypeBuilder set(types, "objectSet", "entity", typeCode("OBST"));
  set.add(unordered(anything("dagSetMembers", "dsm")));
  set.add(messages("dnSetMembers", "dnsm"));
  set.add(shortInteger("memberWireframeColor", "mwc", -1));
  set.add(text("annotation", "an"));
  set.add(boolean("isLayer", "il"));
  set.add(boolean("verticesOnlySet", "vo"));
  set.add(boolean("edgesOnlySet", "eo"));
  set.add(boolean("facetsOnlySet", "fo"));
  set.add(boolean("editPointsOnlySet", "epo"));
  set.add(boolean("renderableOnlySet", "ro"));
  set.add(message("partition", "pa"));
  set.add(messages("groupNodes", "gn"));
  set.add(messages("usedBy", "ub"));
  set.add(boolean("hiddenInOutliner", "hio"));
  set.finish();

  TypeBuilder shading(types, "shadingEngine", "objectSet", typeCode("SHAD"));
  shading.add(color("surfaceShader", "ss"));
  shading.add(color("volumeShader", "vs"));
  shading.add(color("imageShader", "is"));
  // Heights arrive as numbers, moves as triples.
  shading.add(dg::makeAttribute("displacementShader", "ds", AttributeType::Generic));
  shading.add(unordered(message("defaultLights", "dl")));
  shading.finish();

  TypeBuilder partition(types, "partition", {}, typeCode("PRTN"));
  partition.add(messages("sets", "st"));
  partition.add(text("annotation", "an"));
  partition.add(shortInteger("partitionType", "pt"));
  partition.finish();
}

}  // namespace host::nodes
