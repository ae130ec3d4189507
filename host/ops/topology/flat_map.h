#pragma once

#include <bit>
#include <cstdint>
#include <vector>

namespace host::ops {

/// A map from nonnegative 64-bit keys to small values, in one array: for the many lookups of an
/// edit, where a node for each entry would cost more than the edit. Values move when it grows.
template <class Value>
class FlatMap {
 public:
  [[nodiscard]] const Value* find(std::int64_t key) const {
    if (slots_.empty()) return nullptr;
    const Slot& slot = slots_[placeOf(key)];
    return slot.key == key ? &slot.value : nullptr;
  }
  /// The value at a key, made if there is none.
  Value& operator[](std::int64_t key) {
    if (2 * (count_ + 1) > slots_.size()) grow();
    Slot& slot = slots_[placeOf(key)];
    if (slot.key != key) {
      slot.key = key;
      ++count_;
    }
    return slot.value;
  }
  /// Calls `visit(key, value)` for all entries in no particular order.
  template <class Visit>
  void forEach(Visit visit) const {
    for (const Slot& slot : slots_)
      if (slot.key >= 0) visit(slot.key, slot.value);
  }

 private:
  struct Slot {
    std::int64_t key = -1;
    Value value{};
  };
  // The slot that holds the key or that it would take.
  [[nodiscard]] std::size_t placeOf(std::int64_t key) const {
    const std::size_t mask = slots_.size() - 1;
    auto place =
        static_cast<std::size_t>((static_cast<std::uint64_t>(key) * 0x9e3779b97f4a7c15U) >> shift_);
    while (slots_[place].key != key && slots_[place].key >= 0) place = (place + 1) & mask;
    return place;
  }
  void grow() {
    std::vector<Slot> old(slots_.empty() ? 64 : slots_.size() * 2);
    old.swap(slots_);
    shift_ = 64 - std::countr_zero(slots_.size());
    for (const Slot& slot : old)
      if (slot.key >= 0) slots_[placeOf(slot.key)] = slot;
  }

  std::vector<Slot> slots_;
  std::size_t count_ = 0;
  int shift_ = 0;
};

}  // namespace host::ops
