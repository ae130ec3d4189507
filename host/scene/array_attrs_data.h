#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/dg/data.h"

namespace host::scene {

/// Arrays by name, in the order in which they were made: what emitters and instancers hand on.
class ArrayAttrsData : public dg::Data {
 public:
  using Array = std::variant<std::vector<math::Vec3>, std::vector<double>,
                             std::vector<std::int32_t>, std::vector<std::string>>;
  using Named = std::pair<std::string, Array>;

  [[nodiscard]] std::string_view typeName() const override { return "arrayAttrs"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const ArrayAttrsData*>(&other);
    return same && (same == this || same->arrays() == arrays());
  }
  [[nodiscard]] std::uint64_t hash() const override {
    std::uint64_t result = 0;
    for (const auto& [name, array] : arrays()) {
      result = dg::hashBytes(name.data(), name.size(), result + array.index());
      std::visit([&](const auto& all) { result = hashOf(all, result); }, array);
    }
    return result;
  }
  /// The arrays as they are now; a copy.
  [[nodiscard]] virtual std::vector<Named> arrays() const = 0;

 private:
  template <class T>
  static std::uint64_t hashOf(const std::vector<T>& all, std::uint64_t seed) {
    return dg::hashBytes(all.data(), all.size() * sizeof(T), seed + all.size());
  }
  static std::uint64_t hashOf(const std::vector<std::string>& all, std::uint64_t seed) {
    for (const std::string& each : all) seed = dg::hashBytes(each.data(), each.size(), seed + 1);
    return seed;
  }
};

/// Arrays that don't change: those of files and of stored values.
class StoredArrayAttrs final : public ArrayAttrsData {
 public:
  explicit StoredArrayAttrs(std::vector<Named> arraysIn) : arrays_(std::move(arraysIn)) {}
  [[nodiscard]] std::vector<Named> arrays() const override { return arrays_; }

 private:
  const std::vector<Named> arrays_;
};

}  // namespace host::scene
