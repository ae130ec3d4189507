#pragma once

#include <maya/MPoint.h>

/// Where UVs lie in the scene when they are laid out as points: in the XZ plane, one UV unit ten
/// current linear units. Everything that reads or writes UV objects uses this one rule.
class uvPlacement {
 public:
  /// In the linear unit that the host works in now.
  uvPlacement();
  /// @param centimetresIn in one linear unit
  explicit uvPlacement(float centimetresIn) : centimetres(centimetresIn) {}

  /// The point of a UV, cm.
  MPoint toPoint(float u, float v) const {
    const float perUv = kUnitsPerUv * centimetres;
    return MPoint(perUv * u, 0.0, perUv * v);
  }
  /// u of an x, v of a z; of differences too. From cm, in single precision.
  float toUv(double coordinate) const {
    return static_cast<float>(coordinate) / centimetres / kUnitsPerUv;
  }
  /// How far along x or z a step in UV goes, cm.
  double toDistance(double uvStep) const {
    return static_cast<double>(kUnitsPerUv) * centimetres * uvStep;
  }
  /// How high UV objects are put when they are made, cm: far below the user's scene.
  double height() const { return kHeight * centimetres; }

 private:
  static constexpr float kUnitsPerUv = 10.0F;
  static constexpr double kHeight = -10004.0;
  float centimetres;
};
