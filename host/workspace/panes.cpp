#include "host/workspace/panes.h"

namespace host::workspace {
namespace {

ui::Control* panesOf(Workspace& workspace) {
  const auto found = workspace.controls.find("viewPanes");
  return found ? *found : nullptr;
}

std::string panelIn(Workspace& workspace, const ui::Control& panes, int place) {
  const ui::Attribute* pane = panes.type->find("pane" + std::to_string(place));
  return ui::asText(workspace.controls.get(panes, *pane));
}

}  // namespace

std::vector<std::string> visiblePanels(Workspace& workspace) {
  std::vector<std::string> names;
  const ui::Control* const panes = panesOf(workspace);
  if (!panes) return names;
  const int count =
      ui::asInt(workspace.controls.get(*panes, *panes->type->find("numberOfVisiblePanes")));
  for (int i = 1; i <= count; ++i) names.push_back(panelIn(workspace, *panes, i));
  return names;
}

void togglePanes(Workspace& workspace) {
  ui::Control* const panes = panesOf(workspace);
  if (!panes) return;
  const bool wasSingle = panes->text("configuration") == "single";
  if (!wasSingle) {
    // The one under the pointer, else the active one, and the one in the first place change places.
    for (const View& view : workspace.views.all())
      if (view.hasCursor) {
        workspace.views.setActive(view.panel);
        break;
      }
    const std::string active = workspace.views.active().panel;
    const std::string first = panelIn(workspace, *panes, 1);
    for (int i = 2; i <= 4; ++i)
      if (panelIn(workspace, *panes, i) == active) {
        panes->entries["setPane"].push_back({first, i});
        panes->entries["setPane"].push_back({active, 1});
        break;
      }
  }
  const auto done = workspace.controls.set(*panes, *panes->type->find("configuration"),
                                           {std::string(wasSingle ? "quad" : "single")});
  HOST_ASSERT(done.has_value(), "a pane layout has these configurations");
}

}  // namespace host::workspace
