#include "host/builtins/register.h"

#include "host/builtins/anim/expression_node.h"
#include "host/builtins/anim/time_watcher.h"
#include "host/builtins/file/formats.h"
#include "host/builtins/help/command_texts.h"
#include "host/builtins/ui/ui_session.h"
#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

// The commands: a name for each source file's `register<Name>`, by folder.
// clang-format off
#define HOST_BUILTIN_COMMANDS(X) \
  /* anim */ \
  X(ConstraintCommands) \
  X(DrivenKeys) \
  X(Expression) \
  X(KeyClipboard) \
  X(Keyframe) \
  X(Playback) \
  X(SetKeyframe) \
  /* attr */ \
  X(AttrExtras) \
  X(CopyAttr) \
  X(AttrPresets) \
  X(AddAttr) \
  X(AttrState) \
  X(AttributeQuery) \
  X(ConnectAttr) \
  X(GetAttr) \
  X(ListAttr) \
  X(ListConnections) \
  X(SetAttr) \
  /* curve, dag, deform */ \
  X(CurveCommands) \
  X(SurfaceCommands) \
  X(BlendShapeCommands) \
  X(ClusterCommands) \
  X(DeformerCommands) \
  X(LatticeCommands) \
  X(SkinCommands) \
  X(Camera) \
  X(Joint) \
  X(CreateNode) \
  X(Delete) \
  X(DisplayLayers) \
  X(Duplicate) \
  X(HyperShade) \
  X(ListHistory) \
  X(ListRelatives) \
  X(ListSets) \
  X(MakeIdentity) \
  X(Move) \
  X(NodeQueries) \
  X(Parent) \
  X(Partition) \
  X(RotateScale) \
  X(Sets) \
  X(TransformQueries) \
  X(ShadingNode) \
  X(Ungroup) \
  X(Visibility) \
  X(Xform) \
  /* file */ \
  X(AutoSave) \
  X(Namespaces) \
  X(ReferenceQuery) \
  X(File) \
  X(FileInfo) \
  /* mesh */ \
  X(PerformAction) \
  X(PointPosition) \
  X(PolyCleanup) \
  X(PolyColorPerVertex) \
  X(PolyNormalPerVertex) \
  X(PolyColorSet) \
  X(PolyOptions) \
  X(PolyUvSet) \
  /* poly */ \
  X(PolyCompare) \
  X(PolyCrease) \
  X(PolyEvaluate) \
  X(PolyInfo) \
  X(PolySlideEdge) \
  /* select */ \
  X(ConvertSelection) \
  X(FilterExpand) \
  X(Ls) \
  X(PickWalk) \
  X(PolyListComponentConversion) \
  X(PolySelect) \
  X(PolySelectConstraint) \
  X(Select) \
  X(SelectMode) \
  X(SelectPref) \
  X(TraverseSelection) \
  /* system */ \
  X(About) \
  X(OptionVar) \
  X(Plugins) \
  X(Program) \
  X(RepeatLast) \
  X(ScriptJob) \
  X(Undo) \
  X(UnitsAndTime) \
  /* tools */ \
  X(DraggerContext) \
  X(ToolCommands) \
  X(SoftSelect) \
  X(ViewGesture) \
  /* ui */ \
  X(ComponentMenu) \
  X(ControlCommands) \
  X(ControlTree) \
  X(Dialogs) \
  X(UiGesture) \
  X(ViewMessages) \
  X(WindowPref) \
  X(ConnectControl) \
  X(ChannelBox) \
  X(EditorTemplates) \
  X(FileDialogs) \
  X(InterfaceState) \
  X(SmallCommands) \
  X(UserCommands) \
  /* uv */ \
  X(PolyEditUv) \
  X(PolyForceUv) \
  X(PolyProjection) \
  X(UvLayouts) \
  X(UvProcedures) \
  /* view */ \
  X(CameraMoves) \
  X(IsolateSelect) \
  X(LightCommands) \
  X(ModelEditor) \
  X(Panels) \
  X(Playblast) \
  X(ViewFit) \
  /* last, since they stand for others */ \
  X(RuntimeCommands)
// clang-format on

#define HOST_DECLARE(Name) void register##Name(cmd::CommandRegistry&);
HOST_BUILTIN_COMMANDS(HOST_DECLARE)
#undef HOST_DECLARE

void registerBuiltinCommands(cmd::CommandRegistry& registry) {
  modelling::registerCommands(registry);  // first: runtime commands stand for some of them
#define HOST_REGISTER(Name) register##Name(registry);
  HOST_BUILTIN_COMMANDS(HOST_REGISTER)
#undef HOST_REGISTER
  describeCommands(registry);
}

std::unique_ptr<cmd::Session> makeSession() {
  auto session = std::make_unique<cmd::Session>(
      [](dg::TypeRegistry& types) {
        nodes::registerBuiltinTypes(types);
        modelling::registerTypes(types);
        registerExpressionType(types);
      },
      nodes::installNewScene);
  session->workspace = std::make_unique<workspace::Workspace>(*session);
  workspace::workspaceOf(*session).fileFormats.all = {maFormat(), objFormat()};
  workspace::workspaceOf(*session).kept<TimeWatcher>().watch(session->document().graph());
  registerBuiltinCommands(session->commands());
  prepareUi(*session);
  return session;
}

}  // namespace host::builtins
