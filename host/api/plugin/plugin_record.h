#pragma once

#include <maya/MFnPlugin.h>
#include <maya/MStatus.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/api/core/access.h"
#include "host/cmd/plugin_loader.h"

namespace host::api {

/// A loaded module and everything it has registered, until it is unloaded.
struct PluginRecord {
  cmd::PluginInfo info;
  void* library = nullptr;  ///< the dynamic loader's handle
  int entered = 0;          ///< calls of its entry points and callbacks that have not returned
  std::string creationProcedure, deletionProcedure, batchCreationProcedure, batchDeletionProcedure;
  void* (*unloadCallback)() = nullptr;  ///< called last, when the module has been unloaded

  /// One registration: how it is named and how it is taken back. In the order in which they were
  /// made.
  struct Registration {
    enum class Kind { Command, Context, Node, DrawOverride, Data, Other };
    Kind kind = Kind::Other;
    std::string name;
    std::function<void()> takeBack;
  };
  std::vector<Registration> registrations;

  void add(Registration::Kind kind, std::string name, std::function<void()> takeBack);
  /// Takes one back. False when the plug-in has no such registration.
  bool remove(Registration::Kind kind, std::string_view name);
  void removeAll();  ///< last first
};

/// What the MObject given to a module's entry points refers to.
class PluginRep final : public ObjectRep {
 public:
  explicit PluginRep(std::shared_ptr<PluginRecord> recordIn) : record(std::move(recordIn)) {}
  [[nodiscard]] MFn::Type apiType() const override { return MFn::kPlugin; }
  [[nodiscard]] bool hasFn(MFn::Type type) const override { return type == MFn::kPlugin; }
  [[nodiscard]] bool equals(const ObjectRep& other) const override {
    const auto* same = dynamic_cast<const PluginRep*>(&other);
    return same && same->record == record;
  }
  [[nodiscard]] std::size_t hash() const override { return std::hash<const void*>{}(record.get()); }
  const std::shared_ptr<PluginRecord> record;
};

/// The module whose entry point is running; registrations made without a plug-in object (draw
/// overrides) are its.
[[nodiscard]] PluginRecord* registeringPlugin();

/// What of a plug-in's registrations is in use by the document: a sentence, empty when nothing is.
[[nodiscard]] std::string usedBy(const PluginRecord& record);

}  // namespace host::api
