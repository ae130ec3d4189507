#include "host/dg/data.h"

#include <cmath>
#include <cstring>

namespace host::dg {

bool equal(const Value& a, const Value& b) {
  if (a.index() != b.index()) return false;
  if (const auto* real = std::get_if<double>(&a)) {
    const double other = std::get<double>(b);
    return *real == other || (std::isnan(*real) && std::isnan(other));
  }
  if (const auto* data = std::get_if<DataPtr>(&a)) {
    const DataPtr& other = std::get<DataPtr>(b);
    if (*data == other) return true;
    return *data && other && (*data)->equals(*other);
  }
  return a == b;
}

std::uint64_t hashBytes(const void* bytes, std::size_t count, std::uint64_t seed) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
  const auto* cursor = static_cast<const unsigned char*>(bytes);
  std::uint64_t result = (seed ^ count) * kMultiplier;
  const auto mix = [&result](std::uint64_t word) {
    result ^= word;
    result *= kMultiplier;
    result ^= result >> 32;
  };
  for (; count >= 8; count -= 8, cursor += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, cursor, 8);
    mix(word);
  }
  std::uint64_t tail = 0;
  if (count > 0) std::memcpy(&tail, cursor, count);
  mix(tail);
  return result;
}

std::uint64_t hash(const Value& value) {
  const std::uint64_t kind = value.index();
  if (const auto* integer = std::get_if<std::int64_t>(&value))
    return hashBytes(integer, sizeof *integer, kind);
  if (const auto* real = std::get_if<double>(&value)) return hashBytes(real, sizeof *real, kind);
  if (const auto* text = std::get_if<std::string>(&value))
    return hashBytes(text->data(), text->size(), kind);
  const auto* data = std::get_if<DataPtr>(&value);
  if (!data || !*data) return kind;
  const std::string_view name = (*data)->typeName();
  return hashBytes(name.data(), name.size(), (*data)->hash());
}

}  // namespace host::dg
