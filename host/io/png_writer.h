#pragma once

#include <string>

#include "host/base/result.h"
#include "host/io/image.h"

namespace host::io {

/// Encodes a picture as RGBA PNG, tuned for speed over size. Linear in pixels.
/// @return an error for a picture without pixels, or whose array does not fit its size.
[[nodiscard]] Result<std::string> encodePng(const Image& image);

/// Writes encodePng() to a file, replacing it in one step.
/// @return an error naming the file, which is then unchanged.
[[nodiscard]] Result<void> writePng(const std::string& path, const Image& image);

}  // namespace host::io
