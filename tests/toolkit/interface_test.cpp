// The toolkit's windows and menu as a person finds them.
#include <doctest/doctest.h>

#include "host/cmd/loop.h"
#include "host/ui/tree.h"
#include "host/workspace/workspace.h"
#include "tests/toolkit/toolkit_session.h"

namespace {

std::vector<std::string> listed(toolkitSession& toolkit, const std::string& mel) {
  const auto names = toolkit.session->executeLine(mel);
  REQUIRE(names.has_value());
  return names->toTexts();
}

/// Does what `act` says with each of the controls and returns what went wrong in the scripts
/// themselves: words that they spell wrong, not what a tool has to say about the selection.
std::string faultsOf(toolkitSession& toolkit, const std::vector<std::string>& controls) {
  std::string faults;
  for (const std::string& control : controls) {
    if (!host::workspace::workspaceOf(*toolkit.session).controls.find(control))
      continue;  // closed by an earlier one
    toolkit.run("if (`objExists shape`) delete shape; polyCube -n shape; select -r shape.vtx[0:3]");
    const host::MessageCapture said;
    static_cast<void>(toolkit.session->executeLine("uiGesture -press \"" + control + "\""));
    toolkit.session->loop().runIdle();
    const std::string errors = said.text(host::MessageKind::Error);
    for (const char* fault : {"yntax", "_QXMT_Proc\".", "Invalid flag", "Invalid arguments",
                              "Cannot convert", "Object '"})
      if (errors.find(fault) != std::string::npos) faults += control + ": " + errors;
  }
  return faults;
}

}  // namespace

TEST_CASE("every button and menu item runs a script that works") {
  toolkitSession toolkit;
  toolkit.run("polyCube -n shape; qx_modeling_tool_ui");
  std::vector<std::string> items;
  for (const std::string& item : listed(toolkit, "lsUI -l -mi"))
    if (item.find("qxToolkitMenu_QXMT") != std::string::npos) items.push_back(item);
  REQUIRE(items.size() > 10);
  std::string faults;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const auto isLeaf = toolkit.session->executeLine(
        "!`menuItem -q -d \"" + items[i] + "\"` && !`menuItem -q -sm \"" + items[i] + "\"`");
    if (isLeaf && isLeaf->toInt().value_or(0) != 0) faults += faultsOf(toolkit, {items[i]});
  }
  toolkit.run(
      "modelingWindow_QXMT_Proc; uvWindow_QXMT_Proc; straightenOptions_QXMT_Proc; "
      "smoothOptions_QXMT_Proc");
  const std::vector<std::string> buttons =
      listed(toolkit, "lsUI -l -type button -type checkBox -type radioButton");
  CHECK(buttons.size() > 30);
  faults += faultsOf(toolkit, buttons);
  CHECK_MESSAGE(faults.empty(), faults);
}

TEST_CASE("the menu lists a command as soon as the module has it") {
  toolkitSession toolkit;
  toolkit.run("qx_modeling_tool_ui");
  const auto has = [&](const std::string& label) {
    for (const std::string& item : listed(toolkit, "lsUI -l -mi")) {
      const auto found = toolkit.session->executeLine("menuItem -q -l \"" + item + "\"");
      if (found && found->toText().value_or("") == label) return true;
    }
    return false;
  };
  for (const char* label :
       {"Straighten", "Circle", "Make Planar", "Snap to Mirror Plane", "Merge to Last"}) {
    CAPTURE(label);
    CHECK(has(label));
  }
  const bool hasMarking =
      toolkit.session->executeLine("exists qxMarkUVInformation")->toInt().value_or(0) != 0;
  CHECK(has("Mark Seams") == hasMarking);
}

TEST_CASE("the straighten options are used by button and menu, and kept") {
  toolkitSession toolkit;
  toolkit.run(
      "polyPlane -sx 2 -sy 1 -w 2 -h 1 -n shape; move -r 0 0.2 0 shape.vtx[1]; "
      "straightenOptions_QXMT_Proc;"
      "uiGesture -set \"y\" straightenKeep_QXMT_OM; select shape.vtx[0:2]; straighten_QXMT_Proc");
  CHECK(toolkitSession::points("shape")[1].y == doctest::Approx(0.2));
  toolkit.run("deleteUI straightenOptions_QXMT; straightenOptions_QXMT_Proc");
  CHECK(toolkit.session->executeLine("optionMenuGrp -q -v straightenKeep_QXMT_OM")
            ->toText()
            .value() == "y");
  toolkit.run(
      "uiGesture -set \"all\" straightenKeep_QXMT_OM; uiGesture -press "
      "straightenOptions_QXMT_ApplyClose_B");
  CHECK(std::abs(toolkitSession::points("shape")[1].y) < 1e-6);
  CHECK(toolkit.session->executeLine("window -ex straightenOptions_QXMT")->toInt().value() == 0);
}

TEST_CASE("the smooth set and the UV group are made once, and the selection stays") {
  toolkitSession toolkit;
  toolkit.run(
      "polyPlane -n shape; select -r shape; createUvGroup_QXMT_Proc; createUvGroup_QXMT_Proc; "
      "createSmoothSet_QXMT_Proc; createSmoothSet_QXMT_Proc");
  CHECK(listed(toolkit, "ls -sl") == std::vector<std::string>{"shape"});
  CHECK(listed(toolkit, "ls \"uvGroup_QXMT*\" \"qxTSmoothObjectsSet*\"").size() == 2);
}

TEST_CASE("Merge to Last merges to the vertex that was picked last, not to the highest") {
  toolkitSession toolkit;
  toolkit.run(
      "qx_modeling_tool_ui; modelingWindow_QXMT_Proc; polyPlane -sx 4 -sy 1 -n shape; select -r "
      "shape.vtx[3]; select -add shape.vtx[4]; select -add shape.vtx[1];");
  const MPoint last = toolkitSession::points("shape")[1];
  toolkit.run("uiGesture -press qxMergeVerts_Merge_to_Last_QXMT_B");
  const MPointArray after = toolkitSession::points("shape");
  CHECK(after.length() == 8);
  CHECK(after[1].isEquivalent(last, 1e-6));
  toolkit.run("undo");
  CHECK(toolkitSession::points("shape").length() == 10);
}

TEST_CASE("the Smooth button uses its options, and only meshes that were smoothed enter the set") {
  toolkitSession toolkit;
  const host::MessageCapture quiet;
  toolkit.run(
      "modelingWindow_QXMT_Proc; smoothOptions_QXMT_Proc; uiGesture -set 2 "
      "smoothDivisions_QXMT_IS; "
      "polyCube -n shape; createNode transform -n group1; select -r shape group1; uiGesture -press "
      "qxESmoothCmd_Smooth_QXMT_B");
  CHECK(MFnMesh(toolkitSession::path("shape1")).numPolygons() == 6 * 4 * 4 * 4 * 4);
  CHECK(listed(toolkit, "sets -q qxTSmoothObjectsSet") == std::vector<std::string>{"shape"});
}

TEST_CASE("a slide object survives the window being built anew; clearing forgets it") {
  toolkitSession toolkit;
  toolkit.run(
      "modelingWindow_QXMT_Proc; uiGesture -press enable_slide_soft_select_QXMT_CB; polyCube -n "
      "shape; select -r shape; uiGesture -press loadSlideObject_QXMT_B; modelingWindow_QXMT_Proc");
  const auto shown = [&] {
    return toolkit.session->executeLine("textField -q -tx add_static_slide_object_QXMT_TF")
        ->toText()
        .value();
  };
  CHECK(shown() == "shape");
  toolkit.run("rename shape other");
  toolkit.session->loop().runIdle();
  CHECK(shown() == "other");
  toolkit.run("uiGesture -press clearSlideObject_QXMT_B");
  CHECK(shown() == "Load Object, or slide on itself");
  // One that goes with its scene is not found again in another object of its name.
  toolkit.run("select -r other; uiGesture -press loadSlideObject_QXMT_B; file -f -new");
  toolkit.run("polyCube -n other");
  toolkit.session->loop().runIdle();
  CHECK(shown() == "Load Object, or slide on itself");
}
