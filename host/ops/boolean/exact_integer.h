#pragma once

#include <cstdint>
#include <vector>

namespace host::ops {

__extension__ using Int128 = __int128;

/// A signed integer without bounds: sums, differences and products are exact.
class ExactInteger {
 public:
  ExactInteger() = default;
  ExactInteger(Int128 value);  // NOLINT(google-explicit-constructor): mixes with plain integers

  [[nodiscard]] int sign() const { return limbs_.empty() ? 0 : isNegative_ ? -1 : 1; }
  /// The nearest double but for a few units in its last place, as a fraction times 2 ^ exponent.
  [[nodiscard]] double fraction(int& exponent) const;
  /// The remainder by 2^61 - 1, from 0 on. Equal rationals have equal quotients of remainders.
  [[nodiscard]] std::uint64_t remainder() const;

  [[nodiscard]] ExactInteger operator-() const;
  friend ExactInteger operator+(const ExactInteger& a, const ExactInteger& b);
  friend ExactInteger operator-(const ExactInteger& a, const ExactInteger& b) { return a + -b; }
  friend ExactInteger operator*(const ExactInteger& a, const ExactInteger& b);
  friend bool operator==(const ExactInteger&, const ExactInteger&) = default;

 private:
  using Limbs = std::vector<std::uint32_t>;
  [[nodiscard]] static int compareSizes(const Limbs& a, const Limbs& b);
  [[nodiscard]] static Limbs sum(const Limbs& a, const Limbs& b);
  [[nodiscard]] static Limbs difference(const Limbs& larger, const Limbs& smaller);

  Limbs limbs_;  // lowest first, the last not zero; none for zero
  bool isNegative_ = false;
};

/// The modulus of ExactInteger::remainder().
inline constexpr std::uint64_t kExactModulus = (std::uint64_t{1} << 61U) - 1;
/// Products and inverses by that modulus; the inverse of 0 is 0.
[[nodiscard]] std::uint64_t moduloProduct(std::uint64_t a, std::uint64_t b);
[[nodiscard]] std::uint64_t moduloInverse(std::uint64_t value);

}  // namespace host::ops
