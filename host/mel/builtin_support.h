#pragma once

#include <span>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "host/mel/builtins.h"
#include "host/mel/engine.h"

namespace host::mel {

/// Converts one argument to a C++ type, by the language's rules.
template <class T>
[[nodiscard]] Result<T> argumentAs(const Value& value) {
  if constexpr (std::is_same_v<T, std::int32_t>) {
    return value.toInt();
  } else if constexpr (std::is_same_v<T, double>) {
    return value.toFloat();
  } else if constexpr (std::is_same_v<T, Vec3>) {
    return value.toVector();
  } else {
    return value.toText();
  }
}

/// Converts the first arguments and passes them to `body`, which returns nothing or a Result<void>.
/// Missing ones are default values. The first that doesn't convert is the error.
template <class... T, class Body>
Result<void> unpack(std::span<const Value> arguments, Body&& body) {
  std::tuple<T...> converted;
  std::size_t index = 0;
  Result<void> outcome;
  const auto take = [&](auto& slot) {
    if (outcome && index < arguments.size()) {
      auto value = argumentAs<std::decay_t<decltype(slot)>>(arguments[index]);
      if (value) {
        slot = std::move(*value);
      } else {
        outcome = failWith(std::move(value).error());
      }
    }
    ++index;
  };
  std::apply([&](auto&... slots) { (take(slots), ...); }, converted);
  if (!outcome) return outcome;
  if constexpr (std::is_void_v<decltype(std::apply(body, converted))>) {
    std::apply(body, converted);
    return {};
  } else {
    return std::apply(body, converted);
  }
}

/// The error for arguments of the wrong type or number.
[[nodiscard]] inline tl::unexpected<Error> invalidCall(std::string_view name) {
  return fail(
      "Invalid call to \"{}\".  Check number and types of arguments expected by the procedure.",
      name);
}

/// Separates `-flag`, `-flag value` and plain arguments of the few functions of the language that
/// have flags.
struct FlaggedArguments {
  std::vector<std::pair<std::string, Value>> flags;  ///< without the dash
  std::vector<Value> plain;
  [[nodiscard]] const Value* find(std::string_view longName, std::string_view shortName) const;
};
/// `valued` names the flags that take a value, by long and short names. An unknown flag is an error
/// naming it.
Result<FlaggedArguments> splitFlags(std::span<const Value> arguments,
                                    std::span<const std::string_view> valued,
                                    std::span<const std::string_view> bare);

}  // namespace host::mel
