#include "host/cmd/loop.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "host/base/messages.h"
#include "host/cmd/session.h"

namespace host::cmd {
namespace {

/// Seconds between two turns of a loop that has always something to do.
constexpr double kShortestTurn = 0.01;

}  // namespace

void Loop::setClock(std::function<double()> clock) {
  clock_ = std::move(clock);
  if (clock_) lastReading_ = clock_();
}

void Loop::step() {
  double passed = 0;
  if (clock_) {
    const double reading = clock_();
    passed = std::max(reading - lastReading_, 0.0);
    lastReading_ = reading;
  }
  turnAt(now() + passed);
}

void Loop::wait(double seconds) {
  const double end = now() + std::max(seconds, 0.0);
  bool isOver = false;
  while (!isOver && !session_.isQuitting && !session_.interpreter().isInterrupted()) {
    const double due = timers_.nextDue();
    const double next = due > now() ? due : now() + kShortestTurn;
    isOver = next > end + Timers::kTolerance;
    if (!isOver || now() < end || seconds <= 0) turnAt(std::min(next, end));
  }
}

void Loop::turnAt(double moment) {
  struct Turning {
    explicit Turning(bool& flagIn) : flag(flagIn), kept(std::exchange(flagIn, true)) {}
    ~Turning() { flag = kept; }
    bool &flag, kept;
  };
  const std::uint64_t calls = timers_.callCount();
  bool hasWorked = false;
  {
    const Turning turning(isTurning_);
    timers_.step(moment);
    turned();
    hasWorked = runIdle();
  }
  if (hasWorked || timers_.callCount() != calls) worked();
  if (isRedrawWanted_) redraw();
}

void Loop::redraw() {
  isRedrawWanted_ = false;
  drawing();
}

void Loop::defer(std::string script, bool lowestPriority) {
  (lowestPriority ? deferredLow_ : deferred_).push_back(std::move(script));
}

void Loop::deferTask(std::function<void()> task) {
  tasks_.push_back(std::move(task));
}

bool Loop::hasIdleWork() const {
  return !deferred_.empty() || !deferredLow_.empty() || !tasks_.empty() ||
         session_.scriptJobs().hasPending();
}

void Loop::runTasks() {
  for (const auto& task : std::exchange(tasks_, {})) {
    try {
      task();
    } catch (const std::exception& exception) {
      postMessage(MessageKind::Error, exception.what());
    }
  }
}

bool Loop::runIdle(int maxRounds) {
  bool ranSomething = false;
  for (int round = 0; round < maxRounds && (round == 0 || hasIdleWork()); ++round) {
    ranSomething = ranSomething || !tasks_.empty();
    runTasks();
    std::vector<std::string> scripts = session_.scriptJobs().takePending();
    for (std::string& script : std::exchange(deferred_, {})) scripts.push_back(std::move(script));
    ranSomething = ranSomething || !scripts.empty();
    for (const std::string& script : scripts) (void)session_.executeLine(script);
    // The lowest priority: as long as nothing else waits, one by one, and each round those that
    // were there.
    const auto isUrgent = [&] {
      return !deferred_.empty() || !tasks_.empty() || session_.scriptJobs().hasPending();
    };
    for (std::size_t left = deferredLow_.size(); left > 0 && !deferredLow_.empty() && !isUrgent();
         --left) {
      const std::string script = std::move(deferredLow_.front());
      deferredLow_.pop_front();
      ranSomething = true;
      (void)session_.executeLine(script);
    }
  }
  return ranSomething;
}

}  // namespace host::cmd
