#pragma once

#include <string>

#include "host/base/result.h"
#include "host/io/image.h"

namespace host::io {

/// Reads a PNG, TIFF, JPEG or BMP, told apart by how the file begins, not by its name, as numbers:
/// whole numbers of 1 to 32 bits come as shares of the largest one, floats as they stand.
/// @return an error naming the file when it can't be opened, is none of these, or is damaged.
[[nodiscard]] Result<FloatImage> readFloatPicture(const std::string& path);

/// The same with 8 bits a channel: finer steps are rounded, numbers beyond 0 to 1 cut off there.
[[nodiscard]] Result<Image> readPicture(const std::string& path);
/// The same for what is only looked at: a side that is longer than `largestSide` is halved until it
/// fits. Only the small picture is in memory as a whole; formats that don't come row by row are
/// refused over kMostWholePixels.
[[nodiscard]] Result<Image> readSmallPicture(const std::string& path, int largestSide);

}  // namespace host::io
