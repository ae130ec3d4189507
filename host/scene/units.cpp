#include "host/scene/units.h"

#include <array>
#include <charconv>

namespace host::scene {

namespace {

struct LinearName {
  std::string_view shortName, longName;
  double centimeters;
};
constexpr std::array<LinearName, 8> kLinear = {{{"mm", "millimeter", 0.1},
                                                {"cm", "centimeter", 1.0},
                                                {"m", "meter", 100.0},
                                                {"km", "kilometer", 100000.0},
                                                {"in", "inch", 2.54},
                                                {"ft", "foot", 30.48},
                                                {"yd", "yard", 91.44},
                                                {"mi", "mile", 160934.4}}};

struct TimeName {
  std::string_view name;
  double framesPerSecond;
};
constexpr std::array<TimeName, 17> kTime = {{{"game", 15},
                                             {"film", 24},
                                             {"pal", 25},
                                             {"ntsc", 30},
                                             {"show", 48},
                                             {"palf", 50},
                                             {"ntscf", 60},
                                             {"sec", 1},
                                             {"second", 1},
                                             {"min", 1.0 / 60},
                                             {"minute", 1.0 / 60},
                                             {"hour", 1.0 / 3600},
                                             {"millisec", 1000},
                                             {"millisecond", 1000},
                                             {"23.976fps", 24000.0 / 1001},
                                             {"29.97fps", 30000.0 / 1001},
                                             {"59.94fps", 60000.0 / 1001}}};

constexpr double kDegreesPerRadian = 57.295779513082320876798154814105;

}  // namespace

double centimetersPer(LinearUnit unit) {
  return kLinear[static_cast<std::size_t>(unit)].centimeters;
}

// The default unit must not touch a value, not even in the last bit.
double Units::toCentimeters(double uiLength) const {
  return linear == LinearUnit::Centimeter ? uiLength : uiLength * centimetersPer(linear);
}
double Units::fromCentimeters(double centimeters) const {
  return linear == LinearUnit::Centimeter ? centimeters : centimeters / centimetersPer(linear);
}
double Units::toRadians(double uiAngle) const {
  return angular == AngularUnit::Radian ? uiAngle : uiAngle / kDegreesPerRadian;
}
double Units::fromRadians(double radians) const {
  return angular == AngularUnit::Radian ? radians : radians * kDegreesPerRadian;
}
double Units::framesPerSecond() const {
  const double rate = framesPerSecondOf(time);
  return rate > 0 ? rate : 24;
}

bool parseLinearUnit(std::string_view name, LinearUnit& unit) {
  for (std::size_t i = 0; i < kLinear.size(); ++i) {
    if (name != kLinear[i].shortName && name != kLinear[i].longName) continue;
    unit = static_cast<LinearUnit>(i);
    return true;
  }
  return false;
}

std::string_view linearUnitName(LinearUnit unit, bool longName) {
  const LinearName& entry = kLinear[static_cast<std::size_t>(unit)];
  return longName ? entry.longName : entry.shortName;
}

bool parseAngularUnit(std::string_view name, AngularUnit& unit) {
  if (name == "deg" || name == "degree")
    unit = AngularUnit::Degree;
  else if (name == "rad" || name == "radian")
    unit = AngularUnit::Radian;
  else
    return false;
  return true;
}

std::string_view angularUnitName(AngularUnit unit, bool longName) {
  if (unit == AngularUnit::Degree) return longName ? "degree" : "deg";
  return longName ? "radian" : "rad";
}

double framesPerSecondOf(std::string_view timeUnit) {
  for (const TimeName& entry : kTime)
    if (entry.name == timeUnit) return entry.framesPerSecond;
  if (!timeUnit.ends_with("fps")) return 0;
  const std::string_view number = timeUnit.substr(0, timeUnit.size() - 3);
  double rate = 0;
  const char* end = number.data() + number.size();
  const auto [stop, error] = std::from_chars(number.data(), end, rate);
  return error == std::errc() && stop == end && rate > 0 ? rate : 0;
}

}  // namespace host::scene
