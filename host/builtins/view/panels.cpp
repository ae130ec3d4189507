// getPanel and modelPanel: the views by their panels' names.
#include <algorithm>
#include <cmath>

#include "host/builtins/common/command.h"
#include "host/workspace/panes.h"

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

/// A procedure of the host's own scripts elsewhere; scripts call it in the same way.
CommandResult panePop(Context& context, const ParsedArgs&) {
  workspace::togglePanes(workspaceOf(context.session));
  return mel::Value();
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
      return fail(ErrorKind::NotFound, "getPanel: Object '{}' not found.", args.text("typeOf"));
    return mel::Value("modelPanel");
  }
  if (args.has("type"))
    return toValue(args.text("type") == "modelPanel" ? panelNames(context)
                                                     : std::vector<std::string>{});
  // No script has made a panel of its own.
  if (args.has("scriptType")) return toValue(std::vector<std::string>{});
  if (args.has("visiblePanels"))
    return toValue(workspace::visiblePanels(workspaceOf(context.session)));
  if (args.has("all")) return toValue(panelNames(context));
  return fail(
      "getPanel: say which panels: -all, -type, -withFocus, -underPointer or -visiblePanels.");
}

Result<View*> viewNamed(Context& context, const ParsedArgs& args, const char* command) {
  View* view = workspaceOf(context.session).views.find(args.firstObject());
  if (!view)
    return fail(ErrorKind::NotFound, "{}: Object '{}' not found.", command, args.firstObject());
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

}  // namespace

void registerPanels(CommandRegistry& registry) {
  Syntax panels;
  panels.flag("all", "all")
      .flag("typ", "type", {ArgType::String})
      .flag("to", "typeOf", {ArgType::String})
      .flag("sty", "scriptType", {ArgType::String});
  panels.flag("wf", "withFocus").flag("up", "underPointer").flag("vis", "visiblePanels");
  defineQuery(registry, "getPanel", panels, getPanel);
  defineQuery(registry, "panePop", Syntax(), panePop);
  defineQuery(registry, "pointerPosition", Syntax().strings(1, 1), pointerPosition);
  Syntax panel;
  panel.flag("ex", "exists").flag("cam", "camera", {ArgType::String}).flag("me", "modelEditor");
  panel.flag("l", "label", {ArgType::String})
      .flag("p", "parent", {ArgType::String})
      .flag("mbv", "menuBarVisible", {ArgType::Bool});
  defineQuery(registry, "modelPanel", panel.editable().queryable().strings(0, 1), modelPanel);
}

}  // namespace host::builtins
