#include "host/builtins/ui/ui_session.h"

#include "host/base/assert.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::workspaceOf;

void prepareUi(cmd::Session& session) {
  ui::Tree& tree = workspaceOf(session).controls;
  const auto form = tree.create(*ui::findControlType("formLayout"), "mainLayout");
  HOST_ASSERT(form.has_value(), "lay out the main window before scripts do");
  const auto panes = tree.create(*ui::findControlType("paneLayout"), "viewPanes");
  HOST_ASSERT(panes.has_value(), "lay out the main window before scripts do");
  // The perspective alone fills the window of a new session.
  for (const auto& [panel, pane] : {std::pair("modelPanel4", 1), std::pair("modelPanel1", 2),
                                    std::pair("modelPanel2", 3), std::pair("modelPanel3", 4)})
    (*panes)->entries["setPane"].push_back({std::string(panel), pane});
  for (const auto& [type, control] :
       {std::pair("tabLayout", "ShelfLayout"), std::pair("progressBar", "mainProgressBar")}) {
    tree.setCurrentParent(*form);
    const auto made = tree.create(*ui::findControlType(type), control);
    HOST_ASSERT(made.has_value(), "lay out the main window before scripts do");
    static_cast<void>(made);
  }
  tree.setCurrentParent(nullptr);
  // What scripts know the parts of the main window by.
  const std::pair<const char*, const char*> globals[] = {
      {"$gMainWindow", ui::Tree::kMainWindowName.data()},
      {"$gMainPane", "viewPanes"},
      {"$gShelfTopLevel", "ShelfLayout"},
      {"$gMainProgressBar", "mainProgressBar"}};
  for (const auto& [variable, control] : globals) {
    const bool isNamed =
        session.interpreter().setGlobal(variable, mel::Value(std::string(control))).has_value();
    HOST_ASSERT(isNamed, "these variables hold texts");
    static_cast<void>(isNamed);
  }
}

}  // namespace host::builtins
