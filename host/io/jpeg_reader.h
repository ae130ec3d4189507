#pragma once

#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/io/image.h"

namespace host::io {

/// Decodes a JPEG in memory, grey, colour or CMYK, to opaque RGBA; `name` stands for the file in
/// messages.
/// @return an error naming the file when it is damaged or larger than kLargestImageSide
[[nodiscard]] Result<Image> decodeJpeg(std::string_view bytes, const std::string& name);

}  // namespace host::io
