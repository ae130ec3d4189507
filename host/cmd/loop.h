#pragma once

#include <deque>
#include <functional>
#include <string>

#include "host/base/signal.h"
#include "host/base/timers.h"

namespace host::cmd {

class Session;

/// The one loop of a running host: its clock, timers, idle work and redraws. The prompt and the
/// window step it by the wall clock; scripts and tests let time go by with `wait`.
class Loop {
 public:
  explicit Loop(Session& session) : session_(session) {}
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;

  // Time, in seconds since the loop was made.
  [[nodiscard]] double now() const { return timers_.now(); }
  [[nodiscard]] Timers& timers() { return timers_; }
  /// Lets time run with a clock that counts seconds from any start. Without one time stands still
  /// but for `wait`: what a script does then doesn't depend on how fast it runs.
  void setClock(std::function<double()> clock);

  // Turns.
  /// One turn: the timers that are due, `turned`, idle work, and a redraw if one was asked for.
  void step();
  /// Lets time go by in turns, one at every moment at which a timer is due and one at the end, so
  /// that each timer is called as often as it would be. A timer that is always due is called a
  /// hundred times a second. Ends early when the program quits or a script is interrupted.
  void wait(double seconds);
  /// One turn at that moment; a moment that has passed counts as now.
  void turnAt(double moment);
  [[nodiscard]] bool isTurning() const { return isTurning_; }
  /// In every turn, before idle work.
  Signal<> turned;
  /// After a turn in which a timer or idle work ran.
  Signal<> worked;

  // Idle work.
  void defer(std::string script, bool lowestPriority = false);
  void deferTask(std::function<void()> task);
  /// Runs deferred scripts, tasks and due script jobs, those included that they queue; gives up
  /// after `maxRounds`. Returns whether something ran.
  bool runIdle(int maxRounds = 100);
  [[nodiscard]] bool hasIdleWork() const;

  // Redraws.
  /// The views are out of date: they are drawn at the end of this turn.
  void requestRedraw() { isRedrawWanted_ = true; }
  /// The same, now.
  void redraw();
  /// Views that are shown draw themselves.
  Signal<> drawing;

 private:
  void runTasks();

  Session& session_;
  Timers timers_;
  std::function<double()> clock_;
  double lastReading_ = 0;
  std::deque<std::string> deferred_, deferredLow_;
  std::deque<std::function<void()>> tasks_;
  bool isRedrawWanted_ = false, isTurning_ = false;
};

}  // namespace host::cmd
