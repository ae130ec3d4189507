#include "host/nodes/shading/bake.h"

#include <algorithm>
#include <cmath>

namespace host::nodes {

namespace {

using math::Vec3;

constexpr int kLargestBake = 2048;
constexpr int kPatternSide = 256;

int sideFor(const ShadeNetwork& network) {
  const int side = network.pictureSide();
  return side == 0 ? kPatternSide : std::clamp(side, kPatternSide, kLargestBake);
}

/// The picture itself, turned bottom up; with one opacity all over, or (none given) its own.
BakedTexture copied(const Picture& picture, std::optional<double> opacity) {
  BakedTexture baked;
  baked.width = picture.width;
  baked.height = picture.height;
  baked.rgba.resize(picture.rgba.size());
  const std::size_t row = 4 * at(picture.width);
  const auto alpha = static_cast<std::uint8_t>(std::lround(255 * opacity.value_or(1)));
  Vec3 sum;
  double alphaSum = 0;
  for (std::size_t y = 0; y < at(picture.height); ++y) {
    const std::uint8_t* from = picture.rgba.data() + (at(picture.height) - 1 - y) * row;
    std::uint8_t* to = baked.rgba.data() + y * row;
    for (std::size_t x = 0; x < row; x += 4) {
      for (std::size_t channel = 0; channel < 3; ++channel) {
        to[x + channel] = from[x + channel];
        sum[static_cast<int>(channel)] += linearOfLevel(from[x + channel]);
      }
      to[x + 3] = opacity ? alpha : from[x + 3];
      alphaSum += to[x + 3] / 255.0;
    }
  }
  const double share = 1.0 / (double(picture.width) * picture.height);
  baked.mean = sum * share;
  baked.meanOpacity = alphaSum * share;
  return baked;
}

double opacityOf(const Vec3& transparency) {
  return std::clamp(1 - luminance(transparency), 0.0, 1.0);
}

}  // namespace

BakedTexture bake(ShadeNetwork& network, const ShadeNetwork::Color& color,
                  const ShadeNetwork::Color& transparency) {
  if (const Picture* plain = network.plainPicture(color)) {
    if (ShadeNetwork::isConstant(transparency))
      return copied(*plain, opacityOf(ShadeNetwork::constant(transparency)));
    if (network.isPlainTransparency(color, transparency)) return copied(*plain, std::nullopt);
  }
  BakedTexture baked;
  baked.width = baked.height = sideFor(network);
  baked.rgba.resize(std::size_t{4} * at(baked.width) * at(baked.height));
  std::uint8_t* to = baked.rgba.data();
  Vec3 sum;
  double opacitySum = 0;
  for (int y = 0; y < baked.height; ++y)
    for (int x = 0; x < baked.width; ++x, to += 4) {
      network.moveTo((x + 0.5) / baked.width, (y + 0.5) / baked.height);
      const Vec3 value = network.color(color);
      const double opacity = opacityOf(network.color(transparency));
      for (int channel = 0; channel < 3; ++channel) {
        to[channel] = levelOfLinear(value[channel]);
        sum[channel] += std::isfinite(value[channel]) ? std::clamp(value[channel], 0.0, 1.0) : 0.0;
      }
      to[3] = static_cast<std::uint8_t>(std::lround(255 * opacity));
      opacitySum += opacity;
    }
  const double share = 1.0 / (double(baked.width) * baked.height);
  baked.mean = sum * share;
  baked.meanOpacity = opacitySum * share;
  return baked;
}

}  // namespace host::nodes
