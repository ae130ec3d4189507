#include "host/builtins/register.h"

#include "host/builtins/file/formats.h"
#include "host/builtins/ui/ui_session.h"
#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

// One a source file, in the folders' order.
void registerAddAttr(cmd::CommandRegistry&);
void registerAttrState(cmd::CommandRegistry&);
void registerAttributeQuery(cmd::CommandRegistry&);
void registerConnectAttr(cmd::CommandRegistry&);
void registerGetAttr(cmd::CommandRegistry&);
void registerListAttr(cmd::CommandRegistry&);
void registerListConnections(cmd::CommandRegistry&);
void registerSetAttr(cmd::CommandRegistry&);

void registerCreateNode(cmd::CommandRegistry&);
void registerDelete(cmd::CommandRegistry&);
void registerDuplicate(cmd::CommandRegistry&);
void registerListHistory(cmd::CommandRegistry&);
void registerListRelatives(cmd::CommandRegistry&);
void registerListSets(cmd::CommandRegistry&);
void registerMakeIdentity(cmd::CommandRegistry&);
void registerMove(cmd::CommandRegistry&);
void registerNodeQueries(cmd::CommandRegistry&);
void registerParent(cmd::CommandRegistry&);
void registerRotateScale(cmd::CommandRegistry&);
void registerSets(cmd::CommandRegistry&);
void registerShadingNode(cmd::CommandRegistry&);
void registerUngroup(cmd::CommandRegistry&);
void registerVisibility(cmd::CommandRegistry&);
void registerXform(cmd::CommandRegistry&);

void registerFile(cmd::CommandRegistry&);
void registerFileInfo(cmd::CommandRegistry&);

void registerPerformAction(cmd::CommandRegistry&);
void registerPointPosition(cmd::CommandRegistry&);
void registerPolyColorPerVertex(cmd::CommandRegistry&);
void registerPolyColorSet(cmd::CommandRegistry&);
void registerPolyOptions(cmd::CommandRegistry&);
void registerPolyUvSet(cmd::CommandRegistry&);

void registerPolyCrease(cmd::CommandRegistry&);
void registerPolyEvaluate(cmd::CommandRegistry&);
void registerPolyInfo(cmd::CommandRegistry&);

void registerConvertSelection(cmd::CommandRegistry&);
void registerFilterExpand(cmd::CommandRegistry&);
void registerLs(cmd::CommandRegistry&);
void registerPickWalk(cmd::CommandRegistry&);
void registerPolyListComponentConversion(cmd::CommandRegistry&);
void registerPolySelect(cmd::CommandRegistry&);
void registerPolySelectConstraint(cmd::CommandRegistry&);
void registerSelect(cmd::CommandRegistry&);
void registerSelectMode(cmd::CommandRegistry&);
void registerTraverseSelection(cmd::CommandRegistry&);

void registerAbout(cmd::CommandRegistry&);
void registerOptionVar(cmd::CommandRegistry&);
void registerPlugins(cmd::CommandRegistry&);
void registerProgram(cmd::CommandRegistry&);
void registerRuntimeCommands(cmd::CommandRegistry&);
void registerScriptJob(cmd::CommandRegistry&);
void registerUndo(cmd::CommandRegistry&);
void registerUnitsAndTime(cmd::CommandRegistry&);

void registerComponentMenu(cmd::CommandRegistry&);
void registerControlCommands(cmd::CommandRegistry&);
void registerControlTree(cmd::CommandRegistry&);
void registerDialogs(cmd::CommandRegistry&);
void registerIsolateSelect(cmd::CommandRegistry&);
void registerDisplayLayers(cmd::CommandRegistry&);
void registerHyperShade(cmd::CommandRegistry&);
void registerPartition(cmd::CommandRegistry&);
void registerLightCommands(cmd::CommandRegistry&);
void registerModelEditor(cmd::CommandRegistry&);
void registerPanels(cmd::CommandRegistry&);
void registerSelectPref(cmd::CommandRegistry&);
void registerToolCommands(cmd::CommandRegistry&);
void registerUiGesture(cmd::CommandRegistry&);
void registerViewMessages(cmd::CommandRegistry&);
void registerWindowPref(cmd::CommandRegistry&);

void registerPolyEditUv(cmd::CommandRegistry&);
void registerPolyForceUv(cmd::CommandRegistry&);
void registerPolyProjection(cmd::CommandRegistry&);
void registerUvLayouts(cmd::CommandRegistry&);
void registerUvProcedures(cmd::CommandRegistry&);

void registerPlayblast(cmd::CommandRegistry&);
void registerViewFit(cmd::CommandRegistry&);
void registerViewGesture(cmd::CommandRegistry&);

namespace {

constexpr void (*kRegistrations[])(cmd::CommandRegistry&) = {
    registerAddAttr,
    registerAttrState,
    registerAttributeQuery,
    registerConnectAttr,
    registerGetAttr,
    registerListAttr,
    registerListConnections,
    registerSetAttr,
    registerCreateNode,
    registerDelete,
    registerDuplicate,
    registerListHistory,
    registerListRelatives,
    registerMove,
    registerNodeQueries,
    registerParent,
    registerRotateScale,
    registerSets,
    registerXform,
    registerFile,
    registerFileInfo,
    registerPolyCrease,
    registerPolyEvaluate,
    registerPolyInfo,
    registerFilterExpand,
    registerLs,
    registerPolyListComponentConversion,
    registerSelect,
    registerSelectMode,
    registerAbout,
    registerOptionVar,
    registerPlugins,
    registerProgram,
    registerScriptJob,
    registerUndo,
    registerUnitsAndTime,
    registerControlCommands,
    registerControlTree,
    registerDialogs,
    registerUiGesture,
    registerWindowPref,
    registerComponentMenu,
    registerIsolateSelect,
    registerDisplayLayers,
    registerHyperShade,
    registerPartition,
    registerLightCommands,
    registerModelEditor,
    registerPanels,
    registerSelectPref,
    registerToolCommands,
    registerViewMessages,
    registerPlayblast,
    registerViewFit,
    registerViewGesture,
    registerConvertSelection,
    registerPolySelect,
    registerPolySelectConstraint,
    registerTraverseSelection,
    registerPerformAction,
    registerPolyColorPerVertex,
    registerPolyColorSet,
    registerPolyOptions,
    registerPolyUvSet,
    registerPolyEditUv,
    registerPolyForceUv,
    registerPolyProjection,
    registerUvLayouts,
    registerUvProcedures,
    registerListSets,
    registerMakeIdentity,
    registerVisibility,
    registerPointPosition,
    registerShadingNode,
    registerUngroup,
    registerPickWalk,
    registerRuntimeCommands,
};

}  // namespace

void registerBuiltinCommands(cmd::CommandRegistry& registry) {
  modelling::registerCommands(registry);  // first: runtime commands stand for some of them
  for (const auto registration : kRegistrations) registration(registry);
}

std::unique_ptr<cmd::Session> makeSession() {
  auto session = std::make_unique<cmd::Session>(
      [](dg::TypeRegistry& types) {
        nodes::registerBuiltinTypes(types);
        modelling::registerTypes(types);
      },
      nodes::installNewScene);
  session->workspace = std::make_unique<workspace::Workspace>(*session);
  workspace::workspaceOf(*session).fileFormats.all = {maFormat(), objFormat()};
  registerBuiltinCommands(session->commands());
  prepareUi(*session);
  return session;
}

}  // namespace host::builtins
