#include "host/io/ma/ma_numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/io/ma/ma_row.h"

namespace host::io {
namespace {

constexpr std::ptrdiff_t kDigitsOfDouble = 17;
constexpr int kDigitsOfLongDouble = 21;

template <class Number, class... Format>
void append(std::string& out, Number value, Format... format) {
  char digits[64];
  const auto [end, status] = std::to_chars(digits, digits + sizeof digits, value, format...);
  (void)status;  // 64 characters hold any number
  out.append(digits, end);
}

/// Digits that carry something: without sign, point, exponent and zeros in front.
std::ptrdiff_t digitCount(std::string_view text) {
  text = text.substr(0, text.find_first_of("eE"));
  text.remove_prefix(std::min(text.find_first_of("123456789"), text.size()));
  return std::ranges::count_if(text, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

double storedPerUnit(dg::AttributeType type, const scene::Units& units) {
  switch (type) {
    case dg::AttributeType::Distance:
      return units.toCentimeters(1);
    case dg::AttributeType::Angle:
      return units.toRadians(1);
    case dg::AttributeType::Time:
      return 1 / units.framesPerSecond();
    default:
      return 1;
  }
}

bool readStored(std::string_view text, double perUnit, double& stored) {
  MaRow row(text);
  if (!row.read(stored) || !row.isAtEnd()) return false;
  if (perUnit == 1) return true;
  if (digitCount(text) <= kDigitsOfDouble) {
    stored *= perUnit;
    return std::isfinite(stored);
  }
  long double exact = 0;
  if (text.starts_with('+')) text.remove_prefix(1);
  if (std::from_chars(text.data(), text.data() + text.size(), exact).ec != std::errc{})
    return false;
  stored = static_cast<double>(exact * static_cast<long double>(perUnit));
  return std::isfinite(stored);
}

void appendStored(std::string& out, double stored, double perUnit) {
  if (perUnit == 1 || stored == 0) return append(out, stored);
  // A unit's multiple comes back by the product of two doubles for most numbers, if not for the
  // nearest double then for one beside it.
  const double nearest = stored / perUnit;
  std::string shortest;
  for (const double candidate :
       {nearest, std::nextafter(nearest, 0.0), std::nextafter(nearest, 2 * nearest)}) {
    if (candidate * perUnit != stored) continue;
    std::string text;
    append(text, candidate);
    if (shortest.empty() || text.size() < shortest.size()) shortest = std::move(text);
  }
  if (!shortest.empty()) {
    out += shortest;
    return;
  }
  append(out, static_cast<long double>(stored) / static_cast<long double>(perUnit),
         std::chars_format::scientific, kDigitsOfLongDouble);
}

void appendNumber(std::string& out, double value) {
  append(out, value);
}
void appendNumber(std::string& out, float value) {
  append(out, value);
}
void appendNumber(std::string& out, std::int64_t value) {
  append(out, value);
}

void appendQuoted(std::string& out, std::string_view text) {
  out += '"';
  for (const char c : text) {
    switch (c) {
      case '\n':
        out += "\\n";
        break;
      case '\t':
        out += "\\t";
        break;
      case '\r':
        out += "\\r";
        break;
      case '"':
      case '\\':
        out += '\\';
        [[fallthrough]];
      default:
        out += c;
    }
  }
  out += '"';
}

}  // namespace host::io
