#pragma once

#include <cstddef>
#include <functional>
#include <string_view>

#include "host/base/result.h"

namespace host {

/// Asks the running work to stop. From any thread and from signal handlers.
void requestCancel() noexcept;
/// Whether the running work should stop: operations, solvers, readers and writers ask this at least
/// ten times a second, and give back cancelled() with everything as it was.
[[nodiscard]] bool isCancelled() noexcept;
/// Forgets the request; done where a new line of work begins.
void clearCancel() noexcept;
/// Gives the thread that calls this something to do while it works: called where isCancelled() is
/// asked there, at most ten times a second and never from within itself. So a window looks whether
/// its person wants to stop. An empty one takes it away.
void setCancelListener(std::function<void()> listener);
/// The failed half of a Result for work that was asked to stop.
[[nodiscard]] tl::unexpected<Error> cancelled();

/// A piece of long work while it lives: how much of it there is and how much is done. Work inside
/// of other work is not shown. Everything may be called from several threads.
class LongWork {
 public:
  /// @param what a word or two for a person: "Unfolding"; @param steps how much there is, 0 unknown
  explicit LongWork(std::string_view what, std::size_t steps = 0);
  ~LongWork();
  LongWork(const LongWork&) = delete;
  LongWork& operator=(const LongWork&) = delete;
  void advance(std::size_t steps = 1) noexcept;

 private:
  bool isShown_;
};

/// While it lives, long work that names no steps of its own is shown under this name.
class NamedWork {
 public:
  explicit NamedWork(std::string_view what);
  ~NamedWork();
  NamedWork(const NamedWork&) = delete;
  NamedWork& operator=(const NamedWork&) = delete;
};

/// Shows work to a person: what it is, the part that is done in [0, 1] (negative: unknown), and
/// whether it has ended. Called at most ten times a second, from any thread but one at a time.
using ProgressSink = std::function<void(std::string_view what, double part, bool hasEnded)>;
/// Sets who shows long work; nobody by default. Work under half a second is never shown.
void setProgressSink(ProgressSink sink);

}  // namespace host
