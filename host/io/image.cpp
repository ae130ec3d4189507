#include "host/io/image.h"

#include <cmath>

namespace host::io {

Image toBytes(const FloatImage& image) {
  Image bytes{image.width, image.height, {}};
  bytes.rgba.reserve(image.rgba.size());
  for (const float value : image.rgba) {
    const float cut = value > 0 ? std::fmin(value, 1.0F) : 0.0F;
    bytes.rgba.push_back(static_cast<std::uint8_t>(cut * 255.0F + 0.5F));
  }
  return bytes;
}

FloatImage toFloats(const Image& image) {
  FloatImage floats{image.width, image.height, {}};
  floats.rgba.reserve(image.rgba.size());
  for (const std::uint8_t value : image.rgba)
    floats.rgba.push_back(static_cast<float>(value) / 255.0F);
  return floats;
}

}  // namespace host::io
