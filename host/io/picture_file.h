#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/io/image.h"

namespace host::io {

enum class PictureFormat { Png, Jpg, Bmp, Tif };

/// The format that a word or the end of a file's name stands for, case aside: "png", "jpg", "jpeg",
/// "bmp", "tif", "tiff"; nothing for others.
[[nodiscard]] std::optional<PictureFormat> pictureFormat(std::string_view name);
/// The format that a path ends in.
[[nodiscard]] std::optional<PictureFormat> pictureFormatOf(const std::string& path);
/// What a file of this format is called at its end, without the dot.
[[nodiscard]] std::string_view pictureExtension(PictureFormat format);

/// Writes a picture, replacing the file in one step. JPEG and BMP hold no transparency: what is
/// transparent lies on black.
/// @param quality of JPEG, percent
/// @return an error naming the file, which is then unchanged, or for a picture without pixels
[[nodiscard]] Result<void> writePicture(const std::string& path, const Image& image,
                                        PictureFormat format, int quality = 90);

}  // namespace host::io
