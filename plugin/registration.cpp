#include "plugin/registration.h"

#include <maya/MString.h>
#include <maya/MTypeId.h>

#include <cstring>

#include "plugin/registrationTable.h"

namespace {

/// One row registered; success for a row that this build leaves out.
MStatus registerRow(MFnPlugin& plugin, const registrationRow& row) {
  switch (row.kind) {
    case rowKind::command:
      return plugin.registerCommand(row.name, row.creator, row.syntax);
    case rowKind::context:
      return plugin.registerContextCommand(row.name, row.creator, row.toolName, row.toolCreator);
    case rowKind::dependNode:
      return plugin.registerNode(row.name, MTypeId(row.typeId), row.creator, row.initialize,
                                 MPxNode::kDependNode);
    case rowKind::locatorNode: {
      const MString classification(row.drawClassification);
      return plugin.registerNode(row.name, MTypeId(row.typeId), row.creator, row.initialize,
                                 MPxNode::kLocatorNode, &classification);
    }
    case rowKind::drawOverride:
      return MHWRender::MDrawRegistry::registerDrawOverrideCreator(row.drawClassification, row.name,
                                                                   row.drawOverride);
  }
  return MS::kInvalidParameter;
}

MStatus deregisterRow(MFnPlugin& plugin, const registrationRow& row) {
  switch (row.kind) {
    case rowKind::command:
      return plugin.deregisterCommand(row.name);
    case rowKind::context:
      return plugin.deregisterContextCommand(row.name, row.toolName);
    case rowKind::dependNode:
    case rowKind::locatorNode:
      return plugin.deregisterNode(MTypeId(row.typeId));
    case rowKind::drawOverride:
      return MHWRender::MDrawRegistry::deregisterDrawOverrideCreator(row.drawClassification,
                                                                     row.name);
  }
  return MS::kInvalidParameter;
}

bool isBuilt(const registrationRow& row) {
  return row.creator || row.drawOverride;
}

const registrationRow* findRow(const unloadRow& wanted) {
  for (unsigned int i = 0; i < kLoadRowCount; ++i)
    if (kLoadRows[i].kind == wanted.kind && std::strcmp(kLoadRows[i].name, wanted.name) == 0)
      return &kLoadRows[i];
  return nullptr;
}

}  // namespace

MStatus registerAll(MFnPlugin& plugin) {
  for (unsigned int i = 0; i < kLoadRowCount; ++i) {
    const registrationRow& row = kLoadRows[i];
    if (!isBuilt(row)) continue;
    const MStatus status = registerRow(plugin, row);
    if (status == MS::kSuccess) continue;
    status.perror(row.failureText);
    if (row.kind != rowKind::context) return status;
  }
  const MStatus status =
      plugin.registerUI("qx_modeling_tool_ui", "qx_modeling_tool_delete_UI", "", "");
  if (status != MS::kSuccess) status.perror("registerUIScripts");
  return status;
}

MStatus deregisterAll(MFnPlugin& plugin) {
  for (unsigned int i = 0; i < kUnloadRowCount; ++i) {
    const registrationRow* row = findRow(kUnloadRows[i]);
    if (!row || !isBuilt(*row)) continue;
    const MStatus status = deregisterRow(plugin, *row);
    if (status == MS::kSuccess) continue;
    status.perror(kUnloadRows[i].failureText);
    return status;
  }
  return MS::kSuccess;
}
