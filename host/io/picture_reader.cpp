#include "host/io/picture_reader.h"

#include <string_view>
#include <utility>

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

tl::unexpected<Error> isNeither(const std::string& path) {
  return fail("Cannot read \"{}\": it is no PNG or TIFF picture", path);
}

}  // namespace

Result<FloatImage> readFloatPicture(const std::string& path) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  if (isPng(file->text())) return decodePngFloats(file->text(), path);
  if (isTiff(file->text())) return decodeTiff(file->text(), path);
  return isNeither(path);
}

Result<Image> readPicture(const std::string& path) {
  auto file = FileContent::read(path);
  if (!file) return failWith(std::move(file).error());
  if (isPng(file->text())) return decodePng(file->text(), path);
  if (!isTiff(file->text())) return isNeither(path);
  const auto image = decodeTiff(file->text(), path);
  if (!image) return failWith(image.error());
  return toBytes(*image);
}

}  // namespace host::io
