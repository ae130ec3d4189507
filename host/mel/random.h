#pragma once

#include <cstdint>

namespace host::mel {

/// The stream behind rand, gauss and sphrand: the same seed gives the same numbers on every
/// machine.
class RandomSource {
 public:
  void seed(std::int32_t value);
  /// Uniform in [0, 1), 53 bits.
  [[nodiscard]] double uniform();
  /// Normal, mean 0, deviation 1 (polar method; Marsaglia and Bray 1964).
  [[nodiscard]] double normal();

 private:
  std::uint64_t state_ = 0x9e3779b97f4a7c15ull;
};

}  // namespace host::mel
