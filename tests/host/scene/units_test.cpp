#include "host/scene/units.h"

#include <doctest/doctest.h>

using namespace host::scene;

TEST_CASE("units: the default ones leave every bit alone, others convert there and back") {
  Units units;
  CHECK(units.toCentimeters(0.1) == 0.1);
  CHECK(units.fromCentimeters(1.0 / 3) == 1.0 / 3);
  units.linear = LinearUnit::Foot;
  CHECK(units.fromCentimeters(1) == doctest::Approx(0.0328084));
  CHECK(units.toCentimeters(1) == doctest::Approx(30.48));
  for (const double degrees : {45.0, 90.0, -27.938353, 1e-9})
    CHECK(units.fromRadians(units.toRadians(degrees)) == doctest::Approx(degrees).epsilon(1e-15));
  LinearUnit linear;
  CHECK(parseLinearUnit("in", linear));
  CHECK(linear == LinearUnit::Inch);
  CHECK(parseLinearUnit("yard", linear));
  CHECK_FALSE(parseLinearUnit("parsec", linear));
  CHECK(framesPerSecondOf("48fps") == 48);
  CHECK(framesPerSecondOf("ntsc") == 30);
  CHECK(framesPerSecondOf("-3fps") == 0);
  CHECK(framesPerSecondOf("fps") == 0);
}
