#pragma once

#include <string>
#include <string_view>

#include "host/base/result.h"

namespace host::io {

/// A file's bytes, mapped read-only for as long as the object lives.
class MappedFile {
 public:
  /// Opens a regular file. @return an error naming the file when it cannot be read.
  [[nodiscard]] static Result<MappedFile> open(const std::string& path);

  MappedFile(MappedFile&& other) noexcept;
  MappedFile& operator=(MappedFile&& other) noexcept;
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;
  ~MappedFile();

  [[nodiscard]] std::string_view text() const { return {data_, size_}; }

 private:
  MappedFile(const char* data, std::size_t size) : data_(data), size_(size) {}
  const char* data_ = nullptr;
  std::size_t size_ = 0;
};

/// Replaces a file in one step: readers see the old content or the new, never a part.
/// @return an error naming the file, which is then unchanged.
[[nodiscard]] Result<void> writeFileAtomically(const std::string& path, std::string_view content);

}  // namespace host::io
