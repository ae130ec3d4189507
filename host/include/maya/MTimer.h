#pragma once

#include <maya/MTypes.h>

/// A stop watch; times are in seconds.
class MTimer {
 public:
  MTimer() = default;

  void beginTimer();
  void endTimer();
  double elapsedTime() const;
  void clear();

 private:
  double begin_ = 0.0;
  double elapsed_ = 0.0;
};
