#pragma once

#include <maya/MFnPlugin.h>
#include <maya/MPxData.h>

#include <memory>
#include <string>
#include <string_view>

#include "host/api/core/access.h"
#include "host/dg/foreign_data.h"

namespace host::api {

/// A data type that a plug-in has registered.
struct PluginDataType {
  std::string name;
  unsigned int id = 0;
  MCreatorFunction creator = nullptr;
};

/// Fails when the name or id is taken.
Result<void> addPluginDataType(PluginDataType type);
void removePluginDataType(unsigned int id);
[[nodiscard]] const PluginDataType* findPluginDataType(unsigned int id);
[[nodiscard]] const PluginDataType* findPluginDataType(std::string_view name);

/// A plug-in's data object on its way through the graph. The object is shared and may be changed by
/// its owner, so two payloads are equal only when they are the same one.
class PluginDataHolder final : public dg::ForeignData {
 public:
  explicit PluginDataHolder(MPxData* objectIn);
  ~PluginDataHolder() override;
  [[nodiscard]] std::string_view typeName() const override { return typeName_; }
  [[nodiscard]] bool equals(const Data& other) const override { return this == &other; }
  [[nodiscard]] MPxData* object() const { return object_.get(); }
  /// What the plug-in's writeASCII says.
  [[nodiscard]] std::optional<std::string> written() const override;

 private:
  std::unique_ptr<MPxData> object_;
  std::string typeName_;
};

/// Takes the object over, unless a payload holds it already.
[[nodiscard]] MObject wrapPluginData(MPxData* object);
/// A new object of a registered type; null when there is none or the plug-in made none.
[[nodiscard]] MObject makePluginData(const PluginDataType& type);
/// The plug-in's object behind a data object; null for other kinds.
[[nodiscard]] MPxData* pluginDataOf(const MObject& data);

}  // namespace host::api
