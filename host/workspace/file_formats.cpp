#include "host/workspace/file_formats.h"

#include <algorithm>

#include "host/base/assert.h"

namespace host::workspace {

const FileFormat* FileFormats::byName(std::string_view name) const {
  for (const FileFormat& format : all) {
    if (format.name == name) return &format;
    for (const std::string& other : format.otherNames)
      if (other == name) return &format;
  }
  return nullptr;
}

const FileFormat* FileFormats::byPath(std::string_view path) const {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return nullptr;
  std::string extension(path.substr(dot));
  for (char& c : extension) c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  for (const FileFormat& format : all)
    for (const std::string& known : format.extensions)
      if (known == extension) return &format;
  return nullptr;
}

const FileFormat& FileFormats::native() const {
  const auto found =
      std::ranges::find_if(all, [](const FileFormat& format) { return format.isNative; });
  HOST_ASSERT(found != all.end(), "register a format that holds whole scenes");
  return *found;
}

}  // namespace host::workspace
