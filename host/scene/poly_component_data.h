#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/base/ids.h"
#include "host/dg/data.h"

namespace host::scene {

/// A number for some components of one kind, as scene files keep creases and pins: "UV", "Edge" or
/// "Vertex", and the ids with their numbers, ascending.
class PolyComponentData final : public dg::Data {
 public:
  using Entry = std::pair<Index, float>;
  PolyComponentData(std::string kindIn, std::vector<Entry> entriesIn)
      : kind(std::move(kindIn)), entries(std::move(entriesIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "dataPolyComponent"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const PolyComponentData*>(&other);
    return same && same->kind == kind && same->entries == entries;
  }
  [[nodiscard]] std::uint64_t hash() const override {
    return dg::hashBytes(entries.data(), entries.size() * sizeof(Entry), kind.size());
  }
  const std::string kind;
  const std::vector<Entry> entries;
};

}  // namespace host::scene
