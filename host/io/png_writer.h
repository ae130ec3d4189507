#pragma once

#include <string>

#include "host/base/result.h"
#include "host/io/image.h"

namespace host::io {

/// Encodes a picture as RGBA PNG, tuned for speed over size. Linear in pixels.
/// @return an error for a picture without pixels, or whose array does not fit its size.
[[nodiscard]] Result<std::string> encodePng(const Image& image);

/// Encodes a picture as RGBA PNG with 16 bits a channel; numbers beyond 0 to 1 are cut off there.
[[nodiscard]] Result<std::string> encodePng(const FloatImage& image);

/// Writes encodePng() to a file, replacing it in one step.
/// @return an error naming the file, which is then unchanged.
[[nodiscard]] Result<void> writePng(const std::string& path, const Image& image);
[[nodiscard]] Result<void> writePng(const std::string& path, const FloatImage& image);

}  // namespace host::io
