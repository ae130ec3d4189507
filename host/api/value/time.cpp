#include <maya/MTime.h>

#include <cmath>
#include <string>

#include "host/scene/document.h"

namespace {

struct UnitName {
  MTime::Unit unit;
  const char* name;  ///< as scripts spell it
};
constexpr UnitName kUnitNames[] = {{MTime::kHours, "hour"},      {MTime::kMinutes, "min"},
                                   {MTime::kSeconds, "sec"},     {MTime::kMilliseconds, "millisec"},
                                   {MTime::kGames, "game"},      {MTime::kFilm, "film"},
                                   {MTime::kPALFrame, "pal"},    {MTime::kNTSCFrame, "ntsc"},
                                   {MTime::kShowScan, "show"},   {MTime::kPALField, "palf"},
                                   {MTime::kNTSCField, "ntscf"}, {MTime::k2FPS, "2fps"},
                                   {MTime::k3FPS, "3fps"},       {MTime::k4FPS, "4fps"},
                                   {MTime::k5FPS, "5fps"},       {MTime::k6FPS, "6fps"},
                                   {MTime::k8FPS, "8fps"},       {MTime::k10FPS, "10fps"},
                                   {MTime::k12FPS, "12fps"},     {MTime::k16FPS, "16fps"},
                                   {MTime::k20FPS, "20fps"},     {MTime::k40FPS, "40fps"},
                                   {MTime::k75FPS, "75fps"},     {MTime::k80FPS, "80fps"},
                                   {MTime::k100FPS, "100fps"},   {MTime::k120FPS, "120fps"},
                                   {MTime::k125FPS, "125fps"},   {MTime::k150FPS, "150fps"},
                                   {MTime::k200FPS, "200fps"},   {MTime::k240FPS, "240fps"},
                                   {MTime::k250FPS, "250fps"},   {MTime::k300FPS, "300fps"},
                                   {MTime::k375FPS, "375fps"},   {MTime::k400FPS, "400fps"},
                                   {MTime::k500FPS, "500fps"},   {MTime::k600FPS, "600fps"},
                                   {MTime::k750FPS, "750fps"},   {MTime::k1200FPS, "1200fps"},
                                   {MTime::k1500FPS, "1500fps"}, {MTime::k2000FPS, "2000fps"},
                                   {MTime::k3000FPS, "3000fps"}, {MTime::k6000FPS, "6000fps"}};

const char* nameOf(MTime::Unit unit) {
  for (const UnitName& entry : kUnitNames)
    if (entry.unit == unit) return entry.name;
  return nullptr;
}

/// How many of the unit make a second; 0 for what is no unit.
double perSecond(MTime::Unit unit) {
  const char* name = nameOf(unit);
  return name ? host::scene::framesPerSecondOf(name) : 0.0;
}

/// Whole ticks, so that a time compares equal to itself in another unit.
long long ticksOf(const MTime& time) {
  return std::llround(time.as(MTime::kSeconds) * 6000.0);
}

}  // namespace

MStatus MTime::setUnit(Unit unit) {
  if (!nameOf(unit)) return MStatus::kInvalidParameter;
  unit_ = unit;
  return MStatus::kSuccess;
}

MStatus MTime::setValue(double value) {
  value_ = value;
  return MStatus::kSuccess;
}

double MTime::as(Unit unit) const {
  const double from = perSecond(unit_), to = perSecond(unit);
  if (unit == unit_ || from == 0.0 || to == 0.0) return value_;
  return value_ * to / from;
}

MTime::Unit MTime::uiUnit() {
  const std::string& name = host::scene::currentDocument().units().time;
  for (const UnitName& entry : kUnitNames)
    if (name == entry.name) return entry.unit;
  return kFilm;
}

MStatus MTime::setUIUnit(Unit unit) {
  const char* name = nameOf(unit);
  if (!name) return MStatus::kInvalidParameter;
  host::scene::Document& document = host::scene::currentDocument();
  host::scene::Units units = document.units();
  units.time = name;
  document.setUnits(units);
  return MStatus::kSuccess;
}

bool MTime::operator==(const MTime& other) const {
  return ticksOf(*this) == ticksOf(other);
}
bool MTime::operator<(const MTime& other) const {
  return ticksOf(*this) < ticksOf(other);
}
MTime MTime::operator++(int) {
  const MTime before(*this);
  ++*this;
  return before;
}
MTime MTime::operator--(int) {
  const MTime before(*this);
  --*this;
  return before;
}
MTime MTime::operator+(const MTime& other) const {
  return {value_ + other.as(unit_), unit_};
}
MTime MTime::operator-(const MTime& other) const {
  return {value_ - other.as(unit_), unit_};
}
double MTime::operator/(const MTime& other) const {
  return as(kSeconds) / other.as(kSeconds);
}

std::ostream& operator<<(std::ostream& os, const MTime& time) {
  const char* name = nameOf(time.unit());
  return os << time.value() << (name ? " " : "") << (name ? name : "");
}
