#include "plugin/registrationTable.h"

#include "brushes/baseBrushContextCmd.h"
#include "brushes/baseBrushContextToolCmd.h"
#include "brushes/moveRotateScaleUVBrushContextCmd.h"
#include "brushes/tweakUvBrushContextCmd.h"
#include "commands/circleVertsCmd.h"
#include "commands/makePlanarCmd.h"
#include "commands/mergeVertsCmd.h"
#include "commands/projectMeshOnMeshCmd.h"
#include "commands/selectCmd.h"
#include "commands/setCommands.h"
#include "commands/snapVertsToAxisCmd.h"
#include "commands/straightenCmd.h"
#include "commands/topologyTransferCmd.h"
#include "commands/transferVertexNormalsCmd.h"
#include "commands/turboSmoothCmd.h"
#include "modeling/drawLocator.h"
#include "modeling/locatorOverrides.h"
#include "modeling/modelingContextCmd.h"
#include "modeling/modelingContextToolCmd.h"
#include "modeling/pinLocator.h"
#include "quaddraw/quadDrawContextCmd.h"
#include "quaddraw/quadDrawContextToolCmd.h"
#include "quaddraw/quadDrawLocator.h"
#include "quaddraw/quadDrawOverride.h"
#include "uv/addUVNodeMessageCmd.h"
#include "uv/autoUnwrapCmd.h"
#include "uv/buildUVObjectCmd.h"
#include "uv/loadUvObjectCmd.h"
#include "uv/markUVInformationCmd.h"
#include "uv/modifyUVNode.h"
#include "uv/pinVertsCmd.h"
#include "uv/scaleMoveAndSew.h"
#include "uv/tweakUVVertsCmd.h"
#include "uv/uvEditNode.h"
#include "uv/uvLocatorDrawOverride.h"
#include "uv/uvRatioCmd.h"
#include "uv/uvRatioTweakCmd.h"
#include "uv/uvSelectContextCmd.h"
#include "uv/uvSelectContextToolCmd.h"
#include "uv/uvSelectLocator.h"

namespace {

constexpr rowKind kCommand = rowKind::command;
constexpr rowKind kContext = rowKind::context;
constexpr rowKind kNode = rowKind::dependNode;
constexpr rowKind kLocator = rowKind::locatorNode;
constexpr rowKind kOverride = rowKind::drawOverride;

registrationRow command(const char* name, const char* text, void* (*creator)() = nullptr,
                        MSyntax (*syntax)() = nullptr) {
  registrationRow row{kCommand, name, text};
  row.creator = creator;
  row.syntax = syntax;
  return row;
}

template <class Command>
registrationRow command(const char* name, const char* text) {
  return command(name, text, Command::creator, Command::newSyntax);
}

registrationRow context(const char* name, const char* toolName, const char* text,
                        void* (*creator)() = nullptr, void* (*toolCreator)() = nullptr) {
  registrationRow row{kContext, name, text};
  row.creator = creator;
  row.toolName = toolName;
  row.toolCreator = toolCreator;
  return row;
}

registrationRow node(rowKind kind, const char* name, unsigned int typeId, const char* text,
                     const char* classification = nullptr, void* (*creator)() = nullptr,
                     MStatus (*initialize)() = nullptr) {
  registrationRow row{kind, name, text};
  row.typeId = typeId;
  row.drawClassification = classification;
  row.creator = creator;
  row.initialize = initialize;
  return row;
}

registrationRow drawOverride(const char* classification, const char* registrant,
                             MHWRender::MPxDrawOverride* (*creator)(const MObject&) = nullptr) {
  registrationRow row{kOverride, registrant, "registerDrawOverrideCreator"};
  row.drawClassification = classification;
  row.drawOverride = creator;
  return row;
}

constexpr const char* kDrawLocatorDb = "drawdb/geometry/drawLocator";
constexpr const char* kPinLocatorDb = "drawdb/geometry/pinLocator";
constexpr const char* kQuadDrawLocatorDb = "drawdb/geometry/quadDrawLocator";
constexpr const char* kUvLocatorDb = "drawdb/geometry/uvLocator";

}  // namespace

// The order and the texts are what scripts and support notes refer to: they stay as they are, odd
// ones included.
// clang-format off
const registrationRow kLoadRows[] = {
    command<SelectCmd>("qxSelectCmd", "registerCommand"),
    command<turboSmoothCmd>("qxESmoothCmd", "registerCommand"),
    command<makePlanarCmd>("qxMakePlanarCmd", "registerCommand"),
    command<circleVertsCmd>("qxCircleVertsCmd", "registerCommand"),
    command<straightenCmd>("qxStraightenCmd", "registerCommand"),
    command<mergeVertsCmd>("qxMergeVerts", "merge verts command failed to register"),
    context("modelingContext", "modelingContextCmd", "modeling context failed to register", modelingContextCmd::creator, modelingContextToolCmd::creator),
    command<setCommands>("qxSetCommands", "set commands command failed to register"),
    node(kLocator, "drawLocator", 0x112F8D, "error registering draw locator", kDrawLocatorDb, drawLocator::creator, drawLocator::initialize),
    drawOverride(kDrawLocatorDb, "drawLocatorNodePlugin", DrawLocatorDrawOverride::creator),
    node(kLocator, "pinLocator", 0x112F8E, "error registering pin locator", kPinLocatorDb, pinLocator::creator, pinLocator::initialize),
    drawOverride(kPinLocatorDb, "pinLocatorNodePlugin", pinLocatorDrawOverride::creator),
    node(kNode, "uvEditNode", 0x112F8F, "uvEditNode failed to register", nullptr, uvEditNode::creator, uvEditNode::initialize),
    node(kLocator, "quadDrawLocator", 0x112F91, "quadDrawLocator failed to register", kQuadDrawLocatorDb, quadDrawLocator::creator, quadDrawLocator::initialize),
    drawOverride(kQuadDrawLocatorDb, "quadDrawLocatorNodePlugin", quadDrawLocatorDrawOverride::creator),
    context("quadDrawContext", "quadDrawContextCmd", "quadDraw context failed to register", quadDrawContextCmd::creator, quadDrawContextToolCmd::creator),
    command<snapVertsToAxisCmd>("qxSnapVertsToAxis", "snap verts to axis command failed to register"),
    command<topologyTransferCmd>("qxTransferTopology", "topology transfer command failed to register"),
    context("uvSelectContext", "uvSelectContextCmd", "uv select context failed to register", uvSelectContextCmd::creator, uvSelectContextToolCmd::creator),
    node(kLocator, "uvSelectionLocator", 0x112F94, "error uvSelectionLocator draw locator", kUvLocatorDb, uvSelectLocator::creator, uvSelectLocator::initialize),
    drawOverride(kUvLocatorDb, "uvLocatorNodePlugin", UVLocatorDrawOverride::creator),
    command<autoUnwrapCmd>("qxAutoUnwrap", "auto unwrap command failed to register"),
    command<transferVertexNormalsCmd>("qxTransferVertexNormals", "transfer Vertex Normals command failed to register"),
    command<loadUvObjectCmd>("qxLoadUvObjectForMarking", "load uv object for marking command failed to register"),
    command<uvRatioCmd>("uvRatio", "uv ratio command failed to register"),
    command<pinVertsCmd>("qxPinVertsCmd", "qxPinVertsCmd command failed to register"),
    command<markUVInformationCmd>("qxMarkUVInformation", "mark uv information command failed to register"),
    command("qxBuildUVObject", "buildUVObjectCmd command failed to register", buildUVObjectCmd::creator),
    context("baseBrushContext", "baseBrushContextCmd", "move brush context failed to register", baseBrushContextCmd::creator, baseBrushContextToolCmd::creator),
    context("standardSculptBrushContext", "standardBrushContextCmd", "standard brush context failed to register", standardBrushContextCmd::creator, baseBrushContextToolCmd::creator),
    context("tweakUvBrushContext", "tweakUvBrushContextCmd", "tweak uv brush context failed to register", tweakUvBrushContextCmd::creator, baseBrushContextToolCmd::creator),
    context("moveRotateScaleUVBrushContext", "moveRotateScaleUVBrushContextCmd", "tweak uv brush context failed to register", moveRotateScaleUVBrushContextCmd::creator, baseBrushContextToolCmd::creator),
    command<tweakUVVertsCmd>("qxTweakUVVerts", "qxTweakUVVertscommand failed to register"),
    node(kNode, "qxModifyUvsNode", 0x112F9E, "qxModifyUvsNode failed to register", nullptr, modifyUVNode::creator, modifyUVNode::initialize),
    command<scaleMoveAndSew>("scaleMoveSewCmd", "registerCommand"),
    command<addUVNodeMessageCmd>("addUVNodeMessageCmd", "registerCommand"),
    command<uvRatioTweakCmd>("uvRatioCmd", "registerCommand"),
    command<projectMeshOnMeshCmd>("projectMeshOnMeshCmd", "registerCommand"),
};
const unsigned int kLoadRowCount = sizeof(kLoadRows) / sizeof(kLoadRows[0]);

const unloadRow kUnloadRows[] = {
    {kCommand, "projectMeshOnMeshCmd", "deregisterCommand"},
    {kCommand, "uvRatioCmd", "deregisterCommand"},
    {kCommand, "addUVNodeMessageCmd", "deregisterCommand"},
    {kCommand, "scaleMoveSewCmd", "deregisterCommand"},
    {kNode, "qxModifyUvsNode", "deregisterNode"},
    {kCommand, "qxTweakUVVerts", "qxTweakUVVerts failed"},
    {kContext, "moveRotateScaleUVBrushContext", "tweakUvBrushContext failed"},
    {kContext, "tweakUvBrushContext", "tweakUvBrushContext failed"},
    {kContext, "standardSculptBrushContext", "standardSculptBrushContext failed"},
    {kContext, "baseBrushContext", "baseBrushContext failed"},
    {kCommand, "qxBuildUVObject", "deregisterCommand"},
    {kCommand, "qxMarkUVInformation", "deregisterCommand"},
    {kCommand, "qxPinVertsCmd", "deregisterCommand"},
    {kCommand, "uvRatio", "deregisterCommand"},
    {kCommand, "qxLoadUvObjectForMarking", "deregisterCommand"},
    {kCommand, "qxTransferVertexNormals", "deregisterCommand"},
    {kCommand, "qxAutoUnwrap", "deregisterCommand"},
    {kOverride, "uvLocatorNodePlugin", "deregisterUVOverrideCreator"},
    {kLocator, "uvSelectionLocator", "deregisterLocator"},
    {kContext, "uvSelectContext", "deregisterContextCommand failed"},
    {kCommand, "qxTransferTopology", "deregisterCommand"},
    {kCommand, "qxSnapVertsToAxis", "deregisterCommand"},
    {kContext, "quadDrawContext", "deregisterContextCommand failed"},
    {kOverride, "quadDrawLocatorNodePlugin", "deregisterUVOverrideCreator"},
    {kLocator, "quadDrawLocator", "deregisterLocator"},
    {kNode, "uvEditNode", "deregisterLocator"},
    {kOverride, "pinLocatorNodePlugin", "deregisterUVOverrideCreator"},
    {kLocator, "pinLocator", "deregisterLocator"},
    {kOverride, "drawLocatorNodePlugin", "deregisterDrawOverrideCreator"},
    {kLocator, "drawLocator", "deregisterLocator"},
    {kCommand, "qxSetCommands", "deregisterCommand"},
    {kContext, "modelingContext", "deregisterContextCommand failed"},
    {kCommand, "qxMergeVerts", "deregisterCommand"},
    {kCommand, "qxStraightenCmd", "deregisterCommand"},
    {kCommand, "qxCircleVertsCmd", "deregisterCommand"},
    {kCommand, "qxMakePlanarCmd", "deregisterCommand"},
    {kCommand, "qxESmoothCmd", "deregisterCommand"},
    {kCommand, "qxSelectCmd", "deregisterCommand"},
};
const unsigned int kUnloadRowCount = sizeof(kUnloadRows) / sizeof(kUnloadRows[0]);
// clang-format on
