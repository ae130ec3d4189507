#pragma once

#include <maya/MAttributeSpec.h>

#include <vector>

/// The parts of a written component or attribute, those between its dots.
class MAttributeSpecArray {
 public:
  MAttributeSpecArray() = default;
  explicit MAttributeSpecArray(unsigned int initialSize) : specs_(initialSize) {}

  unsigned int length() const { return static_cast<unsigned int>(specs_.size()); }
  MStatus setLength(unsigned int length) {
    specs_.resize(length);
    return MStatus::kSuccess;
  }
  MAttributeSpec& operator[](unsigned int index) { return specs_[index]; }
  const MAttributeSpec& operator[](unsigned int index) const { return specs_[index]; }
  MStatus set(const MAttributeSpec& spec, unsigned int index) {
    if (index >= length()) return MStatus::kInvalidParameter;
    specs_[index] = spec;
    return MStatus::kSuccess;
  }
  MStatus append(const MAttributeSpec& spec) {
    specs_.push_back(spec);
    return MStatus::kSuccess;
  }
  MStatus insert(const MAttributeSpec& spec, unsigned int index) {
    if (index > length()) return MStatus::kInvalidParameter;
    specs_.insert(specs_.begin() + index, spec);
    return MStatus::kSuccess;
  }
  MStatus remove(unsigned int index) {
    if (index >= length()) return MStatus::kInvalidParameter;
    specs_.erase(specs_.begin() + index);
    return MStatus::kSuccess;
  }
  MStatus clear() {
    specs_.clear();
    return MStatus::kSuccess;
  }

 private:
  std::vector<MAttributeSpec> specs_;
};
