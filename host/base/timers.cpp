#include "host/base/timers.h"

#include <algorithm>
#include <limits>

namespace host {

Timers::Id Timers::add(double period, Call call) {
  timers_.push_back({nextId_, std::max(period, 0.0), now_, false, std::move(call)});
  return nextId_++;
}

Timers::Id Timers::addOnce(double delay, Call call) {
  const Id id = add(delay, std::move(call));
  timers_.back().isOnce = true;
  return id;
}

void Timers::remove(Id id) {
  std::erase_if(timers_, [id](const Timer& timer) { return timer.id == id; });
}

std::vector<Timers::Timer>::iterator Timers::find(Id id) {
  return std::find_if(timers_.begin(), timers_.end(),
                      [id](const Timer& timer) { return timer.id == id; });
}

bool Timers::contains(Id id) const {
  return std::any_of(timers_.begin(), timers_.end(),
                     [id](const Timer& timer) { return timer.id == id; });
}

void Timers::step(double now) {
  now_ = std::max(now_, now);
  std::vector<Id> due;
  for (const Timer& timer : timers_)
    if (timer.last + timer.period <= now_ + kTolerance) due.push_back(timer.id);
  for (const Id id : due) {
    // A call may remove itself or others.
    const auto timer = find(id);
    if (timer == timers_.end()) continue;
    const Call call = timer->call;
    const double elapsed = now_ - timer->last;
    timer->last = now_;
    if (timer->isOnce) timers_.erase(timer);
    ++callCount_;
    call(now_, elapsed);
  }
}

double Timers::nextDue() const {
  double next = std::numeric_limits<double>::infinity();
  for (const Timer& timer : timers_) next = std::min(next, timer.last + timer.period);
  return next;
}

}  // namespace host
