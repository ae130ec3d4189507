// What `help` and the command reference say of built-in commands. Those of the modelling commands
// come from their declarations; the kinds of controls and the menu commands have one sentence each.
#include "host/builtins/help/command_texts.h"

#include <fmt/format.h>

#include <map>
#include <string_view>
#include <unordered_map>

#include "host/builtins/help/flag_texts.h"
#include "host/ui/control_type.h"

namespace host::builtins {

namespace {

struct CommandText {
  const char *command, *about;
};
constexpr CommandText kTexts[] = {
    {"Delete", "Deletes what is selected."},
    {"PolyExtrude", "Extrudes the faces, edges or vertices that are selected."},
    {"about", "Tells what this program is and where it runs."},
    {"addAttr", "Adds an attribute to nodes; edits or queries one that was added."},
    {"aimConstraint", "Turns an object so that it points at targets."},
    {"aliasAttr", "Gives an attribute another name on its node."},
    {"allNodeTypes", "Lists the types of nodes that there are."},
    {"angleBetween", "Tells the shortest turn from one vector to another."},
    {"applyAttrPreset", "Blends a preset of attributes into a node."},
    {"arclen", "Measures curves."},
    {"attributeExists", "Tells whether a node has an attribute."},
    {"attributeQuery", "Tells what is declared of an attribute."},
    {"autoSave", "Keeps unsaved work in a file of its own every few minutes."},
    {"blendAttr", "In a preset: an attribute and its value."},
    {"blendAttrPreset", "In a preset: an attribute and its value."},
    {"blendAttrStr", "In a preset: an attribute and its text."},
    {"blendMultiAttr", "In a preset: an element of an array and its value."},
    {"camera", "Makes a camera, or changes or reads what it is like."},
    {"changeSelectMode", "Chooses whether objects or components are picked."},
    {"channelBox", "Tells and chooses which channels are picked in the list of channels."},
    {"circle", "Makes a curve around a centre."},
    {"commandEcho", "Turns the echo of commands on or off."},
    {"confirmDialog", "Asks a person a question with buttons."},
    {"connectAttr", "Connects two attributes; numbers of other units are converted."},
    {"connectControl", "Ties a control to an attribute, so that both show one value."},
    {"connectionInfo", "Tells what an attribute is connected to."},
    {"contextInfo", "Tells of a tool's context."},
    {"copyAttr", "Copies values and connections of one node's attributes to another node."},
    {"copyKey", "Copies keys, to be pasted."},
    {"createNode", "Makes a node of a type."},
    {"ctxCompletion", "Ends what the tool is doing, as Enter does."},
    {"currentCtx", "Tells which tool is current."},
    {"currentTime", "Sets or tells the scene's time."},
    {"currentUnit", "Sets or tells the units that scripts and files use."},
    {"curve", "Makes a curve of control points or through points."},
    {"cutKey", "Takes keys off animation curves."},
    {"date", "Tells the date and the time."},
    {"deformer", "Makes a deformer of a plug-in's type, or changes what it deforms."},
    {"delete", "Deletes objects, components, history or what drives attributes."},
    {"deleteAttr", "Deletes attributes that were added."},
    {"deleteUI", "Deletes windows and controls."},
    {"dgdirty", "Marks attributes as to be computed."},
    {"dgeval", "Computes attributes."},
    {"disconnectAttr", "Breaks connections."},
    {"displayPref",
     "Sets or tells preferences of display; kept, they change nothing that is drawn."},
    {"displayString", "Keeps texts by key."},
    {"doMenuComponentSelection", "Goes over to picking components of a kind."},
    {"dolly", "Moves a camera along its line of sight, or narrows its view."},
    {"draggerContext", "Makes a tool whose gestures run scripts."},
    {"duplicate", "Copies objects."},
    {"editorTemplate",
     "Declares a layout of the attribute editor; there is no such editor, what is declared is "
     "kept."},
    {"endAttrPreset", "Ends a preset of attributes."},
    {"exactWorldBoundingBox", "Measures the box around objects in the world."},
    {"expression", "Makes, changes or reads an expression that computes attributes."},
    {"file", "Opens, imports, saves and names scenes."},
    {"fileDialog", "Asks a person for a file."},
    {"fileDialog2", "Asks a person for files."},
    {"fileInfo", "Keeps words with the scene."},
    {"filterExpand", "Lists what is selected by kind, one by one."},
    {"findKeyframe", "Finds the time of a key before or after another."},
    {"flushUndo", "Forgets what could be undone."},
    {"getAttr", "Reads attributes."},
    {"getClassification", "Tells how a type of node is classified."},
    {"getPanel", "Lists panels."},
    {"group", "Puts objects below a new transform."},
    {"headsUpDisplay", "Shows lines of text in the view."},
    {"help", "Tells of commands."},
    {"hide", "Hides objects."},
    {"hilite", "Shows objects as ones whose components can be picked."},
    {"inViewMessage", "Shows a message over the views."},
    {"inheritTransform", "Says whether objects go along with what is above them."},
    {"instance", "Makes instances of objects."},
    {"internalVar", "Tells folders of the user."},
    {"isConnected", "Tells whether two attributes are connected."},
    {"isolateSelect", "Shows only some objects in a view."},
    {"joint", "Makes a joint below the one that is selected."},
    {"keyTangent", "Changes or tells how animation curves run through keys."},
    {"keyframe", "Changes or tells keys of animation curves."},
    {"launch", "Tells a person of a page or a document to open."},
    {"layoutDialog", "Shows a dialog that a script lays out."},
    {"listAttr", "Lists attributes of nodes."},
    {"listCameras", "Lists the cameras."},
    {"listConnections", "Lists what nodes are connected to."},
    {"listHistory", "Lists the nodes that make what an object shows."},
    {"listRelatives", "Lists children, parents and shapes."},
    {"listSets", "Lists the sets that something is in."},
    {"loadPlugin", "Loads plug-ins."},
    {"lockNode", "Keeps nodes from being deleted and renamed."},
    {"lookThru", "Has a view look through a camera."},
    {"ls", "Lists nodes and what is selected."},
    {"lsUI", "Lists windows and controls."},
    {"makeIdentity", "Freezes or resets transforms."},
    {"makePaintable", "Notes attributes that can be painted; kept."},
    {"modelEditor", "Sets or tells how a view shows things."},
    {"modelPanel", "Makes or asks for a panel with a view."},
    {"move", "Moves objects and components."},
    {"namespace", "Makes, renames and removes namespaces."},
    {"namespaceInfo", "Tells of namespaces and lists what is in them."},
    {"nodeType", "Tells a node's type."},
    {"nurbsPlane", "Makes a plane as a curved surface, or changes or reads one."},
    {"objExists", "Tells whether something of a name is there."},
    {"objectCenter", "Tells the middle of an object's box."},
    {"objectType", "Tells what an object is."},
    {"objectTypeUI", "Tells what kind of control a name is."},
    {"optionVar", "Keeps values between runs."},
    {"orientConstraint", "Turns an object as targets are turned."},
    {"panePop", "Shows one view or all four."},
    {"parent", "Puts objects below others."},
    {"parentConstraint", "Moves and turns an object as if it were below targets."},
    {"pasteKey", "Puts copied keys onto attributes."},
    {"percent", "Sets or tells the weights of a deformer."},
    {"performPolyAutoProj", "Projects what is selected as the menu does."},
    {"performPolyFlipUV", "Flips UVs of what is selected as the menu does."},
    {"performPolyForceUV", "Forces UVs on what is selected as the menu does."},
    {"performPolyLayoutUV", "Lays UVs of what is selected out as the menu does."},
    {"performPolyMapCut", "Cuts the map along what is selected as the menu does."},
    {"performPolyMapDel", "Takes UVs of what is selected away as the menu does."},
    {"performPolyMapSew", "Sews the map along what is selected as the menu does."},
    {"performPolyMapSewMove", "Moves and sews the map along what is selected as the menu does."},
    {"performPolyMergeUV", "Merges UVs of what is selected as the menu does."},
    {"performPolyNormalizeUV", "Normalizes UVs of what is selected as the menu does."},
    {"performPolyStraightenUVBorder",
     "Straightens UV borders of what is selected as the menu does."},
    {"performPolyUnitizeUV",
     "Gives each face of what is selected the unit square as the menu does."},
    {"pickWalk", "Selects the parent, child or neighbour of what is selected."},
    {"playbackOptions", "Sets or tells which part of the animation is played."},
    {"playblast", "Draws the view into a picture file."},
    {"pluginInfo", "Tells of plug-ins."},
    {"pointConstraint", "Moves an object to where targets are."},
    {"pointPosition", "Tells where a component is."},
    {"pointerPosition", "Tells where the pointer is over a view."},
    {"polyColorPerVertex", "Sets or tells colours of components."},
    {"polyColorSet", "Makes, renames and removes colour sets."},
    {"polyCompare", "Tells in what two meshes differ."},
    {"polyCrease", "Sets or tells crease weights."},
    {"polyEditUV", "Moves, turns and scales UVs."},
    {"polyEditUVShell", "Moves, turns and scales UV shells."},
    {"polyEvaluate", "Counts and measures polygon objects."},
    {"polyForceUV", "Forces UVs on faces."},
    {"polyInfo", "Tells which components belong together."},
    {"polyListComponentConversion",
     "Tells which components of one kind belong to those of another."},
    {"polyMultiLayoutUV", "Lays out UVs of several objects together."},
    {"polyOptions", "Sets or tells how polygon objects are shown."},
    {"polyPerformAction", "Runs a command on each polygon object that is selected."},
    {"polyProjection", "Projects UVs by a plane, a cylinder or a sphere."},
    {"polySelect", "Selects edge loops, rings, borders and shells."},
    {"polySelectBorderShell", "Selects shells or their borders."},
    {"polySelectConstraint", "Limits or grows what is selected by what it is like."},
    {"polySelectEdges", "Selects edge loops, rings or borders from what is selected."},
    {"polySelectSp", "Selects edge loops between edges."},
    {"polyUVReport", "Tells how good a map is."},
    {"polyUVSet", "Makes, renames, copies and removes UV sets."},
    {"popupMenu", "Makes a menu that opens over a control."},
    {"progressWindow", "Shows how far some work is."},
    {"promptDialog", "Asks a person for a text."},
    {"python", "Refuses, as there is no Python."},
    {"quit", "Ends the program."},
    {"redo", "Does again what was undone."},
    {"referenceQuery", "Tells of references to other files; none is followed."},
    {"refresh", "Draws the views anew."},
    {"refreshAE", "Has the attribute editor show anew; there is none."},
    {"removeMultiInstance", "Removes an element of an array attribute."},
    {"rename", "Renames nodes."},
    {"renameAttr", "Renames an attribute that was added."},
    {"reorder", "Changes the order of children."},
    {"repeatLast", "Runs again what was run last from a menu."},
    {"roll", "Turns a camera about its line of sight."},
    {"rotate", "Turns objects and components."},
    {"runTimeCommand", "Makes a command of a script, for menus, shelves and hot keys."},
    {"scale", "Scales objects and components."},
    {"scaleConstraint", "Scales an object as targets are scaled."},
    {"scaleKey", "Stretches keys in time and value."},
    {"scriptEditorInfo", "Says which kinds of messages are shown."},
    {"scriptJob", "Runs scripts when something happens."},
    {"scriptNode", "Makes, changes or runs a script that is kept in the scene."},
    {"select", "Selects."},
    {"selectMode", "Chooses whether objects or components are picked."},
    {"selectPref", "Sets or tells preferences of picking."},
    {"selectType", "Chooses what kinds of things are picked."},
    {"setAttr", "Sets attributes."},
    {"setDrivenKeyframe", "Sets a key of an attribute over the value of another one."},
    {"setFocus", "Gives a view or a control the focus."},
    {"setInfinity", "Sets or tells how animation curves go on outside their keys."},
    {"setKeyframe", "Sets keys on attributes."},
    {"setNamedPanelLayout", "Lays the views out by a layout's name."},
    {"setParent", "Chooses the layout that new controls go to."},
    {"setToolTo", "Chooses the tool."},
    {"setUITemplate",
     "Chooses the template of controls; kept, it changes nothing that is laid out."},
    {"sets", "Makes sets and changes what is in them."},
    {"shadingNode", "Makes a node for shading."},
    {"showHidden", "Shows objects that were hidden."},
    {"showWindow", "Opens a window."},
    {"skinCluster", "Lets a mesh follow joints by weights, or changes how."},
    {"skinPercent", "Sets or tells the weights by which vertices follow joints."},
    {"snapKey", "Moves keys to whole times or values."},
    {"spaceLocator", "Makes a locator."},
    {"startAttrPreset", "Begins a preset of attributes of a type of node."},
    {"stringArrayIntersector", "Keeps what arrays of texts have in common."},
    {"surface", "Makes a curved surface of control points."},
    {"tabletState", "Tells of the tablet."},
    {"timer", "Measures time."},
    {"toggle", "Turns a display attribute of objects on or off."},
    {"track", "Moves a camera sideways and up or down."},
    {"transformLimits", "Sets or tells the limits of an object's channels."},
    {"tumble", "Turns a camera about what it looks at."},
    {"tumbleCtx", "Sets or tells how the view is turned."},
    {"uiGesture", "Does to a control what a person would."},
    {"uiRes", "Gives the text of a key."},
    {"uiTemplate", "Makes a template of controls; kept, it changes nothing that is laid out."},
    {"undo", "Takes back what was done last."},
    {"undoInfo", "Sets or tells of undo."},
    {"ungroup", "Takes a group away and keeps what is in it."},
    {"uniqueObjExists", "Tells whether exactly one thing has a name."},
    {"unknownNode", "Lists nodes of unknown types."},
    {"unloadPlugin", "Unloads plug-ins."},
    {"untangleUV", "Moves UVs so that faces don't fold over."},
    {"uvSnapshot", "Draws the map into a picture file."},
    {"viewClipPlane", "Sets or tells how near and how far a camera sees."},
    {"viewFit", "Moves the camera to show what is selected."},
    {"viewGesture", "Does in a view what a person would."},
    {"viewLookAt", "Turns a camera towards a point or what is selected."},
    {"viewPlace", "Puts a camera at a place, looking at a point."},
    {"viewSet", "Puts a camera at one of the sides of what it looks at, or home."},
    {"waitCursor", "Shows the wait cursor; counted, nobody sees it here."},
    {"windowPref", "Keeps where windows were."},
    {"workspace", "Sets or tells the project's folder."},
    {"xform", "Sets or tells transforms."},
};

/// "A kind of control" in the words of its family.
std::string aboutControl(const ui::ControlType& type) {
  switch (type.kind) {
    case ui::Kind::Window:
      return "Makes, changes or asks for a window.";
    case ui::Kind::Layout:
      return fmt::format("Makes, changes or asks for a layout: a {}.", type.name);
    case ui::Kind::Menu:
    case ui::Kind::MenuItem:
      return fmt::format("Makes, changes or asks for a {}.", type.name);
    case ui::Kind::Collection:
      return fmt::format("Makes or asks for a group of buttons: a {}.", type.name);
    case ui::Kind::Control:
      break;
  }
  return fmt::format("Makes, changes or asks for a control: a {}.", type.name);
}

}  // namespace

namespace {

using TextMap = std::unordered_map<std::string_view, const char*>;

const TextMap& flagTexts() {
  static const TextMap texts = [] {
    TextMap all;
    for (const auto table : {interfaceFlagTexts(), layoutFlagTexts(), sceneFlagTexts(),
                             moreFlagTexts(), polygonFlagTexts()})
      for (const FlagText& each : table) all.emplace(each.flag, each.meaning);
    return all;
  }();
  return texts;
}

}  // namespace

void describeFlags(cmd::Command& command) {
  if (!command.builtin()) return;
  const TextMap& texts = flagTexts();
  std::map<std::string, std::string, std::less<>> phrases;
  for (const cmd::FlagSpec& flag : command.builtin()->syntax.flags()) {
    auto found = texts.find(command.name() + "." + flag.longName);
    if (found == texts.end()) found = texts.find(flag.longName);
    if (found != texts.end()) phrases.emplace(flag.longName, found->second);
  }
  command.describe({}, phrases);
}

void describeCommands(cmd::CommandRegistry& registry) {
  for (const ui::ControlType& type : ui::controlTypes())
    if (cmd::Command* command = registry.findBuiltin(type.name))
      command->describe(aboutControl(type), {});
  for (const CommandText& text : kTexts)
    if (cmd::Command* command = registry.findBuiltin(text.command))
      command->describe(text.about, {});
}

}  // namespace host::builtins
