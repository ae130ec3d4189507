#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/cube.h"

namespace host::modelling {

namespace {

Result<void> make(HistoryContext& context) {
  ops::CubeOptions options;
  options.width = context.real("width");
  options.height = context.real("height");
  options.depth = context.real("depth");
  options.subdivisionsWidth = context.integer("subdivisionsWidth");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.subdivisionsDepth = context.integer("subdivisionsDepth");
  options.heightBaseline = context.real("heightBaseline");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makeCube(options), Baseline::MakerDid);
}

}  // namespace

void polyCube(Declarations& add) {
  primitive(add("polyCube", "Makes a box."), "pCube",
            {"none", "unfolded", "each face by itself", "unfolded, fitted together",
             "unfolded in proportion"},
            3)
      .commandSets(4)
      .node("polyCube", typeCode("PCUB"), "polyPrimitive")
      .parameter(keyable(distance("width", "w", 1)), "size along x")
      .parameter(keyable(distance("height", "h", 1)), "size along the axis")
      .parameter(keyable(distance("depth", "d", 1)), "size along z")
      .parameter(keyable(atLeast(integer("subdivisionsWidth", "sw", 1), 1)), "faces along x")
      .alsoFlag("sx", "subdivisionsX")
      .parameter(keyable(atLeast(integer("subdivisionsHeight", "sh", 1), 1)),
                 "faces along the axis")
      .alsoFlag("sy", "subdivisionsY")
      .parameter(keyable(atLeast(integer("subdivisionsDepth", "sd", 1), 1)), "faces along z")
      .alsoFlag("sz", "subdivisionsZ")
      .parameter(shortInteger("texture", "tx", 1), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
