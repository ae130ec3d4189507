// Commands without flags that menus, shelves and hot keys run; each stands for another command with
// flags, on the selection.
#include "host/base/assert.h"
#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

struct Step {
  const char* command;
  std::vector<const char*> flags;
};
struct RuntimeCommand {
  const char* name;
  std::vector<Step> steps;  ///< one after the other
};

std::vector<RuntimeCommand> sceneCommands() {
  return {
      {"Undo", {{"undo", {}}}},
      {"Redo", {{"redo", {}}}},
      {"NewScene", {{"file", {"-new", "-force"}}}},
      {"SaveScene", {{"file", {"-save"}}}},
      {"Duplicate", {{"duplicate", {"-rr"}}}},
      {"DuplicateWithTransform", {{"duplicate", {"-rr", "-st"}}}},
      {"DeleteHistory", {{"delete", {"-ch"}}}},
      {"DeleteAllHistory", {{"delete", {"-all", "-ch"}}}},
      {"DeleteChannels", {{"delete", {"-channels"}}}},
      {"DeleteExpressions", {{"delete", {"-expressions"}}}},
      {"DeleteConstraints", {{"delete", {"-constraints"}}}},
      {"Group", {{"group", {}}}},
      {"Ungroup", {{"ungroup", {}}}},
      {"Parent", {{"parent", {}}}},
      {"Unparent", {{"parent", {"-world"}}}},
      {"SelectAll", {{"select", {"-ado"}}}},
      {"SelectHierarchy", {{"select", {"-hierarchy"}}}},
      {"FreezeTransformations",
       {{"makeIdentity", {"-apply", "1", "-t", "1", "-r", "1", "-s", "1", "-n", "0", "-pn", "1"}}}},
      {"ResetTransformations",
       {{"makeIdentity", {"-apply", "0", "-t", "1", "-r", "1", "-s", "1"}}}},
      {"CenterPivot", {{"xform", {"-cp"}}}},
      {"HideSelectedObjects", {{"hide", {}}}},
      {"ShowSelectedObjects", {{"showHidden", {}}}},
      {"ShowAll", {{"showHidden", {"-all"}}}},
      {"FitSelected", {{"viewFit", {}}}},
      {"FrameSelected", {{"viewFit", {}}}},
      {"FrameAll", {{"viewFit", {"-all"}}}},
      {"SetKey", {{"setKeyframe", {}}}},
      {"CreateLocator", {{"spaceLocator", {}}}},
      {"PointConstraint", {{"pointConstraint", {}}}},
      {"OrientConstraint", {{"orientConstraint", {}}}},
      {"ParentConstraint", {{"parentConstraint", {"-mo"}}}},
      {"ScaleConstraint", {{"scaleConstraint", {}}}},
      {"AimConstraint", {{"aimConstraint", {}}}},
      {"SelectVertexMask",
       {{"selectMode", {"-component"}},
        {"selectType", {"-allComponents", "0"}},
        {"selectType", {"-vertex", "1"}}}},
      {"SelectEdgeMask",
       {{"selectMode", {"-component"}},
        {"selectType", {"-allComponents", "0"}},
        {"selectType", {"-edge", "1"}}}},
      {"SelectFacetMask",
       {{"selectMode", {"-component"}},
        {"selectType", {"-allComponents", "0"}},
        {"selectType", {"-facet", "1"}}}},
      {"SelectUVMask",
       {{"selectMode", {"-component"}},
        {"selectType", {"-allComponents", "0"}},
        {"selectType", {"-polymeshUV", "1"}}}},
      {"PickWalkUp", {{"pickWalk", {"-d", "up"}}}},
      {"PickWalkDown", {{"pickWalk", {"-d", "down"}}}},
      {"PickWalkLeft", {{"pickWalk", {"-d", "left"}}}},
      {"PickWalkRight", {{"pickWalk", {"-d", "right"}}}},
      {"SelectTool", {{"setToolTo", {"selectSuperContext"}}}},
      {"MoveTool", {{"setToolTo", {"moveSuperContext"}}}},
      {"RotateTool", {{"setToolTo", {"RotateSuperContext"}}}},
      {"ScaleTool", {{"setToolTo", {"scaleSuperContext"}}}},
      {"resetPolySelectConstraint", {{"polySelectConstraint", {"-disable"}}}},
      {"SelectToggleMode", {{"selectMode", {"-object"}}}},
  };
}

std::vector<RuntimeCommand> polygonCommands() {
  return {
      {"CreatePolygonCube", {{"polyCube", {}}}},
      {"CreatePolygonSphere", {{"polySphere", {}}}},
      {"CreatePolygonCylinder", {{"polyCylinder", {}}}},
      {"CreatePolygonCone", {{"polyCone", {}}}},
      {"CreatePolygonPlane", {{"polyPlane", {}}}},
      {"CreatePolygonTorus", {{"polyTorus", {}}}},
      {"CreatePolygonPyramid", {{"polyPyramid", {}}}},
      {"Triangulate", {{"polyTriangulate", {}}}},
      {"Quadrangulate", {{"polyQuad", {}}}},
      {"MergeVertices", {{"polyMergeVertex", {}}}},
      {"PolyMerge", {{"polyMergeVertex", {}}}},
      {"MergeToCenter", {{"polyMergeVertex", {"-d", "1e10"}}}},
      {"CombinePolygons", {{"polyUnite", {}}}},
      {"SeparatePolygon", {{"polySeparate", {}}}},
      {"ReversePolygonNormals", {{"polyNormal", {"-normalMode", "0", "-userNormalMode", "0"}}}},
      {"ConformPolygonNormals", {{"polyNormal", {"-normalMode", "2", "-userNormalMode", "0"}}}},
      {"SoftPolyEdgeElements", {{"polySoftEdge", {"-angle", "180"}}}},
      {"PolygonSoftenEdge", {{"polySoftEdge", {"-angle", "180"}}}},
      {"PolygonHardenEdge", {{"polySoftEdge", {"-angle", "0"}}}},
      {"BevelPolygon", {{"polyBevel3", {}}}},
      {"SmoothPolygon", {{"polySmooth", {}}}},
      {"FillHole", {{"polyCloseBorder", {}}}},
      {"BridgeEdge", {{"polyBridgeEdge", {}}}},
      {"MirrorPolygonGeometry", {{"polyMirrorFace", {}}}},
      {"PokePolygon", {{"polyPoke", {}}}},
      {"ConnectComponents", {{"polyConnectComponents", {}}}},
      {"CollapsePolygonFaces", {{"polyCollapseFacet", {}}}},
      {"PolygonCollapseEdges", {{"polyCollapseEdge", {}}}},
      {"DeleteEdge", {{"polyDelEdge", {"-cv", "1"}}}},
      {"DeleteVertex", {{"polyDelVertex", {}}}},
      {"AveragePolygonNormals", {{"polyAverageVertex", {}}}},
      {"AverageVertex", {{"polyAverageVertex", {}}}},
      {"SubdividePolygon", {{"polySubdivideFacet", {}}}},
      {"AddDivisions", {{"polySubdivideFacet", {"-dv", "1"}}}},
      {"PolygonBooleanUnion", {{"polyCBoolOp", {"-op", "1"}}}},
      {"PolygonBooleanDifference", {{"polyCBoolOp", {"-op", "2"}}}},
      {"PolygonBooleanIntersection", {{"polyCBoolOp", {"-op", "3"}}}},
      {"BooleanUnion", {{"polyCBoolOp", {"-op", "1"}}}},
      {"MirrorGeometry", {{"polyMirrorFace", {}}}},
      {"ReducePolygon", {{"polyReduce", {"-p", "50"}}}},
      {"WedgePolygon", {{"polyWedgeFace", {}}}},
      {"SplitVertex", {{"polySplitVertex", {}}}},
      {"DetachEdgeComponent", {{"polySplitEdge", {}}}},
      {"FlipTriangleEdge", {{"polyFlipEdge", {}}}},
      {"SpinPolyEdgeForward", {{"polySpinEdge", {"-offset", "1"}}}},
      {"SpinPolyEdgeBackward", {{"polySpinEdge", {"-offset", "-1"}}}},
      {"PolyRemoveAllCrease", {{"polyCrease", {"-op", "2"}}}},
      {"LockNormals", {{"polyNormalPerVertex", {"-fn", "1"}}}},
      {"UnlockNormals", {{"polyNormalPerVertex", {"-ufn", "1"}}}},
      {"TransferAttributeValues", {{"transferAttributes", {}}}},
      {"UVPlanarProjection", {{"polyPlanarProjection", {}}}},
      {"UVCylindricProjection", {{"polyCylindricalProjection", {}}}},
      {"UVSphericalProjection", {{"polySphericalProjection", {}}}},
      {"UVAutomaticProjection", {{"polyAutoProjection", {}}}},
      {"CutUVs", {{"polyMapCut", {}}}},
      {"SewUVs", {{"polyMapSew", {}}}},
      {"MoveSewUVs", {{"polyMapSewMove", {}}}},
      {"DeleteUVs", {{"polyMapDel", {}}}},
      {"LayoutUV", {{"polyLayoutUV", {}}}},
      {"NormalizeUVs", {{"polyNormalizeUV", {}}}},
      {"UnfoldUV", {{"unfold", {}}}},
      {"ExtractFace",
       {{"polyChipOff", {"-kft", "1", "-dup", "0", "-off", "0"}}, {"polySeparate", {}}}},
      {"DuplicateFace",
       {{"polyChipOff", {"-kft", "1", "-dup", "1", "-off", "0"}}, {"polySeparate", {}}}},
  };
}

/// A step with the command that it is, found when the program starts.
struct ReadyStep {
  std::shared_ptr<const cmd::Command> command;
  std::vector<mel::Value> words;
};

ReadyStep ready(const CommandRegistry& registry, const Step& step) {
  ReadyStep made{registry.find(step.command), {step.flags.begin(), step.flags.end()}};
  HOST_ASSERT(made.command && made.command->builtin(),
              "register runtime commands after what they stand for");
  return made;
}

Result<mel::Value> runStep(Context& context, const ReadyStep& step) {
  const auto args =
      cmd::parseArguments(step.command->builtin()->syntax, step.words, context.document.units());
  if (!args) return failWith(args.error());
  return step.command->builtin()->function(context, *args);
}

/// The objects whose components are selected.
scene::SelectionList objectsOfSelection(scene::Document& document) {
  scene::SelectionList objects;
  for (const scene::SelectionItem& item : document.selection().items())
    if (item.isDag()) objects.add(scene::isShape(*item.node) ? item.path.transform() : item.path);
  return objects;
}

CommandResult runSteps(Context& context, const std::vector<ReadyStep>& steps) {
  mel::Value result;
  const scene::SelectionList objects = objectsOfSelection(context.document);
  for (std::size_t i = 0; i < steps.size(); ++i) {
    // What is made of components goes on with their objects.
    if (i > 0 && steps[i].command->name() == "polySeparate") context.document.setSelection(objects);
    auto done = runStep(context, steps[i]);
    if (!done) return done;
    result = *std::move(done);
  }
  return result;
}

/// Which of faces, edges and vertices is selected: 0, 1 or 2; whole objects are their faces.
std::size_t kindOfSelection(scene::Document& document) {
  std::size_t kind = 0;
  for (const scene::SelectionItem& item : document.selection().items()) {
    if (item.component(scene::ComponentType::Face)) return 0;
    if (item.component(scene::ComponentType::Edge)) kind = 1;
    if (kind == 0 && item.component(scene::ComponentType::Vertex)) kind = 2;
  }
  return kind;
}

void defineExtrude(CommandRegistry& registry) {
  std::vector<ReadyStep> steps;
  for (const char* name : {"polyExtrudeFacet", "polyExtrudeEdge", "polyExtrudeVertex"})
    steps.push_back(ready(registry, {name, {}}));
  define(registry, "PolyExtrude", Syntax(), [steps](Context& context, const ParsedArgs&) {
    return runStep(context, steps[kindOfSelection(context.document)]);
  });
}

}  // namespace

/// Registered last: the commands they stand for are there. What a script has put in a command's
/// place doesn't run instead of it.
void registerRuntimeCommands(CommandRegistry& registry) {
  std::vector<RuntimeCommand> commands = sceneCommands();
  for (RuntimeCommand& each : polygonCommands()) commands.push_back(std::move(each));
  for (const RuntimeCommand& each : commands) {
    std::vector<ReadyStep> steps;
    for (const Step& step : each.steps) steps.push_back(ready(registry, step));
    const bool isUndoable = steps.size() > 1 || steps.front().command->builtin()->isUndoable;
    define(
        registry, each.name, Syntax(),
        [steps](Context& context, const ParsedArgs&) { return runSteps(context, steps); },
        isUndoable);
  }
  defineExtrude(registry);
}

}  // namespace host::builtins
