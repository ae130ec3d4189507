#pragma once

#include <algorithm>
#include <cstddef>
#include <thread>
#include <vector>

namespace host {

/// Runs `body(begin, end)` over [0, count) in contiguous blocks on all cores; small counts run
/// inline. The body touches only its own block; it must not throw.
template <class Body>
void parallelFor(std::size_t count, std::size_t grain, Body&& body) {
  const std::size_t cores = std::max(1u, std::thread::hardware_concurrency());
  const std::size_t blocks = std::min(cores, count / std::max<std::size_t>(grain, 1));
  if (blocks <= 1) {
    if (count > 0) body(std::size_t{0}, count);
    return;
  }
  std::vector<std::thread> threads;
  threads.reserve(blocks - 1);
  for (std::size_t i = 1; i < blocks; ++i)
    threads.emplace_back(
        [&body, i, blocks, count] { body(count * i / blocks, count * (i + 1) / blocks); });
  body(std::size_t{0}, count / blocks);
  for (std::thread& thread : threads) thread.join();
}

}  // namespace host
