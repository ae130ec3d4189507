#include "host/window/attribute_widgets.h"

#include <QColorDialog>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <algorithm>
#include <cmath>

#include "host/base/messages.h"
#include "host/cmd/plug_values.h"
#include "host/ui/behaviours.h"
#include "host/window/typed_number.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using ui::Control;

constexpr int kLabelWidth = 140, kSliderSteps = 1000;

/// "translateX" as people read it: "Translate X".
QString niceName(const dg::Attribute& attribute) {
  if (!attribute.niceName.empty()) return QString::fromStdString(attribute.niceName);
  QString text;
  for (const QChar each : QString::fromStdString(attribute.longName)) {
    if (text.isEmpty())
      text += each.toUpper();
    else if (each.isUpper())
      text += QString(" ") + each;
    else
      text += each;
  }
  return text;
}

/// A row for one attribute: a label, and what shows its numbers.
class AttributeRow : public QWidget {
 public:
  AttributeRow(Person& person, const Control& control, QWidget* parent)
      : QWidget(parent), person_(person), path_(ui::Tree::path(control)) {
    box_ = new QHBoxLayout(this);
    box_->setContentsMargins(0, 0, 0, 0);
    box_->setSpacing(4);
    label_ = new QLabel(this);
    label_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label_->setFixedWidth(kLabelWidth);
    box_->addWidget(label_);
    const std::string_view type = control.type->name;
    if (type == "attrColorSliderGrp")
      addColor();
    else if (type.starts_with("attrEnum"))
      addChoice();
    else
      addNumbers(control);
    looking_ = person_.looked.connect([this](Person::Parts parts) {
      if ((parts & Person::kPanels) != 0) follow();
    });
  }

  /// The attribute that the control names now, and its label.
  void take(const Control& control) {
    name_ = control.text("attribute");
    if (name_.empty()) return;
    const auto plug = person_.document().plug(name_);
    QString text = labelText(control);
    if (text.isEmpty() && plug) text = niceName(*plug->attribute());
    label_->setText(text);
    if (slider_) {
      low_ = number(control, "sliderMinValue", "minValue");
      high_ = number(control, "sliderMaxValue", "maxValue");
      if (plug && !(high_ > low_)) {
        low_ = plug->attribute()->softMinimum.value_or(plug->attribute()->minimum.value_or(0));
        high_ =
            plug->attribute()->softMaximum.value_or(plug->attribute()->maximum.value_or(low_ + 1));
      }
      if (!(high_ > low_)) high_ = low_ + 1;
    }
    follow();
  }

 private:
  static double number(const Control& control, const char* first, const char* second) {
    return ui::asReal(control.value(control.values.contains(first) ? first : second));
  }

  /// The leaves of the attribute: itself, or its numbers.
  [[nodiscard]] std::vector<dg::Plug> leaves() const {
    std::vector<dg::Plug> all;
    const auto plug = person_.document().plug(name_);
    if (!plug) return all;
    if (!plug->attribute()->isCompound()) return {*plug};
    for (const auto& child : plug->attribute()->children) all.push_back(plug->child(child.get()));
    return all;
  }

  [[nodiscard]] std::vector<double> numbers() const {
    std::vector<double> all;
    for (const dg::Plug& plug : leaves()) {
      const auto value =
          cmd::readPlug(person_.document().graph(), person_.document().units(), plug);
      all.push_back(value ? value->toFloat().value_or(0) : 0);
    }
    return all;
  }

  void write(const std::vector<std::pair<std::size_t, double>>& values) {
    const bool isDone = person_.edit("setAttr", [&]() -> Result<void> {
      const std::vector<dg::Plug> plugs = leaves();
      for (const auto& [place, value] : values) {
        if (place >= plugs.size()) return fail("There is no attribute {}.", name_);
        HOST_TRY(cmd::writeLeaf(person_.document().graph(), person_.document().units(),
                                plugs[place], mel::Value(value)));
      }
      return {};
    });
    if (!isDone) return;
    const auto found = workspace::workspaceOf(person_.session()).controls.find(path_);
    if (found) person_.runCallbacks(ui::scriptsOf(**found, {"changeCommand"}));
  }

  void addNumbers(const Control& control) {
    const int most = std::clamp(ui::asInt(control.value("numberOfFields")), 1, 4);
    for (int i = 0; i < most; ++i) {
      auto* field = new QLineEdit(this);
      const auto place = static_cast<std::size_t>(i);
      connect(field, &QLineEdit::editingFinished, this, [this, field, place] {
        if (!field->isModified()) return;
        field->setModified(false);
        const std::vector<dg::Plug> plugs = leaves();
        if (place >= plugs.size()) return;
        const auto typed = readTyped(field->text().toStdString(), *plugs[place].attribute(),
                                     person_.document().units());
        if (!typed) postMessage(MessageKind::Error, typed.error().message);
        if (typed) write({{place, *typed}});
        person_.lookSoon(Person::kPanels);
      });
      fields_.push_back(field);
      box_->addWidget(field, 1);
    }
    if (control.type->name != "attrFieldSliderGrp") return;
    slider_ = new QSlider(Qt::Horizontal, this);
    slider_->setRange(0, kSliderSteps);
    connect(slider_, &QSlider::sliderReleased, this, [this] {
      write({{0, low_ + (high_ - low_) * slider_->value() / kSliderSteps}});
    });
    box_->addWidget(slider_, 2);
  }

  void addColor() {
    swatch_ = new QPushButton(this);
    swatch_->setFixedWidth(60);
    box_->addWidget(swatch_);
    box_->addStretch(1);
    connect(swatch_, &QPushButton::clicked, this, [this] {
      const QColor chosen = QColorDialog::getColor(color_, this);
      if (chosen.isValid()) write({{0, chosen.redF()}, {1, chosen.greenF()}, {2, chosen.blueF()}});
    });
  }

  void addChoice() {
    choice_ = new QComboBox(this);
    box_->addWidget(choice_, 1);
    connect(choice_, &QComboBox::activated, this, [this](int index) {
      write({{0, choice_->itemData(index).toDouble()}});
    });
  }

  void follow() {
    const std::vector<dg::Plug> plugs = leaves();
    const std::vector<double> now = numbers();
    setEnabled(!plugs.empty() && plugs.front().attribute()->writable);
    for (std::size_t i = 0; i < fields_.size(); ++i) {
      fields_[i]->setVisible(i == 0 || i < now.size());
      if (i < now.size() && !(fields_[i]->hasFocus() && fields_[i]->isModified()))
        fields_[i]->setText(QString::number(now[i], 'g', 6));
    }
    if (now.empty()) return;
    if (slider_ && !slider_->isSliderDown()) {
      const double part = std::clamp((now[0] - low_) / (high_ - low_), 0.0, 1.0);
      slider_->setValue(static_cast<int>(std::lround(part * kSliderSteps)));
    }
    if (swatch_ && now.size() >= 3) {
      const auto part = [&](std::size_t i) {
        return static_cast<float>(std::clamp(now[i], 0.0, 1.0));
      };
      color_ = QColor::fromRgbF(part(0), part(1), part(2));
      swatch_->setStyleSheet("background-color: " + color_.name());
    }
    if (!choice_) return;
    const QSignalBlocker quiet(choice_);
    choice_->clear();
    for (const dg::EnumField& field : plugs.front().attribute()->enumFields)
      choice_->addItem(QString::fromStdString(field.name), static_cast<double>(field.value));
    choice_->setCurrentIndex(choice_->findData(now[0]));
  }

  Person& person_;
  std::string path_, name_;  ///< of the control, of the attribute
  QHBoxLayout* box_;
  QLabel* label_;
  std::vector<QLineEdit*> fields_;
  QSlider* slider_ = nullptr;
  QPushButton* swatch_ = nullptr;
  QComboBox* choice_ = nullptr;
  QColor color_;
  double low_ = 0, high_ = 1;
  Connection looking_;
};

}  // namespace

ControlWidget makeAttributeWidget(Person& person, const Control& control, QWidget* parent) {
  const std::string_view type = control.type->name;
  if (!type.starts_with("attr")) return {};
  auto* row = new AttributeRow(person, control, parent);
  return {row, [row](const Control& now) { row->take(now); }};
}

}  // namespace host::window
