#include <algorithm>
#include <set>
#include <sstream>

#include "tests/toolkit/toolkit_session.h"

// The option windows of the brushes: every control is pressed, and reaches the tool.

namespace {

constexpr const char* kContexts[] = {"baseBrushContext", "standardSculptBrushContext",
                                     "tweakUvBrushContext", "moveRotateScaleUVBrushContext"};

struct row {
  std::string flag, kind, least, most, words;
};

struct brushWindow : toolkitSession {
  explicit brushWindow(const char* contextIn) : context(contextIn) {
    run("brushOptions_QXMT_Proc(\"" + context + "\")");
  }
  std::string asked(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->resultText();
  }
  std::string setting(const std::string& flag) {
    return asked(context + " -q -" + flag + " " + context + "_QXMT_Ctx");
  }
  [[nodiscard]] std::string control(const std::string& flag) const {
    return flag + "_" + context + "_QXMT";
  }
  std::vector<row> rows() {
    std::vector<row> all;
    for (const std::string& line :
         session->executeLine(context + " -q -flags " + context + "_QXMT_Ctx")->toTexts()) {
      std::istringstream text(line);
      row each;
      for (std::string* part : {&each.flag, &each.kind, &each.least, &each.most, &each.words})
        std::getline(text, *part, '|');
      all.push_back(each);
    }
    REQUIRE(all.size() > 15);
    return all;
  }
  /// A value that the setting does not have, as a person gives it to the control.
  std::string other(const row& each) {
    const std::string now = setting(each.flag);
    if (each.kind == "yesNo") return now == "1" ? "0" : "1";
    if (each.kind == "choice") {
      std::istringstream words(each.words);
      for (std::string word; std::getline(words, word, ',');)
        if (word != now) return word;
    }
    if (each.kind == "ramp") return "1,0,1,0.5,0.5,1,0,1,1";
    if (each.kind == "text") return "other.tif";
    return now == each.least ? each.most : each.least;
  }
  void give(const row& each, const std::string& value) {
    const std::string which = each.kind == "yesNo" ? "-set 1 -set " : "-set ";
    run("uiGesture " + which + "\"" + value + "\" " + control(each.flag));
  }
  std::string shown(const row& each) {
    if (each.kind == "yesNo") return asked("checkBoxGrp -q -v1 " + control(each.flag));
    if (each.kind == "choice") return asked("optionMenuGrp -q -v " + control(each.flag));
    if (each.kind == "whole") return asked("intSliderGrp -q -v " + control(each.flag));
    if (each.flag == "alpha") return asked("textFieldButtonGrp -q -tx " + control(each.flag));
    if (each.kind == "ramp") return asked("textFieldGrp -q -tx " + control(each.flag));
    return asked("floatSliderGrp -q -v " + control(each.flag));
  }
  bool isShown(const row& each) { return asked("control -ex " + control(each.flag)) == "1"; }

  std::string context;
};

}  // namespace

TEST_CASE("brush windows: every setting has a control that sets it, shows it and keeps it") {
  for (const char* context : kContexts) {
    CAPTURE(context);
    const host::MessageCapture quiet;
    brushWindow window(context);
    const bool isUv = std::string(context).find("Uv") != std::string::npos ||
                      std::string(context).find("UV") != std::string::npos;
    std::vector<std::pair<row, std::string>> given;
    for (const row& each : window.rows()) {
      CAPTURE(each.flag);
      const bool concerns =
          isUv ? each.flag != "alpha" && each.flag.find("stamp") != 0 : each.flag != "wholeShells";
      CHECK(window.isShown(each) == concerns);
      if (!concerns) continue;
      CHECK(window.shown(each) == window.setting(each.flag));
      const std::string first = window.setting(each.flag), wanted = window.other(each);
      window.give(each, wanted);
      CHECK(window.setting(each.flag) != first);
      CHECK(window.shown(each) == window.setting(each.flag));
      given.emplace_back(each, window.setting(each.flag));
    }
    // A window that is opened again, and a tool that is made anew, have what was given.
    const std::string tool = std::string(context) + "_QXMT_Ctx";
    window.run("uiGesture -press " + std::string(context) + "Options_QXMT_Close_B");
    window.run("deleteUI -toolContext " + tool);
    window.run("enterTool_QXMT_Proc(\"" + std::string(context) + "\")");
    window.run("brushOptions_QXMT_Proc(\"" + std::string(context) + "\")");
    for (const auto& [each, value] : given) {
      CAPTURE(each.flag);
      CHECK(window.setting(each.flag) == value);
      CHECK(window.shown(each) == value);
    }
    window.run("uiGesture -press " + std::string(context) + "Options_QXMT_Reset_B");
    const std::string fresh = window.asked(context);
    for (const row& each : window.rows())
      CHECK(window.setting(each.flag) ==
            window.asked(std::string(context) + " -q -" + each.flag + " " + fresh));
  }
}

TEST_CASE("brush windows: buttons, refused values, other units, and the end of the module") {
  const host::MessageCapture quiet;
  brushWindow window("standardSculptBrushContext");
  window.run("uiGesture -press standardSculptBrushContextOptions_QXMT_Use_B");
  CHECK(window.asked("currentCtx") == "standardSculptBrushContext_QXMT_Ctx");
  for (const char* curve : {"linear", "sharp", "round", "flat", "smooth"}) {
    const std::string before = window.setting("falloff");
    window.run(std::string("uiGesture -press ") + curve +
               "_falloff_standardSculptBrushContext_QXMT_B");
    CHECK(window.setting("falloff") != before);
  }
  const std::string ramp = window.setting("falloff");
  window.run("uiGesture -set \"nonsense \\\" 1,2\" falloff_standardSculptBrushContext_QXMT");
  CHECK(window.setting("falloff") == ramp);
  CHECK(window.asked("textFieldGrp -q -tx falloff_standardSculptBrushContext_QXMT") == ramp);
  const std::string stamp =
      window.asked("getDataDirectory_QXMT_Proc") + "/modelingToolAlphas/test3.tif";
  window.run("uiGesture -answer \"" + stamp +
             "\"; uiGesture -press alpha_standardSculptBrushContext_QXMT");
  CHECK(window.setting("alpha") == stamp);
  CHECK(window.asked("textFieldButtonGrp -q -tx alpha_standardSculptBrushContext_QXMT") == stamp);

  window.run("uiGesture -set 2.5 radius_standardSculptBrushContext_QXMT");
  window.run(
      "currentUnit -l m; deleteUI -toolContext standardSculptBrushContext_QXMT_Ctx;"
      "enterTool_QXMT_Proc(\"standardSculptBrushContext\")");
  CHECK(std::stod(window.setting("radius")) == doctest::Approx(0.025));
  // What a drag with a key held has set shows in the window, and is kept.
  window.run(
      "brushOptions_QXMT_Proc(\"standardSculptBrushContext\");"
      "standardSculptBrushContext -e -strength 0.125 standardSculptBrushContext_QXMT_Ctx;"
      "brushSettingsChanged_QXMT_Proc");
  CHECK(window.asked("floatSliderGrp -q -v strength_standardSculptBrushContext_QXMT") == "0.125");
  CHECK(window.asked("optionVar -q brush_standardSculptBrushContext_strength_QXMT") == "0.125");
  window.run("currentUnit -l cm; resetOptions_QXMT_Proc");
  CHECK(window.asked("optionVar -ex brush_standardSculptBrushContext_strength_QXMT") == "0");
  CHECK(window.setting("strength") == "0.5");
  window.run("unloadPlugin qxModelingToolkit");
  CHECK(window.asked("window -ex standardSculptBrushContextOptions_QXMT") == "0");
}
