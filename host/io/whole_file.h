#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/base/result.h"

namespace host::io {

/// A file's bytes as they were when it was read.
///
/// The bytes are the program's own: a file that somebody writes to or cuts off meanwhile can give
/// an error or other content, never a fault.
class FileContent {
 public:
  /// Reads a regular file whole. @return an error naming the file when it cannot be read, is no
  /// regular file (a pipe or device is not waited for), or is larger than memory.
  [[nodiscard]] static Result<FileContent> read(const std::string& path);

  [[nodiscard]] std::string_view text() const { return {data_.get(), size_}; }

 private:
  std::unique_ptr<char[]> data_;
  std::size_t size_ = 0;
};

struct FileWriteSafety {
  /// Waits until file and folder are on the disk before the old content is let go, so that a power
  /// cut leaves one or the other.
  bool syncs = true;
};

/// Replaces a file in one step: readers see the old content or the new, never a part.
///
/// A symbolic link is followed to its file. Mode and, where the user may give it, owner stay what
/// they were. The new content is written beside the file first, under a hidden name of its own;
/// what an earlier run that was killed left there of this file is removed.
/// @return an error naming the file, which is then unchanged: a device, a pipe or a folder is no
/// file to be replaced; the disk or the size that the user may write is full.
[[nodiscard]] Result<void> writeFileAtomically(const std::string& path, std::string_view content,
                                               const FileWriteSafety& safety = {});

}  // namespace host::io
