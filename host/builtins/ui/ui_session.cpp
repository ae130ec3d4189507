#include "host/builtins/ui/ui_session.h"

#include "host/base/assert.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

using workspace::workspaceOf;

namespace {

/// What scripts know the parts of the main window by. Those that are not laid out here have the
/// names that scripts ask after with -exists.
constexpr std::pair<const char*, const char*> kGlobals[] = {
    {"$gMainWindow", ui::Tree::kMainWindowName.data()},
    {"$gMainPane", "viewPanes"},
    {"$gShelfTopLevel", "ShelfLayout"},
    {"$gMainProgressBar", "mainProgressBar"},
    {"$gToolBox", "toolBox"},
    {"$gCommandWindow", "commandWindow"},
    {"$gCommandReporter", "commandReporter"},
    {"$gCommandLineForm", "commandLineForm"},
    {"$gChannelBoxName", "mainChannelBox"},
    {"$gChannelBoxForm", "mainChannelBoxForm"},
    {"$gAttributeEditorForm", "mainAttributeEditorForm"},
    {"$gStatusLineForm", "statusLineForm"},
    {"$gHelpLineForm", "helpLineForm"},
    {"$gTimeRangeForm", "timeRangeForm"},
    {"$gPlayBackSlider", "timeSlider"},
    {"$gShelfForm", "shelfForm"},
    {"$gMainFileMenu", "mainFileMenu"},
    {"$gMainEditMenu", "mainEditMenu"},
    {"$gMainCreateMenu", "mainCreateMenu"},
    {"$gMainSelectMenu", "mainSelectMenu"},
    {"$gMainModifyMenu", "mainModifyMenu"},
    {"$gMainDisplayMenu", "mainDisplayMenu"},
    {"$gMainWindowMenu", "mainWindowMenu"},
    {"$gMainMeshMenu", "mainMeshMenu"},
    {"$gMainEditMeshMenu", "mainEditMeshMenu"},
    {"$gMainMeshToolsMenu", "mainMeshToolsMenu"},
    {"$gMainNormalsMenu", "mainNormalsMenu"},
    {"$gMainUVMenu", "mainUVMenu"},
    {"$gMainDeformMenu", "mainDeformMenu"},
    {"$gMainOptionsMenu", "mainOptionsMenu"},
    {"$gMainHelpMenu", "mainHelpMenu"},
};

/// The menus of the main window, so that scripts can put items of their own into them.
void addMainMenus(ui::Tree& tree) {
  const ui::ControlType& menu = *ui::findControlType("menu");
  for (const auto& [variable, control] : kGlobals) {
    const std::string_view name(control);
    if (!name.starts_with("main") || !name.ends_with("Menu")) continue;
    tree.setCurrentParent(nullptr);
    const auto made = tree.create(menu, name);
    HOST_ASSERT(made.has_value(), "lay out the main window before scripts do");
    const std::string_view label = name.substr(4, name.size() - 8);
    (*made)->setValue("label", {std::string(label)});
  }
}

}  // namespace

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
  addMainMenus(tree);
  tree.setCurrentParent(nullptr);
  for (const auto& [variable, control] : kGlobals) {
    const bool isNamed =
        session.interpreter().setGlobal(variable, mel::Value(std::string(control))).has_value();
    HOST_ASSERT(isNamed, "these variables hold texts");
    static_cast<void>(isNamed);
  }
}

}  // namespace host::builtins
