#include "host/window/layout_window.h"

#include <QCloseEvent>
#include <QResizeEvent>
#include <QWheelEvent>
#include <algorithm>

#include "host/builtins/ui/control_values.h"
#include "host/window/menus.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using ui::Control;
using ui::ControlChange;
using ui::Kind;

ui::Tree& treeOf(Person& person) {
  return workspace::workspaceOf(person.session()).controls;
}

QRect toQt(const ui::Rect& rect) {
  return {rect.left, rect.top, rect.width, rect.height};
}

}  // namespace

LayoutWindow::LayoutWindow(Person& person, const Control& root, QWidget* parent)
    : QWidget(parent), person_(person), path_(ui::Tree::path(root)) {
  setObjectName(QString::fromStdString(root.name));
  setAccessibleName(QString::fromStdString(root.name));
  // A widget whose control goes must not act any more.
  changes_ = treeOf(person_).changed.connect([this](const Control& control, ControlChange change) {
    if (change != ControlChange::Removing) return;
    ui::Tree::visit(control, [this](const Control& gone) {
      const auto found = widgets_.find(&gone);
      if (found == widgets_.end()) return;
      found->second.widget->hide();
      found->second.widget->deleteLater();
      widgets_.erase(found);
    });
    seen_ = ~std::uint64_t{0};
  });
}

Control* LayoutWindow::root() const {
  const auto found = treeOf(person_).find(path_);
  return found ? *found : nullptr;
}

void LayoutWindow::followWindow(Control& window) {
  setWindowTitle(QString::fromStdString(window.text("title")));
  if (!wasPlaced_) {
    wasPlaced_ = true;
    const ui::Size natural = ui::naturalSize(window);
    const int width = ui::asInt(window.value("width")), height = ui::asInt(window.value("height"));
    resize(std::max(width, 40),
           std::max(window.isOn("resizeToFitChildren") ? natural.height : height, 40));
    if (window.values.contains("topEdge") || window.values.contains("leftEdge"))
      move(ui::asInt(window.value("leftEdge")), ui::asInt(window.value("topEdge")));
  }
  bool hasMenus = false;
  std::uint64_t menus = 0;
  for (const auto& child : window.children)
    if (child->isKind(Kind::Menu)) {
      hasMenus = true;
      menus = std::max(menus, child->revision) + 1;
    }
  if (hasMenus && menus != menusSeen_) {
    delete menuBar_;
    menuBar_ = new QMenuBar(this);
    fillMenuBar(person_, *menuBar_, window);
    menuBar_->show();
    menusSeen_ = menus;
  }
  setVisible(window.isOn("visible"));
}

void LayoutWindow::follow() {
  Control* const control = root();
  if (!control || isFollowing_) return;
  const ui::Tree& tree = treeOf(person_);
  if (tree.revision() == seen_ && size() == arrangedSize_) return;
  isFollowing_ = true;
  seen_ = tree.revision();
  if (control->isKind(Kind::Window)) followWindow(*control);
  arrangedSize_ = size();
  ui::Looks looks;
  looks.characterWidth = std::max(fontMetrics().averageCharWidth() + 1, 5);
  looks.lineHeight = std::max(fontMetrics().height() + 8, 22);
  looks.menuBarHeight = menuBar_ ? menuBar_->sizeHint().height() : looks.menuBarHeight;
  arrange(ui::layOut(*control, {width(), height()}, looks));
  if (menuBar_) menuBar_->setGeometry(0, 0, width(), menuBar_->sizeHint().height());
  isFollowing_ = false;
}

/// How far what stands in scroll layouts is moved up, and notes how far it reaches.
int LayoutWindow::shiftOf(const Control& control, const ui::Placed& placed) {
  const Control* scroll = control.parent;
  while (scroll && scroll->type->name != "scrollLayout") scroll = scroll->parent;
  if (!scroll) return 0;
  int& farthest = scrolled_[scroll];
  farthest = std::max(farthest, placed.rect.bottom() - placed.clip.bottom());
  return std::max(ui::asInt(scroll->value("scrollAreaValue")), 0);
}

void LayoutWindow::arrange(const ui::Geometry& geometry) {
  scrolled_.clear();
  for (const ui::Placed& placed : geometry.placed) {
    auto& control = const_cast<Control&>(*placed.control);
    if (control.isKind(Kind::Window)) continue;
    const int shift = shiftOf(control, placed);
    auto [found, isNew] = widgets_.try_emplace(&control);
    ControlWidget& shown = found->second;
    if (isNew) shown = makeControlWidget(person_, control, this);
    if (shown.revision != control.revision) {
      shown.revision = control.revision;
      const QSignalBlocker quiet(shown.widget);
      shown.sync(control);
      if (control.type->find("annotation"))
        shown.widget->setToolTip(QString::fromStdString(control.text("annotation")));
    }
    shown.widget->setEnabled(!control.type->find("enable") || control.isOn("enable"));
    QRect rect = toQt(placed.rect);
    const std::string_view type = control.type->name;
    // Of frames and tabs the widget is their head alone; what is in them stands beside it.
    if (type == "frameLayout") rect.setHeight(control.isOn("labelVisible") ? 22 : 0);
    if (type == "tabLayout" || type == "shelfTabLayout")
      rect.setHeight(control.isOn("tabsVisible") ? 26 : 0);
    const QRect clip = toQt(placed.clip);
    rect.translate(0, -shift);
    const bool isInSight = placed.isVisible && rect.intersects(clip) && !rect.isEmpty();
    shown.widget->setGeometry(rect);
    if (isInSight && !clip.contains(rect))
      shown.widget->setMask(clip.intersected(rect).translated(-rect.topLeft()));
    else
      shown.widget->clearMask();
    shown.widget->setVisible(isInSight);
    // Layouts come before what is in them, so this leaves the leaves on top.
    if (control.isKind(Kind::Layout))
      shown.widget->setAttribute(Qt::WA_TransparentForMouseEvents,
                                 type != "frameLayout" && !type.ends_with("abLayout"));
    shown.widget->raise();
  }
  for (const ui::PanelPlace& place : geometry.panels) {
    ViewWidget*& view = views_[place.panel];
    if (!view) view = new ViewWidget(person_, place.panel, this);
    view->setGeometry(toQt(place.rect));
    view->show();
    view->raise();
  }
}

void LayoutWindow::resizeEvent(QResizeEvent*) {
  Control* const control = root();
  // A size that the person gave is the window's, for scripts that ask.
  if (control && control->isKind(Kind::Window) && wasPlaced_ && !isFollowing_ && isVisible()) {
    control->setValue("width", {width()});
    control->setValue("height", {height()});
  }
  follow();
}

void LayoutWindow::closeEvent(QCloseEvent* event) {
  Control* const control = root();
  if (!control || !control->isKind(Kind::Window)) return event->accept();
  event->ignore();  // the tree says whether it goes
  auto scripts = treeOf(person_).userCloses(*control);
  cmd::Context context{person_.session(), person_.document()};
  if (!treeOf(person_).find(path_)) builtins::announceRemoved(context, {path_});
  if (scripts) person_.runCallbacks(*scripts);
}

void LayoutWindow::wheelEvent(QWheelEvent* event) {
  // The innermost scroll layout under the pointer.
  const QPoint at = event->position().toPoint();
  const Control* scroll = nullptr;
  for (const auto& [control, shown] : widgets_)
    if (control->type->name == "scrollLayout" && shown.widget->geometry().contains(at) &&
        (!scroll || shown.widget->height() < widgets_.at(scroll).widget->height()))
      scroll = control;
  if (!scroll) return event->ignore();
  auto& control = const_cast<Control&>(*scroll);
  const int wanted = ui::asInt(control.value("scrollAreaValue")) - event->angleDelta().y() / 3;
  control.setValue("scrollAreaValue", {std::clamp(wanted, 0, std::max(scrolled_[scroll], 0)), 0});
  treeOf(person_).touch(control);
}

}  // namespace host::window
