#pragma once

#include <maya/MTypes.h>

/// What a class that draws puts into a request for the time when it draws it: a pointer of its own.
class MDrawData {
 public:
  MDrawData() = default;
  explicit MDrawData(void* geometry) : geometry_(geometry) {}
  void* geometry() const { return geometry_; }

 private:
  void* geometry_ = nullptr;
};
