#include "plugin/helpTexts.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

#include <string>

#include "brushes/brushFlags.h"

namespace {

struct helpText {
  const char *key, *text;
};

constexpr helpText kTexts[] = {
    {"qxSelectCmd", "Selects border edges of the selected faces, or hard edges of objects."},
    {"qxSelectCmd.borderEdge", "the edges that bound the selected faces"},
    {"qxSelectCmd.hardEdge", "all hard edges of the selected objects"},
    {"qxESmoothCmd", "Makes smooth copies of the selected objects with their hard edges kept."},
    {"qxESmoothCmd.numDiv", "how often faces are divided (1)"},
    {"qxMakePlanarCmd", "Flattens the selected faces; the window's mirror options split them."},
    {"qxCircleVertsCmd", "Spreads the selected vertices evenly on a circle."},
    {"qxStraightenCmd",
     "Puts the selected vertices on the line through the two that lie farthest apart."},
    {"qxStraightenCmd.axis",
     "coordinates that stay as they are: x, y, z, xy, xz, yz, or all to keep none (all)"},
    {"qxStraightenCmd.axisMirror",
     "x, y, z: each side of that plane gets a line of its own; all: one line (all)"},
    {"qxStraightenCmd.average", "taken and kept, changes nothing"},
    {"qxMergeVerts", "Moves the selected vertices onto one vertex; welding is left to others."},
    {"qxMergeVerts.mirror", "each side of the mirror plane goes to a vertex of its own"},
    {"qxMergeVerts.componentId", "the vertex that they go to"},
    {"qxMergeVerts.mirrorId", "the vertex that those on its other side go to"},
    {"qxMergeVerts.axis", "axis of the mirror plane: 0 x, 1 y, 2 z"},
    {"qxSetCommands", "Passes a message of the toolkit's windows to its tools."},
    {"qxSetCommands.mset", "the message: storeValues, setSlideDag, customFrame, ..."},
    {"qxSnapVertsToAxis", "Puts the selected vertices on the mirror plane."},
    {"qxBuildUVObject",
     "Lays the selected meshes' UVs out as meshes that can be edited; UVs follow."},
    {"addUVNodeMessageCmd", "The same by callbacks, while vertices are dragged."},
    {"qxMarkUVInformation", "Marks seams and anchors on meshes that are loaded for marking."},
    {"qxMarkUVInformation.markEdge", "the selected edges become seams"},
    {"qxMarkUVInformation.unMarkEdge", "the selected edges are no seams any more"},
    {"qxMarkUVInformation.markVert", "the selected vertices become anchors"},
    {"qxMarkUVInformation.unMarkVert", "the selected vertices are no anchors any more"},
    {"qxLoadUvObjectForMarking", "Prepares the selected meshes for marking, or takes that back."},
    {"qxLoadUvObjectForMarking.loadType", "load, or unLoad"},
    {"qxPinVertsCmd", "Pins vertices of a UV object: other tools leave them where they are."},
    {"qxPinVertsCmd.query", "the pinned vertices of the selected meshes"},
    {"qxPinVertsCmd.pinVert", "pins what is selected"},
    {"qxPinVertsCmd.unPinVert", "frees what is selected"},
    {"qxPinVertsCmd.clearPins", "frees all vertices of the selected meshes"},
    {"qxTweakUVVerts", "Moves, turns and scales selected vertices of a UV object, or UVs."},
    {"qxTweakUVVerts.move", "how far along u and v, UV units"},
    {"qxTweakUVVerts.rotate", "degrees, from u towards v"},
    {"qxTweakUVVerts.scale", "factors along u and v"},
    {"qxTweakUVVerts.pivot", "turned and scaled about here (the middle of what is chosen)"},
    {"qxTweakUVVerts.falloff", "how far around the rest of a shell follows, UV units (0)"},
    {"qxTweakUVVerts.falloffCurve", "smooth or linear (smooth)"},
    {"qxTweakUVVerts.ignorePins", "moves pinned UVs too"},
    {"qxAutoUnwrap", "Gives the selected meshes new UVs, cut along their seams."},
    {"qxAutoUnwrap.unwrapType",
     "normal: with little stretch; straight: every face a square, sewn in strips"},
    {"uvRatio", "Scales UV shells to one density, by a node in the history."},
    {"uvRatio.uvRatio", "length in the scene that one UV unit stands for (1)"},
    {"uvRatio.global", "about the centre of all UVs, not each shell about its own"},
    {"uvRatioCmd", "Scales UV shells to one density, by a UV tweak of the host."},
    {"uvRatioCmd.name", "name of the tweak node"},
    {"uvRatioCmd.constructionHistory", "leaves the tweak node in the history"},
    {"uvRatioCmd.uvRatio", "length in the scene that one UV unit stands for (1)"},
    {"uvRatioCmd.global", "about the centre of all UVs, not each shell about its own"},
    {"scaleMoveSewCmd", "Scales the smaller shell at each selected edge so that they can be sewn."},
    {"scaleMoveSewCmd.transfer", "taken, changes nothing"},
    {"projectMeshOnMeshCmd", "Drops the first selected mesh onto the second."},
    {"projectMeshOnMeshCmd.wrapDirection",
     "the axis to fall along: x, y, z, or objectYRotation for the first mesh's own y"},
    {"qxTransferTopology", "Gives the first selected mesh the shape of the second."},
    {"qxTransferTopology.space", "where the two are compared: world or object (world)"},
    {"qxTransferTopology.maxDistance", "vertices with no place as near as this stay (0: no limit)"},
    {"qxTransferTopology.help", "explains the flags"},
    {"qxTransferTopology.symmetry", "makes the result symmetric: x, y, z or none (none)"},
    {"qxTransferTopology.landmark",
     "a vertex of the first mesh that belongs on a vertex of the second"},
    {"qxTransferTopology.order",
     "the meshes have the same faces in another order; one face of each is selected"},
    {"qxTransferVertexNormals", "Shades the first selected mesh with the normals of the second."},
    {"qxTransferVertexNormals.space", "where the two are compared: world or object (world)"},
    {"qxTransferVertexNormals.maxDistance",
     "vertices with no place as near as this stay (0: no limit)"},
    {"qxTransferVertexNormals.help", "explains the flags"},
    {"modelingContext", "Makes or changes a modelling tool."},
    {"quadDrawContext", "Makes or changes a quad draw tool."},
    {"uvSelectContext", "Makes or changes a tool that picks and marks seams and anchors."},
    {"baseBrushContext", "Makes or changes a brush that drags vertices."},
    {"standardSculptBrushContext", "Makes or changes a brush that sculpts vertices."},
    {"tweakUvBrushContext", "Makes or changes a brush that drags and relaxes UVs."},
    {"moveRotateScaleUVBrushContext", "Makes or changes a brush that moves, turns and scales UVs."},
};

/// What every context command takes.
constexpr helpText kContextTexts[] = {
    {"edit", "changes a tool that is there"},
    {"query", "asks a tool that is there"},
    {"exists", "whether there is a tool of that name"},
    {"name", "the tool's name"},
    {"image1", "the tool's picture, large"},
    {"image2", "the tool's picture, middle"},
    {"image3", "the tool's picture, small"},
};
constexpr const char* kContexts[] = {"modelingContext",
                                     "quadDrawContext",
                                     "uvSelectContext",
                                     "baseBrushContext",
                                     "standardSculptBrushContext",
                                     "tweakUvBrushContext",
                                     "moveRotateScaleUVBrushContext"};
constexpr helpText kBrushQueries[] = {
    {"adjust", "what a drag sets: none, radius or strength"},
    {"dabs", "queried: how many dabs the last stroke had"},
    {"recordBytes", "queried: what undo keeps of the last stroke"},
    {"flags", "queried: the settings, as windows are built from them"},
};

bool isBrush(const std::string& context) {
  return context.find("Brush") != std::string::npos;
}

/// Calls `say(key, text)` for every text.
template <class Say>
void forEachText(Say say) {
  for (const helpText& each : kTexts) say(std::string(each.key), each.text);
  for (const char* const context : kContexts) {
    const std::string before = std::string(context) + ".";
    for (const helpText& each : kContextTexts) say(before + each.key, each.text);
    if (!isBrush(context)) continue;
    for (const helpText& each : kBrushQueries) say(before + each.key, each.text);
    for (const brushFlag& flag : brushFlags()) say(before + flag.longName, flag.help);
  }
}

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') out += '\\';
    out += letter;
  }
  return out + "\"";
}

/// Makes a line of MEL of every text and runs them as one script.
template <class Line>
MStatus runForEachText(Line line) {
  std::string script;
  forEachText([&](const std::string& key, const char* text) { script += line(key, text) + ";\n"; });
  return MGlobal::executeCommand(script.c_str(), false, false);
}

}  // namespace

MStatus registerHelpTexts() {
  return runForEachText([](const std::string& key, const char* text) {
    return "displayString -replace -value " + quoted(text) + " " + quoted(key);
  });
}

MStatus removeHelpTexts() {
  return runForEachText([](const std::string& key, const char*) {
    return "if (`displayString -exists " + quoted(key) + "`) displayString -delete " + quoted(key);
  });
}
