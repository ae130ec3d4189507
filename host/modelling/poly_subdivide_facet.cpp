#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/subdivide_faces.h"

namespace host::modelling {

namespace {

Result<void> subdivide(HistoryContext& context) {
  using Mode = ops::SubdivideFacesOptions::Mode;
  ops::SubdivideFacesOptions options;
  options.divisions = context.integer("divisions");
  options.mode = context.integer("mode") == 0 ? Mode::Quads : Mode::Triangles;
  auto made = ops::subdivideFaces(context.mesh, context.faces(), options);
  if (!made) return failWith(made.error());
  context.makes(std::move(made->faces));
  return {};
}

}  // namespace

void polySubdivideFacet(Declarations& add) {
  add("polySubdivideFacet", "Divides faces into quads or triangles.")
      .node("polySubdFace", typeCode("PSDF"))
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(keyable(limited(integer("divisions", "dv", 1), 1, 8)), "how often")
      .parameter(choice("mode", "m", {"Quads", "Triangles"}), "0 quads, 1 triangles")
      .parameter(integer("divisionsU", "duv", 1), "across the faces, with -subdMethod 1")
      .recordedOnly()
      .parameter(integer("divisionsV", "dvv", 1), "along the faces, with -subdMethod 1")
      .recordedOnly()
      .parameter(choice("subdMethod", "sbm", {"Exponential", "Linear"}), "0 each time in four")
      .withoutEffect()
      .trial("-dv 2", "f")
      .trial("-m 1", "f")
      .operation(subdivide);
}

}  // namespace host::modelling
