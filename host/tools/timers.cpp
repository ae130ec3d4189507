#include "host/tools/timers.h"

#include <algorithm>
#include <limits>

namespace host::tools {

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

const Timers::Timer* Timers::find(Id id) const {
  for (const Timer& timer : timers_)
    if (timer.id == id) return &timer;
  return nullptr;
}
bool Timers::contains(Id id) const {
  return find(id) != nullptr;
}

void Timers::step(double now) {
  now_ = std::max(now_, now);
  std::vector<Id> due;
  for (const Timer& timer : timers_)
    if (timer.last + timer.period <= now_) due.push_back(timer.id);
  for (const Id id : due) {
    // A call may remove itself or others.
    auto* timer = const_cast<Timer*>(find(id));
    if (!timer) continue;
    const Call call = timer->call;
    const double elapsed = now_ - timer->last;
    timer->last = now_;
    if (timer->isOnce) remove(id);
    call(now_, elapsed);
  }
}

double Timers::nextDue() const {
  double next = std::numeric_limits<double>::infinity();
  for (const Timer& timer : timers_) next = std::min(next, timer.last + timer.period);
  return next;
}

}  // namespace host::tools
