#pragma once

#include <map>
#include <memory>

#include "host/api/plugin/plugin_record.h"
#include "host/cmd/plugin_loader.h"

namespace host::cmd {
class Session;
}

namespace host::api {

/// Loads plug-in modules through the dynamic loader and runs their entry points.
class Loader final : public cmd::PluginLoader {
 public:
  explicit Loader(cmd::Session& session) : session_(session) {}
  ~Loader() override;

  Result<std::string> load(const std::string& fileOrName) override;
  Result<void> unload(const std::string& name, bool force) override;
  [[nodiscard]] std::vector<std::string> loaded() const override;
  [[nodiscard]] const cmd::PluginInfo* info(std::string_view nameOrPath) const override;
  void setAutoload(std::string_view name, bool autoload) override;

  [[nodiscard]] std::shared_ptr<PluginRecord> find(std::string_view nameOrPath) const;

 private:
  Result<void> initialize(const std::shared_ptr<PluginRecord>& record);
  void buildInterface(PluginRecord& record);
  void removeInterface(PluginRecord& record);

  cmd::Session& session_;
  std::vector<std::shared_ptr<PluginRecord>> plugins_;  ///< in order of loading
};

/// Gives the session this loader.
void installPluginLoader(cmd::Session& session);

}  // namespace host::api
