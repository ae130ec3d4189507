#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

#include "host/base/cancel.h"

namespace host {

/// Asks whether to stop in every 16,384th round of a loop, which costs nothing beside its work.
[[nodiscard]] inline bool isCancelledAt(std::size_t round) noexcept {
  return (round & 0x3FFFU) == 0 && isCancelled();
}

/// What ends work that was asked to stop. Thrown and caught in here: pure functions on values can
/// be left anywhere, and threading a result through each of their loops would say nothing else.
struct WorkLeft {};

/// While it lives, this thread's pollCancel may throw.
class LeaveScope {
 public:
  explicit LeaveScope(bool mayLeave = true) noexcept;
  ~LeaveScope();
  LeaveScope(const LeaveScope&) = delete;
  LeaveScope& operator=(const LeaveScope&) = delete;
  [[nodiscard]] static bool isOpen() noexcept;

 private:
  bool outer_;
};

/// Shows the work that runs, if it has run for a while, and leaves it when it was asked to stop.
void pollWork();

/// To stand in loops over a mesh: what pollWork() does, in every 16,384th round. Not in the first
/// ones, so that loops inside of loops cost nothing either. A round may be an id.
template <class Round>
void pollCancel(Round round) {
  if ((static_cast<std::size_t>(round) & 0x3FFFU) == 0x2000U) pollWork();
}

/// Runs a pure function on values, that returns a Result, such that Ctrl-C ends it wherever it
/// polls: the result is then that of cancelled(), and what the function was about to give is gone.
/// Nothing that calls scripts or plug-ins belongs into it.
template <class Work>
std::invoke_result_t<Work> cancellable(Work&& work) {
  const LeaveScope scope;
  try {
    return std::forward<Work>(work)();
  } catch (const WorkLeft&) {
    return cancelled();
  }
}

}  // namespace host
