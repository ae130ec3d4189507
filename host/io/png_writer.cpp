#include "host/io/png_writer.h"

#include <png.h>

#include <cmath>
#include <csetjmp>
#include <utility>

#include "host/io/whole_file.h"

namespace host::io {
namespace {

void appendBytes(png_structp png, png_bytep data, png_size_t size) {
  static_cast<std::string*>(png_get_io_ptr(png))->append(reinterpret_cast<const char*>(data), size);
}

void keepQuiet(png_structp, png_const_charp) {}

bool isOpaque(const Image& image) {
  for (std::size_t i = 3; i < image.rgba.size(); i += 4)
    if (image.rgba[i] != 255) return false;
  return true;
}

/// Either kind of picture: RGBA samples in rows from the top, those of 16 bits high byte first.
struct Samples {
  int width, height;
  const std::uint8_t* data;
  std::size_t sampleBytes;
  bool hasAlpha;
};

// The library leaves by longjmp, so nothing that needs a destructor lives in here.
bool encode(png_structp png, png_infop info, const Samples& samples, std::string& out) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, &out, appendBytes, nullptr);
  png_set_IHDR(png, info, static_cast<png_uint_32>(samples.width),
               static_cast<png_uint_32>(samples.height), static_cast<int>(8 * samples.sampleBytes),
               samples.hasAlpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  // Level 1 with the SUB filter: a tenth of the default's time for pictures a little larger. Small
  // ones, such as those of documentation, take no time worth saving.
  constexpr int kSmall = 250'000;
  png_set_compression_level(png, samples.width * samples.height <= kSmall ? 9 : 1);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
  png_write_info(png, info);
  if (!samples.hasAlpha) png_set_filler(png, 0, PNG_FILLER_AFTER);  // passed over in the rows
  const std::size_t stride = samples.sampleBytes * 4 * at(samples.width);
  for (int y = 0; y < samples.height; ++y) png_write_row(png, samples.data + stride * at(y));
  png_write_end(png, info);
  return true;
}

Result<void> check(int width, int height, std::size_t count) {
  if (width < 1 || height < 1 || width > kLargestImageSide || height > kLargestImageSide)
    return fail("A picture of {} x {} pixels cannot be written", width, height);
  if (count != std::size_t{4} * at(width) * at(height))
    return fail("The pixels do not fit a picture of {} x {}", width, height);
  return {};
}

Result<std::string> encodeSamples(const Samples& samples) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, keepQuiet);
  png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
  std::string out;
  const bool isDone = info != nullptr && encode(png, info, samples, out);
  png_destroy_write_struct(&png, &info);
  if (!isDone) return fail("The picture could not be encoded");
  return out;
}

Result<void> write(const std::string& path, Result<std::string> text) {
  if (!text) return failWith(std::move(text).error());
  return writeFileAtomically(path, *text);
}

}  // namespace

Result<std::string> encodePng(const Image& image) {
  HOST_TRY(check(image.width, image.height, image.rgba.size()));
  return encodeSamples({image.width, image.height, image.rgba.data(), 1, !isOpaque(image)});
}

Result<std::string> encodePng(const FloatImage& image) {
  HOST_TRY(check(image.width, image.height, image.rgba.size()));
  std::vector<std::uint8_t> bytes;
  bytes.reserve(2 * image.rgba.size());
  for (const float value : image.rgba) {
    const float cut = value > 0 ? std::fmin(value, 1.0F) : 0.0F;
    const auto sample = static_cast<unsigned>(cut * 65535.0F + 0.5F);
    bytes.push_back(static_cast<std::uint8_t>(sample >> 8));
    bytes.push_back(static_cast<std::uint8_t>(sample & 0xFF));
  }
  return encodeSamples({image.width, image.height, bytes.data(), 2, true});
}

Result<void> writePng(const std::string& path, const Image& image) {
  return write(path, encodePng(image));
}

Result<void> writePng(const std::string& path, const FloatImage& image) {
  return write(path, encodePng(image));
}

}  // namespace host::io
