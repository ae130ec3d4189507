#include "host/builtins/anim/time_limit.h"

#include <ctime>

namespace host::builtins {
namespace {

double secondsOf(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

}  // namespace

TimeLimit::TimeLimit(double seconds, std::function<void()> stop)
    : seconds_(seconds), stop_(std::move(stop)) {}

TimeLimit::~TimeLimit() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  changed_.notify_one();
  if (watcher_.joinable()) watcher_.join();
}

void TimeLimit::watch() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [&] { return isEnding_ || (depth_ > 0 && !isOver_); });
    if (isEnding_) return;
    changed_.wait_for(lock, std::chrono::milliseconds(50));
    if (isEnding_) return;
    if (depth_ == 0 || isOver_ || secondsOf(clock_) - start_ < seconds_) continue;
    isOver_ = true;
    stop_();
  }
}

TimeLimit::Watch::Watch(TimeLimit& limit) : limit_(limit) {
  bool isFirst = false;
  {
    const std::lock_guard lock(limit_.mutex_);
    if (limit_.depth_++ == 0) {
      pthread_getcpuclockid(pthread_self(), &limit_.clock_);
      limit_.start_ = secondsOf(limit_.clock_);
      limit_.isOver_ = false;
      isFirst = true;
    }
  }
  if (!isFirst) return;
  if (!limit_.watcher_.joinable()) limit_.watcher_ = std::thread([&limit] { limit.watch(); });
  limit_.changed_.notify_one();
}

TimeLimit::Watch::~Watch() {
  const std::lock_guard lock(limit_.mutex_);
  --limit_.depth_;
}

bool TimeLimit::Watch::isOver() const {
  const std::lock_guard lock(limit_.mutex_);
  return limit_.isOver_;
}

}  // namespace host::builtins
