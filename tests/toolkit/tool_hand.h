#pragma once

#include <maya/MFnPointArrayData.h>
#include <maya/MPlug.h>

#include <string>
#include <vector>

#include "host/cmd/loop.h"
#include "host/workspace/workspace.h"
#include "tests/toolkit/toolkit_session.h"

/// The modifiers of a gesture.
struct heldKeys {
  bool shift = false, control = false, alt = false;
};
inline constexpr heldKeys kNoKeys{}, kShift{.shift = true}, kControl{.control = true},
    kBoth{.shift = true, .control = true}, kAlt{.alt = true};

/// A hand on the mouse: gestures in a view, at pixels or at the places of components, and a clock
/// that lets timers fire. The view is the top one (32 pixels a centimetre) unless told otherwise.
class toolHand : public toolkitSession {
 public:
  using place = host::viewport::ViewPoint;
  using names = std::vector<std::string>;
  static constexpr auto kLeft = host::tools::MouseButton::Left;
  static constexpr auto kMiddle = host::tools::MouseButton::Middle;

  explicit toolHand(std::string panelIn = "modelPanel1") : panel(std::move(panelIn)) {
    host::workspace::workspaceOf(*session).views.setActive(panel);
  }

  ~toolHand() { (void)session->executeLine("setToolTo selectSuperContext"); }
  toolHand(const toolHand&) = delete;
  toolHand& operator=(const toolHand&) = delete;

  /// Takes the modelling tool in hand, in a selection mode ("vertex", "edge", "facet"), with
  /// mirroring off.
  void takeTool(const std::string& object, const std::string& type) {
    run("doMenuComponentSelection(\"" + object + "\", \"" + type + "\"); select -cl;");
    run("if (!`contextInfo -ex tool`) modelingContext tool; setToolTo tool;");
  }
  /// Sets options as the window would.
  void option(const std::string& edit) {
    run("if (!`window -ex qx_modeling_ui`) modelingWindow_QXMT_Proc; " + edit +
        "; optionChanged_QXMT_Proc;");
  }
  void mirror(bool on) {
    option(std::string("checkBox -e -v ") + (on ? "1" : "0") + " mirror_QXMT_CB");
  }

  [[nodiscard]] names selected() { return texts("ls -sl -fl"); }
  names texts(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->toTexts();
  }
  double number(const std::string& mel) {
    const auto value = session->executeLine(mel);
    REQUIRE_MESSAGE(value.has_value(), mel);
    return value->toFloat().value_or(-12345);
  }
  [[nodiscard]] int faces(const std::string& object) {
    return static_cast<int>(number("polyEvaluate -f " + object));
  }
  [[nodiscard]] int vertices(const std::string& object) {
    return static_cast<int>(number("polyEvaluate -v " + object));
  }

  [[nodiscard]] place pixel(double x, double y, double z) const {
    auto& views = host::workspace::workspaceOf(*session).views;
    const auto scene = host::workspace::gatherView(session->document(), *views.find(panel));
    REQUIRE(scene);
    const auto at =
        host::viewport::ViewProjection(scene->camera, scene->port).worldToView({x, y, z});
    return {std::round(at.x), std::round(at.y)};
  }
  /// The middle of a component: "plane.e[4]".
  [[nodiscard]] place at(const std::string& component) {
    const names all = texts("ls -fl `polyListComponentConversion -tv " + component + "`");
    double x = 0, y = 0, z = 0;
    for (const std::string& one : all) {
      const auto value = session->executeLine("pointPosition -w " + one);
      REQUIRE(value.has_value());
      const auto& p = value->floatArray();
      x += p[0];
      y += p[1];
      z += p[2];
    }
    const auto count = static_cast<double>(all.size());
    return pixel(x / count, y / count, z / count);
  }

  void send(host::tools::InputKind kind, place position, host::tools::MouseButton button,
            heldKeys keys = {}) {
    host::tools::InputEvent event;
    event.kind = kind;
    event.position = position;
    event.button = button;
    event.shift = keys.shift;
    event.control = keys.control;
    event.alt = keys.alt;
    event.panel = panel;
    host::workspace::workspaceOf(*session).toolbox.handle(event);
  }
  void press(place position, host::tools::MouseButton button, heldKeys keys = {}) {
    send(host::tools::InputKind::Press, position, button, keys);
  }
  void dragTo(place position, host::tools::MouseButton button, heldKeys keys = {}) {
    send(host::tools::InputKind::Drag, position, button, keys);
  }
  void release(place position, host::tools::MouseButton button, heldKeys keys = {}) {
    send(host::tools::InputKind::Release, position, button, keys);
  }
  void click(place position, host::tools::MouseButton button = kLeft, heldKeys keys = {}) {
    press(position, button, keys);
    release(position, button, keys);
  }
  void stroke(place from, place to, host::tools::MouseButton button, heldKeys keys = {},
              int steps = 4) {
    press(from, button, keys);
    for (int i = 1; i <= steps; ++i) {
      const double share = static_cast<double>(i) / steps;
      dragTo({std::round(from.x + (to.x - from.x) * share),
              std::round(from.y + (to.y - from.y) * share)},
             button, keys);
    }
    release(to, button, keys);
  }
  void hover(place position) {
    send(host::tools::InputKind::Move, position, host::tools::MouseButton::None);
    wait(0.02);
  }
  void wait(double time) { session->loop().wait(time); }

  /// A point array of the tool's locator: "cparr", "parr" or "rparr".
  [[nodiscard]] static MPointArray shown(const char* attribute) {
    MSelectionList list;
    MPlug plug;
    const MString name = MString("qxModelingToolsDrawSSPointLocator.") + attribute;
    if (list.add(name) != MS::kSuccess || list.getPlug(0, plug) != MS::kSuccess) return {};
    const MObject data = plug.asMObject();
    return data.isNull() ? MPointArray() : MFnPointArrayData(data).array();
  }
  [[nodiscard]] bool hasLocator() { return number("objExists qxModelingToolsDrawSSPointLocator"); }
  [[nodiscard]] std::size_t undoItems() const { return session->undo().itemCount(); }

  std::string panel;
};
