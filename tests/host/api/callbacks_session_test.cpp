// What callbacks hear of the graph, the hierarchy, the selection, conditions, events and time.
#include <maya/MAnimControl.h>
#include <maya/MCallbackIdArray.h>
#include <maya/MConditionMessage.h>
#include <maya/MDGMessage.h>
#include <maya/MDagMessage.h>
#include <maya/MEventMessage.h>
#include <maya/MFileIO.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MGlobal.h>
#include <maya/MModelMessage.h>
#include <maya/MPlug.h>
#include <maya/MSceneMessage.h>
#include <maya/MTime.h>
#include <maya/MTimerMessage.h>
#include <maya/MUserEventMessage.h>

#include <algorithm>

#include "host/api/message/callbacks.h"
#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

std::string heard;

std::string said() {
  return std::exchange(heard, {});
}

void onNode(MObject& node, void* data) {
  heard +=
      std::string(static_cast<const char*>(data)) + MFnDependencyNode(node).name().asChar() + " ";
}
void onConnection(MPlug& source, MPlug& destination, bool made, void*) {
  heard +=
      std::string(source.name().asChar()) + (made ? ">" : "|") + destination.name().asChar() + " ";
}
void onHierarchy(MDagMessage::DagMessage message, MDagPath& child, MDagPath& parent, void*) {
  static const char* const kWords[] = {"parent+", "parent-",   "child+",   "child-",
                                       "order",   "instance+", "instance-"};
  heard += std::string(kWords[message]) + " " + child.fullPathName().asChar() + " under " +
           parent.fullPathName().asChar() + "; ";
}
void onWord(void* data) {
  heard += std::string(static_cast<const char*>(data)) + " ";
}
void onState(bool state, void*) {
  heard += state ? "yes " : "no ";
}
void onTime(MTime& time, void*) {
  heard += "t" + std::to_string(static_cast<int>(time.value())) + " ";
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene,
                  "graph callbacks: nodes of a type come and go, by commands, undo and redo") {
  char plus[] = "+", minus[] = "-";
  MCallbackIdArray ids;
  ids.append(MDGMessage::addNodeAddedCallback(onNode, "mesh", plus));
  ids.append(MDGMessage::addNodeRemovedCallback(onNode, "mesh", minus));
  said();
  run("polyCube -n box");
  CHECK(said() == "+boxShape ");
  run("undo");
  CHECK(said() == "-boxShape ");
  run("redo");
  CHECK(said() == "+boxShape ");
  run("delete box");
  CHECK(said() == "-boxShape ");
  run("createNode transform");
  CHECK(said().empty());
  MStatus status;
  CHECK(MDGMessage::addNodeAddedCallback(onNode, "noSuchType", plus, &status) == 0);
  CHECK_FALSE(status);
  CHECK(MMessage::removeCallbacks(ids));
  run("undo; undo");
  CHECK(said().empty());
}

TEST_CASE_FIXTURE(ApiScene, "connection callbacks: source first, made, broken and restored") {
  run("createNode transform -n a; createNode transform -n b; createNode transform -n c;");
  const MCallbackId id = MDGMessage::addConnectionCallback(onConnection);
  said();
  run("connectAttr a.tx c.ty");
  CHECK(said() == "a.translateX>c.translateY ");
  run("connectAttr -f b.tx c.ty");
  CHECK(said() == "a.translateX|c.translateY b.translateX>c.translateY ");
  run("undo");
  CHECK(said() == "b.translateX|c.translateY a.translateX>c.translateY ");
  run("delete a");
  CHECK(said() == "a.translateX|c.translateY ");
  CHECK(MMessage::removeCallback(id));
}

TEST_CASE_FIXTURE(ApiScene,
                  "hierarchy callbacks: moving is no instancing, instances name their own place") {
  run("group -em -n g; group -em -n h; group -em -n box;");
  const MCallbackId id = MDagMessage::addAllDagChangesCallback(onHierarchy);
  said();
  run("parent box g");
  const std::string moved = said();
  CHECK(moved.find("parent+ |g|box under |g; ") != std::string::npos);
  CHECK(moved.find("child+ |g|box under |g; ") != std::string::npos);
  CHECK(moved.find("parent- ") != std::string::npos);
  CHECK(moved.find("instance") == std::string::npos);
  run("parent -add box h");
  CHECK(said().find("instance+ |h|box under |h; ") != std::string::npos);
  run("undo");
  CHECK(said().find("instance- ") != std::string::npos);
  run("delete box");
  const std::string deleted = said();
  CHECK(deleted.find("child- ") != std::string::npos);
  CHECK(deleted.find("instance") == std::string::npos);
  CHECK(MMessage::removeCallback(id));
}

TEST_CASE_FIXTURE(ApiScene,
                  "selection callbacks and conditions: told of changes and of nothing else") {
  run("group -em -n a; group -em -n b; select -cl;");
  char word[] = "selection", event[] = "event";
  MCallbackIdArray ids;
  ids.append(MModelMessage::addCallback(MModelMessage::kActiveListModified, onWord, word));
  ids.append(MEventMessage::addEventCallback("SelectionChanged", onWord, event));
  ids.append(MConditionMessage::addConditionCallback("SomethingSelected", onState));
  said();
  CHECK_FALSE(MConditionMessage::getConditionState("SomethingSelected"));
  run("select a");
  const std::string selected = said();
  CHECK(selected.find("selection ") != std::string::npos);
  CHECK(selected.find("event ") != std::string::npos);
  CHECK(selected.find("yes ") != std::string::npos);
  CHECK(MConditionMessage::getConditionState("SomethingSelected"));
  run("select b");
  CHECK(said().find("yes ") == std::string::npos);
  CHECK(MGlobal::clearSelectionList());
  CHECK(said().find("no ") != std::string::npos);
  run("createNode -ss transform; setAttr a.tx 3");
  CHECK(said().empty());

  MStatus status;
  CHECK(MEventMessage::addEventCallback("noSuchEvent", onWord, word, &status) == 0);
  CHECK_FALSE(status);
  CHECK(MConditionMessage::addConditionCallback("noSuchCondition", onState, nullptr, &status) == 0);
  CHECK_FALSE(MConditionMessage::getConditionState("noSuchCondition", &status));
  CHECK_FALSE(status);
  MStringArray names;
  MEventMessage::getEventNames(names);
  std::vector<std::string> events;
  for (unsigned int i = 0; i < names.length(); ++i) events.emplace_back(names[i].asChar());
  for (const char* each : {"SelectionChanged", "Undo", "Redo", "timeChanged", "SceneOpened"}) {
    CAPTURE(each);
    CHECK(std::find(events.begin(), events.end(), each) != events.end());
  }
  CHECK(MMessage::removeCallbacks(ids));
}

TEST_CASE_FIXTURE(ApiScene, "event callbacks: undo, redo, new scenes and idle turns") {
  char undo[] = "undo", redo[] = "redo", fresh[] = "new", idle[] = "idle";
  MCallbackIdArray ids;
  ids.append(MEventMessage::addEventCallback("Undo", onWord, undo));
  ids.append(MEventMessage::addEventCallback("Redo", onWord, redo));
  ids.append(MEventMessage::addEventCallback("NewSceneOpened", onWord, fresh));
  run("group -em -n a");
  said();
  run("undo");
  CHECK(said() == "undo ");
  run("redo");
  CHECK(said() == "redo ");
  run("file -f -new");
  CHECK(said() == "new ");
  ids.append(MEventMessage::addEventCallback("idle", onWord, idle));
  session->loop().step();
  CHECK(said() == "idle ");
  CHECK(MMessage::removeCallbacks(ids));
  session->loop().step();
  CHECK(said().empty());
}

TEST_CASE_FIXTURE(ApiScene, "time callbacks get the new time, by command and by the API") {
  const MCallbackId id = MDGMessage::addTimeChangeCallback(onTime);
  said();
  run("currentTime 7");
  CHECK(said() == "t7 ");
  CHECK(MAnimControl::setCurrentTime(MTime(12, MTime::uiUnit())));
  CHECK(said() == "t12 ");
  CHECK(MMessage::removeCallback(id));
}

namespace {

MCallbackId timer = 0;
int ticks = 0;

void tickThrice(float elapsed, float, void*) {
  heard += std::to_string(static_cast<int>(elapsed * 10 + 0.5f)) + " ";
  if (++ticks == 3) CHECK(MMessage::removeCallback(timer));
}
void onUser(void* data) {
  heard += data ? static_cast<const char*>(data) : "nothing";
}

}  // namespace

TEST_CASE_FIXTURE(
    ApiScene,
    "timers: not before their time, once however late, gone when they remove themselves") {
  double now = 10;
  session->loop().setClock([&now] { return now; });
  ticks = 0;
  timer = MTimerMessage::addTimerCallback(1.0f, tickThrice);
  said();
  now = 10.9;
  session->loop().step();
  CHECK(said().empty());
  now = 11;
  session->loop().step();
  CHECK(said() == "10 ");
  now = 16;
  session->loop().step();
  CHECK(said() == "50 ");
  now = 16.9;
  session->loop().step();
  CHECK(said().empty());
  now = 17.5;
  session->loop().step();
  now = 30;
  session->loop().step();
  CHECK(said() == "15 ");
  MStatus status;
  CHECK(MTimerMessage::addTimerCallback(-1, tickThrice, nullptr, &status) == 0);
  CHECK_FALSE(status);
}

TEST_CASE_FIXTURE(ApiScene,
                  "user events: own data first, posted data else, none after deregistration") {
  char own[] = "own ", posted[] = "posted ";
  REQUIRE(MUserEventMessage::registerUserEvent("mine"));
  CHECK_FALSE(MUserEventMessage::registerUserEvent("mine"));
  CHECK(MUserEventMessage::isUserEvent("mine"));
  MCallbackIdArray ids;
  ids.append(MUserEventMessage::addUserEventCallback("mine", onUser, own));
  ids.append(MUserEventMessage::addUserEventCallback("mine", onUser));
  said();
  CHECK(MUserEventMessage::postUserEvent("mine", posted));
  CHECK(said() == "own posted ");
  CHECK(MUserEventMessage::deregisterUserEvent("mine"));
  CHECK_FALSE(MUserEventMessage::deregisterUserEvent("mine"));
  CHECK_FALSE(MUserEventMessage::postUserEvent("mine", posted));
  MStatus status;
  CHECK(MUserEventMessage::addUserEventCallback("mine", onUser, own, &status) == 0);
  CHECK_FALSE(status);
  CHECK(said().empty());
  // One of the same name later is another event.
  REQUIRE(MUserEventMessage::registerUserEvent("mine"));
  CHECK(MUserEventMessage::postUserEvent("mine", posted));
  CHECK(said().empty());
  CHECK(MUserEventMessage::deregisterUserEvent("mine"));
}

namespace {

void refuse(bool* mayGoOn, void*) {
  *mayGoOn = false;
}
void agree(bool* mayGoOn, void*) {
  *mayGoOn = true;
}

}  // namespace

TEST_CASE_FIXTURE(ApiScene, "checks: one refusal stops opening, saving, importing and exporting") {
  const host::MessageCapture quiet;
  const MString file = QXMT_BINARY_DIR "/checked_scene.ma";
  run("polyCube -n box");
  REQUIRE(MFileIO::saveAs(file, "mayaAscii", true));
  run("polyCube -n other; setAttr other.tx 3;");
  const std::size_t before = session->document().hash();
  const std::pair<MSceneMessage::Message, const char*> checks[] = {
      {MSceneMessage::kBeforeNewCheck, "file -f -new"},
      {MSceneMessage::kBeforeOpenCheck, "file -f -open \"" QXMT_BINARY_DIR "/checked_scene.ma\""},
      {MSceneMessage::kBeforeSaveCheck, "file -f -save"},
      {MSceneMessage::kBeforeImportCheck, "file -import \"" QXMT_BINARY_DIR "/checked_scene.ma\""},
      {MSceneMessage::kBeforeExportCheck, "file -f -ea \"" QXMT_BINARY_DIR "/not_exported.ma\""}};
  for (const auto& [message, command] : checks) {
    const std::string line = command;
    CAPTURE(line);
    MCallbackIdArray ids;
    ids.append(MSceneMessage::addCheckCallback(message, refuse));
    ids.append(MSceneMessage::addCheckCallback(message, agree));
    CHECK_FALSE(session->executeLine(command).has_value());
    CHECK(session->document().hash() == before);
    CHECK(MMessage::removeCallbacks(ids));
  }
  CHECK(text("file -q -modified") == "1");
  run("file -f -save");
  CHECK(text("file -q -modified") == "0");
}
