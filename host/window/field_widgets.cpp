#include "host/window/field_widgets.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <algorithm>
#include <cmath>

namespace host::window {
namespace {

using ui::Control;
using ui::Values;

constexpr int kSliderSteps = 1000;

bool has(const Control& control, std::string_view attribute) {
  return control.type->find(attribute) != nullptr;
}

bool isWhole(const Control& control) {
  return control.type->name.starts_with("int");
}

QString numberText(const Control& control, double value) {
  if (isWhole(control)) return QString::number(static_cast<int>(value));
  const int digits = has(control, "precision") ? ui::asInt(control.value("precision")) : 0;
  return QString::number(value, 'f', digits > 0 ? digits : 3);
}

/// A row of widgets, the first of them a label as wide as the group's first column says.
struct Row {
  explicit Row(QWidget* parent) : widget(new QWidget(parent)), box(new QHBoxLayout(widget)) {
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(4);
    label = new QLabel(widget);
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    box->addWidget(label);
  }
  void syncLabel(const Control& control) const {
    const QString text = has(control, "label") ? labelText(control) : QString();
    label->setText(text);
    int width = 140;
    for (const char* columns : {"columnWidth", "cw"})
      if (const auto found = control.entries.find(columns); found != control.entries.end())
        for (const Values& entry : found->second)
          if (ui::asInt(entry) == 1) width = ui::asInt(entry, 1);
    if (text.isEmpty()) width = 0;
    label->setVisible(width > 0);
    label->setFixedWidth(width);
  }
  QWidget* widget;
  QHBoxLayout* box;
  QLabel* label;
};

/// A field for a number: what can't be read leaves the number as it was.
QLineEdit* makeNumberField(QWidget* parent, const std::function<void(double)>& entered) {
  auto* field = new QLineEdit(parent);
  field->setMinimumWidth(30);
  QObject::connect(field, &QLineEdit::editingFinished, field, [field, entered] {
    if (!field->isModified()) return;
    field->setModified(false);
    bool isNumber = false;
    const double value = field->text().toDouble(&isNumber);
    if (isNumber)
      entered(value);
    else
      field->undo();
  });
  return field;
}

ui::Atom numberAtom(bool isInt, double value) {
  if (isInt) return static_cast<int>(std::lround(value));
  return value;
}

struct Range {
  double low, high;
};

Range rangeOf(const Control& control) {
  const double low = ui::asReal(control.value("minValue"));
  const double high = ui::asReal(control.value("maxValue"));
  return high > low ? Range{low, high} : Range{low, low + 1};
}

QSlider* makeSlider(QWidget* parent, bool isInt, const ControlAct& act,
                    const std::shared_ptr<Range>& range) {
  auto* slider = new QSlider(Qt::Horizontal, parent);
  slider->setRange(0, kSliderSteps);
  const auto valueAt = [range](int step) {
    return range->low + (range->high - range->low) * step / kSliderSteps;
  };
  QObject::connect(slider, &QSlider::sliderMoved, slider, [act, isInt, valueAt](int step) {
    act({numberAtom(isInt, valueAt(step))}, true);
  });
  QObject::connect(slider, &QSlider::sliderReleased, slider, [slider, act, isInt, valueAt] {
    act({numberAtom(isInt, valueAt(slider->value()))}, false);
  });
  QObject::connect(slider, &QSlider::actionTriggered, slider,
                   [slider, act, isInt, valueAt](int what) {
                     if (what != QSlider::SliderMove)
                       act({numberAtom(isInt, valueAt(slider->sliderPosition()))}, false);
                   });
  return slider;
}

void syncSlider(QSlider& slider, const Range& range, double value) {
  if (slider.isSliderDown()) return;
  const double part = (value - range.low) / (range.high - range.low);
  slider.setValue(static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * kSliderSteps)));
}

void setNumber(QLineEdit& field, const QString& text) {
  if (!field.hasFocus() || !field.isModified()) field.setText(text);
}

ControlWidget makeNumber(const Control& control, const ControlAct& act, QWidget* parent) {
  const bool isInt = isWhole(control);
  auto* field = makeNumberField(
      parent, [act, isInt](double value) { act({numberAtom(isInt, value)}, false); });
  return {field, [field](const Control& now) {
            setNumber(*field, numberText(now, ui::asReal(now.value("value"))));
          }};
}

ControlWidget makeBareSlider(const Control& control, const ControlAct& act, QWidget* parent) {
  const auto range = std::make_shared<Range>(rangeOf(control));
  auto* slider = makeSlider(parent, isWhole(control), act, range);
  return {slider, [slider, range](const Control& now) {
            *range = rangeOf(now);
            syncSlider(*slider, *range, ui::asReal(now.value("value")));
          }};
}

/// Label, field, slider and perhaps a button.
ControlWidget makeSliderGroup(const Control& control, const ControlAct& act,
                              const std::function<void()>& pressed, QWidget* parent) {
  const Row row(parent);
  const bool isInt = isWhole(control);
  const auto range = std::make_shared<Range>(rangeOf(control));
  auto* field = makeNumberField(
      row.widget, [act, isInt](double value) { act({numberAtom(isInt, value)}, false); });
  field->setMaximumWidth(70);
  auto* slider = makeSlider(row.widget, isInt, act, range);
  row.box->addWidget(field);
  row.box->addWidget(slider, 1);
  field->setVisible(control.isOn("field"));
  QPushButton* button = nullptr;
  if (has(control, "buttonLabel")) {
    button = new QPushButton(row.widget);
    row.box->addWidget(button);
    QObject::connect(button, &QPushButton::clicked, button, pressed);
  }
  return {row.widget, [row, field, slider, range, button](const Control& now) {
            row.syncLabel(now);
            if (button) {
              button->setText(labelText(now, "buttonLabel"));
              button->setEnabled(now.isOn("enableButton"));
            }
            *range = rangeOf(now);
            setNumber(*field, numberText(now, ui::asReal(now.value("value"))));
            syncSlider(*slider, *range, ui::asReal(now.value("value")));
          }};
}

ControlWidget makeFieldGroup(const Control& control, const ControlAct& act, QWidget* parent) {
  const Row row(parent);
  const int count = std::clamp(ui::asInt(control.value("numberOfFields")), 1, 4);
  const bool isInt = isWhole(control);
  std::vector<QLineEdit*> fields;
  for (int i = 1; i <= count; ++i) {
    fields.push_back(makeNumberField(row.widget, [act, isInt, i](double value) {
      act({i, numberAtom(isInt, value)}, false);
    }));
    row.box->addWidget(fields.back(), 1);
  }
  return {row.widget, [row, fields](const Control& now) {
            row.syncLabel(now);
            for (std::size_t i = 0; i < fields.size(); ++i) {
              const std::string number = std::to_string(i + 1);
              setNumber(*fields[i], numberText(now, ui::asReal(now.value("value" + number))));
              fields[i]->setEnabled(now.isOn("enable" + number));
            }
          }};
}

template <class Button>
ControlWidget makeButtonGroup(const Control& control, const ControlAct& act, QWidget* parent,
                              std::string_view countName, bool isRadio) {
  const Row row(parent);
  const int count = std::clamp(ui::asInt(control.value(countName)), 1, 4);
  std::vector<Button*> buttons;
  for (int i = 1; i <= count; ++i) {
    auto* button = new Button(row.widget);
    button->setAutoExclusive(false);
    QObject::connect(button, &Button::clicked, button, [act, i, isRadio](bool isOn) {
      isRadio ? act({i}, false) : act({i, isOn ? 1 : 0}, false);
    });
    buttons.push_back(button);
    row.box->addWidget(button);
  }
  row.box->addStretch(1);
  return {row.widget, [row, buttons, isRadio](const Control& now) {
            row.syncLabel(now);
            const int selected = isRadio ? ui::asInt(now.value("select")) : 0;
            for (std::size_t i = 0; i < buttons.size(); ++i) {
              const std::string number = std::to_string(i + 1);
              buttons[i]->setText(labelText(now, "label" + number));
              buttons[i]->setChecked(isRadio ? selected == static_cast<int>(i) + 1
                                             : now.isOn("value" + number));
              buttons[i]->setEnabled(now.isOn("enable" + number));
            }
          }};
}

ControlWidget makeTextGroup(const Control& control, const ControlAct& act, QWidget* parent) {
  const Row row(parent);
  auto* field = new QLineEdit(row.widget);
  row.box->addWidget(field, 1);
  QObject::connect(field, &QLineEdit::editingFinished, field, [field, act] {
    if (!field->isModified()) return;
    field->setModified(false);
    act({field->text().toStdString()}, false);
  });
  QPushButton* button = nullptr;
  if (has(control, "buttonLabel")) {
    button = new QPushButton(row.widget);
    row.box->addWidget(button);
    QObject::connect(button, &QPushButton::clicked, button, [act] { act({}, false); });
  }
  return {row.widget, [row, field, button](const Control& now) {
            row.syncLabel(now);
            const QString text = QString::fromStdString(now.text("text"));
            if (field->text() != text) field->setText(text);
            if (button) button->setText(labelText(now, "buttonLabel"));
          }};
}

ControlWidget makeColorGroup(const Control&, const ControlAct& act, QWidget* parent) {
  const Row row(parent);
  auto* swatch = new QPushButton(row.widget);
  swatch->setFixedWidth(60);
  row.box->addWidget(swatch);
  row.box->addStretch(1);
  const auto color = std::make_shared<QColor>();
  QObject::connect(swatch, &QPushButton::clicked, swatch, [swatch, act, color] {
    const QColor chosen = QColorDialog::getColor(*color, swatch);
    if (chosen.isValid()) act({chosen.redF(), chosen.greenF(), chosen.blueF()}, false);
  });
  return {row.widget, [row, swatch, color](const Control& now) {
            row.syncLabel(now);
            const Values rgb = now.value("rgbValue");
            const auto part = [&](std::size_t i) {
              return static_cast<float>(std::clamp(ui::asReal(rgb, i), 0.0, 1.0));
            };
            *color = QColor::fromRgbF(part(0), part(1), part(2));
            swatch->setStyleSheet("background-color: " + color->name());
          }};
}

ControlWidget makeOptionMenu(const Control&, const ControlAct& act, QWidget* parent) {
  const Row row(parent);
  auto* choice = new QComboBox(row.widget);
  row.box->addWidget(choice, 1);
  QObject::connect(choice, &QComboBox::activated, choice,
                   [act](int index) { act({index + 1}, false); });
  return {row.widget, [row, choice](const Control& now) {
            row.syncLabel(now);
            const QSignalBlocker quiet(choice);
            choice->clear();
            for (const auto& item : now.children)
              if (item->isKind(ui::Kind::MenuItem))
                choice->addItem(QString::fromStdString(item->text("label")));
            choice->setCurrentIndex(ui::asInt(now.value("select")) - 1);
          }};
}

}  // namespace

ControlWidget makeFieldWidget(const Control& control, const ControlAct& act,
                              const std::function<void()>& pressed, QWidget* parent) {
  const std::string_view type = control.type->name;
  if (type == "intField" || type == "floatField") return makeNumber(control, act, parent);
  if (type == "intSlider" || type == "floatSlider") return makeBareSlider(control, act, parent);
  if (type == "intSliderGrp" || type == "floatSliderGrp" || type == "intSliderButtonGrp" ||
      type == "floatSliderButtonGrp")
    return makeSliderGroup(control, act, pressed, parent);
  if (type == "intFieldGrp" || type == "floatFieldGrp") return makeFieldGroup(control, act, parent);
  if (type == "checkBoxGrp")
    return makeButtonGroup<QCheckBox>(control, act, parent, "numberOfCheckBoxes", false);
  if (type == "radioButtonGrp")
    return makeButtonGroup<QRadioButton>(control, act, parent, "numberOfRadioButtons", true);
  if (type == "textFieldGrp" || type == "textFieldButtonGrp")
    return makeTextGroup(control, act, parent);
  if (type == "colorSliderGrp") return makeColorGroup(control, act, parent);
  if (type == "optionMenu" || type == "optionMenuGrp") return makeOptionMenu(control, act, parent);
  return {};
}

}  // namespace host::window
