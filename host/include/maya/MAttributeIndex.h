#pragma once

#include <maya/MStatus.h>

/// The index or the range of indices in one pair of brackets of a component's or attribute's name.
/// A range without bounds is that of "[*]".
class MAttributeIndex {
 public:
  enum MIndexType { kInteger, kFloat };

  MAttributeIndex() = default;
  explicit MAttributeIndex(int value) { setValue(value); }
  explicit MAttributeIndex(double value) { setValue(value); }
  MAttributeIndex(int lower, int upper) {
    setLower(lower);
    setUpper(upper);
  }

  MIndexType type() const { return type_; }
  bool hasLowerBound() const { return hasLower_; }
  bool hasUpperBound() const { return hasUpper_; }
  bool isBounded() const { return hasLower_ && hasUpper_; }
  /// Several indices, or all of them; not one.
  bool hasRange() const { return !isBounded() || lower_ != upper_; }
  bool hasValidRange() const { return !isBounded() || lower_ <= upper_; }

  MStatus getValue(int& value) const { return getLower(value); }
  MStatus getValue(double& value) const { return getLower(value); }
  MStatus getLower(int& value) const { return give(hasLower_, lower_, value); }
  MStatus getLower(double& value) const { return give(hasLower_, lower_, value); }
  MStatus getUpper(int& value) const { return give(hasUpper_, upper_, value); }
  MStatus getUpper(double& value) const { return give(hasUpper_, upper_, value); }

  MStatus setType(MIndexType type) {
    type_ = type;
    return MStatus::kSuccess;
  }
  template <class Number>
  MStatus setValue(Number value) {
    const MStatus status = setLower(value);
    return status ? setUpper(value) : status;
  }
  MStatus setLower(int value) { return take(hasLower_, lower_, value, kInteger); }
  MStatus setLower(double value) { return take(hasLower_, lower_, value, kFloat); }
  MStatus setUpper(int value) { return take(hasUpper_, upper_, value, kInteger); }
  MStatus setUpper(double value) { return take(hasUpper_, upper_, value, kFloat); }

  bool operator==(const MAttributeIndex& other) const {
    return type_ == other.type_ && hasLower_ == other.hasLower_ && hasUpper_ == other.hasUpper_ &&
           (!hasLower_ || lower_ == other.lower_) && (!hasUpper_ || upper_ == other.upper_);
  }

 private:
  template <class Number>
  static MStatus give(bool isThere, double from, Number& value) {
    if (isThere) value = static_cast<Number>(from);
    return isThere ? MStatus::kSuccess : MStatus::kFailure;
  }
  MStatus take(bool& isThere, double& to, double value, MIndexType type) {
    isThere = true;
    to = value;
    type_ = type;
    return MStatus::kSuccess;
  }

  MIndexType type_ = kInteger;
  bool hasLower_ = false, hasUpper_ = false;
  double lower_ = 0, upper_ = 0;
};
