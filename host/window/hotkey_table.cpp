#include "host/window/hotkey_table.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QInputDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "host/window/view_widget.h"
#include "host/workspace/hotkey_store.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using workspace::Hotkeys;
using workspace::KeyStroke;

constexpr const char* kOptionVar = "userHotkeys";

Hotkeys& hotkeysOf(cmd::Session& session) {
  return workspace::workspaceOf(session).hotkeys;
}

/// As a person reads it: "Shift+q" for what the table calls "Q".
QString textOf(const KeyStroke& stroke) {
  QString text;
  if (stroke.control) text += "Ctrl+";
  if (stroke.alt) text += "Alt+";
  const QString key = QString::fromStdString(stroke.key);
  const bool isShifted = key.size() == 1 && key[0].isUpper();
  return text + (isShifted ? "Shift+" + key.toLower() : key);
}

}  // namespace

KeyField::KeyField(QWidget* parent) : QLineEdit(parent) {
  setReadOnly(true);
  setPlaceholderText(tr("press a key here"));
  setObjectName("hotkeyField");
  setAccessibleName("hotkeyField");
}

void KeyField::clearStroke() {
  stroke_ = {};
  clear();
}

bool KeyField::event(QEvent* event) {
  // Else keys of menus would do their work instead.
  if (event->type() == QEvent::ShortcutOverride) {
    event->accept();
    return true;
  }
  return QLineEdit::event(event);
}

void KeyField::keyPressEvent(QKeyEvent* event) {
  const std::string key = keyName(*event);
  if (key.empty() || key == "Tab") return QLineEdit::keyPressEvent(event);
  stroke_ = {key, (event->modifiers() & Qt::AltModifier) != 0,
             (event->modifiers() & Qt::ControlModifier) != 0, false};
  setText(textOf(stroke_));
}

HotkeyTable::HotkeyTable(Person& person, QWidget* parent) : QDialog(parent), person_(person) {
  setWindowTitle(tr("Hot Keys"));
  setObjectName("hotkeyTable");
  setAttribute(Qt::WA_DeleteOnClose);
  resize(640, 520);
  auto* rows = new QVBoxLayout(this);
  table_ = new QTableWidget(0, 3, this);
  table_->setHorizontalHeaderLabels({tr("What it does"), tr("Keys"), tr("Command")});
  table_->setSelectionBehavior(QAbstractItemView::SelectRows);
  table_->setSelectionMode(QAbstractItemView::SingleSelection);
  table_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table_->verticalHeader()->hide();
  table_->horizontalHeader()->setStretchLastSection(true);
  table_->setColumnWidth(0, 230);
  rows->addWidget(table_);
  auto* tools = new QHBoxLayout;
  rows->addLayout(tools);
  key_ = new KeyField(this);
  tools->addWidget(key_);
  const auto button = [&](const QString& text, auto done) {
    auto* made = new QPushButton(text, this);
    made->setAutoDefault(false);
    connect(made, &QPushButton::clicked, this, done);
    tools->addWidget(made);
    return made;
  };
  button(tr("Assign"), [this] { assign(); })->setObjectName("hotkeyAssign");
  button(tr("Remove Keys"), [this] { remove(); });
  button(tr("New Command..."), [this] { makeCommand(); });
  button(tr("All as at First"), [this] {
    hotkeysOf(person_.session()).bindFactory();
    store(person_.session());
    follow();
  });
  note_ = new QLabel(this);
  rows->addWidget(note_);
  follow();
  table_->selectRow(0);
}

void HotkeyTable::follow() {
  const std::string before = chosen();
  const Hotkeys& hotkeys = hotkeysOf(person_.session());
  table_->setRowCount(0);
  for (const auto& [name, command] : hotkeys.commands) {
    QStringList keys;
    for (const auto& [stroke, bound] : hotkeys.bindings)
      if (bound.press == name) keys += textOf(stroke);
    const int row = table_->rowCount();
    table_->insertRow(row);
    const QString about = QString::fromStdString(command.annotation);
    auto* first = new QTableWidgetItem(about.isEmpty() ? QString::fromStdString(name) : about);
    first->setData(Qt::UserRole, QString::fromStdString(name));
    table_->setItem(row, 0, first);
    table_->setItem(row, 1, new QTableWidgetItem(keys.join("  ")));
    table_->setItem(row, 2, new QTableWidgetItem(QString::fromStdString(command.line)));
    if (name == before) table_->selectRow(row);
  }
}

std::string HotkeyTable::chosen() const {
  const int row = table_->currentRow();
  const QTableWidgetItem* item = row < 0 ? nullptr : table_->item(row, 0);
  return item ? item->data(Qt::UserRole).toString().toStdString() : std::string();
}

void HotkeyTable::assign() {
  const std::string name = chosen();
  const KeyStroke stroke = key_->stroke();
  if (name.empty() || stroke.key.empty()) {
    note_->setText(tr("Choose a command, and press a key in the field."));
    return;
  }
  Hotkeys& hotkeys = hotkeysOf(person_.session());
  const auto before = hotkeys.bindings.find(stroke);
  const std::string had = before == hotkeys.bindings.end() ? "" : before->second.press;
  hotkeys.bindings[stroke].press = name;
  note_->setText(had.empty() || had == name
                     ? QString()
                     : tr("%1 ran %2 before.").arg(textOf(stroke), QString::fromStdString(had)));
  key_->clearStroke();
  store(person_.session());
  follow();
}

void HotkeyTable::remove() {
  const std::string name = chosen();
  std::erase_if(hotkeysOf(person_.session()).bindings,
                [&](const auto& each) { return each.second.press == name; });
  store(person_.session());
  follow();
}

void HotkeyTable::makeCommand() {
  bool isDone = false;
  const QString line = QInputDialog::getMultiLineText(this, tr("New Command"),
                                                      tr("MEL that the key runs:"), {}, &isDone);
  if (!isDone || line.trimmed().isEmpty()) return;
  Hotkeys& hotkeys = hotkeysOf(person_.session());
  int number = 1;
  while (hotkeys.commands.contains("userCommand" + std::to_string(number))) ++number;
  // A line stays one where it is kept.
  std::string text = line.toStdString();
  std::ranges::replace(text, '\t', ' ');
  hotkeys.commands["userCommand" + std::to_string(number)] = {
      line.section('\n', 0, 0).left(40).toStdString(), text, false};
  store(person_.session());
  follow();
}

void HotkeyTable::restore(cmd::Session& session) {
  const cmd::OptionVars::Value* kept = session.optionVars().find(kOptionVar);
  if (!kept) return;
  if (const auto* lines = std::get_if<std::vector<std::string>>(kept))
    workspace::takeHotkeys(hotkeysOf(session), *lines);
}

void HotkeyTable::store(cmd::Session& session) {
  std::vector<std::string> lines = workspace::hotkeyChanges(hotkeysOf(session));
  if (lines.empty())
    session.optionVars().remove(kOptionVar);
  else
    session.optionVars().set(kOptionVar, std::move(lines));
}

}  // namespace host::window
