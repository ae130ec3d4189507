#include "host/builtins/ui/ui_session.h"

#include "host/base/assert.h"
#include "host/ui/tree.h"

namespace host::builtins {

void prepareUi(cmd::Session& session) {
  ui::Tree& tree = session.service<ui::Tree>();
  const auto panes = tree.create(*ui::findControlType("paneLayout"), "viewPanes");
  HOST_ASSERT(panes.has_value(), "lay out the main window before scripts do");
  // The perspective alone fills the window of a new session.
  for (const auto& [panel, pane] : {std::pair("modelPanel4", 1), std::pair("modelPanel1", 2), std::pair("modelPanel2", 3),
                                    std::pair("modelPanel3", 4)})
    (*panes)->entries["setPane"].push_back({std::string(panel), pane});
  tree.setCurrentParent(nullptr);
  const mel::Value name{std::string(ui::Tree::kMainWindowName)};
  bool isNamed = session.interpreter().setGlobal("$gMainWindow", name).has_value();
  isNamed = session.interpreter().setGlobal("$gMainPane", mel::Value("viewPanes")).has_value() && isNamed;
  HOST_ASSERT(isNamed, "these variables hold texts");
  static_cast<void>(isNamed);
}

}  // namespace host::builtins
