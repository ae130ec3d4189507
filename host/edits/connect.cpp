#include "host/edits/connect.h"

#include <cmath>

#include "host/edits/atomically.h"

namespace host::edits {

namespace {

/// What a shown number of this type is multiplied by to be stored.
double storedPerShown(const dg::Attribute& attribute, const scene::Units& units) {
  switch (attribute.type) {
    case dg::AttributeType::Distance:
      return units.toCentimeters(1);
    case dg::AttributeType::Angle:
      return units.toRadians(1);
    case dg::AttributeType::Time:
      return 1 / units.framesPerSecond();
    default:
      return 1;
  }
}

Result<void> connectConverted(scene::Document& document, const dg::Plug& source,
                              const dg::Plug& destination, double factor, bool force) {
  dg::Graph& graph = document.graph();
  if (const dg::Plug before = graph.source(destination)) {
    if (!force) return graph.connect(source, destination, false);  // its words of refusal
    HOST_TRY(graph.disconnect(before, destination));
  }
  const auto made = document.createNode("unitConversion", "unitConversion#");
  if (!made) return failWith(made.error());
  dg::Node& conversion = **made;
  HOST_TRY(graph.set(conversion.plug("conversionFactor"), factor));
  HOST_TRY(graph.connect(source, conversion.plug("input")));
  return graph.connect(conversion.plug("output"), destination, force);
}

}  // namespace

Result<void> connect(scene::Document& document, const dg::Plug& source, const dg::Plug& destination,
                     bool force) {
  const dg::Attribute &from = *source.attribute(), &to = *destination.attribute();
  const bool areNumbers = from.isNumeric() && to.isNumeric();
  const scene::Units& units = document.units();
  const double factor = areNumbers && from.type != to.type
                            ? storedPerShown(to, units) / storedPerShown(from, units)
                            : 1;
  if (std::abs(factor - 1) < 1e-12) return document.graph().connect(source, destination, force);
  return atomically(document,
                    [&] { return connectConverted(document, source, destination, factor, force); });
}

}  // namespace host::edits
