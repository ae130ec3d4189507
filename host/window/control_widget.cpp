#include "host/window/control_widget.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <algorithm>
#include <cmath>

#include "host/base/messages.h"
#include "host/ui/behaviours.h"
#include "host/window/attribute_widgets.h"
#include "host/window/field_widgets.h"
#include "host/window/icons.h"
#include "host/window/list_widgets.h"
#include "host/window/menus.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using ui::Control;
using ui::Values;

/// The control of a widget that acts, found by its path: what an earlier signal set off may have
/// removed it.
using Act = std::function<void(const Values& values, bool isDrag)>;

Act actOf(Person& person, const Control& control) {
  return [&person, path = ui::Tree::path(control)](const Values& values, bool isDrag) {
    auto& tree = workspace::workspaceOf(person.session()).controls;
    if (const auto found = tree.find(path)) actOn(person, **found, values, isDrag);
  };
}

ControlWidget makeText(const Control&, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextInteractionFlags(Qt::NoTextInteraction);
  return {label, [label](const Control& control) {
            label->setText(labelText(control));
            const std::string align = control.text("align");
            label->setAlignment(Qt::AlignVCenter | (align == "right"    ? Qt::AlignRight
                                                    : align == "center" ? Qt::AlignHCenter
                                                                        : Qt::AlignLeft));
          }};
}

ControlWidget makeButton(const Control&, const Act& act, QWidget* parent) {
  auto* button = new QPushButton(parent);
  QObject::connect(button, &QPushButton::clicked, button, [act] { act({}, false); });
  return {button, [button](const Control& control) {
            QString text = control.type->find("label") ? labelText(control) : QString();
            if (control.type->find("image")) {
              const std::string image = control.text("image");
              const QIcon icon = iconFor(image);
              button->setIcon(icon);
              button->setIconSize({24, 24});
              // A picture that isn't there is still a button with a name.
              const QString name = QString::fromStdString(image).section('/', -1);
              const bool showsIcon =
                  !icon.isNull() && control.text("style").find("text") == std::string::npos;
              if (showsIcon) text.clear();
              if (!showsIcon && text.isEmpty()) text = name.section('.', 0, 0);
            }
            button->setText(text);
          }};
}

ControlWidget makeCheckBox(const Control&, const Act& act, QWidget* parent) {
  auto* box = new QCheckBox(parent);
  QObject::connect(box, &QCheckBox::clicked, box, [act](bool isOn) { act({isOn ? 1 : 0}, false); });
  return {box, [box](const Control& control) {
            box->setText(control.type->find("label") ? labelText(control) : QString());
            box->setChecked(control.isOn("value"));
          }};
}

ControlWidget makeRadioButton(const Control&, const Act& act, QWidget* parent) {
  auto* button = new QRadioButton(parent);
  button->setAutoExclusive(false);
  QObject::connect(button, &QRadioButton::clicked, button, [act] { act({1}, false); });
  return {button, [button](const Control& control) {
            button->setText(labelText(control));
            button->setChecked(control.collection && control.collection->selected == &control);
          }};
}

ControlWidget makeTextField(const Control&, const Act& act, QWidget* parent) {
  auto* field = new QLineEdit(parent);
  QObject::connect(field, &QLineEdit::editingFinished, field, [field, act] {
    if (!field->isModified()) return;
    field->setModified(false);
    act({field->text().toStdString()}, false);
  });
  return {field, [field](const Control& control) {
            const QString text = QString::fromStdString(control.text("text"));
            if (field->text() != text) field->setText(text);
            field->setReadOnly(control.type->find("editable") && !control.isOn("editable"));
          }};
}

/// Tells when the person has left a text of several lines.
class LeavingText : public QPlainTextEdit {
 public:
  explicit LeavingText(QWidget* parent) : QPlainTextEdit(parent) {}
  std::function<void()> left;

 protected:
  void focusOutEvent(QFocusEvent* event) override {
    QPlainTextEdit::focusOutEvent(event);
    if (document()->isModified() && left) left();
  }
};

ControlWidget makeScrollField(const Control&, const Act& act, QWidget* parent) {
  auto* field = new LeavingText(parent);
  field->left = [field, act] {
    field->document()->setModified(false);
    act({field->toPlainText().toStdString()}, false);
  };
  return {field, [field](const Control& control) {
            const QString text = QString::fromStdString(control.text("text"));
            if (field->toPlainText() != text) field->setPlainText(text);
            field->setReadOnly(control.type->find("editable") && !control.isOn("editable"));
          }};
}

ControlWidget makeSeparator(const Control& control, QWidget* parent) {
  auto* line = new QFrame(parent);
  line->setFrameShape(control.isOn("horizontal") ? QFrame::HLine : QFrame::VLine);
  line->setFrameShadow(QFrame::Sunken);
  return {line, [line](const Control& now) {
            line->setFrameShadow(now.text("style") == "none" ? QFrame::Plain : QFrame::Sunken);
            line->setVisible(line->isVisible());
          }};
}

ControlWidget makePicture(const Control&, QWidget* parent) {
  auto* label = new QLabel(parent);
  return {label, [label](const Control& control) {
            const QIcon icon = iconFor(control.text("image"));
            constexpr int kMost = 4096;
            if (!icon.isNull()) label->setPixmap(icon.pixmap(QSize(kMost, kMost)));
          }};
}

/// A patch of one colour that can be pressed.
ControlWidget makeCanvas(const Act& act, QWidget* parent) {
  auto* patch = new QPushButton(parent);
  patch->setFlat(true);
  QObject::connect(patch, &QPushButton::clicked, patch, [act] { act({}, false); });
  return {patch, [patch](const Control& control) {
            const auto part = [](const Values& values, std::size_t i) {
              return static_cast<float>(std::clamp(ui::asReal(values, i), 0.0, 1.0));
            };
            QColor color;
            if (control.values.contains("hsvValue") && !control.values.contains("rgbValue")) {
              const Values hsv = control.value("hsvValue");
              const double hue = ui::asReal(hsv) / 360;
              color = QColor::fromHsvF(static_cast<float>(hue - std::floor(hue)), part(hsv, 1),
                                       part(hsv, 2));
            } else {
              const Values rgb = control.value("rgbValue");
              color = QColor::fromRgbF(part(rgb, 0), part(rgb, 1), part(rgb, 2));
            }
            patch->setStyleSheet("border: none; background-color: " + color.name());
          }};
}

ControlWidget makeProgressBar(const Control&, QWidget* parent) {
  auto* bar = new QProgressBar(parent);
  bar->setTextVisible(false);
  return {bar, [bar](const Control& control) {
            bar->setRange(ui::asInt(control.value("minValue")),
                          std::max(ui::asInt(control.value("maxValue")), 1));
            bar->setValue(ui::asInt(control.value("progress")));
          }};
}

ControlWidget makeTabs(const Control&, const Act& act, QWidget* parent) {
  auto* tabs = new QTabBar(parent);
  QObject::connect(tabs, &QTabBar::tabBarClicked, tabs, [act](int index) {
    if (index >= 0) act({index + 1}, false);
  });
  return {tabs, [tabs](const Control& control) {
            const QSignalBlocker quiet(tabs);
            while (tabs->count() > 0) tabs->removeTab(0);
            const auto labels = control.entries.find("tabLabel");
            for (const auto& child : control.children) {
              if (child->isKind(ui::Kind::Menu) || child->isKind(ui::Kind::Collection)) continue;
              QString label = QString::fromStdString(child->name);
              if (labels != control.entries.end())
                for (const Values& entry : labels->second)
                  if (ui::asText(entry) == child->name)
                    label = QString::fromStdString(ui::asText(entry, 1));
              const int index = tabs->addTab(label);
              if (control.selected == child.get()) tabs->setCurrentIndex(index);
            }
          }};
}

/// The head of a frame, which folds it.
ControlWidget makeFrame(const Control&, const Act& act, QWidget* parent) {
  auto* head = new QPushButton(parent);
  head->setFlat(true);
  head->setStyleSheet("text-align: left; font-weight: bold; padding-left: 4px;");
  const auto isFolded = std::make_shared<bool>(false);
  QObject::connect(head, &QPushButton::clicked, head,
                   [act, isFolded] { act({*isFolded ? 0 : 1}, false); });
  return {head, [head, isFolded](const Control& control) {
            *isFolded = control.isOn("collapse");
            const bool canFold = control.isOn("collapsable");
            head->setText((canFold ? (*isFolded ? "▸ " : "▾ ") : "") + labelText(control));
            head->setEnabled(canFold);
          }};
}

ControlWidget makeByType(Person& person, Control& control, QWidget* parent) {
  const std::string_view type = control.type->name;
  const Act act = actOf(person, control);
  if (type == "text") return makeText(control, parent);
  if (type == "button" || type == "iconTextButton" || type == "shelfButton" ||
      type == "symbolButton")
    return makeButton(control, act, parent);
  if (type == "checkBox" || type == "iconTextCheckBox" || type == "symbolCheckBox")
    return makeCheckBox(control, act, parent);
  if (type == "radioButton" || type == "iconTextRadioButton")
    return makeRadioButton(control, act, parent);
  if (type == "textField") return makeTextField(control, act, parent);
  if (type == "scrollField") return makeScrollField(control, act, parent);
  if (type == "separator") return makeSeparator(control, parent);
  if (type == "image" || type == "picture") return makePicture(control, parent);
  if (type == "progressBar") return makeProgressBar(control, parent);
  if (type == "tabLayout" || type == "shelfTabLayout") return makeTabs(control, act, parent);
  if (type == "frameLayout") return makeFrame(control, act, parent);
  const auto pressed = [&person, path = ui::Tree::path(control)] {
    const auto found = workspace::workspaceOf(person.session()).controls.find(path);
    if (found) person.runCallbacks(ui::scriptsOf(**found, {"buttonCommand"}));
  };
  if (ControlWidget field = makeFieldWidget(control, act, pressed, parent); field.widget)
    return field;
  if (type == "canvas") return makeCanvas(act, parent);
  if (ControlWidget list = makeListWidget(person, control, act, parent); list.widget) return list;
  if (ControlWidget row = makeAttributeWidget(person, control, parent); row.widget) return row;
  // Layouts show nothing of their own, and what has no widget yet keeps its place.
  return {new QWidget(parent), [](const Control&) {}};
}

}  // namespace

QString labelText(const Control& control, std::string_view attribute) {
  return QString::fromStdString(control.text(attribute)).replace("&", "&&");
}

void actOn(Person& person, Control& control, const Values& values, bool isDrag) {
  auto& tree = workspace::workspaceOf(person.session()).controls;
  const auto scripts = isDrag ? tree.userDrags(control, values) : tree.userSets(control, values);
  if (!scripts) {
    postMessage(MessageKind::Warning, scripts.error().message);
    person.lookSoon();
    return;
  }
  person.runCallbacks(*scripts);
}

ControlWidget makeControlWidget(Person& person, Control& control, QWidget* parent) {
  ControlWidget shown = makeByType(person, control, parent);
  shown.widget->setObjectName(QString::fromStdString(control.name));
  shown.widget->setAccessibleName(QString::fromStdString(control.name));
  givePopupMenu(person, control, *shown.widget);
  return shown;
}

}  // namespace host::window
