#pragma once

#include <cstddef>

#include "host/base/cancel.h"

namespace host {

/// Asks whether to stop in every 16,384th round of a loop, which costs nothing beside its work.
[[nodiscard]] inline bool isCancelledAt(std::size_t round) noexcept {
  return (round & 0x3FFFU) == 0 && isCancelled();
}

}  // namespace host
