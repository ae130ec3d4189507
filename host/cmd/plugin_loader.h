#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"

namespace host::cmd {

/// What is known of a loaded plug-in.
struct PluginInfo {
  std::string name, path, vendor, version, apiVersion;
  std::vector<std::string> commands, contextCommands, nodeTypes, toolNames, dataTypes;
  bool isAutoload = false;
};

/// Loads plug-in modules; implemented by the layer that offers the plug-in API.
class PluginLoader {
 public:
  virtual ~PluginLoader() = default;
  /// Loads a file, or a name looked up on MAYA_PLUG_IN_PATH; one that is loaded already is no
  /// fault.
  /// @return the plug-in's name
  virtual Result<std::string> load(const std::string& fileOrName) = 0;
  /// Fails when it isn't loaded, or when it is in use and `force` is off.
  virtual Result<void> unload(const std::string& name, bool force) = 0;
  [[nodiscard]] virtual std::vector<std::string> loaded() const = 0;
  /// By name or by path; null when it isn't loaded.
  [[nodiscard]] virtual const PluginInfo* info(std::string_view nameOrPath) const = 0;
  virtual void setAutoload(std::string_view name, bool autoload) = 0;
};

}  // namespace host::cmd
