// A plug-in whose author did not think of undo, of unloading, or of where it all ends: it takes
// itself out while it runs, deletes what others work on, and answers every change with another.
#include <maya/MDGMessage.h>
#include <maya/MDGModifier.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MNodeMessage.h>
#include <maya/MPlug.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>

#include <cstdlib>

namespace {

MCallbackIdArray registered;

MObject nodeNamed(const MString& name) {
  MSelectionList list;
  MObject node;
  if (list.add(name)) list.getDependNode(0, node);
  return node;
}

void onAttribute(MNodeMessage::AttributeMessage message, MPlug& plug, MPlug&, void*) {
  if (message & MNodeMessage::kAttributeSet) plug.setDouble(plug.asDouble() + 1);
}
void onRemoved(MObject& node, void*) {
  MFnDependencyNode fn(node);
  const MPlug plug = fn.findPlug("translateX", true);
  MGlobal::displayInfo(MString("leaves: ") + fn.name() + " " + plug.asDouble());
}
void onAdded(MObject& node, void*) {
  MGlobal::displayInfo(MString("comes: ") + MFnDependencyNode(node).name());
}

/// careless unload | delete NAME | answer NAME | listen | modifier
class CarelessCommand : public MPxCommand {
 public:
  static void* creator() { return new CarelessCommand; }
  bool isUndoable() const override { return true; }
  MStatus doIt(const MArgList& arguments) override {
    const MString what = arguments.asString(0);
    MObject node = nodeNamed(arguments.asString(1));
    if (what == "unload") return MGlobal::executeCommand("unloadPlugin -f careless");
    if (what == "delete") return MGlobal::deleteNode(node);
    if (what == "answer")
      registered.append(MNodeMessage::addAttributeChangedCallback(node, onAttribute));
    if (what == "listen") {
      registered.append(MDGMessage::addNodeRemovedCallback(onRemoved, "transform"));
      registered.append(MDGMessage::addNodeAddedCallback(onAdded, "transform"));
    }
    if (what == "modifier") {
      MDGModifier modifier;
      modifier.createNode("polyCube");
      MGlobal::displayInfo("made");
      return modifier.doIt();
    }
    return MS::kSuccess;
  }
  /// Makes its nodes anew instead of bringing them back.
  MStatus redoIt() override { return MS::kSuccess; }
  MStatus undoIt() override { return MS::kSuccess; }
};

/// Makes a node in doIt and another one in redoIt.
class FreshCommand : public MPxCommand {
 public:
  static void* creator() { return new FreshCommand; }
  bool isUndoable() const override { return true; }
  MStatus doIt(const MArgList&) override { return redoIt(); }
  MStatus redoIt() override {
    return MGlobal::executeCommand(
        "createNode transform -n fresh; addAttr -ln extra -at double fresh");
  }
  MStatus undoIt() override { return MGlobal::executeCommand("delete fresh"); }
};

}  // namespace

MStatus initializePlugin(MObject object) {
  MFnPlugin plugin(object, "test", "1.0", "Any");
  plugin.registerCommand("careless", CarelessCommand::creator);
  plugin.registerCommand("freshNode", FreshCommand::creator);
  if (std::getenv("QXMT_TEST_SELF_UNLOAD")) MGlobal::executeCommand("unloadPlugin -f careless");
  return MS::kSuccess;
}

MStatus uninitializePlugin(MObject object) {
  MMessage::removeCallbacks(registered);
  registered.clear();
  MFnPlugin plugin(object);
  plugin.deregisterCommand("careless");
  return plugin.deregisterCommand("freshNode");
}
