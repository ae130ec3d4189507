#pragma once

namespace host::math {

/// How a two-dimensional texture lies on the UVs: a frame that may cover only a part of the unit
/// square, and the texture repeated, shifted and turned within it. Angles in radians.
struct Placement {
  double coverageU = 1, coverageV = 1;
  double translateFrameU = 0, translateFrameV = 0;
  double rotateFrame = 0;
  bool mirrorU = false, mirrorV = false;
  bool stagger = false;
  bool wrapU = true, wrapV = true;
  double repeatU = 1, repeatV = 1;
  double offsetU = 0, offsetV = 0;
  double rotateUv = 0;
  friend bool operator==(const Placement&, const Placement&) = default;
};

struct TextureUv {
  double u = 0, v = 0;
  bool isInside = true;  ///< of the frame
};

/// The texture's coordinates at a UV of the surface.
[[nodiscard]] TextureUv placed(const Placement& placement, double u, double v);

}  // namespace host::math
