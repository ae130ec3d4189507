#include <doctest/doctest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <vector>

#include "host/base/cancel_poll.h"
#include "host/base/parallel.h"

using namespace host;

namespace {

/// Long work on a value: counts rounds until somebody asks to stop in the middle.
Result<std::size_t> countTo(std::size_t rounds, std::size_t stopAt) {
  std::size_t done = 0;
  for (std::size_t i = 0; i < rounds; ++i, ++done) {
    if (i == stopAt) requestCancel();
    pollCancel(i);
  }
  return done;
}

struct Cleared {
  Cleared() { clearCancel(); }
  ~Cleared() { clearCancel(); }
};

}  // namespace

TEST_CASE("cancel: work is left where it polls, and only where that is allowed") {
  const Cleared cleared;
  CHECK(*cancellable([] { return countTo(100'000, 200'000); }) == 100'000);
  const auto left = cancellable([] { return countTo(100'000, 20'000); });
  REQUIRE_FALSE(left);
  CHECK(left.error().message == "Interrupted.");
  // Still asked to stop: what is not said to be left runs to its end, also inside of what is.
  CHECK(*countTo(100'000, 200'000) == 100'000);
  const auto inside = cancellable([]() -> Result<std::size_t> {
    const LeaveScope stays(false);
    return countTo(100'000, 200'000);
  });
  CHECK(*inside == 100'000);
}

TEST_CASE("cancel: blocks of a parallel loop all end before the loop is left") {
  const Cleared cleared;
  std::atomic<int> running = 0;
  requestCancel();
  const auto left = cancellable([&]() -> Result<void> {
    parallelFor(1'000'000, 1, [&](std::size_t begin, std::size_t end) {
      struct Inside {
        std::atomic<int>& count;
        explicit Inside(std::atomic<int>& countIn) : count(countIn) { ++count; }
        ~Inside() { --count; }
      } const inside(running);
      for (std::size_t i = begin; i < end; ++i) pollCancel(i);
    });
    return {};
  });
  CHECK_FALSE(left);
  CHECK(running == 0);
}

TEST_CASE("cancel: what runs is shown under its name until it shows itself") {
  const Cleared cleared;
  std::vector<std::string> shown;
  setProgressSink([&](std::string_view what, double part, bool hasEnded) {
    shown.push_back(std::string(what) + (hasEnded ? " ended" : part < 0 ? " ..." : " part"));
  });
  {
    const NamedWork named("polyBevel");
    pollWork();
    CHECK(shown.empty());  // under half a second
    const auto start = std::chrono::steady_clock::now();
    while (shown.empty() &&
           std::chrono::steady_clock::now() - start < std::chrono::seconds(20))  // if nobody shows
      pollWork();
  }
  setProgressSink({});
  REQUIRE(shown.size() >= 2);
  CHECK(shown.front() == "polyBevel ...");
  CHECK(shown.back() == "polyBevel ended");
}
