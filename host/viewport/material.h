#pragma once

#include <memory>
#include <optional>

#include "host/math/placement.h"
#include "host/math/vec.h"

namespace host::viewport {

struct Texture;

/// How a surface looks, as a shading group says. Colours are of linear light.
struct Material {
  math::Vec3 color{0.5, 0.5, 0.5};  ///< the texture's mean where there is one
  double diffuse = 0.8;             ///< share of the colour that comes back as light
  double opacity = 1;
  math::Vec3 ambient;        ///< added to all light that arrives
  math::Vec3 incandescence;  ///< added to all light that leaves
  math::Vec3 specular;       ///< of highlights
  double gloss = 20;         ///< exponent of highlights about the half vector
  bool lit = true;           ///< false: the colour as it is, whatever light there is

  std::shared_ptr<const Texture> texture;  ///< colour and opacity instead of the two above
  math::Placement placement;
  math::Vec3 outsideColor;  ///< where the texture's frame does not reach
  double outsideOpacity = 1;
  bool hasAlpha = false;  ///< somewhere the texture lets light through

  [[nodiscard]] bool isTranslucent(bool textured) const {
    return texture && textured ? hasAlpha : opacity < 0.999;
  }
};
using MaterialPtr = std::shared_ptr<const Material>;

}  // namespace host::viewport
