#pragma once

#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// Makes a declaration that of a primitive: its node makes a mesh from nothing, its command a new
/// object called `objectName` and a number. Adds `createUVs` with the words for its values, and
/// `texture` for old scripts.
Declaration& primitive(Declaration& declaration, const std::string& objectName,
                       std::initializer_list<std::string_view> uvModes, int uvMode);

/// Adds what stands around its axis has: `radius`, `height`, and the faces around and along it.
Declaration& addAroundAxis(Declaration& declaration, std::string radiusHelp);
/// Reads these, the rings of the ends under a name, `roundCap`, the axis and the UVs.
template <class Options>
[[nodiscard]] Options aroundAxis(const HistoryContext& context, int Options::*rings,
                                 std::string_view ringsName) {
  Options options;
  options.radius = context.real("radius");
  options.height = context.real("height");
  options.subdivisionsAxis = context.integer("subdivisionsAxis");
  options.subdivisionsHeight = context.integer("subdivisionsHeight");
  options.*rings = context.integer(ringsName);
  options.roundCap = context.boolean("roundCap");
  options.axis = context.vec3("axis");
  options.createUVs = context.integer("createUVs");
  return options;
}

/// Who heeds `heightBaseline`.
enum class Baseline : std::uint8_t { Raise, MakerDid };

/// Puts a primitive into the context: raises it along the axis by the part of half its extent that
/// `heightBaseline` says, names its UV set.
Result<void> finishPrimitive(HistoryContext& context, Result<mesh::Mesh> made,
                             Baseline baseline = Baseline::Raise);

}  // namespace host::modelling
