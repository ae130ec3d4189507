#pragma once

#include <limits>
#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/io/image.h"

namespace host::io {

/// Decodes the first picture of a TIFF in memory; `name` stands for the file in messages.
///
/// Grey, colour and palette pictures with 1 to 64 bits a sample, whole numbers or floats, in strips
/// or tiles, with any of the eight orientations; what is stored otherwise (YCbCr, CMYK, CIE L*a*b*)
/// comes with 8 bits a channel. Whole numbers come as shares of the largest one, floats as they
/// stand (a number that is none comes as 0). Alpha is the first extra sample; grey goes to all
/// three colours.
/// @return an error naming the file when it is damaged, or larger than kLargestImageSide or than
/// what so many bytes can hold, or has more than `mostPixels`.
[[nodiscard]] Result<FloatImage> decodeTiff(
    std::string_view bytes, const std::string& name,
    std::size_t mostPixels = std::numeric_limits<std::size_t>::max());

}  // namespace host::io
