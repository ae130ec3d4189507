#pragma once

#include <string>

#include "host/base/result.h"
#include "host/io/image.h"

namespace host::io {

/// Encodes a picture as RGBA TIFF with LZW: 8 bits a channel, or 32-bit floats. Linear in pixels.
/// @return an error for a picture without pixels, or whose array does not fit its size.
[[nodiscard]] Result<std::string> encodeTiff(const Image& image);
[[nodiscard]] Result<std::string> encodeTiff(const FloatImage& image);

/// Writes encodeTiff() to a file, replacing it in one step.
/// @return an error naming the file, which is then unchanged.
[[nodiscard]] Result<void> writeTiff(const std::string& path, const Image& image);
[[nodiscard]] Result<void> writeTiff(const std::string& path, const FloatImage& image);

}  // namespace host::io
