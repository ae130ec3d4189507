#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "host/nodes/shading/shade_kind.h"

namespace host::workspace {

/// The pictures of file textures, read once and again when the file has changed.
///
/// A file that can't be read shows as a checker that nobody takes for a texture, and is warned of
/// once.
class Pictures {
 public:
  /// The picture at a path; relative ones are looked for from `folder` on. Null for an empty path.
  nodes::PicturePtr find(const std::string& path, const std::string& folder);
  /// Lets go of what was not asked for since the last call.
  void dropUnused();
  /// Bytes of pixels that are held.
  [[nodiscard]] std::size_t bytes() const;

 private:
  struct Entry {
    nodes::PicturePtr picture;
    std::filesystem::file_time_type changed;
    bool isWarned = false, isUsed = false;
  };
  std::map<std::string, Entry> entries_;
};

}  // namespace host::workspace
