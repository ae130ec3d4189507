#include "host/window/scene_panels.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTreeWidgetItemIterator>
#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "host/base/messages.h"
#include "host/cmd/plug_values.h"
#include "host/edits/hierarchy.h"
#include "host/edits/select.h"
#include "host/scene/dag_paths.h"
#include "host/window/typed_number.h"

namespace host::window {
namespace {

/// Places of instances that get a row.
constexpr std::uint64_t kMostRows = 5'000;

constexpr int kNameRole = Qt::UserRole, kPathRole = Qt::UserRole + 1;

QString text(const std::string& plain) {
  return QString::fromStdString(plain);
}

/// The hierarchy as one text, to see whether it is another one.
std::string hierarchyText(scene::Document& document) {
  std::string all;
  const auto add = [&](const std::string& name, const std::vector<scene::Node*>& children) {
    all += name + "(";
    for (const scene::Node* child : children) all += child->name() + " ";
    all += ")";
  };
  add({}, document.worldChildren());
  for (const scene::Node* node : scene::nodesBelow(document.worldChildren()))
    add(node->name(), scene::dagLinks(*node).children);
  return all;
}

}  // namespace

// Outliner

Outliner::Outliner(Person& person, QWidget* parent) : QTreeWidget(parent), person_(person) {
  setHeaderHidden(true);
  setSelectionMode(ExtendedSelection);
  setDragDropMode(InternalMove);
  setObjectName("outliner");
  setAccessibleName("outliner");
  setEditTriggers(DoubleClicked | EditKeyPressed);
  connect(this, &QTreeWidget::itemSelectionChanged, this, [this] { select(); });
  connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int) {
    if (isFollowing_) return;
    const auto node = person_.document().node(item->data(0, kPathRole).toString().toStdString());
    const std::string wanted = item->text(0).toStdString();
    shown_.clear();
    if (!node || (*node)->name() == wanted) return person_.lookSoon();
    person_.edit("rename", [&]() -> Result<void> {
      const auto name = person_.document().rename(**node, wanted);
      if (!name) return failWith(name.error());
      return {};
    });
  });
}

void Outliner::addRows(const std::vector<scene::Node*>& tops) {
  scene::PlaceBudget budget(kMostRows);
  for (scene::Node* top : tops) {
    std::vector<QTreeWidgetItem*> levels;  // of the nodes from the top to the one visited
    scene::PathWalk walk(scene::DagPath().child(top), scene::PathWalk::Children::InOrder, &budget);
    while (!walk.isDone()) {
      if (scene::isShape(walk.node())) {
        walk.skipBelow();
        continue;
      }
      levels.resize(walk.depth());
      auto* item = new QTreeWidgetItem;
      item->setText(0, text(walk.node().name()));
      item->setData(0, kPathRole, text(walk.path().fullName()));
      item->setFlags(item->flags() | Qt::ItemIsEditable | Qt::ItemIsDragEnabled |
                     Qt::ItemIsDropEnabled);
      levels.empty() ? addTopLevelItem(item) : levels.back()->addChild(item);
      levels.push_back(item);
      walk.next();
    }
  }
  if (!budget.leftOut()) return;
  auto* rest = new QTreeWidgetItem;
  rest->setText(0, text(fmt::format("(more than {} places of instances: the rest is not listed)",
                                    kMostRows)));
  rest->setFlags(Qt::NoItemFlags);
  addTopLevelItem(rest);
}

void Outliner::follow() {
  isFollowing_ = true;
  scene::Document& document = person_.document();
  if (std::string now = hierarchyText(document); now != shown_) {
    shown_ = std::move(now);
    clear();
    addRows(document.worldChildren());
    expandToDepth(1);
  }
  std::unordered_set<std::string> selected;
  for (const scene::SelectionItem& item : document.selection().items())
    if (item.isDag()) selected.insert(item.path.transform().fullName());
  for (QTreeWidgetItemIterator each(this); *each != nullptr; ++each)
    (*each)->setSelected(selected.contains((*each)->data(0, kPathRole).toString().toStdString()));
  isFollowing_ = false;
}

void Outliner::select() {
  if (isFollowing_) return;
  scene::SelectionList list;
  for (const QTreeWidgetItem* item : selectedItems())
    if (const auto path =
            person_.document().dagPath(item->data(0, kPathRole).toString().toStdString()))
      list.add(*path);
  if (list == person_.document().selection()) return;
  person_.edit("select", [&]() -> Result<void> {
    edits::select(person_.document(), list);
    return {};
  });
}

void Outliner::dropEvent(QDropEvent* event) {
  const QTreeWidgetItem* target = itemAt(event->position().toPoint());
  const bool isOnRow = target && dropIndicatorPosition() == OnItem;
  event->ignore();  // the scene moves them, and the rows follow
  scene::Document& document = person_.document();
  dg::Node* parent = nullptr;
  if (isOnRow)
    if (const auto node = document.node(target->data(0, kPathRole).toString().toStdString()))
      parent = *node;
  person_.edit("parent", [&]() -> Result<void> {
    for (const QTreeWidgetItem* item : selectedItems()) {
      const auto path = document.dagPath(item->data(0, kPathRole).toString().toStdString());
      if (!path) return failWith(path.error());
      HOST_TRY(edits::reparent(document, *path, parent));
    }
    return {};
  });
}

// Attributes

/// What a row says: a node's head, or an attribute and what it is.
struct AttributePanel::Row {
  std::string name, value, plug;  ///< the plug is empty for a node's head
  bool isFree = false;
  friend bool operator==(const Row&, const Row&) = default;
};

AttributePanel::~AttributePanel() = default;

AttributePanel::AttributePanel(Person& person, QWidget* parent)
    : QTreeWidget(parent), person_(person), shown_(std::make_unique<std::vector<Row>>()) {
  setColumnCount(2);
  setHeaderLabels({tr("Attribute"), tr("Value")});
  setObjectName("attributes");
  setAccessibleName("attributes");
  setEditTriggers(NoEditTriggers);
  connect(this, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item, int) {
    if ((item->flags() & Qt::ItemIsEditable) != 0) editItem(item, 1);
  });
  connect(this, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int column) {
    if (!isFollowing_ && column == 1) change(item);
  });
}

void AttributePanel::readNode(dg::Node& node, std::vector<Row>& rows) {
  dg::Graph& graph = person_.document().graph();
  const scene::Units& units = person_.document().units();
  rows.push_back({node.name(), node.type().name, {}, false});
  const auto add = [&](const dg::Attribute& attribute, const auto& self) -> void {
    if (attribute.hidden || attribute.isArray || !attribute.readable) return;
    if (attribute.isCompound()) {
      for (const auto& child : attribute.children) self(*child, self);
      return;
    }
    if (attribute.type == dg::AttributeType::Typed || attribute.type == dg::AttributeType::Matrix ||
        attribute.type == dg::AttributeType::Message ||
        attribute.type == dg::AttributeType::Generic)
      return;
    const dg::Plug plug = node.plug(&attribute);
    const auto value = cmd::readPlug(graph, units, plug);
    if (!value) return;
    rows.push_back({attribute.longName, value->toText().value_or(""),
                    node.name() + "." + attribute.longName,
                    attribute.writable && graph.source(plug).isNull()});
  };
  for (const auto& attribute : node.type().attributes())
    if (attribute->keyable || !scene::isDagNode(node)) add(*attribute, add);
  for (const auto& attribute : node.dynamicAttributes()) add(*attribute, add);
}

void AttributePanel::show(const std::vector<Row>& rows) {
  const int scrolledTo = verticalScrollBar()->value();
  clear();
  QTreeWidgetItem* head = nullptr;
  for (const Row& each : rows) {
    const QStringList columns{text(each.name), text(each.value)};
    if (each.plug.empty()) {
      head = new QTreeWidgetItem(this, columns);
      continue;
    }
    auto* row = new QTreeWidgetItem(head, columns);
    row->setData(0, kNameRole, text(each.plug));
    if (each.isFree) row->setFlags(row->flags() | Qt::ItemIsEditable);
    if (!each.isFree) row->setForeground(1, QColor(150, 150, 150));
  }
  expandAll();
  resizeColumnToContents(0);
  verticalScrollBar()->setValue(scrolledTo);
}

void AttributePanel::follow() {
  scene::Document& document = person_.document();
  std::vector<dg::Node*> nodes;
  for (auto item = document.selection().items().rbegin();
       item != document.selection().items().rend(); ++item) {
    if (!item->isDag()) {
      if (item->node) nodes.push_back(item->node.get());
      break;
    }
    nodes.push_back(item->path.transform().node());
    const scene::DagPath shape = item->path.toShape();
    if (shape.isWorld()) break;
    nodes.push_back(shape.node());
    // The chain that makes the shape, the newest step first.
    constexpr std::size_t kMostSteps = 40;
    dg::Node* at = shape.node();
    while (at && nodes.size() < kMostSteps) {
      dg::Node* next = nullptr;
      for (const dg::Graph::Connection& feed : document.graph().incoming(*at))
        if (feed.source.node() != at && !scene::isDagNode(*feed.source.node()) && !next)
          next = feed.source.node();
      if (!next || std::ranges::find(nodes, next) != nodes.end()) break;
      nodes.push_back(next);
      at = next;
    }
    break;
  }
  std::vector<Row> rows;
  for (dg::Node* node : nodes) readNode(*node, rows);
  // Rows that say the same stay, and so does what is being typed into one.
  if (rows == *shown_ || state() == EditingState) return;
  isFollowing_ = true;
  show(rows);
  isFollowing_ = false;
  *shown_ = std::move(rows);
}

void AttributePanel::mousePressEvent(QMouseEvent* event) {
  QTreeWidgetItem* item = itemAt(event->position().toPoint());
  const bool isNumber = item && (item->flags() & Qt::ItemIsEditable) != 0;
  if (event->button() != Qt::MiddleButton || !isNumber) return QTreeWidget::mousePressEvent(event);
  const std::string name = item->data(0, kNameRole).toString().toStdString();
  scene::Document& document = person_.document();
  const auto plug = document.plug(name);
  if (!plug || plug->attribute()->type == dg::AttributeType::String) return;
  bool isRead = false;
  drag_ = {name, item->text(1).toDouble(&isRead), event->position().x(), false, nullptr};
  if (!isRead) return;
  using Type = dg::AttributeType;
  const Type type = plug->attribute()->type;
  drag_.isWhole = type != Type::Double && type != Type::Float && type != Type::Distance &&
                  type != Type::Angle && type != Type::Time;
  drag_.gesture = std::make_unique<edits::Gesture>(document, steps_, "setAttr");
  setCursor(Qt::SizeHorCursor);
}

void AttributePanel::mouseMoveEvent(QMouseEvent* event) {
  if (!drag_.gesture) return QTreeWidget::mouseMoveEvent(event);
  const bool isCoarse = (event->modifiers() & Qt::ShiftModifier) != 0;
  const bool isFine = (event->modifiers() & Qt::ControlModifier) != 0;
  const double step = (isCoarse ? 10 : isFine ? 0.1 : 1) * (drag_.isWhole ? 0.1 : 0.01);
  double value = drag_.begin + (event->position().x() - drag_.x) * step;
  if (drag_.isWhole) value = std::round(value);
  scene::Document& document = person_.document();
  const auto done = drag_.gesture->preview([&]() -> Result<void> {
    const auto plug = document.plug(drag_.plug);
    if (!plug) return failWith(plug.error());
    return cmd::writeLeaf(document.graph(), document.units(), *plug, mel::Value(value));
  });
  if (!done) postMessage(MessageKind::Warning, done.error().message);
  person_.lookSoon();
}

void AttributePanel::mouseReleaseEvent(QMouseEvent* event) {
  if (!drag_.gesture) return QTreeWidget::mouseReleaseEvent(event);
  drag_.gesture->commit();
  drag_.gesture.reset();
  unsetCursor();
  person_.lookSoon();
}

void AttributePanel::keyPressEvent(QKeyEvent* event) {
  if (!drag_.gesture || event->key() != Qt::Key_Escape) return QTreeWidget::keyPressEvent(event);
  drag_.gesture->cancel();
  drag_.gesture.reset();
  unsetCursor();
  person_.lookSoon();
}

void AttributePanel::change(QTreeWidgetItem* item) {
  const std::string name = item->data(0, kNameRole).toString().toStdString();
  scene::Document& document = person_.document();
  const auto plug = document.plug(name);
  shown_->clear();  // the row says what was typed, whatever comes of it
  if (!plug) return person_.lookSoon();
  const std::string typed = item->text(1).toStdString();
  person_.edit("setAttr", [&]() -> Result<void> {
    if (plug->attribute()->type == dg::AttributeType::String) {
      const mel::Value value(typed);
      return cmd::writeTyped(document.graph(), document.units(), *plug, "string", {&value, 1});
    }
    const auto number = readTyped(typed, *plug->attribute(), document.units());
    if (!number) return failWith(number.error());
    return cmd::writeLeaf(document.graph(), document.units(), *plug, mel::Value(*number));
  });
}

// Undo

UndoPanel::UndoPanel(Person& person, QWidget* parent) : QListWidget(parent), person_(person) {
  setObjectName("undoList");
  setAccessibleName("undoList");
  connect(this, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
    const int keep = row(item) + 1;
    cmd::UndoQueue& queue = person_.session().undo();
    while (static_cast<int>(queue.itemCount()) > keep && queue.canUndo()) {
      const std::size_t before = queue.itemCount();
      person_.undo();
      if (queue.itemCount() >= before) break;
    }
  });
}

void UndoPanel::follow() {
  const std::string now = person_.session().undo().describe();
  if (now == shown_) return;
  shown_ = now;
  clear();
  // "1:  name" a line.
  for (const QString& line : QString::fromStdString(now).split('\n', Qt::SkipEmptyParts))
    addItem(line.section(':', 1).trimmed());
  scrollToBottom();
}

}  // namespace host::window
