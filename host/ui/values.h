#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host::ui {

/// One argument of a control's flag; truth values are integers 0 and 1.
using Atom = std::variant<int, double, std::string>;
/// The arguments of one use of a flag, in order.
using Values = std::vector<Atom>;

// The argument at `index` in another form: numbers convert, a text gives its leading number; what
// isn't there is 0 or "".
[[nodiscard]] int asInt(const Values& values, std::size_t index = 0);
[[nodiscard]] double asReal(const Values& values, std::size_t index = 0);
[[nodiscard]] std::string asText(const Values& values, std::size_t index = 0);
[[nodiscard]] std::string asText(const Atom& atom);

}  // namespace host::ui
