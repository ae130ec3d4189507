#include "host/io/png_reader.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <utility>
#include <vector>

#include "host/io/whole_file.h"

namespace host::io {
namespace {

// A bit of a pixel compresses 1032 times at best: a header that claims more than that is not
// followed.
bool isTooLarge(std::size_t width, std::size_t height, std::size_t fileBytes) {
  constexpr std::size_t kBestRatio = 1032;
  return width > kLargestImageSide || height > kLargestImageSide ||
         width * height / 8 / kBestRatio > fileBytes;
}

/// A file that is read from the front, and what the library said when it gave up.
struct Source {
  std::string_view rest;
  std::string complaint;
};

void takeBytes(png_structp png, png_bytep to, png_size_t size) {
  auto& source = *static_cast<Source*>(png_get_io_ptr(png));
  if (source.rest.size() < size) png_error(png, "the file ends too early");
  std::memcpy(to, source.rest.data(), size);
  source.rest.remove_prefix(size);
}

void giveUp(png_structp png, png_const_charp reason) {
  static_cast<Source*>(png_get_error_ptr(png))->complaint = reason;
  png_longjmp(png, 1);
}

void keepQuiet(png_structp, png_const_charp) {}

// The library leaves by longjmp, so nothing that needs a destructor lives in the next four.

/// With 16 bits a channel (`isFine`) or with 8.
bool readHead(png_structp png, png_infop info, bool isFine) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_read_info(png, info);
  png_set_expand(png);
  if (isFine)
    png_set_expand_16(png);
  else
    png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, isFine ? 0xFFFF : 0xFF, PNG_FILLER_AFTER);
  png_set_interlace_handling(png);
  png_read_update_info(png, info);
  return true;
}

bool readRow(png_structp png, png_bytep row) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_read_row(png, row, nullptr);
  return true;
}

bool readEnd(png_structp png) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_read_end(png, nullptr);
  return true;
}

bool readRows(png_structp png, png_bytepp rows) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_read_image(png, rows);
  png_read_end(png, nullptr);
  return true;
}

/// The library's reader, let go of with its owner.
struct Reader {
  explicit Reader(Source& source)
      : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &source, giveUp, keepQuiet)),
        info(png ? png_create_info_struct(png) : nullptr) {
    if (png) png_set_read_fn(png, &source, takeBytes);
  }
  Reader(const Reader&) = delete;
  Reader& operator=(const Reader&) = delete;
  ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
  png_structp png;
  png_infop info;
};

}  // namespace

Result<FloatImage> decodePngFloats(std::string_view bytes, const std::string& name) {
  Source source{bytes, "out of memory"};
  const Reader reader(source);
  if (!reader.info || !readHead(reader.png, reader.info, true))
    return fail("Cannot read \"{}\": {}", name, source.complaint);
  const std::size_t width = png_get_image_width(reader.png, reader.info);
  const std::size_t height = png_get_image_height(reader.png, reader.info);
  if (isTooLarge(width, height, bytes.size()))
    return fail("Cannot read \"{}\": {} x {} pixels are too many", name, width, height);
  constexpr std::size_t kPixelBytes = 8;
  std::vector<png_byte> samples(kPixelBytes * width * height);
  if (png_get_rowbytes(reader.png, reader.info) != kPixelBytes * width)
    return fail("Cannot read \"{}\": its pixels are stored in a way that is not known", name);
  std::vector<png_bytep> rows(height);
  for (std::size_t y = 0; y < height; ++y) rows[y] = samples.data() + kPixelBytes * width * y;
  if (!readRows(reader.png, rows.data()))
    return fail("Cannot read \"{}\": {}", name, source.complaint);
  FloatImage image{static_cast<int>(width), static_cast<int>(height), {}};
  image.rgba.reserve(4 * width * height);
  for (std::size_t i = 0; i < samples.size(); i += 2)  // the high byte comes first
    image.rgba.push_back(static_cast<float>(samples[i] << 8 | samples[i + 1]) / 65535.0F);
  return image;
}

Result<Image> decodePng(std::string_view bytes, const std::string& name) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(&png, bytes.data(), bytes.size()) == 0)
    return fail("Cannot read \"{}\": {}", name, png.message);
  const std::size_t size = std::size_t{4} * png.width * png.height;
  if (isTooLarge(png.width, png.height, bytes.size())) {
    png_image_free(&png);
    return fail("Cannot read \"{}\": {} x {} pixels are too many", name, png.width, png.height);
  }
  // The library takes 16 bits for linear light and would brighten them.
  if ((png.format & PNG_FORMAT_FLAG_LINEAR) != 0) {
    png_image_free(&png);
    const auto floats = decodePngFloats(bytes, name);
    if (!floats) return failWith(floats.error());
    return toBytes(*floats);
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

Result<void> decodePngRows(std::string_view bytes, const std::string& name, PictureRows& rows) {
  Source source{bytes, "out of memory"};
  const Reader reader(source);
  if (!reader.info || !readHead(reader.png, reader.info, false))
    return fail("Cannot read \"{}\": {}", name, source.complaint);
  const std::size_t width = png_get_image_width(reader.png, reader.info);
  const std::size_t height = png_get_image_height(reader.png, reader.info);
  const bool isInterlaced = png_get_interlace_type(reader.png, reader.info) != PNG_INTERLACE_NONE;
  if (isTooLarge(width, height, bytes.size()) ||
      (isInterlaced && width * height > kMostWholePixels))
    return fail("Cannot read \"{}\": {} x {}{} pixels are too many", name, width, height,
                isInterlaced ? " interlaced" : "");
  if (png_get_rowbytes(reader.png, reader.info) != 4 * width)
    return fail("Cannot read \"{}\": its pixels are stored in a way that is not known", name);
  if (isInterlaced) {
    const auto image = decodePng(bytes, name);
    if (!image) return failWith(image.error());
    rows.begin(image->width, image->height);
    for (std::size_t y = 0; y < height; ++y) rows.add(image->rgba.data() + 4 * width * y);
    return {};
  }
  rows.begin(static_cast<int>(width), static_cast<int>(height));
  std::vector<png_byte> row(4 * width);
  for (std::size_t y = 0; y < height; ++y) {
    if (!readRow(reader.png, row.data()))
      return fail("Cannot read \"{}\": {}", name, source.complaint);
    rows.add(row.data());
  }
  if (!readEnd(reader.png)) return fail("Cannot read \"{}\": {}", name, source.complaint);
  return {};
}

Result<Image> readPng(const std::string& path) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  return decodePng(file->text(), path);
}

}  // namespace host::io
