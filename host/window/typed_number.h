#pragma once

#include <string_view>

#include "host/base/result.h"
#include "host/dg/attribute.h"
#include "host/scene/units.h"

namespace host::window {

/// Reads what a person types for a number of an attribute: a number in the scene's units, or one
/// with a unit of its own (`12 mm`, `3in`, `90deg`, `1.5rad`), "on" and "off", and the name of an
/// enum's field. Fails saying what was typed and what could be.
/// @return the number as scripts see it, in the scene's units
[[nodiscard]] Result<double> readTyped(std::string_view typed, const dg::Attribute& attribute,
                                       const scene::Units& units);

}  // namespace host::window
