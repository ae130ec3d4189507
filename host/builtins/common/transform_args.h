#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtins/common/command.h"

namespace host::builtins {

/// The leading numbers of a command's arguments in cm, radians or as they are, by `type`, and the
/// words after them. A number may carry its unit, as in 5mm or 0.5rad; without one it is in the
/// scene's.
struct NumbersAndNames {
  std::vector<double> numbers;
  std::vector<std::string> names;
};
[[nodiscard]] NumbersAndNames splitNumbers(const ParsedArgs& args, std::size_t most, ArgType type,
                                           const scene::Units& units);

/// The axes that flags named after the command pick ("moveX", "moveXZ", the last one counts); all
/// without one.
[[nodiscard]] std::array<bool, 3> axesOf(const ParsedArgs& args, std::string_view command);
/// The numbers on the axes they are for, and `neutral` on the others. Fails when there are not as
/// many numbers as axes; `what` calls one.
[[nodiscard]] Result<math::Vec3> amountFor(std::string_view command, std::string_view what,
                                           const std::array<bool, 3>& axes,
                                           const std::vector<double>& numbers, double neutral);

/// What the names stand for, else what is selected; nothing is an error.
[[nodiscard]] Result<scene::SelectionList> namedOrSelected(Context& context,
                                                           const std::vector<std::string>& names,
                                                           std::string_view command);

}  // namespace host::builtins
