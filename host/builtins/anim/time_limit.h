#pragma once

#include <pthread.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace host::builtins {

/// Ends work that takes too much of its thread's time. One watcher sleeps until there is something
/// to watch; beginning and ending cost about a microsecond.
class TimeLimit {
 public:
  /// @param seconds of the working thread's own time, so that a busy machine ends nobody
  /// @param stop called from another thread, at most once a watch
  TimeLimit(double seconds, std::function<void()> stop);
  ~TimeLimit();
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;

  /// Watches the calling thread while it lives. Of watches within each other the outermost counts.
  class Watch {
   public:
    explicit Watch(TimeLimit& limit);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    /// Whether the time was up.
    [[nodiscard]] bool isOver() const;

   private:
    TimeLimit& limit_;
  };

 private:
  void watch();

  const double seconds_;
  const std::function<void()> stop_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  int depth_ = 0;
  bool isOver_ = false, isEnding_ = false;
  clockid_t clock_{};
  double start_ = 0;
  std::thread watcher_;
};

}  // namespace host::builtins
