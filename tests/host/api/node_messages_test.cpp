#include <doctest/doctest.h>
#include <maya/MDGMessage.h>
#include <maya/MDagModifier.h>
#include <maya/MFnDagNode.h>
#include <maya/MItDag.h>
#include <maya/MModelMessage.h>
#include <maya/MTimerMessage.h>
#include <maya/MUserEventMessage.h>

#include <algorithm>
#include <string>
#include <vector>

#include "host/api/message/callbacks.h"
#include "host/api/session/host_session.h"

using namespace host;

namespace {

std::vector<std::string>& heard() {
  static std::vector<std::string> all;
  return all;
}
void onAdded(MObject& node, void*) {
  heard().push_back(MFnDagNode(node).fullPathName().asChar());
}
void onSelection(void*) {
  heard().push_back("selection");
}
void onUser(void* data) {
  heard().push_back(*static_cast<std::string*>(data));
}
void onTimer(float elapsed, float, void*) {
  heard().push_back(std::to_string(static_cast<int>(elapsed * 10)));
}

}  // namespace

TEST_CASE("messages: nodes with their place, selection, user events and stepped timers, in order") {
  const auto session = api::makeHostSession();
  heard().clear();
  MCallbackIdArray ids;
  ids.append(MDGMessage::addNodeAddedCallback(onAdded, "transform"));
  ids.append(MModelMessage::addCallback(MModelMessage::kActiveListModified, onSelection));
  REQUIRE(
      session->executeLine("createNode transform -n outer; select -cl; createNode transform -n low "
                           "-p outer; select -cl"));
  REQUIRE(heard().size() >= 2);
  CHECK(heard().front() == "|outer");
  CHECK(std::find(heard().begin(), heard().end(), "|outer|low") >
        std::find(heard().begin(), heard().end(), "selection"));

  heard().clear();
  std::string text = "posted";
  CHECK(MUserEventMessage::postUserEvent("mine", &text) == MS::kFailure);
  CHECK(MUserEventMessage::registerUserEvent("mine"));
  ids.append(MUserEventMessage::addUserEventCallback("mine", onUser));
  CHECK(MUserEventMessage::postUserEvent("mine", &text));

  double now = 100;
  session->loop().setClock([&now] { return now; });
  ids.append(MTimerMessage::addTimerCallback(0.5f, onTimer));
  session->loop().step();
  now += 0.6;
  session->loop().step();
  session->loop().step();
  now += 0.7;
  session->loop().step();
  CHECK(heard() == std::vector<std::string>{"posted", "6", "7"});
  CHECK(MMessage::removeCallbacks(ids));
  now += 5;
  session->loop().step();
  CHECK(heard().size() == 3);
}

TEST_CASE("messages: before and after copies are made, once a command") {
  const auto session = api::makeHostSession();
  const auto note = [](void* what) { heard().push_back(static_cast<const char*>(what)); };
  char before[] = "before", after[] = "after";
  MCallbackIdArray ids;
  ids.append(MModelMessage::addBeforeDuplicateCallback(note, before));
  ids.append(MModelMessage::addAfterDuplicateCallback(note, after));
  heard().clear();
  REQUIRE(session->executeLine("polyCube -n a; duplicate a a; select -cl"));
  CHECK(heard() == std::vector<std::string>{"before", "after"});
  heard().clear();
  CHECK_FALSE(session->executeLine("duplicate"));
  CHECK(heard().empty());
  CHECK(MMessage::removeCallbacks(ids));
}

TEST_CASE("hierarchy modifier: places nodes, moves them, and takes all back") {
  const auto session = api::makeHostSession();
  scene::Document& document = session->document();
  const auto before = document.hash();
  MDagModifier modifier;
  const MObject top = modifier.createNode("transform");
  const MObject low = modifier.createNode("transform", top);
  const MObject other = modifier.createNode("transform");
  modifier.renameNode(other, "other");
  modifier.reparentNode(low, other);
  REQUIRE(modifier.doIt());
  const auto after = document.hash();
  CHECK(MFnDagNode(low).fullPathName() == (MString("|other|") + MFnDagNode(low).name()));
  CHECK(modifier.undoIt());
  CHECK(document.hash() == before);
  CHECK(modifier.doIt());
  CHECK(document.hash() == after);
  unsigned int found = 0;
  for (MItDag walk(MItDag::kDepthFirst, MFn::kTransform); !walk.isDone(); walk.next())
    found += walk.currentItem() == low ? walk.depth() : 0;
  CHECK(found == 2);
}
