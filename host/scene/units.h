#pragma once

#include <string>
#include <string_view>

namespace host::scene {

enum class LinearUnit { Millimeter, Centimeter, Meter, Kilometer, Inch, Foot, Yard, Mile };
enum class AngularUnit { Degree, Radian };

/// The units that scripts read and write in. Storage is always cm, radians, seconds.
struct Units {
  LinearUnit linear = LinearUnit::Centimeter;
  AngularUnit angular = AngularUnit::Degree;
  std::string time =
      "film";  ///< game film pal ntsc show palf ntscf sec min hour millisec, or "<n>fps"

  [[nodiscard]] double toCentimeters(double uiLength) const;
  [[nodiscard]] double fromCentimeters(double centimeters) const;
  [[nodiscard]] double toRadians(double uiAngle) const;
  [[nodiscard]] double fromRadians(double radians) const;
  [[nodiscard]] double framesPerSecond() const;
  friend bool operator==(const Units&, const Units&) = default;
};

[[nodiscard]] double centimetersPer(LinearUnit unit);
/// Accepts short and long names: "cm" or "centimeter", "in" or "inch", ...
[[nodiscard]] bool parseLinearUnit(std::string_view name, LinearUnit& unit);
[[nodiscard]] std::string_view linearUnitName(LinearUnit unit, bool longName);
[[nodiscard]] bool parseAngularUnit(std::string_view name, AngularUnit& unit);
[[nodiscard]] std::string_view angularUnitName(AngularUnit unit, bool longName);
[[nodiscard]] double framesPerSecondOf(std::string_view timeUnit);  ///< 0 when unknown

}  // namespace host::scene
