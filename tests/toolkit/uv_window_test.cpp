#include <algorithm>
#include <set>

#include "tests/toolkit/toolkit_session.h"

// The UV window from top to bottom: what every button does, and when it can be pressed.

namespace {

struct uvWindow : toolkitSession {
  uvWindow() {
    run("uvWindow_QXMT_Proc; polyCube -n box -ch 0; polyAutoProjection -ch 0 box.f[*]; select -cl");
  }
  std::string asked(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->resultText();
  }
  std::string uvs() { return asked("polyEditUV -q box.map[*]"); }
  std::string shells() { return asked("polyEvaluate -uvShell box"); }
  bool can(const std::string& button) {
    run("updateUvWindow_QXMT_Proc");
    return asked("button -q -en " + button + "_QXMT_B") == "1";
  }
  /// Presses a button that must be one that can be pressed now.
  void press(const std::string& button) {
    CAPTURE(button);
    CHECK(can(button));
    run("uiGesture -press " + button + "_QXMT_B");
    pressed.insert(button + "_QXMT_B");
  }
  std::string marks(const char* list) { return asked(std::string("getAttr boxShape.") + list); }

  std::set<std::string> pressed;
};

}  // namespace

TEST_CASE("the UV window: every button does its work, and is grey while it can't") {
  uvWindow window;
  const host::MessageCapture quiet;
  for (const std::string& button : window.session->executeLine("lsUI -type button")->toTexts()) {
    CAPTURE(button);
    CHECK(window.asked("button -q -en " + button) == "0");  // nothing is selected
  }
  window.run("select -r box");
  window.press("qxLoadUvObjectForMarking_Load_for_Marking");
  CHECK(window.asked("attributeQuery -n boxShape -ex qxUvMarkedEdgeArray") == "1");
  CHECK_FALSE(window.can("qxLoadUvObjectForMarking_Load_for_Marking"));
  CHECK_FALSE(window.can("markEdges"));
  window.press("uvSelectContext_Select");
  CHECK(window.asked("contextInfo -t `currentCtx`") == "Uv Select Tool");
  window.run("setToolTo selectSuperContext; select -r box.e[1] box.e[4]");
  CHECK_FALSE(window.can("setAncorPoint"));
  window.press("markEdges");
  CHECK(window.marks("qxUvMarkedEdgeArray") == "1 4");
  window.run("select -r box.e[4]");
  window.press("unMarkEdges");
  CHECK(window.marks("qxUvMarkedEdgeArray") == "1");
  window.run("select -r box.vtx[2:3]");
  window.press("setAncorPoint");
  CHECK(window.marks("qxUvAncorPointArray") == "2 3");
  window.run("select -r box.vtx[2]");
  window.press("removeAncorPoint");
  CHECK(window.marks("qxUvAncorPointArray") == "3");

  window.run("select -r box; floatField -e -v 2 uvRatio_QXMT_FF");
  std::string before = window.uvs();
  window.press("uvRatio");
  CHECK(window.uvs() != before);
  before = window.uvs();
  window.press("uvRatio");
  CHECK(window.uvs() == before);  // the ratio is there already
  window.run("polyEditUV -su 0.5 -sv 0.5 box.map[0:3]; select -r box.e[0:11]");
  before = window.uvs();
  window.press("scaleMoveSewCmd_Match_Seam");
  CHECK(window.uvs() != before);
  const std::string pieces = window.shells();
  window.run("select -r box.e[1]");
  window.press("scaleMoveSewCmd_Sew_Seam");
  CHECK(std::stoi(window.shells()) < std::stoi(pieces));

  window.run("select -r box; DeleteHistory");
  before = window.uvs();
  window.press("qxAutoUnwrap_Unwrap_Straight");
  CHECK(window.uvs() != before);
  before = window.uvs();
  window.press("qxAutoUnwrap_Unwrap");
  CHECK(window.uvs() != before);

  window.run("duplicate -n other box; string $known[] = `ls -type mesh`; select -r box");
  window.press("buildUVObject");
  CHECK(window.asked("size(`ls -type uvEditNode`)") == "1");
  window.run(
      "string $made; for ($mesh in stringArrayRemove($known, `ls -type mesh`)) if (!`getAttr "
      "($mesh + "
      "\".intermediateObject\")`) $made = $mesh; select -r ($made + \".vtx[0:1]\")");
  window.press("setPinValues");
  CHECK(window.asked("ls -sl").empty());
  window.run("select -r $made");
  CHECK(window.asked("size(`qxPinVertsCmd -q`)") != "0");
  window.run("select -r ($made + \".vtx[0]\")");
  window.press("qxPinVertsCmd_Unpin_Selected");
  CHECK(window.asked("qxPinVertsCmd -q").find("vtx[1]") != std::string::npos);
  window.press("unPinValues");
  CHECK(window.asked("qxPinVertsCmd -q").empty());
  before = window.uvs();
  window.run("floatField -e -v 0.25 tweakU_QXMT_FF; select -r ($made + \".vtx[2]\")");
  window.press("tweakUvs");
  CHECK(window.uvs() != before);
  window.press("tweakUvBrushContext_Tweak");
  CHECK(window.asked("contextInfo -t `currentCtx`") == "Tweak UV Brush");
  window.press("moveRotateScaleUVBrushContext_Move_Rotate_Scale");
  CHECK(window.asked("contextInfo -t `currentCtx`") == "Move Rotate Scale UV Brush");
  window.run("setToolTo selectSuperContext");
  window.run("select -r other");
  window.press("addUVNodeMessageCmd_Connect_UV_Node");
  CHECK(window.asked("size(`ls -type uvEditNode`)") == "1");
  CHECK(window.asked("size(`listRelatives -c uvGroup_QXMT`)") == "4");

  window.run("select -r box");
  window.press("qxLoadUvObjectForMarking_Unload");
  CHECK(window.asked("attributeQuery -n boxShape -ex qxUvMarkedEdgeArray") == "0");
  CHECK_FALSE(window.can("qxLoadUvObjectForMarking_Unload"));

  for (const std::string& button : window.session->executeLine("lsUI -type button")->toTexts()) {
    CAPTURE(button);
    CHECK(window.pressed.contains(button));
  }
}
