#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/cmd/registry.h"

namespace host::workspace {

using cmd::Context;

struct FileReadOptions {
  std::string options;      ///< of the format itself: "name=value;..."
  bool isImport = false;    ///< into a scene that has nodes
  std::string nameSpace;    ///< of imported nodes; ":" or empty: none
  std::string clashPrefix;  ///< for imported nodes whose names are taken
  bool renamesAll = false;  ///< the prefix for all imported nodes
};

struct FileWriteOptions {
  std::string options;
  bool onlySelected = false;
  bool withHistory = true, withShading = true;
};

/// How a kind of scene file is read into the document and written from it.
struct FileFormat {
  /// Adds what was read to the document and returns the nodes made, top ones first.
  using Placing = std::function<Result<std::vector<dg::Node*>>(Context&)>;

  std::string name;                     ///< what `file -type` calls it: "mayaAscii", "OBJ"
  std::vector<std::string> otherNames;  ///< further names accepted
  std::vector<std::string> extensions;  ///< with the dot, lower case
  bool isNative = false;  ///< holds whole scenes: what -save writes and untitled scenes become
  /// Reads and checks a file. The document is not touched before the placing.
  std::function<Result<Placing>(Context&, const std::string& path, const FileReadOptions& options)>
      read;
  /// Writes the scene, or only what is selected.
  std::function<Result<void>(Context&, const std::string& path, const FileWriteOptions& options)>
      write;
  /// Forgets what the format remembers of a scene that is emptied; may be empty.
  std::function<void(Context&)> forget;
};

/// The formats that the session knows.
struct FileFormats {
  std::vector<FileFormat> all;

  [[nodiscard]] const FileFormat* byName(std::string_view name) const;
  [[nodiscard]] const FileFormat* byPath(std::string_view path) const;  ///< by the extension
  [[nodiscard]] const FileFormat& native() const;
};

}  // namespace host::workspace
