#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace host::tools {

/// Calls that recur in time. The program's loop steps them with its clock, a test with one of its
/// own.
class Timers {
 public:
  using Id = std::uint64_t;
  /// The call gets the time now and the time since it was last made, in seconds.
  using Call = std::function<void(double now, double elapsed)>;

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
  /// When the next call is due; infinity without any.
  [[nodiscard]] double nextDue() const;

 private:
  struct Timer {
    Id id = 0;
    double period = 0, last = 0;
    bool isOnce = false;
    Call call;
  };
  [[nodiscard]] const Timer* find(Id id) const;
  std::vector<Timer> timers_;
  Id nextId_ = 1;
  double now_ = 0;
};

}  // namespace host::tools
