#include "host/api/node/component_words.h"

#include <charconv>
#include <string>

namespace host::api {
namespace {

bool readNumber(std::string_view text, int& number) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && stop == end && number >= 0;
}

std::optional<MAttributeIndex> indexOf(std::string_view text) {
  MAttributeIndex index;
  int number = 0;
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) {
    if (text == "*") return index;
    if (!readNumber(text, number)) return std::nullopt;
    index.setValue(number);
    return index;
  }
  // Either end may be left open.
  const std::string_view low = text.substr(0, colon), high = text.substr(colon + 1);
  if (!low.empty() && low != "*") {
    if (!readNumber(low, number)) return std::nullopt;
    index.setLower(number);
  }
  if (!high.empty() && high != "*") {
    if (!readNumber(high, number)) return std::nullopt;
    index.setUpper(number);
  }
  return index;
}

std::optional<MAttributeSpec> partOf(std::string_view text) {
  const std::size_t bracket = text.find('[');
  const std::string name(text.substr(0, bracket));
  if (name.empty()) return std::nullopt;
  MAttributeSpec spec(name.c_str());
  for (std::size_t at = bracket; at < text.size();) {
    const std::size_t close = text.find(']', at);
    if (text[at] != '[' || close == std::string_view::npos) return std::nullopt;
    const auto index = indexOf(text.substr(at + 1, close - at - 1));
    if (!index) return std::nullopt;
    spec.setDimensions(spec.dimensions() + 1);
    spec.setIndex(spec.dimensions() - 1, *index);
    at = close + 1;
  }
  return spec;
}

}  // namespace

std::optional<MAttributeSpecArray> specOf(std::string_view word) {
  MAttributeSpecArray parts;
  while (true) {
    const std::size_t dot = word.find('.');
    const auto part = partOf(word.substr(0, dot));
    if (!part) return std::nullopt;
    parts.append(*part);
    if (dot == std::string_view::npos) return parts;
    word.remove_prefix(dot + 1);
  }
}

}  // namespace host::api
