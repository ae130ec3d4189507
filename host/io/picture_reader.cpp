#include "host/io/picture_reader.h"

#include <optional>
#include <string_view>
#include <utility>

#include "host/io/bmp_reader.h"
#include "host/io/jpeg_reader.h"
#include "host/io/png_reader.h"
#include "host/io/tiff_reader.h"
#include "host/io/whole_file.h"

namespace host::io {
namespace {

bool isPng(std::string_view bytes) {
  return bytes.starts_with("\x89PNG\r\n\x1a\n");
}

/// Of either order of bytes, and of the kind for large files.
bool isTiff(std::string_view bytes) {
  using namespace std::string_view_literals;
  for (const std::string_view head : {"II\x2a\0"sv, "MM\0\x2a"sv, "II\x2b\0"sv, "MM\0\x2b"sv})
    if (bytes.starts_with(head)) return true;
  return false;
}

bool isJpeg(std::string_view bytes) {
  return bytes.starts_with("\xFF\xD8\xFF");
}

bool isBmp(std::string_view bytes) {
  return bytes.starts_with("BM");
}

tl::unexpected<Error> isUnknown(const std::string& path) {
  return fail("Cannot read \"{}\": it is no PNG, TIFF, JPEG or BMP picture", path);
}

/// Nothing for kinds that hold more than 8 bits a channel, or are none.
std::optional<Result<Image>> decodeBytes(std::string_view bytes, const std::string& path) {
  if (isPng(bytes)) return decodePng(bytes, path);
  if (isJpeg(bytes)) return decodeJpeg(bytes, path);
  if (isBmp(bytes)) return decodeBmp(bytes, path);
  return std::nullopt;
}

}  // namespace

Result<FloatImage> readFloatPicture(const std::string& path) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  if (isPng(file->text())) return decodePngFloats(file->text(), path);
  if (isTiff(file->text())) return decodeTiff(file->text(), path);
  const auto image = decodeBytes(file->text(), path);
  if (!image) return isUnknown(path);
  if (!*image) return failWith(image->error());
  return toFloats(**image);
}

Result<Image> readPicture(const std::string& path) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  if (auto decoded = decodeBytes(file->text(), path)) return std::move(*decoded);
  if (!isTiff(file->text())) return isUnknown(path);
  const auto image = decodeTiff(file->text(), path);
  if (!image) return failWith(image.error());
  return toBytes(*image);
}

Result<Image> readSmallPicture(const std::string& path, int largestSide) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  const std::string_view bytes = file->text();
  SmallPicture small(largestSide);
  if (isPng(bytes)) {
    HOST_TRY(decodePngRows(bytes, path, small));
  } else if (isJpeg(bytes)) {
    HOST_TRY(decodeJpegRows(bytes, path, small));
  } else if (isBmp(bytes)) {
    HOST_TRY(decodeBmpRows(bytes, path, small));
  } else if (isTiff(bytes)) {
    const auto image = decodeTiff(bytes, path, kMostWholePixels);
    if (!image) return failWith(image.error());
    const Image whole = toBytes(*image);
    small.begin(whole.width, whole.height);
    for (int y = 0; y < whole.height; ++y)
      small.add(whole.rgba.data() + std::size_t{4} * static_cast<std::size_t>(whole.width) *
                                        static_cast<std::size_t>(y));
  } else {
    return isUnknown(path);
  }
  return std::move(small.image);
}

}  // namespace host::io
