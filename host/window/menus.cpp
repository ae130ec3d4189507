#include "host/window/menus.h"

#include <QContextMenuEvent>
#include <QMouseEvent>

#include "host/ui/behaviours.h"
#include "host/window/control_widget.h"
#include "host/window/icons.h"
#include "host/workspace/last_command.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using ui::Control;
using ui::Kind;

ui::Tree& treeOf(Person& person) {
  return workspace::workspaceOf(person.session()).controls;
}

QKeySequence shortcutOf(const Control& item) {
  const std::string key = item.text("keyEquivalent");
  if (key.empty()) return {};
  QString text;
  if (item.isOn("ctrlModifier")) text += "Ctrl+";
  if (item.isOn("altModifier")) text += "Alt+";
  if (item.isOn("shiftModifier")) text += "Shift+";
  return QKeySequence(text + QString::fromStdString(key));
}

void addItem(Person& person, QMenu& menu, const Control& item) {
  if (!item.isOn("visible")) return;
  const QString label = labelText(item);
  if (item.isOn("divider")) {
    const QString title = QString::fromStdString(item.text("dividerLabel"));
    title.isEmpty() ? menu.addSeparator() : menu.addSection(title);
    return;
  }
  if (item.isOn("subMenu")) {
    QMenu* below = menu.addMenu(label);
    below->menuAction()->setEnabled(item.isOn("enable"));
    fillWhenOpened(person, *below, item);
    return;
  }
  // An option box belongs to the item before it; here it is a line of its own below that.
  QAction* action =
      menu.addAction(item.isOn("optionBox") ? "    " + QObject::tr("Options...") : label);
  action->setObjectName(QString::fromStdString(item.name));
  action->setEnabled(item.isOn("enable"));
  action->setStatusTip(QString::fromStdString(item.text("annotation")));
  action->setToolTip(QString::fromStdString(item.text("annotation")));
  action->setShortcut(shortcutOf(item));
  if (item.isOn("isCheckBox")) {
    action->setCheckable(true);
    action->setChecked(item.isOn("checked"));
  } else if (item.isOn("isRadioButton")) {
    action->setCheckable(true);
    action->setChecked(item.collection && item.collection->selected == &item);
  }
  action->setIcon(iconFor(item.type->find("image") ? item.text("image") : std::string()));
  QObject::connect(action, &QAction::triggered, action, [&person, path = ui::Tree::path(item)] {
    const auto found = treeOf(person).find(path);
    if (!found) return;
    if (const std::string line = (*found)->text("command"); !line.empty())
      workspace::workspaceOf(person.session()).kept<workspace::LastCommand>() = {
          line, (*found)->text("label")};
    actOn(person, **found, {});
  });
}

}  // namespace

void fillWhenOpened(Person& person, QMenu& menu, const Control& control) {
  menu.setToolTipsVisible(true);
  QObject::connect(&menu, &QMenu::aboutToShow, &menu,
                   [&person, &menu, path = ui::Tree::path(control)] {
                     const auto before = treeOf(person).find(path);
                     if (!before) return;
                     if ((*before)->type->find("postMenuCommand"))
                       person.runCallbacks(ui::scriptsOf(**before, {"postMenuCommand"}));
                     menu.clear();
                     const auto now = treeOf(person).find(path);
                     if (!now) return;
                     for (const auto& item : (*now)->children)
                       if (item->isKind(Kind::MenuItem)) addItem(person, menu, *item);
                   });
}

void fillMenuBar(Person& person, QMenuBar& bar, const Control& window) {
  for (const auto& child : window.children) {
    if (!child->isKind(Kind::Menu)) continue;
    QMenu* menu = bar.addMenu(labelText(*child));
    menu->setObjectName(QString::fromStdString(child->name));
    menu->menuAction()->setVisible(child->isOn("visible"));
    menu->menuAction()->setEnabled(child->isOn("enable"));
    fillWhenOpened(person, *menu, *child);
  }
}

namespace {

/// The pop-up menu of a control for a button with those modifiers; null without one.
const Control* popupOf(const Control& control, Qt::MouseButton button,
                       Qt::KeyboardModifiers modifiers) {
  const int number = button == Qt::LeftButton ? 1 : button == Qt::MiddleButton ? 2 : 3;
  for (const auto& child : control.children) {
    if (!child->isKind(Kind::Menu) || child->type->name != "popupMenu") continue;
    const bool fits = ui::asInt(child->value("button")) == number &&
                      child->isOn("ctrlModifier") == ((modifiers & Qt::ControlModifier) != 0) &&
                      child->isOn("shiftModifier") == ((modifiers & Qt::ShiftModifier) != 0) &&
                      child->isOn("altModifier") == ((modifiers & Qt::AltModifier) != 0);
    if (fits) return child.get();
  }
  return nullptr;
}

/// Opens the menus of a control when a button goes down over its widget, before the widget sees it.
class PopupOpener : public QObject {
 public:
  PopupOpener(Person& person, std::string path, QWidget& widget)
      : QObject(&widget), person_(person), path_(std::move(path)) {
    widget.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    auto& widget = static_cast<QWidget&>(*object);
    if (event->type() == QEvent::MouseButtonPress) {
      const auto& press = static_cast<const QMouseEvent&>(*event);
      return openPopup(person_, path_, widget, press.button(), press.modifiers(),
                       press.globalPosition().toPoint());
    }
    if (event->type() == QEvent::ContextMenu) {
      const auto& asked = static_cast<const QContextMenuEvent&>(*event);
      return asked.reason() == QContextMenuEvent::Keyboard &&
             openPopup(person_, path_, widget, Qt::RightButton, {}, asked.globalPos());
    }
    return false;
  }

 private:
  Person& person_;
  std::string path_;
};

}  // namespace

bool openPopup(Person& person, const std::string& path, QWidget& over, Qt::MouseButton button,
               Qt::KeyboardModifiers modifiers, QPoint at) {
  const auto found = treeOf(person).find(path);
  const Control* popup = found ? popupOf(**found, button, modifiers) : nullptr;
  if (!popup) return false;
  auto* menu = new QMenu(&over);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  fillWhenOpened(person, *menu, *popup);
  menu->popup(at);
  return true;
}

void givePopupMenu(Person& person, const Control& control, QWidget& widget) {
  new PopupOpener(person, ui::Tree::path(control), widget);
}

}  // namespace host::window
