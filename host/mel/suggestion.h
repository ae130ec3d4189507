#pragma once

#include <span>
#include <string>
#include <string_view>

namespace host::mel {

/// The name that a person most likely meant: differing in case alone, or by one slip of the hand
/// (two in names of eight letters or more), a slip being a letter too many, too few, wrong, or two
/// that changed places. The nearest, of equals the first; empty when none is near.
[[nodiscard]] std::string nearestName(std::string_view typed, std::span<const std::string> names);

}  // namespace host::mel
