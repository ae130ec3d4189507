#pragma once

#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/io/picture_rows.h"

namespace host::io {

/// Reads any PNG as RGBA with 8 bits a channel.
/// @return an error naming the file when it cannot be opened, is damaged or larger than
/// kLargestImageSide.
[[nodiscard]] Result<Image> readPng(const std::string& path);

/// Decodes a PNG in memory; `name` stands for the file in messages.
[[nodiscard]] Result<Image> decodePng(std::string_view bytes, const std::string& name);

/// The same, a row at a time; an interlaced PNG, whose rows come all at once, is refused over
/// kMostWholePixels. After an error some rows may have come already.
Result<void> decodePngRows(std::string_view bytes, const std::string& name, PictureRows& rows);

/// The same as shares of the largest number, with all 16 bits of a PNG that has them. The file's
/// numbers come as they stand, whatever gamma it claims.
[[nodiscard]] Result<FloatImage> decodePngFloats(std::string_view bytes, const std::string& name);

}  // namespace host::io
