#include <maya/MDistance.h>

#include <iterator>

#include "host/scene/document.h"

namespace {

using host::scene::LinearUnit;

/// The engine's units in the API's order, which starts behind kInvalid.
constexpr LinearUnit kUnits[] = {
    LinearUnit::Inch,       LinearUnit::Foot,       LinearUnit::Yard,      LinearUnit::Mile,
    LinearUnit::Millimeter, LinearUnit::Centimeter, LinearUnit::Kilometer, LinearUnit::Meter};

bool isUnit(MDistance::Unit unit) {
  return unit > MDistance::kInvalid && unit < MDistance::kLast;
}
LinearUnit engineUnit(MDistance::Unit unit) {
  return kUnits[unit - MDistance::kInches];
}

}  // namespace

MStatus MDistance::setUnit(Unit unit) {
  if (!isUnit(unit)) return MStatus::kInvalidParameter;
  unit_ = unit;
  return MStatus::kSuccess;
}

MStatus MDistance::setValue(double value) {
  value_ = value;
  return MStatus::kSuccess;
}

double MDistance::as(Unit unit) const {
  if (unit == unit_ || !isUnit(unit) || !isUnit(unit_)) return value_;
  return value_ * host::scene::centimetersPer(engineUnit(unit_)) /
         host::scene::centimetersPer(engineUnit(unit));
}

MDistance::Unit MDistance::uiUnit() {
  const LinearUnit unit = host::scene::currentDocument().units().linear;
  for (std::size_t i = 0; i < std::size(kUnits); ++i)
    if (kUnits[i] == unit) return static_cast<Unit>(i + kInches);
  return kCentimeters;
}

MStatus MDistance::setUIUnit(Unit unit) {
  if (!isUnit(unit)) return MStatus::kInvalidParameter;
  host::scene::Document& document = host::scene::currentDocument();
  host::scene::Units units = document.units();
  units.linear = engineUnit(unit);
  document.setUnits(units);
  return MStatus::kSuccess;
}

MDistance::Unit MDistance::internalUnit() {
  return kCentimeters;
}
MStatus MDistance::setInternalUnit(Unit unit) {
  return unit == kCentimeters ? MStatus::kSuccess : MStatus::kInvalidParameter;
}
double MDistance::internalToUI(double value) {
  return MDistance(value, kCentimeters).as(uiUnit());
}
double MDistance::uiToInternal(double value) {
  return MDistance(value, uiUnit()).as(kCentimeters);
}

std::ostream& operator<<(std::ostream& os, const MDistance& distance) {
  os << distance.value();
  if (isUnit(distance.unit()))
    os << ' ' << host::scene::linearUnitName(engineUnit(distance.unit()), false);
  return os;
}
