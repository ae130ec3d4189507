#pragma once

#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/io/picture_rows.h"

namespace host::io {

/// Decodes an uncompressed BMP in memory, of 1, 4, 8, 16, 24 or 32 bits a pixel, to opaque RGBA;
/// `name` stands for the file in messages.
/// @return an error naming the file when it is damaged, compressed, or larger than
/// kLargestImageSide
[[nodiscard]] Result<Image> decodeBmp(std::string_view bytes, const std::string& name);
/// The same, a row at a time.
Result<void> decodeBmpRows(std::string_view bytes, const std::string& name, PictureRows& rows);

}  // namespace host::io
