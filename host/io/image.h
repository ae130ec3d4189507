#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host::io {

/// 8-bit RGBA pixels, not premultiplied, row after row from the top.
struct Image {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgba;  ///< 4 * width * height
  friend bool operator==(const Image&, const Image&) = default;
};

/// RGBA pixels as numbers: 0 is black, 1 the white of a picture of whole numbers; files of floats
/// may hold others. Not premultiplied, row after row from the top.
struct FloatImage {
  int width = 0, height = 0;
  std::vector<float> rgba;  ///< 4 * width * height
  friend bool operator==(const FloatImage&, const FloatImage&) = default;
};

/// Numbers as 8 bits a channel, rounded and cut off at 0 and 1; bytes as shares of 255.
[[nodiscard]] Image toBytes(const FloatImage& image);
[[nodiscard]] FloatImage toFloats(const Image& image);

/// The longest side of a picture that is read or written, pixels.
inline constexpr int kLargestImageSide = 32768;

/// The most pixels that a texture's file may have where its format asks for all of them at once: a
/// quarter to one gigabyte while it is read.
inline constexpr std::size_t kMostWholePixels = std::size_t{8192} * 8192;

}  // namespace host::io
