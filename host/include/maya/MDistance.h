#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// A length with its unit.
class MDistance {
 public:
  enum Unit {
    kInvalid,
    kInches,
    kFeet,
    kYards,
    kMiles,
    kMillimeters,
    kCentimeters,
    kKilometers,
    kMeters,
    kLast
  };

  MDistance() = default;
  MDistance(double value, Unit unit = kCentimeters) : value_(value), unit_(unit) {}

  Unit unit() const { return unit_; }
  double value() const { return value_; }
  MStatus setUnit(Unit unit);
  MStatus setValue(double value);
  double as(Unit unit) const;
  double asInches() const { return as(kInches); }
  double asFeet() const { return as(kFeet); }
  double asYards() const { return as(kYards); }
  double asMiles() const { return as(kMiles); }
  double asMillimeters() const { return as(kMillimeters); }
  double asCentimeters() const { return as(kCentimeters); }
  double asKilometers() const { return as(kKilometers); }
  double asMeters() const { return as(kMeters); }

  /// The unit that scripts and the interface use; centimetres inside.
  static Unit uiUnit();
  static MStatus setUIUnit(Unit unit);
  static Unit internalUnit();
  static MStatus setInternalUnit(Unit unit);
  static double internalToUI(double value);
  static double uiToInternal(double value);

 private:
  double value_ = 0.0;
  Unit unit_ = kCentimeters;
};

std::ostream& operator<<(std::ostream& os, const MDistance& distance);
