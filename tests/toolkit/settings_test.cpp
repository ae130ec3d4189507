// The settings block behind the toolkit's windows, by the command that fills it.
#include <dlfcn.h>
#include <doctest/doctest.h>
#include <elf.h>
#include <link.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "shared/settings/toolSettings.h"
#include "tests/toolkit/toolkit_session.h"

namespace {

/// Where a function that the module keeps to itself stands in its file, from the table of symbols
/// that is there for debuggers; 0 for none.
std::uintptr_t hiddenSymbol(const std::string& path, const std::string& name) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  const auto at = [&](std::size_t offset) { return bytes.data() + offset; };
  const auto* header = reinterpret_cast<const Elf64_Ehdr*>(at(0));
  const auto* sections = reinterpret_cast<const Elf64_Shdr*>(at(header->e_shoff));
  for (int i = 0; i < header->e_shnum; ++i) {
    if (sections[i].sh_type != SHT_SYMTAB) continue;
    const char* names = at(sections[sections[i].sh_link].sh_offset);
    const auto* symbols = reinterpret_cast<const Elf64_Sym*>(at(sections[i].sh_offset));
    for (std::size_t j = 0; j < sections[i].sh_size / sizeof(Elf64_Sym); ++j)
      if (name == names + symbols[j].st_name) return symbols[j].st_value;
  }
  return 0;
}

/// The block inside the module that is loaded, which exports its entry points alone.
toolSettings& block() {
  const std::string path = QXMT_BINARY_DIR "/lib/qxModelingToolkit.so";
  void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
  REQUIRE(module != nullptr);
  link_map* loaded = nullptr;
  REQUIRE(dlinfo(module, RTLD_DI_LINKMAP, &loaded) == 0);
  const std::uintptr_t base = loaded->l_addr;
  dlclose(module);
  const std::uintptr_t offset = hiddenSymbol(path, "_ZN12toolSettings7currentEv");
  REQUIRE(offset != 0);
  const auto current = reinterpret_cast<toolSettings& (*)()>(base + offset);
  return current();
}

std::string values(const toolSettings& s) {
  std::string all;
  for (const int value :
       {int(s.multiComponent), s.intensity, s.smoothIntensity, s.smoothPush, int(s.slideSoftSelect),
        int(s.slideOnItself), s.normalDirection, int(s.mirror), int(s.lockAxis), int(s.lockXAxis),
        int(s.lockYAxis), int(s.lockZAxis), s.mirrorAxis, int(s.ignoreQuadDrawBackface),
        int(s.dragSelectNormal), int(s.mirrorWorldSpace), s.smoothUvIntensity,
        int(s.pinBorderEdges), int(s.fullShellCompressionColors)})
    all += std::to_string(value) + " ";
  return all;
}

constexpr const char* kStore = "qxSetCommands -ms \"storeValues\"";
constexpr const char* kAtLoad = "1 60 20 0 0 0 0 1 0 0 0 0 0 1 1 0 25 0 0 ";

}  // namespace

TEST_CASE("the windows open with the values that the settings have at load") {
  toolkitSession toolkit;
  CHECK(values(block()) == kAtLoad);
  toolkit.run(kStore);
  CHECK(values(block()) == kAtLoad);
  toolkit.run("modelingWindow_QXMT_Proc; uvWindow_QXMT_Proc");
  toolkit.run(kStore);
  CHECK(values(block()) == kAtLoad);
}

TEST_CASE("what a person changes in a window is in the settings at once") {
  toolkitSession toolkit;
  toolkit.run("modelingWindow_QXMT_Proc; uvWindow_QXMT_Proc");
  const std::vector<std::pair<const char*, bool toolSettings::*>> boxes = {
      {"multicomp_QXMT_CB", &toolSettings::multiComponent},
      {"enable_slide_soft_select_QXMT_CB", &toolSettings::slideSoftSelect},
      {"mirror_QXMT_CB", &toolSettings::mirror},
      {"lockAxis_QXMT_CB", &toolSettings::lockAxis},
      {"lockXAxis_QXMT_CB", &toolSettings::lockXAxis},
      {"lockYAxis_QXMT_CB", &toolSettings::lockYAxis},
      {"lockZAxis_QXMT_CB", &toolSettings::lockZAxis},
      {"ignoreQuadDrawBackface_QXMT_CB", &toolSettings::ignoreQuadDrawBackface},
      {"pinBorderEdges_QXMT_MI", &toolSettings::pinBorderEdges},
      {"fullShellCompressionColors_QXMT_MI", &toolSettings::fullShellCompressionColors}};
  for (const auto& [name, setting] : boxes) {
    const std::string control = name;
    CAPTURE(control);
    const bool before = block().*setting;
    toolkit.run("uiGesture -press " + control);
    CHECK(block().*setting == !before);
  }
  const std::vector<std::pair<const char*, int toolSettings::*>> fields = {
      {"intensity_QXMT_IF", &toolSettings::intensity},
      {"smoothIntensity_QXMT_IF", &toolSettings::smoothIntensity},
      {"smoothPush_QXMT_IF", &toolSettings::smoothPush},
      {"smoothUvIntensity_QXMT_IF", &toolSettings::smoothUvIntensity}};
  for (const auto& [name, setting] : fields) {
    const std::string control = name;
    CAPTURE(control);
    toolkit.run("uiGesture -set 37 " + control);
    CHECK(block().*setting == 37);
  }
  // Ticking the mirror box off disables what hangs on it.
  CHECK(toolkit.failure("uiGesture -press mirrorZ_QXMT_RB").find("disabled") != std::string::npos);
  toolkit.run(
      "uiGesture -press mirror_QXMT_CB; uiGesture -press mirrorZ_QXMT_RB; uiGesture -press "
      "worldSpace_QXMT_RB;"
      "uiGesture -press normal_direction_camera_QXMT_RB; uiGesture -press "
      "dragSelectTypePaint_QXMT_RB");
  CHECK(block().mirrorAxis == 2);
  CHECK(block().mirrorWorldSpace);
  CHECK(block().normalDirection == 1);
  CHECK_FALSE(block().dragSelectNormal);
}

TEST_CASE("a closed window leaves its settings; its options are there when it opens again") {
  toolkitSession toolkit;
  toolkit.run(
      "modelingWindow_QXMT_Proc; uiGesture -press mirrorY_QXMT_RB; uiGesture -set 5 "
      "intensity_QXMT_IF");
  toolkit.run("uiGesture -close qx_modeling_ui");
  const std::string closed = values(block());
  toolkit.run(kStore);
  CHECK(values(block()) == closed);
  CHECK(block().mirrorAxis == 1);
  toolkit.run("modelingWindow_QXMT_Proc");
  CHECK(values(block()) == closed);
  toolkit.run("resetOptions_QXMT_Proc");
  CHECK(values(block()) == kAtLoad);
}

TEST_CASE("an answer that is none of the buttons keeps what was; a missing control too") {
  toolkitSession toolkit;
  toolkit.run(
      "modelingWindow_QXMT_Proc; uiGesture -press mirrorY_QXMT_RB; uiGesture -press "
      "worldSpace_QXMT_RB");
  toolkit.run(
      "setParent mirrorOptions_QXMT_CL; radioButton -cl mirror_QXMT_RB -sl odd_RB; radioButton -cl "
      "mirrorSpace_QXMT_RB -sl odd2_RB");
  toolkit.run(
      "radioButton -e -sl odd_RB; radioButton -cl dragSelectType_QXMT_RB -sl odd3_RB; deleteUI "
      "lockAxis_QXMT_CB");
  const host::MessageCapture quiet;
  toolkit.run(kStore);
  CHECK(block().mirrorAxis == 1);
  CHECK(block().mirrorWorldSpace);
  CHECK_FALSE(block().dragSelectNormal);
  CHECK_FALSE(block().lockAxis);
}

TEST_CASE("the surface slides on itself only while soft slide is on and no object is loaded") {
  toolkitSession toolkit;
  toolkit.run("modelingWindow_QXMT_Proc");
  CHECK_FALSE(block().slideOnItself);
  toolkit.run("uiGesture -press enable_slide_soft_select_QXMT_CB");
  CHECK(block().slideOnItself);
  toolkit.run("textField -e -tx pCube1 add_static_slide_object_QXMT_TF");
  toolkit.run(kStore);
  CHECK_FALSE(block().slideOnItself);
  toolkit.run("uiGesture -press clearSlideObject_QXMT_B");
  CHECK(block().slideOnItself);
  toolkit.run("uiGesture -press enable_slide_soft_select_QXMT_CB");
  CHECK_FALSE(block().slideOnItself);
}

TEST_CASE(
    "messages: unknown ones do nothing, those of a missing tool say so, a bad argument fails") {
  toolkitSession toolkit;
  toolkit.run(
      "qxSetCommands -ms \"noSuchMessage\"; qxSetCommands -ms \"storevalues\"; qxSetCommands");
  toolkit.run("qxSetCommands -ms \"customFrame\"");  // the cursor is over no view
  CHECK_FALSE(toolkit.failure("qxSetCommands -ms").empty());
  CHECK_FALSE(toolkit.failure("qxSetCommands -bogus 1").empty());
  const host::MessageCapture quiet;
  toolkit.run("qxSetCommands -mset \"checkForUpdates\"; qxSetCommands -ms \"checkLicense\"");
}

TEST_CASE("loading twice and unloading leave no window, menu or tool behind") {
  toolkitSession toolkit;
  toolkit.run("int $jobs = size(`scriptJob -lj`); int $items = size(`lsUI -m -mi`)");
  toolkit.run(
      "qx_modeling_tool_ui; qx_modeling_tool_ui; modelingWindow_QXMT_Proc; "
      "modelingWindow_QXMT_Proc; uvWindow_QXMT_Proc;"
      "straightenOptions_QXMT_Proc; smoothOptions_QXMT_Proc");
  toolkit.run("unloadPlugin qxModelingToolkit");
  toolkit.run(
      "if (size(`lsUI -wnd`) != 1 || size(`lsUI -m -mi`) != $items) error(\"left: \" + "
      "stringArrayToString(`lsUI -wnd -m`, \" \"));"
      "if (size(`scriptJob -lj`) != $jobs) error \"a job is left\";");
}

TEST_CASE("Reset Options resets the tools' settings with the windows closed too") {
  toolkitSession toolkit;
  toolkit.run(
      "qx_modeling_tool_ui; modelingWindow_QXMT_Proc; uiGesture -set 5 intensity_QXMT_IF; "
      "uiGesture "
      "-close qx_modeling_ui; resetOptions_QXMT_Proc");
  CHECK(values(block()) == kAtLoad);
}

TEST_CASE("customFrame shows the component under the cursor, and keeps what is selected") {
  toolkitSession toolkit;
  toolkit.run(
      "polyPlane -n shape -sx 10 -sy 10 -w 10 -h 10; polyCube -n far; move 0 -20 0 far; select -r "
      "shape.f[3]; viewFit -all top; viewGesture -hoverAt shape.vtx[12] modelPanel1");
  const auto number = [&](const char* mel) {
    return toolkit.session->executeLine(mel)->toFloat().value();
  };
  const double wide = number("getAttr topShape.orthographicWidth");
  toolkit.run("qxSetCommands -ms \"customFrame\"");
  const MPoint vertex = toolkitSession::points("shape")[12];
  CHECK(number("getAttr top.translateX") == doctest::Approx(vertex.x).epsilon(0.1));
  CHECK(number("getAttr top.translateZ") == doctest::Approx(vertex.z).epsilon(0.1));
  CHECK(number("getAttr topShape.orthographicWidth") < wide / 2);
  CHECK(toolkit.session->executeLine("ls -sl")->toTexts() ==
        std::vector<std::string>{"shape.f[3]"});
  // Beside all meshes nothing moves.
  toolkit.run("move 100 0 0 shape; move 100 0 0 far; viewGesture -hover 5 5 modelPanel1");
  const double here = number("getAttr top.translateX");
  toolkit.run("qxSetCommands -ms \"customFrame\"");
  CHECK(number("getAttr top.translateX") == here);
}
