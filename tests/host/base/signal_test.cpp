#include "host/base/signal.h"

#include <doctest/doctest.h>

#include <optional>
#include <string>

namespace host {
namespace {

TEST_CASE("listeners hear in the order of their connection, until it goes") {
  Signal<const std::string&> signal;
  std::string heard;
  const Connection first = signal.connect([&](const std::string& text) { heard += "1" + text; });
  {
    const Connection second = signal.connect([&](const std::string& text) { heard += "2" + text; });
    const Connection third = signal.connect([&](const std::string& text) { heard += "3" + text; });
    signal("a");
  }
  signal("b");
  CHECK(heard == "1a2a3a1b");
  CHECK(signal.hasListeners());
}

TEST_CASE("listeners may take themselves and others off, and add some, while they are told") {
  Signal<> signal;
  std::string heard;
  Connection self, other, added;
  self = signal.connect([&] {
    const std::string kept = "self ";  // what the listener holds lives until it is done
    self.disconnect();
    other.disconnect();
    added = signal.connect([&] { heard += "added "; });
    heard += kept;
  });
  other = signal.connect([&] { heard += "other "; });
  const Connection last = signal.connect([&] { heard += "last "; });
  signal();
  CHECK(heard == "self last ");
  signal();
  CHECK(heard == "self last last added ");
}

TEST_CASE("a signal may be told again, and may end, while it tells") {
  auto signal = std::make_unique<Signal<int>>();
  std::string heard;
  const Connection first = signal->connect([&](int depth) {
    heard += std::to_string(depth);
    if (depth < 2) (*signal)(depth + 1);
  });
  const Connection ender = signal->connect([&](int) {
    heard += "x";
    signal.reset();
  });
  Connection moved = signal->connect([&](int) { heard += "end "; });
  Connection holder = std::move(moved);
  (*signal)(0);
  CHECK(heard == "012xend xend xend ");
  holder.disconnect();  // the signal is gone: without effect
  holder = Connection();
}

}  // namespace
}  // namespace host
