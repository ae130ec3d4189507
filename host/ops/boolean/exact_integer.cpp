#include "host/ops/boolean/exact_integer.h"

#include <algorithm>
#include <cmath>

namespace host::ops {

namespace {

__extension__ using UInt128 = unsigned __int128;

}  // namespace

ExactInteger::ExactInteger(Int128 value) : isNegative_(value < 0) {
  UInt128 rest =
      isNegative_ ? UInt128{0} - static_cast<UInt128>(value) : static_cast<UInt128>(value);
  for (; rest != 0; rest >>= 32U) limbs_.push_back(static_cast<std::uint32_t>(rest));
}

double ExactInteger::fraction(int& exponent) const {
  exponent = 0;
  if (limbs_.empty()) return 0;
  // Three limbs hold at least 65 bits, more than a double.
  const std::size_t used = std::min<std::size_t>(limbs_.size(), 3);
  double value = 0;
  for (std::size_t i = 0; i < used; ++i)
    value = value * 4294967296.0 + limbs_[limbs_.size() - 1 - i];
  exponent = static_cast<int>(32 * (limbs_.size() - used));
  return isNegative_ ? -value : value;
}

std::uint64_t ExactInteger::remainder() const {
  std::uint64_t rest = 0;
  for (std::size_t i = limbs_.size(); i-- > 0;)
    rest = static_cast<std::uint64_t>(((UInt128{rest} << 32U) | limbs_[i]) % kExactModulus);
  return isNegative_ && rest != 0 ? kExactModulus - rest : rest;
}

ExactInteger ExactInteger::operator-() const {
  ExactInteger negative = *this;
  if (!limbs_.empty()) negative.isNegative_ = !isNegative_;
  return negative;
}

int ExactInteger::compareSizes(const Limbs& a, const Limbs& b) {
  if (a.size() != b.size()) return a.size() < b.size() ? -1 : 1;
  for (std::size_t i = a.size(); i-- > 0;)
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  return 0;
}

ExactInteger::Limbs ExactInteger::sum(const Limbs& a, const Limbs& b) {
  const Limbs& longer = a.size() >= b.size() ? a : b;
  const Limbs& shorter = a.size() >= b.size() ? b : a;
  Limbs result(longer.size());
  std::uint64_t carry = 0;
  for (std::size_t i = 0; i < longer.size(); ++i) {
    carry += std::uint64_t{longer[i]} + (i < shorter.size() ? shorter[i] : 0);
    result[i] = static_cast<std::uint32_t>(carry);
    carry >>= 32U;
  }
  if (carry != 0) result.push_back(static_cast<std::uint32_t>(carry));
  return result;
}

ExactInteger::Limbs ExactInteger::difference(const Limbs& larger, const Limbs& smaller) {
  Limbs result(larger.size());
  std::int64_t borrow = 0;
  for (std::size_t i = 0; i < larger.size(); ++i) {
    std::int64_t digit = std::int64_t{larger[i]} - borrow;
    if (i < smaller.size()) digit -= smaller[i];
    borrow = digit < 0 ? 1 : 0;
    result[i] = static_cast<std::uint32_t>(digit);
  }
  while (!result.empty() && result.back() == 0) result.pop_back();
  return result;
}

ExactInteger operator+(const ExactInteger& a, const ExactInteger& b) {
  ExactInteger result;
  if (a.isNegative_ == b.isNegative_) {
    result.limbs_ = ExactInteger::sum(a.limbs_, b.limbs_);
    result.isNegative_ = a.isNegative_ && !result.limbs_.empty();
    return result;
  }
  const int order = ExactInteger::compareSizes(a.limbs_, b.limbs_);
  if (order == 0) return result;
  const ExactInteger& larger = order > 0 ? a : b;
  result.limbs_ = ExactInteger::difference(larger.limbs_, (order > 0 ? b : a).limbs_);
  result.isNegative_ = larger.isNegative_;
  return result;
}

ExactInteger operator*(const ExactInteger& a, const ExactInteger& b) {
  ExactInteger result;
  if (a.limbs_.empty() || b.limbs_.empty()) return result;
  result.limbs_.assign(a.limbs_.size() + b.limbs_.size(), 0);
  for (std::size_t i = 0; i < a.limbs_.size(); ++i) {
    std::uint64_t carry = 0;
    for (std::size_t j = 0; j < b.limbs_.size(); ++j) {
      carry += std::uint64_t{a.limbs_[i]} * b.limbs_[j] + result.limbs_[i + j];
      result.limbs_[i + j] = static_cast<std::uint32_t>(carry);
      carry >>= 32U;
    }
    result.limbs_[i + b.limbs_.size()] = static_cast<std::uint32_t>(carry);
  }
  if (result.limbs_.back() == 0) result.limbs_.pop_back();
  result.isNegative_ = a.isNegative_ != b.isNegative_;
  return result;
}

std::uint64_t moduloProduct(std::uint64_t a, std::uint64_t b) {
  return static_cast<std::uint64_t>(UInt128{a} * b % kExactModulus);
}

std::uint64_t moduloInverse(std::uint64_t value) {
  // Fermat: the modulus is prime.
  std::uint64_t result = 1;
  for (std::uint64_t power = kExactModulus - 2; power != 0; power >>= 1U) {
    if ((power & 1U) != 0) result = moduloProduct(result, value);
    value = moduloProduct(value, value);
  }
  return result;
}

}  // namespace host::ops
