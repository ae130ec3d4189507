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
      {"ExtractFace",
       {{"polyChipOff", {"-kft", "1", "-dup", "0", "-off", "0"}}, {"polySeparate", {}}}},
      {"DuplicateFace",
       {{"polyChipOff", {"-kft", "1", "-dup", "1", "-off", "0"}}, {"polySeparate", {}}}},
  };
}

Result<mel::Value> runStep(Context& context, const Step& step) {
  const std::shared_ptr<const cmd::Command> target = context.session.commands().find(step.command);
  HOST_ASSERT(target && target->builtin(), "register runtime commands after what they stand for");
  const std::vector<mel::Value> words(step.flags.begin(), step.flags.end());
  const auto args = cmd::parseArguments(target->builtin()->syntax, words, context.document.units());
  if (!args) return failWith(args.error());
  return target->builtin()->function(context, *args);
}

/// The objects whose components are selected.
scene::SelectionList objectsOfSelection(scene::Document& document) {
  scene::SelectionList objects;
  for (const scene::SelectionItem& item : document.selection().items())
    if (item.isDag()) objects.add(scene::isShape(*item.node) ? item.path.transform() : item.path);
  return objects;
}

CommandResult runSteps(Context& context, const RuntimeCommand& command) {
  mel::Value result;
  const scene::SelectionList objects = objectsOfSelection(context.document);
  for (std::size_t i = 0; i < command.steps.size(); ++i) {
    // What is made of components goes on with their objects.
    if (i > 0 && std::string_view(command.steps[i].command) == "polySeparate")
      context.document.setSelection(objects);
    auto done = runStep(context, command.steps[i]);
    if (!done) return done;
    result = *std::move(done);
  }
  return result;
}

/// Extrudes what is selected: faces, else edges, else vertices.
CommandResult polyExtrude(Context& context, const ParsedArgs&) {
  const char* command = "polyExtrudeFacet";
  for (const scene::SelectionItem& item : context.document.selection().items()) {
    if (item.component(scene::ComponentType::Face)) break;
    if (item.component(scene::ComponentType::Edge))
      command = "polyExtrudeEdge";
    else if (item.component(scene::ComponentType::Vertex))
      command = "polyExtrudeVertex";
  }
  return runStep(context, {command, {}});
}

}  // namespace

/// Registered last: the commands they stand for are there. What a script has put in a command's
/// place doesn't run instead of it.
void registerRuntimeCommands(CommandRegistry& registry) {
  std::vector<RuntimeCommand> commands = sceneCommands();
  for (RuntimeCommand& each : polygonCommands()) commands.push_back(std::move(each));
  for (const RuntimeCommand& each : commands) {
    bool isUndoable = true;
    for (const Step& step : each.steps) {
      const std::shared_ptr<const cmd::Command> target = registry.find(step.command);
      HOST_ASSERT(target && target->builtin(),
                  "register runtime commands after what they stand for");
      isUndoable = isUndoable && (target->builtin()->isUndoable || each.steps.size() > 1);
    }
    define(
        registry, each.name, Syntax(),
        [each](Context& context, const ParsedArgs&) { return runSteps(context, each); },
        isUndoable);
  }
  define(registry, "PolyExtrude", Syntax(), polyExtrude);
}

}  // namespace host::builtins
