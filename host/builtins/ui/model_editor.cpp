// modelEditor: what a view shows and how.
#include <algorithm>

#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using viewport::DisplayStyle;
using viewport::ViewOptions;
using workspace::View;
using workspace::workspaceOf;

/// Flags that switch something that a view does.
struct Switch {
  const char *shortName, *longName;
  bool ViewOptions::*option;
  bool isOfAllObjects;  ///< goes with -allObjects
};
constexpr Switch kSwitches[] = {
    {"pm", "polymeshes", &ViewOptions::showMeshes, true},
    {"lc", "locators", &ViewOptions::showLocators, true},
    {"lt", "lights", &ViewOptions::showLights, true},
    {"nc", "nurbsCurves", &ViewOptions::showCurves, true},
    {"j", "joints", &ViewOptions::showJoints, true},
    {"ps", "pluginShapes", &ViewOptions::showPluginShapes, true},
    {"jx", "jointXray", &ViewOptions::jointXray, false},
    {"sel", "selectionHiliteDisplay", &ViewOptions::showSelection, false},
    {"xr", "xray", &ViewOptions::xray, false},
    {"bfc", "backfaceCulling", &ViewOptions::backFaceCulling, false},
    {"dtx", "displayTextures", &ViewOptions::showTextures, false},
    {"udm", "useDefaultMaterial", &ViewOptions::useDefaultMaterial, false},
};

/// Flags that are kept and change no picture: the objects that they are about don't exist here, or
/// the view always draws as their first value says.
struct Kept {
  const char *shortName, *longName;
  bool initial;
  bool isOfAllObjects;
};
constexpr Kept kKept[] = {
    {"ns", "nurbsSurfaces", true, true},
    {"ca", "cameras", true, true},
    {"df", "deformers", true, true},
    {"m", "manipulators", true, true},
    {"ha", "handles", true, true},
    {"hu", "hulls", true, true},
    {"pl", "planes", true, true},
    {"pv", "pivots", true, true},
    {"tx", "textures", true, true},
    {"str", "strokes", true, true},
    {"ikh", "ikHandles", true, true},
    {"dy", "dynamics", true, true},
    {"dim", "dimensions", true, true},
    {"cv", "controlVertices", true, true},
    {"ss", "subdivSurfaces", true, true},
    {"imp", "imagePlane", true, true},
    {"pi", "particleInstancers", true, true},
    {"fl", "fluids", true, true},
    {"hs", "hairSystems", true, true},
    {"fo", "follicles", true, true},
    {"ncl", "nCloths", true, true},
    {"npa", "nParticles", true, true},
    {"nr", "nRigids", true, true},
    {"dc", "dynamicConstraints", true, true},
    {"mt", "motionTrails", true, true},
    {"cg", "clipGhosts", true, true},
    {"gp", "greasePencils", true, true},
    {"hud", "headsUpDisplay", true, false},
    {"tsl", "twoSidedLighting", true, false},
    {"sdw", "shadows", false, false},
    {"swf", "smoothWireframe", false, false},
    {"fog", "fogging", false, false},
    {"acx", "activeComponentsXray", false, false},
};

struct Appearance {
  const char* name;
  DisplayStyle style;
  bool isFlat;
};
constexpr Appearance kAppearances[] = {{"wireframe", DisplayStyle::Wireframe, false},
                                       {"smoothShaded", DisplayStyle::Shaded, false},
                                       {"flatShaded", DisplayStyle::Shaded, true},
                                       {"boundingBox", DisplayStyle::BoundingBox, false},
                                       {"points", DisplayStyle::Points, false}};

constexpr const char* kRenderers[] = {"vp2Renderer", "base_OpenGL_Renderer",
                                      "hwRender_OpenGL_Renderer"};
constexpr const char* kLights[] = {"default", "all", "selected", "active", "flat", "none"};

template <std::size_t Count>
Result<std::string> oneOf(const char* const (&names)[Count], const std::string& name,
                          const char* flag) {
  if (std::find(std::begin(names), std::end(names), name) != std::end(names)) return name;
  std::string all;
  for (const char* each : names) all += std::string(all.empty() ? "" : ", ") + each;
  return fail("modelEditor: '{}' is no {}; use one of {}.", name, flag, all);
}

bool isShaded(DisplayStyle style) {
  return style == DisplayStyle::Shaded || style == DisplayStyle::WireOnShaded;
}

Result<void> editAppearance(ViewOptions& options, const ParsedArgs& args) {
  bool hasWires = options.style == DisplayStyle::WireOnShaded;
  if (args.has("displayAppearance")) {
    const std::string name = args.text("displayAppearance");
    const auto* found = std::find_if(std::begin(kAppearances), std::end(kAppearances),
                                     [&](const auto& each) { return name == each.name; });
    if (found == std::end(kAppearances))
      return fail("modelEditor: '{}' is no way to display.", name);
    options.style = found->style;
    options.flatShaded = found->isFlat;
  }
  hasWires = args.boolean("wireframeOnShaded", hasWires);
  if (isShaded(options.style))
    options.style = hasWires ? DisplayStyle::WireOnShaded : DisplayStyle::Shaded;
  return {};
}

/// Keeps what changes no picture, and says so of what would ask for another one.
void editKept(View& view, const ParsedArgs& args) {
  for (const Kept& flag : kKept) {
    if (args.has("allObjects") && flag.isOfAllObjects)
      view.editorFlags[flag.longName] = args.boolean("allObjects");
    if (!args.has(flag.longName)) continue;
    const bool value = args.boolean(flag.longName);
    view.editorFlags[flag.longName] = value;
    if (value != flag.initial && !flag.isOfAllObjects)
      postMessage(MessageKind::Warning,
                  fmt::format("modelEditor: -{} is kept, but changes nothing in this view.",
                              flag.longName));
  }
}

/// Shows only what is selected now, or all again.
void isolate(Context& context, View& view, bool isOn) {
  const bool turnsOn = isOn && !view.isIsolated;
  view.isIsolated = isOn;
  if (!turnsOn) return;
  view.isolated.clear();
  for (const scene::SelectionItem& item : context.document.selection().items())
    workspace::addToIsolated(view, *item.node);
}

Result<void> editView(Context& context, View& view, const ParsedArgs& args) {
  if (args.has("camera")) {
    const std::string camera = args.text("camera");
    const auto path = workspace::cameraPath(context.document, camera);
    if (!path) return failWith(path.error());
    view.cameraName = camera;
  }
  HOST_TRY(editAppearance(view.options, args));
  if (args.has("viewSelected")) isolate(context, view, args.boolean("viewSelected"));
  if (args.has("rendererName")) {
    auto name = oneOf(kRenderers, args.text("rendererName"), "renderer");
    if (!name) return failWith(std::move(name.error()));
    view.rendererName = *name;
  }
  if (args.has("displayLights")) {
    auto name = oneOf(kLights, args.text("displayLights"), "choice of lights");
    if (!name) return failWith(std::move(name.error()));
    view.lightsShown = *name;
  }
  for (const Switch& each : kSwitches) {
    if (args.has("allObjects") && each.isOfAllObjects)
      view.options.*each.option = args.boolean("allObjects");
    if (args.has(each.longName)) view.options.*each.option = args.boolean(each.longName);
  }
  view.options.grid.visible = args.boolean("grid", view.options.grid.visible);
  if (args.has("activeView")) workspaceOf(context.session).views.setActive(view.panel);
  editKept(view, args);
  return {};
}

CommandResult queryView(Context& context, View& view, const ParsedArgs& args) {
  if (args.has("camera")) return mel::Value(view.cameraName);
  if (args.has("rendererName")) return mel::Value(view.rendererName);
  if (args.has("displayLights")) return mel::Value(view.lightsShown);
  if (args.has("displayAppearance")) {
    const DisplayStyle style = view.options.style == DisplayStyle::WireOnShaded
                                   ? DisplayStyle::Shaded
                                   : view.options.style;
    for (const Appearance& each : kAppearances)
      if (each.style == style && each.isFlat == (isShaded(style) && view.options.flatShaded))
        return mel::Value(each.name);
  }
  if (args.has("wireframeOnShaded"))
    return mel::Value(view.options.style == DisplayStyle::WireOnShaded);
  if (args.has("grid")) return mel::Value(view.options.grid.visible);
  if (args.has("viewSelected")) return mel::Value(view.isIsolated);
  if (args.has("activeView"))
    return mel::Value(workspaceOf(context.session).views.active().panel == view.panel);
  for (const Switch& each : kSwitches)
    if (args.has(each.longName)) return mel::Value(view.options.*each.option);
  for (const Kept& flag : kKept) {
    if (!args.has(flag.longName)) continue;
    const auto found = view.editorFlags.find(flag.longName);
    return mel::Value(found == view.editorFlags.end() ? flag.initial : found->second);
  }
  return fail("modelEditor: say which flag to query.");
}

CommandResult modelEditor(Context& context, const ParsedArgs& args) {
  workspace::Views& views = workspaceOf(context.session).views;
  if (args.has("exists")) return mel::Value(views.find(args.firstObject()) != nullptr);
  if (args.isCreate()) return fail("modelEditor: a view comes with its panel: use modelPanel.");
  View* view = views.find(args.firstObject());
  if (!view) return fail("modelEditor: Object '{}' not found.", args.firstObject());
  if (args.isQuery()) return queryView(context, *view, args);
  HOST_TRY(editView(context, *view, args));
  return mel::Value(view->panel);
}

}  // namespace

void registerModelEditor(CommandRegistry& registry) {
  Syntax editor;
  editor.flag("ex", "exists").flag("cam", "camera", {ArgType::String});
  editor.flag("da", "displayAppearance", {ArgType::String})
      .flag("wos", "wireframeOnShaded", {ArgType::Bool});
  editor.flag("dl", "displayLights", {ArgType::String}).flag("gr", "grid", {ArgType::Bool});
  editor.flag("av", "activeView").flag("alo", "allObjects", {ArgType::Bool});
  editor.flag("rnm", "rendererName", {ArgType::String});
  editor.flag("vs", "viewSelected", {ArgType::Bool});
  for (const Switch& each : kSwitches) editor.flag(each.shortName, each.longName, {ArgType::Bool});
  for (const Kept& flag : kKept) editor.flag(flag.shortName, flag.longName, {ArgType::Bool});
  defineQuery(registry, "modelEditor", editor.editable().queryable().strings(0, 1), modelEditor);
}

}  // namespace host::builtins
