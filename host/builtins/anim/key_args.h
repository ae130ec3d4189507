#pragma once

#include "host/builtins/common/command.h"
#include "host/edits/keys.h"

namespace host::builtins {

/// The plugs that a key command works on: those named or selected, or of nodes those that
/// -attribute names, else all that take keys. Compounds stand for their parts.
[[nodiscard]] Result<std::vector<dg::Plug>> keyedPlugs(Context& context, const ParsedArgs& args);

/// The animation curves that a key command works on: those named themselves and those that drive
/// the plugs, each once.
[[nodiscard]] Result<std::vector<dg::Node*>> keyedCurves(Context& context, const ParsedArgs& args);

/// What -time, -float and -index say: numbers and ranges such as "1:10", "5:", ":"; times in
/// frames, floats as values of what drives a curve that does not run over time.
[[nodiscard]] Result<edits::KeyRange> keyRange(Context& context, const ParsedArgs& args);

[[nodiscard]] Result<math::KeyTangent> tangentNamed(const std::string& name);
[[nodiscard]] std::string tangentName(math::KeyTangent tangent);

/// -attribute -time -float -index, and objects by name or selection.
[[nodiscard]] Syntax keySyntax();

/// What a curve's values are multiplied by to be stored, and its times.
[[nodiscard]] double valueFactor(const dg::Node& curve, const scene::Units& units);
[[nodiscard]] double timeFactor(const dg::Node& curve, const scene::Units& units);

}  // namespace host::builtins
