#pragma once

#include "host/nodes/shading/shade_network.h"

namespace host::nodes {

/// The unit square of a network's colours as pixels: rows from the bottom, sRGB, the fourth channel
/// what of the light the surface stops.
struct BakedTexture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgba;
  math::Vec3 mean;  ///< of the colour, linear light
  double meanOpacity = 1;
};

/// Evaluates colour and transparency over the unit square. A plain picture keeps its size; others
/// get the size of the largest picture in them up to 2048, patterns without one 256.
[[nodiscard]] BakedTexture bake(ShadeNetwork& network, const ShadeNetwork::Color& color,
                                const ShadeNetwork::Color& transparency);

}  // namespace host::nodes
