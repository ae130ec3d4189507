#include <maya/MFnPlugin.h>

#include "host/api/data/plugin_data.h"
#include "host/api/node/px_node.h"
#include "host/api/plugin/plugin_record.h"
#include "host/base/messages.h"
#include "host/builtins/ui/control_values.h"
#include "host/cmd/session.h"
#include "host/workspace/workspace.h"

using namespace host;
using api::PluginRecord;
using api::setStatus;
using Kind = api::PluginRecord::Registration::Kind;

namespace {

PluginRecord* recordOf(const MObject& object) {
  const auto* rep = api::objectAs<api::PluginRep>(object);
  return rep ? rep->record.get() : nullptr;
}

MStatus refuse(std::string message) {
  postMessage(MessageKind::Error, message);
  api::rememberError(Error{std::move(message)});
  return MStatus::kFailure;
}

MStatus registerType(PluginRecord* record, api::NodeClass nodeClass, const MTypeId& typeId,
                     MInitializeFunction initialize, const MString* classification) {
  if (!record) return MStatus::kInvalidParameter;
  const std::string name = nodeClass.name;
  const auto added = api::addNodeClass(std::move(nodeClass), typeId.id(),
                                       classification ? classification->asChar() : "",
                                       record->info.name, initialize);
  if (!added) return refuse(added.error().message);
  record->info.nodeTypes.push_back(name);
  record->add(Kind::Node, name, [record, name] {
    api::dropNodeClass(name);
    std::erase(record->info.nodeTypes, name);
  });
  return MStatus::kSuccess;
}

struct ItemValue {
  const char* attribute;
  ui::Atom value;
};

/// A menu item with these values, or none where one doesn't fit.
Result<ui::Control*> addItem(const MString& parent, const std::vector<ItemValue>& values) {
  ui::Tree& tree = workspace::workspaceOf(cmd::currentSession()).controls;
  const ui::ControlType& type = *ui::findControlType("menuItem");
  const auto item = tree.create(type, {}, api::toStd(parent));
  if (!item) return item;
  for (const ItemValue& each : values) {
    const auto set = tree.set(**item, *type.find(each.attribute), {each.value});
    if (set) continue;
    (void)tree.remove(**item);
    return failWith(set.error());
  }
  return item;
}

}  // namespace

MStatus MFnPlugin::registerNode(const MString& typeName, const MTypeId& typeId,
                                MCreatorFunction creator, MInitializeFunction initialize,
                                MPxNode::Type type, const MString* classification) {
  return registerType(recordOf(object_), {api::toStd(typeName), creator, type}, typeId, initialize,
                      classification);
}

MStatus MFnPlugin::deregisterNode(const MTypeId& typeId) {
  PluginRecord* record = recordOf(object_);
  const dg::NodeType* type = cmd::currentSession().types().find(typeId.id());
  if (!record || !type || type->pluginName != record->info.name) return MStatus::kInvalidParameter;
  const std::string name = type->name;
  for (const dg::NodePtr& node : api::document().graph().nodes())
    if (node->type().isA(name))
      return refuse(fmt::format("Node type '{}' can't be removed: '{}' is in the scene.", name,
                                node->name()));
  return record->remove(Kind::Node, name) ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MFnPlugin::registerShape(const MString& typeName, const MTypeId& typeId,
                                 MCreatorFunction creator, MInitializeFunction initialize,
                                 MCreatorFunction uiCreator, const MString* classification) {
  api::NodeClass nodeClass{api::toStd(typeName), creator, MPxNode::kSurfaceShape};
  nodeClass.uiCreator = uiCreator;
  return registerType(recordOf(object_), std::move(nodeClass), typeId, initialize, classification);
}

MStatus MFnPlugin::registerTransform(const MString& typeName, const MTypeId& typeId,
                                     MCreatorFunction creator, MInitializeFunction initialize,
                                     MCreatorFunction matrixCreator, const MTypeId&,
                                     const MString* classification) {
  api::NodeClass nodeClass{api::toStd(typeName), creator, MPxNode::kTransformNode};
  // The host's own is named by its creator as well.
  if (matrixCreator != &MPxTransformationMatrix::creator) nodeClass.matrixCreator = matrixCreator;
  return registerType(recordOf(object_), std::move(nodeClass), typeId, initialize, classification);
}

MStatus MFnPlugin::registerData(const MString& typeName, const MTypeId& typeId,
                                MCreatorFunction creator, MPxData::Type) {
  PluginRecord* record = recordOf(object_);
  if (!record || !creator) return MStatus::kInvalidParameter;
  const unsigned int id = typeId.id();
  const auto added = api::addPluginDataType({api::toStd(typeName), id, creator});
  if (!added) return refuse(added.error().message);
  record->add(Kind::Data, api::toStd(typeName), [id] {
    cmd::currentSession().undo().flush();
    api::removePluginDataType(id);
  });
  return MStatus::kSuccess;
}

MStatus MFnPlugin::deregisterData(const MTypeId& typeId) {
  PluginRecord* record = recordOf(object_);
  const api::PluginDataType* type = api::findPluginDataType(typeId.id());
  if (!record || !type) return MStatus::kInvalidParameter;
  return record->remove(Kind::Data, std::string(type->name)) ? MStatus::kSuccess
                                                             : MStatus::kFailure;
}

MStringArray MFnPlugin::addMenuItem(const MString& menuItemName, const MString& parentName,
                                    const MString& commandName, const MString& commandParams,
                                    bool needOptionBox, const MString* optBoxFunction,
                                    MStatus* status) {
  MStringArray names;
  const std::string command = api::toStd(commandName) + " " + api::toStd(commandParams);
  const auto add = [&](const std::vector<ItemValue>& values) {
    const auto item = addItem(parentName, values);
    if (item) names.append(api::toMString(ui::Tree::path(**item)));
    return item ? MStatus(MStatus::kSuccess) : refuse(item.error().message);
  };
  MStatus done = add({{"label", api::toStd(menuItemName)}, {"command", command}});
  if (done && needOptionBox && optBoxFunction)
    done = add({{"optionBox", 1}, {"command", api::toStd(*optBoxFunction)}});
  setStatus(status, done.statusCode());
  return names;
}

MStatus MFnPlugin::removeMenuItem(MStringArray& menuItemNames) {
  MStatus status;
  cmd::Context context{cmd::currentSession(), api::document()};
  ui::Tree& tree = workspace::workspaceOf(context.session).controls;
  for (unsigned int i = 0; i < menuItemNames.length(); ++i) {
    const auto item = tree.find(api::toStd(menuItemNames[i]), *ui::findControlType("menuItem"));
    const Result<void> removed =
        item ? builtins::removeControl(context, **item) : failWith(item.error());
    if (!removed) status = refuse(removed.error().message);
  }
  menuItemNames.clear();
  return status;
}
