#pragma once

#include <maya/MTypes.h>

/// How much a component takes part: its influence and the seam's.
class MWeight {
 public:
  MWeight() = default;

  float influence() const { return influence_; }
  float seam() const { return seam_; }
  void setInfluence(float influence) { influence_ = influence; }
  void setSeam(float seam) { seam_ = seam; }

 private:
  float influence_ = 1.0F;
  float seam_ = 1.0F;
};
