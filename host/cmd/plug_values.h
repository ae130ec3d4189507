#pragma once

#include <span>
#include <string>

#include "host/base/result.h"
#include "host/dg/graph.h"
#include "host/mel/value.h"
#include "host/scene/units.h"

namespace host::cmd {

/// The value of a plug as scripts see it, evaluated: numbers in the scene's units, enums as
/// integers, numeric compounds and packed arrays as flat arrays, array payloads as arrays,
/// component lists as words. None for plugs without a value a script could hold (messages, meshes).
[[nodiscard]] Result<mel::Value> readPlug(dg::Graph& graph, const scene::Units& units,
                                          const dg::Plug& plug);
/// The field's name of an enum plug.
[[nodiscard]] Result<std::string> readEnumField(dg::Graph& graph, const dg::Plug& plug);

/// Writes a leaf from one script value in the scene's units.
Result<void> writeLeaf(dg::Graph& graph, const scene::Units& units, const dg::Plug& plug,
                       const mel::Value& value);
/// Writes a leaf, or the leaves of a compound in order, from a run of values; says how many it
/// took. Fails naming the plug when there are too few.
[[nodiscard]] Result<std::size_t> writeNumbers(dg::Graph& graph, const scene::Units& units,
                                               const dg::Plug& plug,
                                               std::span<const mel::Value> values);
/// Writes a payload as `setAttr -type` takes it: "string", "matrix", "doubleArray",
/// "componentList", ... Array types start with their count.
Result<void> writeTyped(dg::Graph& graph, const scene::Units& units, const dg::Plug& plug,
                        const std::string& type, std::span<const mel::Value> values);

/// "low:mid=5:high": the fields, with a value where it is not the one after the field before.
[[nodiscard]] std::string enumText(const dg::Attribute& attribute);

/// How many leaves a plug has: 1, or those of the compound.
[[nodiscard]] std::size_t leafCount(const dg::Attribute& attribute);
/// Factor between a stored value and the one scripts see: stored = shown * factor.
[[nodiscard]] double unitFactor(dg::AttributeType type, const scene::Units& units);

}  // namespace host::cmd
