#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <thread>
#include <vector>

#include "host/base/cancel_poll.h"

namespace host {

/// How many threads may run at once; asking the system each time opens files.
inline std::size_t coreCount() {
  static const std::size_t count = std::max(1U, std::thread::hardware_concurrency());
  return count;
}

/// Runs `body(begin, end)` over [0, count) in contiguous blocks on all cores; small counts run
/// inline. The body touches only its own block. What a block throws is thrown once all have ended.
template <class Body>
void parallelFor(std::size_t count, std::size_t grain, Body&& body) {
  const std::size_t blocks = std::min(coreCount(), count / std::max<std::size_t>(grain, 1));
  if (blocks <= 1) {
    if (count > 0) body(std::size_t{0}, count);
    return;
  }
  std::vector<std::exception_ptr> thrown(blocks);
  const auto run = [&](std::size_t i) {
    try {
      body(count * i / blocks, count * (i + 1) / blocks);
    } catch (...) {
      thrown[i] = std::current_exception();
    }
  };
  std::vector<std::thread> threads;
  threads.reserve(blocks - 1);
  const bool mayLeave = LeaveScope::isOpen();
  for (std::size_t i = 1; i < blocks; ++i)
    threads.emplace_back([&run, i, mayLeave] {
      const LeaveScope scope(mayLeave);
      run(i);
    });
  run(0);
  for (std::thread& thread : threads) thread.join();
  for (const std::exception_ptr& each : thrown)
    if (each) std::rethrow_exception(each);
}

}  // namespace host
