#include "host/io/png_reader.h"

#include <png.h>

#include <utility>

#include "host/io/whole_file.h"

namespace host::io {

Result<Image> decodePng(std::string_view bytes, const std::string& name) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0)
    return fail("Cannot read \"{}\": {}", name, png.message);
  // A bit of a pixel compresses 1032 times at best: a header that claims more than that is not
  // followed.
  constexpr std::size_t kBestRatio = 1032;
  const std::size_t size = std::size_t{4} * png.width * png.height;
  if (png.width > kLargestImageSide || png.height > kLargestImageSide ||
      size / 32 / kBestRatio > bytes.size()) {
    png_image_free(&png);
    return fail("Cannot read \"{}\": {} x {} pixels are too many", name, png.width, png.height);
  }
  png.format = PNG_FORMAT_RGBA;
  Image image;
  image.width = static_cast<int>(png.width);
  image.height = static_cast<int>(png.height);
  image.rgba.resize(size);
  if (png_image_finish_read(&png, nullptr, image.rgba.data(), 0, nullptr) == 0)
    return fail("Cannot read \"{}\": {}", name, png.message);
  // The library warns of damage that it could pass over; a damaged picture is an error here.
  if (PNG_IMAGE_FAILED(png)) return fail("Cannot read \"{}\": {}", name, png.message);
  return image;
}

Result<Image> readPng(const std::string& path) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  return decodePng(file->text(), path);
}

}  // namespace host::io
