#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// A time with its unit; the finest step is a tick of 1/6000 second.
class MTime {
 public:
  enum Unit {
    kInvalid,
    kHours,
    kMinutes,
    kSeconds,
    kMilliseconds,
    kGames,  ///< 15 frames a second
    k15FPS = kGames,
    kFilm,  ///< 24
    k24FPS = kFilm,
    kPALFrame,  ///< 25
    k25FPS = kPALFrame,
    kNTSCFrame,  ///< 30
    k30FPS = kNTSCFrame,
    kShowScan,  ///< 48
    k48FPS = kShowScan,
    kPALField,  ///< 50
    k50FPS = kPALField,
    kNTSCField,  ///< 60
    k60FPS = kNTSCField,
    k2FPS,
    k3FPS,
    k4FPS,
    k5FPS,
    k6FPS,
    k8FPS,
    k10FPS,
    k12FPS,
    k16FPS,
    k20FPS,
    k40FPS,
    k75FPS,
    k80FPS,
    k100FPS,
    k120FPS,
    k125FPS,
    k150FPS,
    k200FPS,
    k240FPS,
    k250FPS,
    k300FPS,
    k375FPS,
    k400FPS,
    k500FPS,
    k600FPS,
    k750FPS,
    k1200FPS,
    k1500FPS,
    k2000FPS,
    k3000FPS,
    k6000FPS,
    kUserDef,
    kLast
  };

  MTime() = default;
  MTime(double value, Unit unit = kSeconds) : value_(value), unit_(unit) {}

  Unit unit() const { return unit_; }
  double value() const { return value_; }
  MStatus setUnit(Unit unit);
  MStatus setValue(double value);
  double as(Unit unit) const;
  double asUnits(Unit unit) const { return as(unit); }
  static Unit uiUnit();
  static MStatus setUIUnit(Unit unit);

  bool operator==(const MTime& other) const;
  bool operator!=(const MTime& other) const { return !(*this == other); }
  bool operator<(const MTime& other) const;
  bool operator>(const MTime& other) const { return other < *this; }
  bool operator<=(const MTime& other) const { return !(other < *this); }
  bool operator>=(const MTime& other) const { return !(*this < other); }
  MTime& operator++() { return *this += 1.0; }
  MTime operator++(int);
  MTime& operator--() { return *this -= 1.0; }
  MTime operator--(int);
  MTime operator+(const MTime& other) const;
  MTime operator-(const MTime& other) const;
  MTime operator+(double value) const { return MTime(value_ + value, unit_); }
  MTime operator-(double value) const { return MTime(value_ - value, unit_); }
  MTime operator*(double factor) const { return MTime(value_ * factor, unit_); }
  MTime operator/(double divisor) const { return MTime(value_ / divisor, unit_); }
  double operator/(const MTime& other) const;
  MTime& operator+=(const MTime& other) { return *this = *this + other; }
  MTime& operator-=(const MTime& other) { return *this = *this - other; }
  MTime& operator+=(double value) { return *this = *this + value; }
  MTime& operator-=(double value) { return *this = *this - value; }
  MTime& operator*=(double factor) { return *this = *this * factor; }
  MTime& operator/=(double divisor) { return *this = *this / divisor; }

 private:
  double value_ = 0.0;
  Unit unit_ = kSeconds;
};

std::ostream& operator<<(std::ostream& os, const MTime& time);
