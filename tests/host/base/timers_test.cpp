#include "host/base/timers.h"

#include <doctest/doctest.h>

#include <string>

namespace host {
namespace {

using Log = std::vector<std::string>;

TEST_CASE("timers recur, may remove each other, and don't make up for lost time") {
  Timers timers;
  Log log;
  const auto first = timers.add(
      1, [&](double, double elapsed) { log.push_back("first " + std::to_string(int(elapsed))); });
  Timers::Id second = 0;
  timers.add(2, [&](double, double) {
    log.push_back("remover");
    timers.remove(second);
  });
  second = timers.add(2, [&](double, double) { log.push_back("second"); });
  timers.step(1);
  timers.step(1.5);
  timers.step(6);
  CHECK(log == Log{"first 1", "first 5", "remover"});
  CHECK(timers.nextDue() == 7);
  timers.step(3);  // backwards
  CHECK(timers.now() == 6);
  CHECK(timers.contains(first));
}

TEST_CASE("timers that come and go while others are called") {
  Timers timers;
  Log log;
  timers.step(100);
  Timers::Id self = 0;
  self = timers.add(1, [&](double, double) {
    log.push_back("self");
    timers.remove(self);
  });
  timers.addOnce(1, [&](double now, double elapsed) {
    log.push_back("once " + std::to_string(int(now)) + " " + std::to_string(int(elapsed)));
    timers.add(0, [&](double, double) { log.push_back("new"); });
  });
  CHECK(timers.nextDue() == 101);
  timers.step(100.9);
  CHECK(log.empty());
  timers.step(101);
  CHECK(log == Log{"self", "once 101 1"});  // what a call adds waits for the next step
  CHECK_FALSE(timers.contains(self));
  timers.step(101);
  timers.step(101.5);
  CHECK(log == Log{"self", "once 101 1", "new", "new"});
  timers.remove(12345);
  const auto negative = timers.add(-1, [&](double, double) { log.push_back("at once"); });
  timers.step(101.5);
  CHECK(log.back() == "at once");
  timers.remove(negative);
}

TEST_CASE("periods that single precision rounds up are kept, not missed by a turn") {
  Timers timers;
  int calls = 0;
  timers.add(static_cast<double>(0.1f), [&](double, double) { ++calls; });
  for (int turn = 1; turn <= 30; ++turn) timers.step(turn * 0.1);
  CHECK(calls == 30);
}

}  // namespace
}  // namespace host
