#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtins/common/command.h"

namespace host::builtins {

/// How a kind of scene file is read into the document and written from it.
struct FileFormat {
  std::string name;                     ///< what `file -type` calls it: "mayaAscii", "OBJ"
  std::vector<std::string> otherNames;  ///< further names accepted
  std::vector<std::string> extensions;  ///< with the dot, lower case
  bool isNative = false;                ///< holds whole scenes: what -save writes and untitled scenes become
  /// Adds what the file holds to the document. Returns the nodes it made, top ones first.
  std::function<Result<std::vector<dg::Node*>>(Context&, const std::string& path, const std::string& options)> read;
  /// Writes the scene, or only what is selected.
  std::function<Result<void>(Context&, const std::string& path, const std::string& options, bool onlySelected)> write;
};

/// The formats that the session knows; a service of it.
struct FileFormats {
  std::vector<FileFormat> all;

  [[nodiscard]] const FileFormat* byName(std::string_view name) const;
  [[nodiscard]] const FileFormat* byPath(std::string_view path) const;  ///< by the extension
};

[[nodiscard]] FileFormat objFormat();

}  // namespace host::builtins
