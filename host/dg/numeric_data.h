#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/dg/data.h"

namespace host::dg {

/// Two to four numbers as one value: what attributes declared with a data type of "float2",
/// "double3", "long2", ... hold. Such an attribute has no children, unlike a numeric compound.
class NumericData final : public Data {
 public:
  NumericData(std::string kindIn, std::vector<double> valuesIn)
      : kind(std::move(kindIn)), values(std::move(valuesIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return kind; }
  [[nodiscard]] bool equals(const Data& other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  [[nodiscard]] bool isWhole() const {
    return kind.starts_with("long") || kind.starts_with("short");
  }

  const std::string kind;            ///< "double3", "float2", "long3", ...
  const std::vector<double> values;  ///< as many as the kind says
};

/// How many numbers data of a kind has; 0 for words that are no such kind.
[[nodiscard]] int numericDataSize(std::string_view kind);
/// Numbers as the kind can hold them: rounded to float, cut to whole numbers in range. Those that
/// are missing are 0.
[[nodiscard]] DataPtr makeNumericData(std::string kind, std::vector<double> values);

}  // namespace host::dg
