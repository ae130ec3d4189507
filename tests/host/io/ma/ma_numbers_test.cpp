#include "host/io/ma/ma_numbers.h"

#include <doctest/doctest.h>

#include <bit>
#include <cmath>
#include <random>

#include "host/io/ma/ma_row.h"

using namespace host;
using dg::AttributeType;

namespace {

std::string written(double stored, double perUnit) {
  std::string text;
  io::appendStored(text, stored, perUnit);
  return text;
}

double readBack(const std::string& text, double perUnit) {
  double stored = 0;
  REQUIRE(io::readStored(text, perUnit, stored));
  return stored;
}

}  // namespace

TEST_CASE("numbers with units: any stored value is written so that it comes back to the bit") {
  std::mt19937_64 random(11);
  for (const scene::LinearUnit unit :
       {scene::LinearUnit::Millimeter, scene::LinearUnit::Inch, scene::LinearUnit::Foot,
        scene::LinearUnit::Meter, scene::LinearUnit::Yard, scene::LinearUnit::Mile}) {
    scene::Units units;
    units.linear = unit;
    units.time = "ntsc";
    for (const AttributeType type :
         {AttributeType::Distance, AttributeType::Angle, AttributeType::Time}) {
      const double perUnit = io::storedPerUnit(type, units);
      CAPTURE(perUnit);
      for (int i = 0; i < 3000; ++i) {
        const auto bits = random();
        double stored = std::bit_cast<double>(bits);
        if (i % 2 == 0) stored = static_cast<double>(bits % 2000001) / 1000.0 - 1000;
        if (!std::isfinite(stored) || std::fabs(stored) > 1e300 || std::fabs(stored) < 1e-290)
          continue;
        REQUIRE(readBack(written(stored, perUnit), perUnit) == stored);
      }
    }
  }
}

TEST_CASE("numbers with units: what a person typed is written as typed") {
  scene::Units units;
  units.linear = scene::LinearUnit::Foot;
  const double degree = io::storedPerUnit(AttributeType::Angle, units);
  const double foot = io::storedPerUnit(AttributeType::Distance, units);
  for (const char* text : {"45", "-89.5", "0.1", "1e-10", "360", "0"}) {
    CHECK(written(readBack(text, degree), degree) == text);
    CHECK(written(readBack(text, foot), foot) == text);
  }
  // The same as scripts make of it.
  CHECK(readBack("45", degree) == units.toRadians(45));
  CHECK(readBack("0.1", foot) == units.toCentimeters(0.1));
}

TEST_CASE("numbers: rows take signs, exponents of three digits and tiny numbers, nothing else") {
  const auto reads = [](std::string_view text) {
    double value = 0;
    io::MaRow row(text);
    return row.read(value) && row.isAtEnd();
  };
  for (const char* good : {"1", "-1.110223e-016", "+.5", "5.", "1e+020", "1e-400", " 7\r\n"})
    CHECK(reads(good));
  for (const char* bad : {"", "-", "+-1", "1e", "1e400", "nan", "-inf", "1.#INF", "0x10", "1,5"})
    CHECK_FALSE(reads(bad));
  float narrow = 1;
  CHECK(io::MaRow("1e-60").read(narrow));
  CHECK(narrow == 0);
  CHECK_FALSE(io::MaRow("1e39").read(narrow));
}
