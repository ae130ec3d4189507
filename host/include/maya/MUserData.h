#pragma once

#include <maya/MTypes.h>

/// Base of the data that a draw override hands from preparing to drawing.
class MUserData {
 public:
  explicit MUserData(bool deleteAfterUse = true) : deleteAfterUse_(deleteAfterUse) {}
  virtual ~MUserData();

  bool deleteAfterUse() const { return deleteAfterUse_; }
  void setDeleteAfterUse(bool value) { deleteAfterUse_ = value; }

 private:
  bool deleteAfterUse_;
};
