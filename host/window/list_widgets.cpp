#include "host/window/list_widgets.h"

#include <QKeyEvent>
#include <QListWidget>
#include <QTreeWidget>

#include "host/mel/literal.h"
#include "host/ui/behaviours.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using ui::Control;
using ui::Values;

/// Runs the scripts of one of a control's attributes, found by its path as it is then.
std::function<void(std::string_view attribute, const std::string& words)> runnerOf(
    Person& person, const Control& control) {
  return [&person, path = ui::Tree::path(control)](std::string_view attribute,
                                                   const std::string& words) {
    const auto found = workspace::workspaceOf(person.session()).controls.find(path);
    if (!found) return;
    std::vector<std::string> scripts = ui::scriptsOf(**found, {attribute});
    for (std::string& script : scripts) script += words;
    if (!scripts.empty()) person.runCallbacks(scripts);
  };
}

/// Tells of the key that deletes.
class List : public QListWidget {
 public:
  using QListWidget::QListWidget;
  std::function<void()> deleted;

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if ((event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) && deleted)
      return deleted();
    QListWidget::keyPressEvent(event);
  }
};

ControlWidget makeTextList(Person& person, const Control& control, const ControlAct& act,
                           QWidget* parent) {
  auto* list = new List(parent);
  const auto run = runnerOf(person, control);
  list->deleted = [run] { run("deleteKeyCommand", {}); };
  QObject::connect(list, &QListWidget::itemClicked, list, [list, act](QListWidgetItem*) {
    Values rows;
    for (int i = 0; i < list->count(); ++i)
      if (list->item(i)->isSelected()) rows.emplace_back(i + 1);
    act(rows, false);
  });
  QObject::connect(list, &QListWidget::itemDoubleClicked, list,
                   [run](QListWidgetItem*) { run("doubleClickCommand", {}); });
  return {list, [list](const Control& now) {
            list->clear();
            const auto texts = [&](std::string_view what) {
              QStringList all;
              const auto found = now.values.find(what);
              if (found != now.values.end())
                for (const ui::Atom& atom : found->second)
                  all += QString::fromStdString(ui::asText(atom));
              return all;
            };
            list->setSelectionMode(now.isOn("allowMultiSelection")
                                       ? QAbstractItemView::ExtendedSelection
                                       : QAbstractItemView::SingleSelection);
            list->addItems(texts("allItems"));
            const QStringList selected = texts("selected");
            for (int i = 0; i < list->count(); ++i)
              list->item(i)->setSelected(selected.contains(list->item(i)->text()));
          }};
}

/// The entries of a keyed attribute by their first argument.
QHash<QString, QString> textsByItem(const Control& view, std::string_view attribute) {
  QHash<QString, QString> texts;
  if (const auto found = view.entries.find(attribute); found != view.entries.end())
    for (const Values& entry : found->second)
      texts[QString::fromStdString(ui::asText(entry))] =
          QString::fromStdString(ui::asText(entry, 1));
  return texts;
}

ControlWidget makeTree(Person& person, const Control& control, const ControlAct& act,
                       QWidget* parent) {
  auto* tree = new QTreeWidget(parent);
  tree->setHeaderHidden(true);
  const auto run = runnerOf(person, control);
  QObject::connect(tree, &QTreeWidget::itemClicked, tree, [tree, act](QTreeWidgetItem* item, int) {
    const std::string name = item->data(0, Qt::UserRole).toString().toStdString();
    const bool isOneOfSeveral = tree->selectionMode() == QAbstractItemView::ExtendedSelection &&
                                (tree->selectedItems().size() > 1 || !item->isSelected());
    isOneOfSeveral ? act({name, item->isSelected() ? 1 : 0}, false) : act({name}, false);
  });
  QObject::connect(
      tree, &QTreeWidget::itemDoubleClicked, tree, [run](const QTreeWidgetItem* item, int) {
        const auto word = [](const QString& text) { return " " + mel::quoted(text.toStdString()); };
        run("itemDblClickCommand",
            word(item->data(0, Qt::UserRole).toString()) + word(item->text(0)));
      });
  return {tree, [tree](const Control& now) {
            tree->clear();
            tree->setSelectionMode(now.isOn("allowMultiSelection")
                                       ? QAbstractItemView::ExtendedSelection
                                       : QAbstractItemView::SingleSelection);
            const QHash<QString, QString> labels = textsByItem(now, "displayLabel");
            QHash<QString, QTreeWidgetItem*> items;
            const auto found = now.entries.find("addItem");
            if (found == now.entries.end()) return;
            for (const Values& entry : found->second) {
              const QString name = QString::fromStdString(ui::asText(entry));
              QTreeWidgetItem* above = items.value(QString::fromStdString(ui::asText(entry, 1)));
              auto* item = above ? new QTreeWidgetItem(above) : new QTreeWidgetItem(tree);
              item->setText(0, labels.value(name, name));
              item->setData(0, Qt::UserRole, name);
              items[name] = item;
            }
            tree->expandAll();
            if (const auto picked = now.entries.find("selectItem"); picked != now.entries.end())
              for (const Values& entry : picked->second)
                if (auto* item = items.value(QString::fromStdString(ui::asText(entry))))
                  item->setSelected(true);
          }};
}

}  // namespace

ControlWidget makeListWidget(Person& person, const Control& control, const ControlAct& act,
                             QWidget* parent) {
  if (control.type->name == "textScrollList") return makeTextList(person, control, act, parent);
  if (control.type->name == "treeView") return makeTree(person, control, act, parent);
  return {};
}

}  // namespace host::window
