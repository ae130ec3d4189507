#pragma once

#include <string>
#include <string_view>

#include "host/dg/data.h"
#include "host/dg/numeric_data.h"

namespace host::api {

using dg::makeNumericData;
using dg::NumericData;

struct StringTag {
  static constexpr std::string_view kName = "string";
};
/// A text as a data object; attributes of type string hold their text directly.
using StringData = dg::ValueData<std::string, StringTag>;

[[nodiscard]] inline dg::DataPtr makeStringData(std::string text) {
  return std::make_shared<StringData>(std::move(text));
}
[[nodiscard]] inline const std::string* stringOf(const dg::DataPtr& data) {
  const auto* text = dynamic_cast<const StringData*>(data.get());
  return text ? &text->value : nullptr;
}

}  // namespace host::api
