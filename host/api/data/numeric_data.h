#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/dg/data.h"

namespace host::api {

/// The numbers of a numeric pair, triple or quadruple as a value outside a node.
class NumericData final : public dg::Data {
 public:
  NumericData(std::string kindIn, std::vector<double> valuesIn)
      : kind(std::move(kindIn)), values(std::move(valuesIn)), typeName_("numeric:" + kind) {}
  [[nodiscard]] std::string_view typeName() const override { return typeName_; }
  [[nodiscard]] bool equals(const Data& other) const override {
    const auto* same = dynamic_cast<const NumericData*>(&other);
    return same && same->kind == kind && same->values == values;
  }
  const std::string kind;  ///< "double3", "float2", "long3", ...
  const std::vector<double> values;

 private:
  std::string typeName_;
};

[[nodiscard]] inline dg::DataPtr makeNumericData(std::string kind, std::vector<double> values) {
  return std::make_shared<NumericData>(std::move(kind), std::move(values));
}

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
