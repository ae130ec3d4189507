// The controls that the compiled tools ask by name: there, at their first values, kept, and told
// apart from others.
#include <doctest/doctest.h>

#include <algorithm>
#include <set>

#include "host/ui/tree.h"
#include "plugin/registrationTable.h"
#include "tests/toolkit/toolkit_session.h"

namespace {

using Names = std::vector<std::string>;

std::string asked(const toolkitSession& toolkit, const std::string& mel) {
  const auto answer = toolkit.session->executeLine(mel);
  CAPTURE(mel);
  REQUIRE_MESSAGE(answer.has_value(), (answer ? std::string() : answer.error().message));
  return answer->resultText();
}

Names listed(const toolkitSession& toolkit, const std::string& mel) {
  const auto names = toolkit.session->executeLine(mel);
  REQUIRE(names.has_value());
  return names->toTexts();
}

constexpr const char* kOpenAll =
    "qx_modeling_tool_ui; modelingWindow_QXMT_Proc; uvWindow_QXMT_Proc; "
    "straightenOptions_QXMT_Proc; smoothOptions_QXMT_Proc";

struct Control {
  const char *command, *name, *query, *first, *other;  ///< `other`: what a person sets it to
};

/// The value that a query gives before anybody touched the window, and one that it can be given.
constexpr Control kControls[] = {
    {"checkBox", "multicomp_QXMT_CB", "-v", "1", "0"},
    {"intField", "intensity_QXMT_IF", "-v", "60", "11"},
    {"intField", "smoothIntensity_QXMT_IF", "-v", "20", "12"},
    {"intField", "smoothPush_QXMT_IF", "-v", "0", "13"},
    {"checkBox", "enable_slide_soft_select_QXMT_CB", "-v", "0", "1"},
    {"radioCollection", "normal_direction_QXMT_RB", "-sl", "normal_direction_vertex_QXMT_RB",
     "normal_direction_camera_QXMT_RB"},
    {"checkBox", "mirror_QXMT_CB", "-v", "1", "0"},
    {"checkBox", "lockAxis_QXMT_CB", "-v", "0", "1"},
    {"checkBox", "lockXAxis_QXMT_CB", "-v", "0", "1"},
    {"checkBox", "lockYAxis_QXMT_CB", "-v", "0", "1"},
    {"checkBox", "lockZAxis_QXMT_CB", "-v", "0", "1"},
    {"radioCollection", "mirror_QXMT_RB", "-sl", "mirrorX_QXMT_RB", "mirrorZ_QXMT_RB"},
    {"checkBox", "ignoreQuadDrawBackface_QXMT_CB", "-v", "1", "0"},
    {"radioCollection", "dragSelectType_QXMT_RB", "-sl", "dragSelectTypeNormal_QXMT_RB",
     "dragSelectTypePaint_QXMT_RB"},
    {"radioCollection", "mirrorSpace_QXMT_RB", "-sl", "objectSpace_QXMT_RB", "worldSpace_QXMT_RB"},
    {"intField", "smoothUvIntensity_QXMT_IF", "-v", "25", "14"},
    {"menuItem", "pinBorderEdges_QXMT_MI", "-cb", "0", "1"},
    {"menuItem", "fullShellCompressionColors_QXMT_MI", "-cb", "0", "1"},
};

std::string value(const toolkitSession& toolkit, const Control& control) {
  return asked(toolkit, std::string(control.command) + " -q " + control.query + " " + control.name);
}

/// As a person does it: a radio button is pressed, a box and a ticked item are pressed, a field is
/// typed into.
void setTo(toolkitSession& toolkit, const Control& control) {
  const std::string kind = control.command;
  if (kind == "intField")
    toolkit.run(std::string("uiGesture -set ") + control.other + " " + control.name);
  else
    toolkit.run(std::string("uiGesture -press ") +
                (kind == "radioCollection" ? control.other : control.name));
}

/// What the two windows keep of a text field: nothing of it is an option of the next session.
const std::string kNoObject = "Load Object, or slide on itself";

}  // namespace

TEST_CASE(
    "every control stands in its window with its first value, and is kept when the window opens "
    "again") {
  toolkitSession toolkit;
  for (const Control& control : kControls) {
    CAPTURE(control.name);
    CHECK(asked(toolkit, std::string(control.command) + " -ex " + control.name) ==
          "0");  // no window, no control
  }
  toolkit.run("modelingWindow_QXMT_Proc; uvWindow_QXMT_Proc");
  for (const Control& control : kControls) {
    CAPTURE(control.name);
    CHECK(value(toolkit, control) == control.first);
    const bool isKept = asked(toolkit, std::string("optionVar -ex ") + control.name) == "1";
    CHECK(isKept);
  }
  CHECK(asked(toolkit, "textField -q -tx add_static_slide_object_QXMT_TF") == kNoObject);
  CHECK(asked(toolkit, "textField -q -en add_static_slide_object_QXMT_TF") == "0");

  // The boxes that disable others go last.
  for (const Control& control : kControls)
    if (std::string(control.name) != "mirror_QXMT_CB" &&
        std::string(control.name) != "lockAxis_QXMT_CB" &&
        std::string(control.name).find("lock") != 0)
      setTo(toolkit, control);
  toolkit.run(
      "uiGesture -press lockAxis_QXMT_CB; uiGesture -press lockXAxis_QXMT_CB; uiGesture -press "
      "lockYAxis_QXMT_CB;"
      "uiGesture -press lockZAxis_QXMT_CB; uiGesture -press mirror_QXMT_CB");
  for (int round = 0; round < 2; ++round) {
    CAPTURE(round);
    for (const Control& control : kControls) {
      CAPTURE(control.name);
      CHECK(value(toolkit, control) == control.other);
    }
    // What hangs on a box that was kept off is off in a new window too.
    CHECK(asked(toolkit, "columnLayout -q -en mirrorOptions_QXMT_CL") == "0");
    CHECK(asked(toolkit, "rowLayout -q -en lockAxes_QXMT_RL") == "1");
    CHECK(asked(toolkit, "button -q -en loadSlideObject_QXMT_B") == "1");
    toolkit.run(
        "deleteUI -window qx_modeling_ui customUvWindow_QXMT; modelingWindow_QXMT_Proc; "
        "uvWindow_QXMT_Proc");
  }
  toolkit.run(
      "straightenOptions_QXMT_Proc; smoothOptions_QXMT_Proc; uiGesture -set \"xz\" "
      "straightenKeep_QXMT_OM;"
      "uiGesture -set 3 smoothDivisions_QXMT_IS; uiGesture -press checkForUpdatesOnLoad_QXMT_MI");
  CHECK(asked(toolkit, "shouldCheckForUpdatesOnLoad_QXMT_Proc") == "1");
  toolkit.run("uiGesture -press resetOptions_QXMT_MI");
  CHECK(asked(toolkit, "optionMenuGrp -q -v straightenKeep_QXMT_OM") == "all");
  CHECK(asked(toolkit, "intSliderGrp -q -v smoothDivisions_QXMT_IS") == "1");
  CHECK(asked(toolkit, "shouldCheckForUpdatesOnLoad_QXMT_Proc") == "0");
  CHECK(asked(toolkit, "menuItem -q -cb checkForUpdatesOnLoad_QXMT_MI") == "0");
  for (const Control& control : kControls) {
    CAPTURE(control.name);
    CHECK(value(toolkit, control) == control.first);
  }
}

TEST_CASE(
    "options outlive the module and a new scene; a kept value that makes no sense is replaced by "
    "the first one") {
  toolkitSession toolkit;
  toolkit.run(
      "modelingWindow_QXMT_Proc; uiGesture -set 77 intensity_QXMT_IF; uiGesture -press "
      "mirrorY_QXMT_RB");
  {
    const host::MessageCapture quiet;
    toolkit.run("unloadPlugin qxModelingToolkit; file -f -new; loadPlugin \"" QXMT_BINARY_DIR
                "/lib/qxModelingToolkit.so\"");
  }
  toolkit.run("modelingWindow_QXMT_Proc");
  CHECK(asked(toolkit, "intField -q -v intensity_QXMT_IF") == "77");
  CHECK(asked(toolkit, "radioCollection -q -sl mirror_QXMT_RB") == "mirrorY_QXMT_RB");
  toolkit.run(
      "optionVar -sv mirror_QXMT_RB \"gone_RB\" -iv intensity_QXMT_IF 5000 -sv smoothPush_QXMT_IF "
      "\"odd\" -iv multicomp_QXMT_CB 7;"
      "modelingWindow_QXMT_Proc");
  CHECK(asked(toolkit, "radioCollection -q -sl mirror_QXMT_RB") == "mirrorX_QXMT_RB");
  CHECK(asked(toolkit, "intField -q -v intensity_QXMT_IF") == "100");
  CHECK(asked(toolkit, "intField -q -v smoothPush_QXMT_IF") == "0");
  CHECK(asked(toolkit, "checkBox -q -v multicomp_QXMT_CB") == "1");
}

TEST_CASE(
    "every button, item, field and box says what it is for; names that scripts ask are there "
    "once") {
  toolkitSession toolkit;
  toolkit.run(kOpenAll);
  std::string unexplained;
  int explained = 0;
  for (const char* kind : {"button", "checkBox", "radioButton", "intField", "floatField",
                           "textField", "optionMenuGrp", "intSliderGrp"})
    for (const std::string& name : listed(toolkit, std::string("lsUI -l -type ") + kind)) {
      if (asked(toolkit, std::string(kind) + " -q -ann \"" + name + "\"").empty())
        unexplained += name + "\n";
      else
        ++explained;
    }
  for (const std::string& item : listed(toolkit, "lsUI -l -mi")) {
    const auto is = [&](const char* flag) {
      return asked(toolkit, std::string("menuItem -q ") + flag + " \"" + item + "\"") == "1";
    };
    if (item.find("QXMT") == std::string::npos || item.find("_OM") != std::string::npos) continue;
    if (is("-d") || is("-sm") || is("-ob")) continue;
    if (asked(toolkit, "menuItem -q -ann \"" + item + "\"").empty())
      unexplained += item + "\n";
    else
      ++explained;
  }
  CHECK_MESSAGE(unexplained.empty(), unexplained);
  CHECK(explained > 60);

  std::set<std::string> seen;
  for (const std::string& name : listed(toolkit, "lsUI -l -ctl -mi -cl")) {
    const std::string own = name.substr(name.rfind('|') + 1);
    if (own.find("_QXMT_") == std::string::npos) continue;
    CAPTURE(name);
    CHECK(seen.insert(own).second);
  }
  CHECK(seen.size() > 40);
}

TEST_CASE("every command and tool of the module can be had from the menu or a window") {
  toolkitSession toolkit;
  toolkit.run(kOpenAll);
  std::string scripts;
  for (const std::string& item : listed(toolkit, "lsUI -l -mi")) {
    if (item.find("qxToolkitMenu_QXMT") == std::string::npos) continue;
    scripts += asked(toolkit, "menuItem -q -c \"" + item + "\"") + "\n" +
               asked(toolkit, "menuItem -q -l \"" + item + "\"") + "\n";
  }
  // These stand behind a procedure or a message; their items are known by their labels.
  const std::vector<std::pair<std::string, std::string>> behind = {
      {"qxStraightenCmd", "straighten_QXMT_Proc"},
      {"qxMergeVerts", "mergeToLast_QXMT_Proc"},
      {"qxESmoothCmd", "smooth_QXMT_Proc"},
      {"qxBuildUVObject", "buildUvObject_QXMT_Proc"},
      {"qxMarkUVInformation", "markEdges"},
      {"qxPinVertsCmd", "setPinValues"},
      {"uvRatioCmd", "Set UV Ratio"},
      {"qxSetCommands", "checkForUpdates"}};
  // Run by tools and other commands, never by a person.
  const std::set<std::string> internal = {"uvRatio", "qxTweakUVVerts", "addUVNodeMessageCmd",
                                          "baseBrushContext"};
  int found = 0;
  for (unsigned int i = 0; i < kLoadRowCount; ++i) {
    const registrationRow& row = kLoadRows[i];
    if (!row.creator || (row.kind != rowKind::command && row.kind != rowKind::context) ||
        internal.contains(row.name))
      continue;
    std::string wanted = row.name;
    for (const auto& [command, script] : behind)
      if (command == wanted) wanted = script;
    CAPTURE(row.name);
    CHECK(scripts.find(wanted) != std::string::npos);
    ++found;
  }
  CHECK(found >= 10);
  // Items of commands that are not there would only fail.
  for (unsigned int i = 0; i < kLoadRowCount; ++i) {
    if (kLoadRows[i].creator || kLoadRows[i].kind != rowKind::command) continue;
    CAPTURE(kLoadRows[i].name);
    CHECK(scripts.find(std::string(kLoadRows[i].name) + " ") == std::string::npos);
  }
}

TEST_CASE("windows, menu, jobs and variables come and go with the module, however often") {
  toolkitSession toolkit;
  const auto state = [&] {
    Names all;
    for (const char* query :
         {"lsUI -wnd", "lsUI -m -mi", "lsUI -ctl -cl", "scriptJob -lj", "lsUI -type toolContext"}) {
      const auto names = toolkit.session->executeLine(query, {.postErrors = false});
      if (names)
        for (const std::string& name : names->toTexts()) all.push_back(name);
    }
    return all;
  };
  const host::MessageCapture quiet;
  toolkit.run("unloadPlugin qxModelingToolkit");
  const Names bare = state();
  const Names before = listed(toolkit, "optionVar -l");
  for (int round = 0; round < 3; ++round) {
    CAPTURE(round);
    const Names variables = listed(toolkit, "optionVar -l");
    toolkit.run("loadPlugin \"" QXMT_BINARY_DIR
                "/lib/qxModelingToolkit.so\"; loadPlugin \"" QXMT_BINARY_DIR
                "/lib/qxModelingToolkit.so\"");
    CHECK(listed(toolkit, "optionVar -l") == variables);  // loading keeps nothing that nobody chose
    toolkit.run(kOpenAll);
    const std::size_t open = state().size();
    toolkit.run(kOpenAll);
    CHECK(state().size() == open);
    toolkit.run("fillMenu_QXMT_Proc; fillMenu_QXMT_Proc");
    CHECK(state().size() == open);
    toolkit.run("unloadPlugin qxModelingToolkit");
    CHECK(state() == bare);
    // The scripts stay, and say what is missing.
    CHECK(toolkit.failure("straighten_QXMT_Proc").find("qxStraightenCmd is not available") !=
          std::string::npos);
    CHECK(toolkit.failure("enterTool_QXMT_Proc(\"modelingContext\")")
              .find("modelingContext is not available") != std::string::npos);
    toolkit.run("storeValues_QXMT_Proc; fillMenu_QXMT_Proc; qx_modeling_tool_delete_UI");
  }
  for (const std::string& name : listed(toolkit, "optionVar -l")) {
    CAPTURE(name);
    const bool isOwn = name.find("_QXMT") != std::string::npos;
    const bool wasThere = std::find(before.begin(), before.end(), name) != before.end();
    CHECK((isOwn || wasThere));
  }
}

TEST_CASE("the object to slide on is one selected object, and no other") {
  toolkitSession toolkit;
  toolkit.run(
      "modelingWindow_QXMT_Proc; polyCube -n one; polyCube -n two; uiGesture -press "
      "enable_slide_soft_select_QXMT_CB");
  const auto text = [&] {
    return asked(toolkit, "textField -q -tx add_static_slide_object_QXMT_TF");
  };
  const auto load = [&](const std::string& selection) {
    const host::MessageCapture said;
    static_cast<void>(toolkit.session->executeLine("select " + selection +
                                                   "; uiGesture -press loadSlideObject_QXMT_B"));
    return said.text(host::MessageKind::Warning);
  };
  CHECK(load("-cl").find("one object") != std::string::npos);
  CHECK(load("-r one two").find("one object") != std::string::npos);
  CHECK(text() == kNoObject);
  static_cast<void>(load("-r two"));
  CHECK(text() == "two");
  toolkit.run("uiGesture -press clearSlideObject_QXMT_B");
  CHECK(text() == kNoObject);
}

TEST_CASE("merging to the last vertex and smoothing ask for a selection they can use") {
  toolkitSession toolkit;
  const auto warned = [&](const std::string& mel) {
    const host::MessageCapture said;
    toolkit.run(mel);
    return said.text(host::MessageKind::Warning);
  };
  toolkit.run("polyPlane -n shape -sx 2 -sy 1 -w 2 -h 1");
  CHECK(warned("select -cl; mergeToLast_QXMT_Proc").find("at least two") != std::string::npos);
  CHECK(warned("select -r shape.vtx[1]; mergeToLast_QXMT_Proc").find("at least two") !=
        std::string::npos);
  CHECK(warned("select -r shape.f[0]; mergeToLast_QXMT_Proc").find("at least two") !=
        std::string::npos);
  CHECK(warned("select -cl; smooth_QXMT_Proc").find("objects to smooth") != std::string::npos);
  CHECK(asked(toolkit, "objExists qxTSmoothObjectsSet") == "0");
  CHECK(asked(toolkit, "polyEvaluate -v shape") == "6");
}
