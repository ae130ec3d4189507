#include "host/base/cancel.h"

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <utility>

#include "host/base/cancel_poll.h"

namespace host {
namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kQuiet = std::chrono::milliseconds(500);  ///< what ends sooner is not shown
constexpr auto kPause = std::chrono::milliseconds(100);  ///< between two pictures of progress

std::atomic<bool> isRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "signal handlers set it");

/// Who looks for a person while this thread works.
struct Listening {
  std::function<void()> call;
  Clock::time_point next;
  bool isBusy = false;
};
thread_local Listening listening;

void listen() {
  const Clock::time_point now = Clock::now();
  if (listening.isBusy || now < listening.next) return;
  listening.isBusy = true;
  listening.call();
  listening.isBusy = false;
  listening.next = Clock::now() + kPause;
}

/// What is shown now.
struct Shown {
  std::mutex mutex;
  ProgressSink sink;
  std::string what;
  bool wasDrawn = false;
  std::atomic<int> depth = 0;
  std::atomic<std::size_t> steps = 0, done = 0;
  std::atomic<Clock::rep> nextDraw = 0;
  // What runs as a whole; shown where nothing inside shows itself.
  std::string name;
  Clock::time_point nameDraw;
  bool wasNameDrawn = false;
};

thread_local bool mayLeave = false;

Shown& shown() {
  static Shown state;
  return state;
}

void draw(Shown& state) {
  const std::size_t steps = state.steps, done = state.done;
  const double part =
      steps > 0 ? std::min(1.0, static_cast<double>(done) / static_cast<double>(steps)) : -1;
  state.wasDrawn = true;
  state.sink(state.what, part, false);
}

}  // namespace

void requestCancel() noexcept {
  isRequested.store(true, std::memory_order_relaxed);
}
bool isCancelled() noexcept {
  if (listening.call) listen();
  return isRequested.load(std::memory_order_relaxed);
}
void setCancelListener(std::function<void()> listener) {
  listening.call = std::move(listener);
}
void clearCancel() noexcept {
  isRequested.store(false, std::memory_order_relaxed);
}

tl::unexpected<Error> cancelled() {
  return fail("Interrupted.");
}

LongWork::LongWork(std::string_view what, std::size_t steps) {
  Shown& state = shown();
  isShown_ = state.depth++ == 0;
  if (!isShown_) return;
  const std::scoped_lock lock(state.mutex);
  state.what = what;
  state.steps = steps;
  state.done = 0;
  state.wasDrawn = false;
  state.nextDraw = (Clock::now() + kQuiet).time_since_epoch().count();
}

LongWork::~LongWork() {
  Shown& state = shown();
  --state.depth;
  if (!isShown_) return;
  const std::scoped_lock lock(state.mutex);
  if (state.wasDrawn && state.sink) state.sink(state.what, 1, true);
}

namespace {

/// Shows what runs now, when it is due.
void drawIfDue(Shown& state) {
  const Clock::time_point now = Clock::now();
  Clock::rep due = state.nextDraw;
  if (now.time_since_epoch().count() < due) return;
  if (!state.nextDraw.compare_exchange_strong(due, (now + kPause).time_since_epoch().count()))
    return;
  const std::unique_lock lock(state.mutex, std::try_to_lock);
  if (lock && state.sink) draw(state);
}

}  // namespace

void LongWork::advance(std::size_t steps) noexcept {
  if (!isShown_) return;
  shown().done += steps;
  drawIfDue(shown());
}

NamedWork::NamedWork(std::string_view what) {
  Shown& state = shown();
  const std::scoped_lock lock(state.mutex);
  state.name = what;
  state.nameDraw = Clock::now() + kQuiet;
  state.wasNameDrawn = false;
}

NamedWork::~NamedWork() {
  Shown& state = shown();
  const std::scoped_lock lock(state.mutex);
  if (state.wasNameDrawn && state.sink) state.sink(state.name, 1, true);
  state.name.clear();
}

LeaveScope::LeaveScope(bool may) noexcept : outer_(std::exchange(mayLeave, may)) {}
LeaveScope::~LeaveScope() {
  mayLeave = outer_;
}
bool LeaveScope::isOpen() noexcept {
  return mayLeave;
}

void pollWork() {
  Shown& state = shown();
  if (state.depth > 0) {
    drawIfDue(state);
  } else {
    const std::unique_lock lock(state.mutex, std::try_to_lock);
    const Clock::time_point now = Clock::now();
    if (lock && state.sink && !state.name.empty() && now >= state.nameDraw) {
      state.nameDraw = now + kPause;
      state.wasNameDrawn = true;
      state.sink(state.name, -1, false);
    }
  }
  if (mayLeave && isCancelled()) throw WorkLeft{};
}

void setProgressSink(ProgressSink sink) {
  Shown& state = shown();
  const std::scoped_lock lock(state.mutex);
  state.sink = std::move(sink);
}

}  // namespace host
