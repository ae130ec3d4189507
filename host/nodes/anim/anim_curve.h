#pragma once

#include <string_view>

#include "host/math/key_curve.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

/// animCurveTL, TA, TU and TT over time; UL, UA, UU and UT over a number; and unitConversion.
void registerAnimCurves(dg::TypeRegistry& types);

[[nodiscard]] bool isAnimCurve(const Node& node);
/// Whether the curve runs over time rather than over a number.
[[nodiscard]] bool isOverTime(const Node& curve);
/// The type of curve over time that drives an attribute: by length, angle, time or plain number.
[[nodiscard]] std::string_view curveTypeFor(const Attribute& attribute);

/// The keys as the node holds them: times in seconds, values in cm, radians or plain.
[[nodiscard]] Result<math::KeyCurve> readKeys(Node& curve);
/// Replaces all keys, recorded.
Result<void> writeKeys(Node& curve, const math::KeyCurve& keys);

/// The scene's time in seconds: what time-driven nodes without an input of their own go by. 0
/// without a time node.
[[nodiscard]] double sceneTime(dg::Graph& graph);
/// Marks what goes by the scene's time; called when that was set.
void dirtyTimeDriven(dg::Graph& graph);

}  // namespace host::nodes
