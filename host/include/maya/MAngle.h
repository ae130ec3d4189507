#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// An angle with its unit.
class MAngle {
 public:
  enum Unit { kInvalid, kRadians, kDegrees, kAngMinutes, kAngSeconds, kLast };

  MAngle() = default;
  MAngle(double value, Unit unit = kRadians) : value_(value), unit_(unit) {}

  Unit unit() const { return unit_; }
  double value() const { return value_; }
  MStatus setUnit(Unit unit);
  MStatus setValue(double value);
  double as(Unit unit) const;
  double asRadians() const { return as(kRadians); }
  double asDegrees() const { return as(kDegrees); }
  double asAngMinutes() const { return as(kAngMinutes); }
  double asAngSeconds() const { return as(kAngSeconds); }

  /// The unit that scripts and the interface use; radians inside.
  static Unit uiUnit();
  static MStatus setUIUnit(Unit unit);
  static Unit internalUnit();
  static MStatus setInternalUnit(Unit unit);
  static double internalToUI(double value);
  static double uiToInternal(double value);

 private:
  double value_ = 0.0;
  Unit unit_ = kRadians;
};

std::ostream& operator<<(std::ostream& os, const MAngle& angle);
