#pragma once

#include <string>
#include <string_view>

#include "host/dg/attribute.h"
#include "host/scene/units.h"

namespace host::io {

/// Stored units (cm, radians, seconds) in one of the units that values of an attribute type are
/// written in; 1 for types without a unit.
[[nodiscard]] double storedPerUnit(dg::AttributeType type, const scene::Units& units);

/// Reads a number that is written in units of `storedPerUnit`. Texts of more than 17 digits are
/// taken at a higher precision. False when it is no number.
[[nodiscard]] bool readStored(std::string_view text, double storedPerUnit, double& stored);
/// Appends the shortest number that reads back, through readStored, as exactly `stored`.
void appendStored(std::string& out, double stored, double storedPerUnit);

void appendNumber(std::string& out, double value);
void appendNumber(std::string& out, float value);
void appendNumber(std::string& out, std::int64_t value);
inline void appendNumber(std::string& out, std::int32_t value) {
  appendNumber(out, static_cast<std::int64_t>(value));
}
/// In quotes, with the escapes that the format knows.
void appendQuoted(std::string& out, std::string_view text);

}  // namespace host::io
