#pragma once

#include <maya/MAttributeIndex.h>
#include <maya/MStatus.h>
#include <maya/MString.h>

#include <vector>

/// One part of a written component or attribute: "vtx[0:3]" has a name and one dimension.
class MAttributeSpec {
 public:
  MAttributeSpec() = default;
  explicit MAttributeSpec(const char* name) : name_(name) {}
  explicit MAttributeSpec(const MString& name) : name_(name) {}

  const MString& name() const { return name_; }
  void setName(const MString& name) { name_ = name; }
  int dimensions() const { return static_cast<int>(indices_.size()); }
  MStatus setDimensions(int count) {
    if (count < 0) return MStatus::kInvalidParameter;
    indices_.resize(static_cast<std::size_t>(count));
    return MStatus::kSuccess;
  }
  MAttributeIndex operator[](int dimension) const {
    return dimension >= 0 && dimension < dimensions()
               ? indices_[static_cast<std::size_t>(dimension)]
               : MAttributeIndex();
  }
  MStatus setIndex(int dimension, const MAttributeIndex& index) {
    if (dimension < 0 || dimension >= dimensions()) return MStatus::kInvalidParameter;
    indices_[static_cast<std::size_t>(dimension)] = index;
    return MStatus::kSuccess;
  }
  bool operator==(const MAttributeSpec& other) const {
    return name_ == other.name_ && indices_ == other.indices_;
  }

 private:
  MString name_;
  std::vector<MAttributeIndex> indices_;
};
