#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// A number for each of some vertices, forgotten all at once: a table as long as the mesh that is
/// never cleared, so that a dab pays for its own vertices alone.
class vertexSlots {
 public:
  /// Forgets all, and makes room for a mesh.
  void begin(int vertexCount) {
    if (stamps.size() < static_cast<std::size_t>(vertexCount)) {
      stamps.resize(static_cast<std::size_t>(vertexCount), 0);
      slots.resize(stamps.size(), 0);
    }
    if (++stamp != 0) return;
    stamps.assign(stamps.size(), 0);
    stamp = 1;
  }
  /// The number of a vertex, -1 when it has none.
  int find(int vertex) const {
    const auto at = static_cast<std::size_t>(vertex);
    return stamps[at] == stamp ? slots[at] : -1;
  }
  void set(int vertex, int slot) {
    const auto at = static_cast<std::size_t>(vertex);
    stamps[at] = stamp;
    slots[at] = slot;
  }

 private:
  std::vector<std::uint32_t> stamps;
  std::vector<int> slots;
  std::uint32_t stamp = 0;
};
