// What callbacks of one node hear, when they stop hearing it, and what they may do meanwhile.
#include <maya/MCallbackIdArray.h>
#include <maya/MDGModifier.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MNodeMessage.h>
#include <maya/MPlug.h>
#include <maya/MPolyMessage.h>

#include "host/base/messages.h"
#include "host/cmd/loop.h"
#include "tests/host/api/api_scene.h"

namespace {

std::string heard;

std::string said() {
  return std::exchange(heard, {});
}

std::string leafOf(const MPlug& plug) {
  return plug.isNull() ? "" : plug.partialName(false, true, true, false, false, true).asChar();
}

/// One word a message, with the plug and, for connections, the plug at the other end.
void onAttribute(MNodeMessage::AttributeMessage message, MPlug& plug, MPlug& other, void*) {
  const std::pair<int, const char*> words[] = {{MNodeMessage::kAttributeSet, "set"},
                                               {MNodeMessage::kConnectionMade, "made"},
                                               {MNodeMessage::kConnectionBroken, "broken"},
                                               {MNodeMessage::kAttributeLocked, "locked"},
                                               {MNodeMessage::kAttributeUnlocked, "unlocked"},
                                               {MNodeMessage::kAttributeAdded, "added"},
                                               {MNodeMessage::kAttributeRemoved, "removed"},
                                               {MNodeMessage::kAttributeArrayAdded, "grown"},
                                               {MNodeMessage::kAttributeArrayRemoved, "shrunk"}};
  for (const auto& [bit, word] : words) {
    if (!(message & bit)) continue;
    heard += std::string(word) + (message & MNodeMessage::kIncomingDirection ? "<" : ":") +
             leafOf(plug) + (other.isNull() ? "" : "=" + std::string(other.name().asChar())) + " ";
  }
}
void onDirtyPlug(MObject&, MPlug& plug, void*) {
  heard += "dirty:" + leafOf(plug) + " ";
}
void onNode(MObject& node, void* data) {
  heard += std::string(static_cast<const char*>(data)) + ":" +
           MFnDependencyNode(node).name().asChar() + " ";
}
void onRename(MObject& node, const MString& old, void*) {
  heard += std::string(old.asChar()) + ">" + MFnDependencyNode(node).name().asChar() + " ";
}
void onEnd(void* data) {
  heard += std::string(static_cast<const char*>(data)) + " ";
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene,
                  "attribute callbacks: values, locks, elements and both ends of connections") {
  run("createNode transform -n a; createNode transform -n b; createNode polyCube -n c;"
      "addAttr -ln list -at double -m a;");
  MObject a = node("a"), b = node("b");
  MCallbackIdArray ids;
  ids.append(MNodeMessage::addAttributeChangedCallback(a, onAttribute));
  said();
  run("setAttr a.tx 2");
  CHECK(said() == "set:translateX ");
  run("setAttr b.tx 2");
  CHECK(said().empty());
  run("setAttr -l 1 a.ty; setAttr -l 0 a.ty");
  CHECK(said() == "locked:translateY unlocked:translateY ");
  run("connectAttr a.tx b.ty");
  CHECK(said() == "made:translateX=b.translateY ");
  run("disconnectAttr a.tx b.ty");
  CHECK(said() == "broken:translateX=b.translateY ");
  run("connectAttr b.ty a.tz");
  CHECK(said() == "made<translateZ=b.translateY ");
  run("setAttr a.list[3] 5");
  CHECK(said() == "grown:list[3] set:list[3] ");
  MDGModifier modifier;
  const MPlug list = MFnDependencyNode(a).findPlug("list", true);
  modifier.removeMultiInstance(list.elementByLogicalIndex(3), true);
  REQUIRE(modifier.doIt());
  CHECK(said() == "shrunk:list[3] ");
  REQUIRE(modifier.undoIt());
  CHECK(said().find("grown:list[3]") != std::string::npos);

  MCallbackIdArray mine;
  CHECK(MMessage::nodeCallbacks(a, mine));
  CHECK(mine.length() == 1);
  CHECK(mine[0] == ids[0]);
  CHECK(MMessage::nodeCallbacks(b, mine));
  CHECK(mine.length() == 0);
  CHECK(MMessage::removeCallback(ids[0]));
  CHECK_FALSE(MMessage::removeCallback(ids[0]));
  run("setAttr a.tx 3");
  CHECK(said().empty());
  MStatus status;
  MObject none;
  CHECK(MNodeMessage::addNodeDirtyCallback(none, onNode, nullptr, &status) == 0);
  CHECK_FALSE(status);
  CHECK(MNodeMessage::addAttributeChangedCallback(a, nullptr, nullptr, &status) == 0);
  CHECK_FALSE(status);
}

TEST_CASE_FIXTURE(ApiScene, "attribute callbacks: a set by undo and redo is told of too") {
  run("createNode transform -n a; setAttr a.tx 1;");
  MObject a = node("a");
  const MCallbackId id = MNodeMessage::addAttributeChangedCallback(a, onAttribute);
  run("setAttr a.tx 5");
  said();
  run("undo");
  CHECK(said() == "set:translateX ");
  run("redo");
  CHECK(said() == "set:translateX ");
  MFnNumericAttribute number;
  const MCallbackId added = MNodeMessage::addAttributeAddedOrRemovedCallback(a, onAttribute);
  run("addAttr -ln weight -at double a");
  CHECK(said().find("added:weight") != std::string::npos);
  run("deleteAttr a.weight");
  CHECK(said().find("removed:weight") != std::string::npos);
  MCallbackIdArray both;
  both.append(id);
  both.append(added);
  CHECK(MMessage::removeCallbacks(both));
}

TEST_CASE_FIXTURE(ApiScene,
                  "dirty callbacks follow the flow of values once, until the value is asked for") {
  run("createNode transform -n a; createNode transform -n b; connectAttr a.tx b.ty;"
      "polyCube -n box; getAttr b.ty; getAttr boxShape.outMesh;");
  MObject b = node("b"), shape = node("boxShape");
  char topology[] = "topology";
  MCallbackIdArray ids;
  ids.append(MNodeMessage::addNodeDirtyPlugCallback(b, onDirtyPlug));
  ids.append(MPolyMessage::addPolyTopologyChangedCallback(shape, onNode, topology));
  said();
  run("setAttr a.tx 4");
  CHECK(said().find("dirty:translateY ") != std::string::npos);
  CHECK(text("getAttr b.ty") == "4");
  said();
  run("setAttr a.ty 4");
  CHECK(said().empty());
  run("setAttr polyCube1.sw 3");
  CHECK(said().find("topology:boxShape") != std::string::npos);
  CHECK(MMessage::removeCallbacks(ids));
}

TEST_CASE_FIXTURE(ApiScene,
                  "names and ends: renames by hand and by undo, deletion, and the real end") {
  run("createNode transform -n a; createNode transform -n b;");
  MObject a = node("a"), b = node("b"), all;
  char before[] = "before", gone[] = "gone";
  MCallbackIdArray ids;
  ids.append(MNodeMessage::addNameChangedCallback(a, onRename));
  ids.append(MNodeMessage::addNodePreRemovalCallback(a, onNode, before));
  ids.append(MNodeMessage::addNodeDestroyedCallback(a, onEnd, gone));
  said();
  run("rename a other; rename b else");
  CHECK(said() == "a>other ");
  run("undo");
  CHECK(said() == "other>a ");
  run("delete a");
  CHECK(said() == "before:a ");
  run("undo");
  session->loop().step();
  CHECK(said().empty());
  run("delete a; flushUndo");
  CHECK(said() == "before:a ");
  a = MObject();
  session->loop().step();
  CHECK(said() == "gone ");
  session->loop().step();
  CHECK(said().empty());
  ids.clear();
  ids.append(MNodeMessage::addNameChangedCallback(all, onRename));
  run("rename b c");
  CHECK(said() == "b>c ");
  CHECK(MMessage::removeCallbacks(ids));
}

namespace {

void sweepUp(MObject& node, MDGModifier& modifier, void*) {
  heard += "sweep ";
  MFnDependencyNode fn(node);
  modifier.newPlugValueDouble(MFnDependencyNode(ApiScene::node("keeper")).findPlug("tx", true), 9);
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene, "a node that goes may take others along; undo gives all back") {
  run("createNode transform -n keeper; createNode transform -n a; setAttr keeper.tx 1;");
  MObject a = node("a");
  const MCallbackId id = MNodeMessage::addNodeAboutToDeleteCallback(a, sweepUp);
  const std::size_t before = session->document().hash();
  said();
  run("delete a");
  CHECK(said() == "sweep ");
  CHECK(text("getAttr keeper.tx") == "9");
  const std::size_t after = session->document().hash();
  run("undo");
  CHECK(session->document().hash() == before);
  said();
  run("redo");
  CHECK(session->document().hash() == after);
  run("undo");
  // Taking back the making of a node is no deletion.
  run("createNode transform -n late");
  MObject late = node("late");
  const MCallbackId other = MNodeMessage::addNodeAboutToDeleteCallback(late, sweepUp);
  said();
  run("undo");
  CHECK(said().empty());
  CHECK(MMessage::removeCallback(id));
  CHECK(MMessage::removeCallback(other));
}

namespace {

void takeKeeper(MObject&, MDGModifier& modifier, void*) {
  MSelectionList list;
  MObject keeper;
  if (!list.add("keeper") || !list.getDependNode(0, keeper)) return;  // gone before this one
  heard += "take ";
  modifier.deleteNode(keeper);
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene, "a node that is to go may be taken earlier by another one's callback") {
  run("createNode transform -n keeper; createNode transform -n a; connectAttr a.tx keeper.ty;");
  MObject a = node("a");
  const MCallbackId id = MNodeMessage::addNodeAboutToDeleteCallback(a, takeKeeper);
  const std::size_t before = session->document().hash();
  said();
  run("delete a");
  CHECK(said() == "take ");
  CHECK(text("objExists keeper") == "0");
  run("undo");
  CHECK(session->document().hash() == before);
  for (const char* both : {"delete a keeper", "delete keeper a"}) {
    CAPTURE(std::string(both));
    run(both);
    CHECK(text("objExists keeper") == "0");
    CHECK(text("objExists a") == "0");
    run("undo");
    CHECK(session->document().hash() == before);
  }
  CHECK(MMessage::removeCallback(id));
}

namespace {

MCallbackId first = 0, second = 0;

void removeSelf(MNodeMessage::AttributeMessage, MPlug&, MPlug&, void*) {
  heard += "self ";
  CHECK(MMessage::currentCallbackId() == first);
  CHECK(MMessage::removeCallback(first));
  CHECK(MMessage::removeCallback(second));
}
void neverHeard(MNodeMessage::AttributeMessage, MPlug&, MPlug&, void*) {
  heard += "second ";
}
void follow(MNodeMessage::AttributeMessage message, MPlug& plug, MPlug&, void*) {
  if (!(message & MNodeMessage::kAttributeSet) || leafOf(plug) != "translateX") return;
  heard += "follow ";
  CHECK(MFnDependencyNode(plug.node()).findPlug("ty", true).setDouble(2 * plug.asDouble()));
}
void explode(MNodeMessage::AttributeMessage, MPlug&, MPlug&, void*) {
  throw 7;
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene,
                  "callbacks may remove themselves and others, edit the scene, and fail") {
  run("createNode transform -n a");
  MObject a = node("a");
  first = MNodeMessage::addAttributeChangedCallback(a, removeSelf);
  second = MNodeMessage::addAttributeChangedCallback(a, neverHeard);
  said();
  run("setAttr a.tx 1; setAttr a.tx 2");
  CHECK(said() == "self ");
  CHECK(MMessage::currentCallbackId() == 0);

  const MCallbackId editing = MNodeMessage::addAttributeChangedCallback(a, follow);
  run("setAttr a.tx 5");
  CHECK(said() == "follow ");
  CHECK(text("getAttr a.ty") == "10");
  run("undo");
  CHECK(text("getAttr a.tx") == "2");
  CHECK(text("getAttr a.ty") == "4");
  CHECK(MMessage::removeCallback(editing));

  const host::MessageCapture messages;
  const MCallbackId failing = MNodeMessage::addAttributeChangedCallback(a, explode);
  run("setAttr a.tx 6");
  CHECK(text("getAttr a.tx") == "6");
  CHECK(messages.text(host::MessageKind::Error).find("exception") != std::string::npos);
  CHECK(MMessage::removeCallback(failing));
}
