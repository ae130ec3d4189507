#include "host/window/typed_number.h"

#include <doctest/doctest.h>

#include <numbers>

using namespace host;

TEST_CASE("readTyped: a length or an angle with a unit of its own is brought to the scene's") {
  dg::Attribute length;
  length.longName = "width";
  length.type = dg::AttributeType::Distance;
  const scene::Units cm;
  const scene::Units inches{.linear = scene::LinearUnit::Inch};
  CHECK(*window::readTyped("3", length, inches) == 3);
  CHECK(*window::readTyped(" 12 mm ", length, cm) == doctest::Approx(1.2));
  CHECK(*window::readTyped("2.54cm", length, inches) == doctest::Approx(1));
  CHECK(*window::readTyped("+1e1 in", length, cm) == doctest::Approx(25.4));
  CHECK(window::readTyped("3 parsecs", length, cm).error().message.find("mm, cm") !=
        std::string::npos);
  CHECK_FALSE(window::readTyped("90 deg", length, cm));

  dg::Attribute angle;
  angle.longName = "turn";
  angle.type = dg::AttributeType::Angle;
  CHECK(*window::readTyped("90deg", angle, cm) == doctest::Approx(90));
  const scene::Units radians{.angular = scene::AngularUnit::Radian};
  CHECK(*window::readTyped("90 deg", angle, radians) == doctest::Approx(std::numbers::pi / 2));

  dg::Attribute plain;
  plain.longName = "count";
  plain.type = dg::AttributeType::Double;
  for (const char* typed : {"", "abc", "1 cm", "nan", "1e999"}) {
    CAPTURE(typed);
    CHECK_FALSE(window::readTyped(typed, plain, cm));
  }
}

TEST_CASE("readTyped: truth values and enum fields by their names") {
  const scene::Units units;
  dg::Attribute flag;
  flag.type = dg::AttributeType::Bool;
  CHECK(*window::readTyped("on", flag, units) == 1);
  CHECK(*window::readTyped("false", flag, units) == 0);
  dg::Attribute choice;
  choice.type = dg::AttributeType::Enum;
  choice.enumFields = {{"low", 0}, {"high", 5}};
  CHECK(*window::readTyped("high", choice, units) == 5);
  CHECK(*window::readTyped("1", choice, units) == 1);
}
