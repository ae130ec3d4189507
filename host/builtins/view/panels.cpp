// getPanel, modelPanel and modelEditor: the views by their panels' names.
#include <algorithm>
#include <cmath>

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::View;
using workspace::Views;
using workspace::workspaceOf;

std::vector<std::string> panelNames(Context& context) {
  std::vector<std::string> names;
  for (const View& view : workspaceOf(context.session).views.all()) names.push_back(view.panel);
  return names;
}

std::vector<std::string> visiblePanels(Context& context) {
  ui::Tree& tree = workspaceOf(context.session).controls;
  const auto panes = tree.find("viewPanes");
  std::vector<std::string> names;
  if (!panes) return names;
  const ui::ControlType& type = *(*panes)->type;
  const int count = ui::asInt(tree.get(**panes, *type.find("numberOfVisiblePanes")));
  for (int i = 1; i <= count; ++i)
    names.push_back(ui::asText(tree.get(**panes, *type.find("pane" + std::to_string(i)))));
  return names;
}

CommandResult getPanel(Context& context, const ParsedArgs& args) {
  Views& views = workspaceOf(context.session).views;
  if (args.has("withFocus")) return mel::Value(views.active().panel);
  if (args.has("underPointer")) {
    for (const View& view : views.all())
      if (view.hasCursor) return mel::Value(view.panel);
    return mel::Value("");
  }
  if (args.has("typeOf")) {
    if (!views.find(args.text("typeOf")))
      return fail("getPanel: Object '{}' not found.", args.text("typeOf"));
    return mel::Value("modelPanel");
  }
  if (args.has("type"))
    return toValue(args.text("type") == "modelPanel" ? panelNames(context)
                                                     : std::vector<std::string>{});
  if (args.has("visiblePanels")) return toValue(visiblePanels(context));
  if (args.has("all")) return toValue(panelNames(context));
  return fail(
      "getPanel: say which panels: -all, -type, -withFocus, -underPointer or -visiblePanels.");
}

Result<View*> viewNamed(Context& context, const ParsedArgs& args, const char* command) {
  View* view = workspaceOf(context.session).views.find(args.firstObject());
  if (!view) return fail("{}: Object '{}' not found.", command, args.firstObject());
  return view;
}

/// Where the pointer is over a panel's view, {x, y} in pixels from the lower left; empty when it is
/// elsewhere.
CommandResult pointerPosition(Context& context, const ParsedArgs& args) {
  const auto view = viewNamed(context, args, "pointerPosition");
  if (!view) return failWith(view.error());
  if (!(*view)->hasCursor) return mel::Value(mel::IntArray{});
  const auto whole = [](double position) {
    return static_cast<std::int32_t>(std::floor(position));
  };
  return mel::Value(mel::IntArray{whole((*view)->cursor.x), whole((*view)->cursor.y)});
}

/// Looks through another camera; the view keeps its own when there is no such camera.
Result<void> setCamera(Context& context, View& view, const std::string& camera) {
  const auto path = workspace::cameraPath(context.document, camera);
  if (!path) return failWith(path.error());
  view.cameraName = camera;
  return {};
}

CommandResult modelPanel(Context& context, const ParsedArgs& args) {
  Views& views = workspaceOf(context.session).views;
  if (args.has("exists")) return mel::Value(views.find(args.firstObject()) != nullptr);
  if (args.isCreate()) {
    View view;
    for (std::size_t number = 5; view.panel.empty() || views.find(view.panel); ++number)
      view.panel = args.hasObjects() && number == 5 ? args.firstObject()
                                                    : "modelPanel" + std::to_string(number);
    view.cameraName = "persp";
    if (args.has("camera")) HOST_TRY(setCamera(context, view, args.text("camera")));
    views.all().push_back(view);
    return mel::Value(view.panel);
  }
  const auto view = viewNamed(context, args, "modelPanel");
  if (!view) return failWith(view.error());
  if (args.isEdit()) {
    if (args.has("camera")) HOST_TRY(setCamera(context, **view, args.text("camera")));
    return mel::Value((*view)->panel);
  }
  if (args.has("camera")) return mel::Value((*view)->cameraName);
  if (args.has("modelEditor")) return mel::Value((*view)->panel);
  if (args.has("label")) return mel::Value((*view)->cameraName + " View");
  return fail("modelPanel: query -camera, -modelEditor or -label.");
}

// modelEditor
// -------------------------------------------------------------------------------------------------------

struct EditorFlag {
  const char *shortName, *longName;
  bool initial;
};
constexpr EditorFlag kEditorFlags[] = {
    {"pm", "polymeshes", true},
    {"nc", "nurbsCurves", true},
    {"ns", "nurbsSurfaces", true},
    {"ca", "cameras", true},
    {"lt", "lights", true},
    {"lc", "locators", true},
    {"j", "joints", true},
    {"df", "deformers", true},
    {"m", "manipulators", true},
    {"ha", "handles", true},
    {"hu", "hulls", true},
    {"pl", "planes", true},
    {"pv", "pivots", true},
    {"tx", "textures", true},
    {"str", "strokes", true},
    {"hud", "headsUpDisplay", true},
    {"sel", "selectionHiliteDisplay", true},
    {"dtx", "displayTextures", false},
    {"udm", "useDefaultMaterial", false},
    {"tsl", "twoSidedLighting", true},
    {"sdw", "shadows", false},
    {"swf", "smoothWireframe", false},
    {"jx", "jointXray", false},
    {"dim", "dimensions", true},
    {"fog", "fogging", false},
};

constexpr struct {
  const char* name;
  viewport::DisplayStyle style;
} kAppearances[] = {{"wireframe", viewport::DisplayStyle::Wireframe},
                    {"smoothShaded", viewport::DisplayStyle::Shaded},
                    {"flatShaded", viewport::DisplayStyle::Shaded},
                    {"boundingBox", viewport::DisplayStyle::Wireframe},
                    {"points", viewport::DisplayStyle::Wireframe}};

constexpr const char* kRenderers[] = {"vp2Renderer", "base_OpenGL_Renderer",
                                      "hwRender_OpenGL_Renderer"};

Result<void> editView(Context& context, View& view, const ParsedArgs& args) {
  using viewport::DisplayStyle;
  if (args.has("camera")) HOST_TRY(setCamera(context, view, args.text("camera")));
  DisplayStyle& style = view.options.style;
  bool hasWires = style == DisplayStyle::WireOnShaded;
  if (args.has("displayAppearance")) {
    const std::string name = args.text("displayAppearance");
    const auto* found = std::find_if(std::begin(kAppearances), std::end(kAppearances),
                                     [&](const auto& each) { return name == each.name; });
    if (found == std::end(kAppearances))
      return fail("modelEditor: '{}' is no way to display.", name);
    style = found->style;
  }
  if (args.has("rendererName")) {
    const std::string name = args.text("rendererName");
    if (std::find(std::begin(kRenderers), std::end(kRenderers), name) == std::end(kRenderers))
      return fail("modelEditor: '{}' is no renderer; use {}, {} or {}.", name, kRenderers[0],
                  kRenderers[1], kRenderers[2]);
    view.rendererName = name;
  }
  hasWires = args.boolean("wireframeOnShaded", hasWires);
  if (style != DisplayStyle::Wireframe)
    style = hasWires ? DisplayStyle::WireOnShaded : DisplayStyle::Shaded;
  view.options.xray = args.boolean("xray", view.options.xray);
  view.options.grid.visible = args.boolean("grid", view.options.grid.visible);
  view.options.backFaceCulling = args.boolean("backfaceCulling", view.options.backFaceCulling);
  if (args.boolean("activeView")) workspaceOf(context.session).views.setActive(view.panel);
  auto& flags = view.editorFlags;
  for (const EditorFlag& flag : kEditorFlags) {
    if (args.has("allObjects")) flags[flag.longName] = args.boolean("allObjects");
    if (args.has(flag.longName)) flags[flag.longName] = args.boolean(flag.longName);
  }
  return {};
}

CommandResult queryView(Context& context, View& view, const ParsedArgs& args) {
  using viewport::DisplayStyle;
  if (args.has("camera")) return mel::Value(view.cameraName);
  if (args.has("rendererName")) return mel::Value(view.rendererName);
  if (args.has("displayAppearance"))
    return mel::Value(view.options.style == DisplayStyle::Wireframe ? "wireframe" : "smoothShaded");
  if (args.has("wireframeOnShaded"))
    return mel::Value(view.options.style == DisplayStyle::WireOnShaded);
  if (args.has("xray")) return mel::Value(view.options.xray);
  if (args.has("grid")) return mel::Value(view.options.grid.visible);
  if (args.has("backfaceCulling")) return mel::Value(view.options.backFaceCulling);
  if (args.has("activeView"))
    return mel::Value(workspaceOf(context.session).views.active().panel == view.panel);
  const auto& flags = view.editorFlags;
  for (const EditorFlag& flag : kEditorFlags) {
    if (!args.has(flag.longName)) continue;
    const auto found = flags.find(flag.longName);
    return mel::Value(found == flags.end() ? flag.initial : found->second);
  }
  return fail("modelEditor: say which flag to query.");
}

CommandResult modelEditor(Context& context, const ParsedArgs& args) {
  if (args.has("exists"))
    return mel::Value(workspaceOf(context.session).views.find(args.firstObject()) != nullptr);
  if (args.isCreate()) return fail("modelEditor: a view comes with its panel: use modelPanel.");
  const auto view = viewNamed(context, args, "modelEditor");
  if (!view) return failWith(view.error());
  if (args.isQuery()) return queryView(context, **view, args);
  HOST_TRY(editView(context, **view, args));
  return mel::Value((*view)->panel);
}

}  // namespace

void registerPanels(CommandRegistry& registry) {
  Syntax panels;
  panels.flag("all", "all")
      .flag("typ", "type", {ArgType::String})
      .flag("to", "typeOf", {ArgType::String});
  panels.flag("wf", "withFocus").flag("up", "underPointer").flag("vis", "visiblePanels");
  defineQuery(registry, "getPanel", panels, getPanel);
  defineQuery(registry, "pointerPosition", Syntax().strings(1, 1), pointerPosition);
  Syntax panel;
  panel.flag("ex", "exists").flag("cam", "camera", {ArgType::String}).flag("me", "modelEditor");
  panel.flag("l", "label", {ArgType::String})
      .flag("p", "parent", {ArgType::String})
      .flag("mbv", "menuBarVisible", {ArgType::Bool});
  defineQuery(registry, "modelPanel", panel.editable().queryable().strings(0, 1), modelPanel);
  Syntax editor;
  editor.flag("ex", "exists")
      .flag("cam", "camera", {ArgType::String})
      .flag("da", "displayAppearance", {ArgType::String});
  editor.flag("wos", "wireframeOnShaded", {ArgType::Bool})
      .flag("xr", "xray", {ArgType::Bool})
      .flag("gr", "grid", {ArgType::Bool});
  editor.flag("bfc", "backfaceCulling", {ArgType::Bool}).flag("av", "activeView", {ArgType::Bool});
  editor.flag("alo", "allObjects", {ArgType::Bool}).flag("rnm", "rendererName", {ArgType::String});
  for (const EditorFlag& flag : kEditorFlags)
    editor.flag(flag.shortName, flag.longName, {ArgType::Bool});
  defineQuery(registry, "modelEditor", editor.editable().queryable().strings(0, 1), modelEditor);
}

}  // namespace host::builtins
