#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace host {

/// Calls that recur in time. Whoever has the clock steps them.
class Timers {
 public:
  using Id = std::uint64_t;
  /// The call gets the time now and the time since it was last made, in seconds.
  using Call = std::function<void(double now, double elapsed)>;

  /// Seconds by which a call may come early: periods are kept in single precision by some callers,
  /// and ten times a tenth isn't one.
  static constexpr double kTolerance = 1e-6;

  /// Adds a call every `period` seconds, the first a period after the latest step.
  Id add(double period, Call call);
  /// Adds one that is made once.
  Id addOnce(double delay, Call call);
  void remove(Id id);
  [[nodiscard]] bool contains(Id id) const;

  [[nodiscard]] double now() const { return now_; }
  /// Moves time on to `now` and makes the calls that are due, each once however late it is; those
  /// added meanwhile wait for the next step. Time that goes backwards counts as standing still.
  void step(double now);
  /// How many calls have been made.
  [[nodiscard]] std::uint64_t callCount() const { return callCount_; }
  /// When the next call is due; infinity without any.
  [[nodiscard]] double nextDue() const;

 private:
  struct Timer {
    Id id = 0;
    double period = 0, last = 0;
    bool isOnce = false;
    Call call;
  };
  [[nodiscard]] std::vector<Timer>::iterator find(Id id);
  std::vector<Timer> timers_;
  Id nextId_ = 1;
  std::uint64_t callCount_ = 0;
  double now_ = 0;
};

}  // namespace host
