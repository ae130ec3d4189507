#include <cmath>

#include "host/modelling/declare/primitive.h"
#include "host/ops/primitives/platonic_solid.h"

namespace host::modelling {

namespace {

/// The edges of a dodecahedron of radius 1, as files and scripts round it.
constexpr double kSideLength = 0.7136;

Result<void> make(HistoryContext& context) {
  const auto solid = context.choice("solidType", 4);
  if (!solid) return failWith(solid.error());
  ops::PlatonicSolidOptions options;
  options.solid = static_cast<ops::PlatonicSolid>(*solid);
  options.radius = context.real("radius");
  // A length of sides counts when it was given and the radius was not.
  const double side = context.real("sideLength");
  if (options.radius == 1 && std::abs(side - kSideLength) > 1e-9)
    options.radius = side / ops::platonicSideLength(options.solid);
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return finishPrimitive(context, ops::makePlatonicSolid(options));
}

}  // namespace

void polyPlatonicSolid(Declarations& add) {
  primitive(add("polyPlatonicSolid", "Makes a regular solid."), "pSolid",
            {"none", "net", "each face", "net, fitted", "net in proportion"}, 3)
      .commandSets(4)
      .node("polyPlatonicSolid", typeCode("PSOL"), "polyPrimitive")
      .parameter(keyable(distance("radius", "r", 1)), "from the middle to the vertices")
      .parameter(keyable(distance("sideLength", "l", kSideLength)),
                 "of the edges; counts when the radius is not given")
      .parameter(
          choice("solidType", "st", {"Dodecahedron", "Icosahedron", "Octahedron", "Tetrahedron"}),
          "0 dodecahedron, 1 icosahedron, 2 octahedron, 3 tetrahedron")
      .parameter(shortInteger("texture", "tx", 2), "the older word for -createUVs")
      .recordedOnly()
      .operation(make);
}

}  // namespace host::modelling
