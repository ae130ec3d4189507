#include "host/window/tool_bar.h"

#include <QLabel>

#include "host/window/icons.h"
#include "host/workspace/workspace.h"

namespace host::window {

using workspace::workspaceOf;

ToolBar::ToolBar(Person& person, QWidget* parent) : QToolBar(parent), person_(person) {
  setObjectName("toolBar");
  setWindowTitle(tr("Tools"));
  setIconSize({22, 22});
  tools_ = {
      {"selectSuperContext", add(drawnIcon(DrawnIcon::Select), "SelectToolMarkingMenuNameCommand")},
      {"moveSuperContext",
       add(drawnIcon(DrawnIcon::Move), "TranslateToolWithSnapMarkingMenuNameCommand")},
      {"RotateSuperContext",
       add(drawnIcon(DrawnIcon::Rotate), "RotateToolWithSnapMarkingMenuNameCommand")},
      {"scaleSuperContext",
       add(drawnIcon(DrawnIcon::Scale), "ScaleToolWithSnapMarkingMenuNameCommand")}};
  current_ = new QLabel(this);
  current_->setObjectName("currentTool");
  current_->setMinimumWidth(150);
  current_->setContentsMargins(6, 0, 6, 0);
  addWidget(current_);
  addSeparator();
  objects_ = add(drawnIcon(DrawnIcon::Object), "ToggleSelectModeNameCommand");
  vertices_ = add(drawnIcon(DrawnIcon::Vertex), "SelectVertexNameCommand");
  edges_ = add(drawnIcon(DrawnIcon::Edge), "SelectEdgeNameCommand");
  faces_ = add(drawnIcon(DrawnIcon::Face), "SelectFaceNameCommand");
  addSeparator();
  wires_ = add(drawnIcon(DrawnIcon::Wireframe), "DisplayWireframeNameCommand");
  shaded_ = add(drawnIcon(DrawnIcon::Shaded), "DisplayShadedNameCommand");
  textured_ = add(drawnIcon(DrawnIcon::Textured), "DisplayShadedAndTexturedNameCommand");
  lights_ = add(drawnIcon(DrawnIcon::Lights), "DisplayLightsNameCommand");
  addSeparator();
  add(drawnIcon(DrawnIcon::Frame), "FrameSelectedNameCommand")->setCheckable(false);
  add(drawnIcon(DrawnIcon::Panes), "PanePopNameCommand")->setCheckable(false);
}

QAction* ToolBar::add(const QIcon& icon, const char* command) {
  QAction* action = addAction(icon, {});
  action->setCheckable(true);
  action->setObjectName(command);
  const auto& commands = workspaceOf(person_.session()).hotkeys.commands;
  if (const auto found = commands.find(command); found != commands.end())
    action->setToolTip(QString::fromStdString(found->second.annotation));
  connect(action, &QAction::triggered, this, [this, name = std::string(command)] {
    person_.runNamed(name);
    follow();
  });
  return action;
}

void ToolBar::follow() {
  workspace::Workspace& work = workspaceOf(person_.session());
  const std::string& name = work.toolbox.currentName();
  for (const auto& [context, action] : tools_) action->setChecked(context == name);
  // A tool of a plug-in has no button here; its name says that it is in the hand.
  current_->setText(QString::fromStdString(name));
  const bool isOwn = tools_.contains(name);
  current_->setStyleSheet(isOwn ? "color: #a0a4aa" : "color: #ffbe3c; font-weight: bold");
  const workspace::SelectionModes& modes = work.selectionModes;
  const auto picks = [&](const char* kind) {
    return modes.isComponentMode && modes.componentTypes.contains(kind);
  };
  objects_->setChecked(!modes.isComponentMode);
  vertices_->setChecked(picks("vertex"));
  edges_->setChecked(picks("edge"));
  faces_->setChecked(picks("facet"));
  const workspace::View& view = work.views.active();
  const bool isShaded = view.options.style == viewport::DisplayStyle::Shaded ||
                        view.options.style == viewport::DisplayStyle::WireOnShaded;
  wires_->setChecked(view.options.style == viewport::DisplayStyle::Wireframe);
  shaded_->setChecked(isShaded && !view.options.showTextures);
  textured_->setChecked(isShaded && view.options.showTextures);
  lights_->setChecked(view.lightsShown == "all");
}

}  // namespace host::window
