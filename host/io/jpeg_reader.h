#pragma once

#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/io/picture_rows.h"

namespace host::io {

/// Decodes a JPEG in memory, grey, colour or CMYK, to opaque RGBA; `name` stands for the file in
/// messages.
/// @return an error naming the file when it is damaged or larger than kLargestImageSide
[[nodiscard]] Result<Image> decodeJpeg(std::string_view bytes, const std::string& name);
/// The same, a row at a time. After an error some rows may have come already.
Result<void> decodeJpegRows(std::string_view bytes, const std::string& name, PictureRows& rows);

}  // namespace host::io
