#include "host/io/picture_file.h"

#include <algorithm>
#include <cctype>
#include <csetjmp>
#include <cstdio>
// The library's header wants the standard streams declared before it.
#include <jpeglib.h>

#include <filesystem>

#include "host/io/png_writer.h"
#include "host/io/tiff_writer.h"
#include "host/io/whole_file.h"

namespace host::io {
namespace {

/// 8-bit RGB, row after row from the top, what is transparent on black.
std::vector<std::uint8_t> onBlack(const Image& image) {
  std::vector<std::uint8_t> rgb;
  rgb.reserve(image.rgba.size() / 4 * 3);
  for (std::size_t i = 0; i + 3 < image.rgba.size(); i += 4)
    for (std::size_t c = 0; c < 3; ++c)
      rgb.push_back(static_cast<std::uint8_t>(image.rgba[i + c] * image.rgba[i + 3] / 255));
  return rgb;
}

struct JpegFault {
  jpeg_error_mgr manager;
  std::jmp_buf place;
};

// The library leaves by longjmp, so nothing that needs a destructor lives in here.
bool compress(const std::uint8_t* rgb, int width, int height, int quality, unsigned char** bytes,
              unsigned long* size) {
  jpeg_compress_struct work;
  JpegFault fault;
  work.err = jpeg_std_error(&fault.manager);
  fault.manager.error_exit = [](j_common_ptr at) {
    std::longjmp(reinterpret_cast<JpegFault*>(at->err)->place, 1);
  };
  fault.manager.output_message = [](j_common_ptr) {};
  if (setjmp(fault.place) != 0) {
    jpeg_destroy_compress(&work);
    return false;
  }
  jpeg_create_compress(&work);
  jpeg_mem_dest(&work, bytes, size);
  work.image_width = static_cast<JDIMENSION>(width);
  work.image_height = static_cast<JDIMENSION>(height);
  work.input_components = 3;
  work.in_color_space = JCS_RGB;
  jpeg_set_defaults(&work);
  jpeg_set_quality(&work, quality, TRUE);
  jpeg_start_compress(&work, TRUE);
  while (work.next_scanline < work.image_height) {
    auto* row = const_cast<JSAMPROW>(rgb + std::size_t{3} * work.image_width * work.next_scanline);
    jpeg_write_scanlines(&work, &row, 1);
  }
  jpeg_finish_compress(&work);
  jpeg_destroy_compress(&work);
  return true;
}

Result<std::string> encodeJpeg(const Image& image, int quality) {
  const std::vector<std::uint8_t> rgb = onBlack(image);
  unsigned char* bytes = nullptr;
  unsigned long size = 0;
  const bool isDone =
      compress(rgb.data(), image.width, image.height, std::clamp(quality, 1, 100), &bytes, &size);
  std::string text;
  if (isDone) text.assign(reinterpret_cast<const char*>(bytes), size);
  std::free(bytes);
  if (!isDone) return fail("The picture could not be encoded");
  return text;
}

void appendNumber(std::string& text, std::uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i) & 0xFF);
}

/// 24 bits a pixel, rows from the bottom, each filled up to four bytes.
std::string encodeBmp(const Image& image) {
  constexpr std::uint32_t kHead = 54, kPixelsPerMetre = 2835;
  const auto width = static_cast<std::uint32_t>(image.width);
  const auto height = static_cast<std::uint32_t>(image.height);
  const std::uint32_t stride = (3 * width + 3) / 4 * 4;
  std::string text = "BM";
  text.reserve(kHead + std::size_t{stride} * height);
  for (const std::uint32_t word : {kHead + stride * height, 0U, kHead, 40U, width, height})
    appendNumber(text, word, 4);
  appendNumber(text, 1, 2);
  appendNumber(text, 24, 2);
  for (const std::uint32_t word : {0U, stride * height, kPixelsPerMetre, kPixelsPerMetre, 0U, 0U})
    appendNumber(text, word, 4);
  const std::vector<std::uint8_t> rgb = onBlack(image);
  for (std::size_t row = height; row-- > 0;) {
    const std::uint8_t* const pixels = rgb.data() + std::size_t{3} * width * row;
    for (std::size_t x = 0; x < width; ++x)
      for (std::size_t c = 3; c-- > 0;) text += static_cast<char>(pixels[3 * x + c]);
    text.append(stride - std::size_t{3} * width, '\0');
  }
  return text;
}

}  // namespace

std::optional<PictureFormat> pictureFormat(std::string_view name) {
  std::string word(name);
  std::ranges::transform(word, word.begin(), [](unsigned char c) { return std::tolower(c); });
  if (word == "png") return PictureFormat::Png;
  if (word == "jpg" || word == "jpeg") return PictureFormat::Jpg;
  if (word == "bmp") return PictureFormat::Bmp;
  if (word == "tif" || word == "tiff") return PictureFormat::Tif;
  return std::nullopt;
}

std::optional<PictureFormat> pictureFormatOf(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension().string();
  return extension.empty() ? std::nullopt : pictureFormat(extension.substr(1));
}

std::string_view pictureExtension(PictureFormat format) {
  switch (format) {
    case PictureFormat::Jpg:
      return "jpg";
    case PictureFormat::Bmp:
      return "bmp";
    case PictureFormat::Tif:
      return "tif";
    case PictureFormat::Png:
      break;
  }
  return "png";
}

Result<void> writePicture(const std::string& path, const Image& image, PictureFormat format,
                          int quality) {
  if (format == PictureFormat::Png) return writePng(path, image);
  if (format == PictureFormat::Tif) return writeTiff(path, image);
  // The other two have the limits of the first.
  if (image.width < 1 || image.height < 1 || image.width > kLargestImageSide ||
      image.height > kLargestImageSide)
    return fail("A picture of {} x {} pixels cannot be written", image.width, image.height);
  if (image.rgba.size() != std::size_t{4} * at(image.width) * at(image.height))
    return fail("The pixels do not fit a picture of {} x {}", image.width, image.height);
  if (format == PictureFormat::Bmp) return writeFileAtomically(path, encodeBmp(image));
  const auto text = encodeJpeg(image, quality);
  if (!text) return failWith(text.error());
  return writeFileAtomically(path, *text);
}

}  // namespace host::io
