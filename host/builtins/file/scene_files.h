#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/builtins/common/command.h"

namespace host::builtins {

/// What to read or write and how. Values that are not there are decided by the file.
struct FileRequest {
  std::string path = {};                      ///< as the user gave it
  std::optional<std::string> type = {};       ///< what `file -type` calls the format
  std::string options = {};                   ///< of the format itself
  bool isForced = false;                      ///< unsaved changes may go
  std::optional<std::string> nameSpace = {};  ///< for imported nodes
  bool sharesNamespace = false;               ///< also with nodes that are in it already
  std::optional<std::string> prefix = {};     ///< for imported nodes whose names are taken
  bool prefixesAll = false;                   ///< the prefix for all imported nodes
  bool addsExtension = true;                  ///< to a name without one
  std::optional<bool> withHistory = {}, withShading = {};
  bool runsScripts =
      false;  ///< that the scene brings along; else a message says that they did not run
};

/// The works on scene files, for the `file` command and whoever else. Each tells the session's
/// SceneHooks what it comes to.
/// @return the absolute path of the file

Result<std::string> newScene(Context& context, bool isForced);
/// A file that cannot be read leaves the scene as it was.
Result<std::string> openScene(Context& context, const FileRequest& request);
/// One step of undo. A file that cannot be read leaves the scene as it was.
/// `made`, if given, gets the new nodes.
Result<std::string> importFile(Context& context, const FileRequest& request,
                               std::vector<dg::Node*>* made = nullptr);
Result<std::string> saveScene(Context& context, const FileRequest& request);
Result<std::string> exportScene(Context& context, const FileRequest& request, bool onlySelected);
/// Gives the scene the file that it is saved to; an empty name takes it away.
std::string renameScene(Context& context, const std::string& name);
/// The format of a file by its name, of the scene's own without one; empty: unknown.
[[nodiscard]] std::string fileType(Context& context, const std::string& path = {});
CommandResult queryFile(Context& context, const ParsedArgs& args);

/// Absolute, with slashes, without "." and "..".
[[nodiscard]] std::string absolutePath(const std::string& name);

}  // namespace host::builtins
