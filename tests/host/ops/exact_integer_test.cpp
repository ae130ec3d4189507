#include "host/ops/boolean/exact_integer.h"

#include <cmath>

#include "tests/host/ops/ops_testing.h"

using namespace host::ops;

TEST_CASE("ExactInteger: sums and products follow the rules of integers at every size") {
  std::mt19937_64 random(1);
  const auto some = [&] {
    // Small ones, limbs of all ones and powers of two meet every carry.
    ExactInteger value(static_cast<std::int64_t>(random()) >> (random() % 63));
    const std::size_t factors = random() % 6;
    for (std::size_t i = 0; i < factors; ++i)
      value = value * ExactInteger(Int128{1} << (random() % 100)) + ExactInteger(random() % 3 - 1);
    return value;
  };
  for (int round = 0; round < 3000; ++round) {
    const ExactInteger a = some(), b = some(), c = some();
    REQUIRE(a * (b + c) == a * b + a * c);
    REQUIRE((a + b) - b == a);
    REQUIRE((a - b) * (a + b) == a * a - b * b);
    REQUIRE((a - a).sign() == 0);
    REQUIRE((a * b).sign() == a.sign() * b.sign());
    REQUIRE((a * b).remainder() == moduloProduct(a.remainder(), b.remainder()));
    int exponent = 0, other = 0;
    const double size = a.fraction(exponent), twice = (a + a).fraction(other);
    REQUIRE(std::ldexp(twice, other - exponent) == doctest::Approx(2 * size));
  }
  for (int round = 0; round < 1000; ++round) {
    const auto a = static_cast<std::int64_t>(random()), b = static_cast<std::int64_t>(random());
    REQUIRE(ExactInteger(a) * ExactInteger(b) == ExactInteger(Int128{a} * b));
    REQUIRE(ExactInteger(a) - ExactInteger(b) == ExactInteger(Int128{a} - b));
    const std::uint64_t residue = ExactInteger(a).remainder();
    REQUIRE((residue == 0 || moduloProduct(residue, moduloInverse(residue)) == 1));
  }
}
