#include <maya/MAngle.h>

#include "host/math/tolerance.h"
#include "host/scene/document.h"

namespace {

/// Radians a unit; 0 for what is none.
double sizeOf(MAngle::Unit unit) {
  switch (unit) {
    case MAngle::kRadians:
      return 1.0;
    case MAngle::kDegrees:
      return host::math::toRadians(1.0);
    case MAngle::kAngMinutes:
      return host::math::toRadians(1.0 / 60.0);
    case MAngle::kAngSeconds:
      return host::math::toRadians(1.0 / 3600.0);
    default:
      return 0.0;
  }
}

}  // namespace

MStatus MAngle::setUnit(Unit unit) {
  if (sizeOf(unit) == 0.0) return MStatus::kInvalidParameter;
  unit_ = unit;
  return MStatus::kSuccess;
}

MStatus MAngle::setValue(double value) {
  value_ = value;
  return MStatus::kSuccess;
}

double MAngle::as(Unit unit) const {
  const double size = sizeOf(unit);
  if (unit == unit_ || size == 0.0) return value_;
  return value_ * sizeOf(unit_) / size;
}

MAngle::Unit MAngle::uiUnit() {
  return host::scene::currentDocument().units().angular == host::scene::AngularUnit::Degree
             ? kDegrees
             : kRadians;
}

MStatus MAngle::setUIUnit(Unit unit) {
  if (unit != kDegrees && unit != kRadians) return MStatus::kInvalidParameter;
  host::scene::Document& document = host::scene::currentDocument();
  host::scene::Units units = document.units();
  units.angular =
      unit == kDegrees ? host::scene::AngularUnit::Degree : host::scene::AngularUnit::Radian;
  document.setUnits(units);
  return MStatus::kSuccess;
}

MAngle::Unit MAngle::internalUnit() {
  return kRadians;
}
MStatus MAngle::setInternalUnit(Unit unit) {
  return unit == kRadians ? MStatus::kSuccess : MStatus::kInvalidParameter;
}
double MAngle::internalToUI(double value) {
  return MAngle(value, kRadians).as(uiUnit());
}
double MAngle::uiToInternal(double value) {
  return MAngle(value, uiUnit()).as(kRadians);
}

std::ostream& operator<<(std::ostream& os, const MAngle& angle) {
  static const char* const kNames[] = {"", " rad", " deg", " min", " sec", ""};
  return os << angle.value() << kNames[angle.unit()];
}
