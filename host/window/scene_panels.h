#pragma once

#include <QListWidget>
#include <QTreeWidget>
#include <memory>
#include <string>
#include <vector>

#include "host/edits/gesture.h"
#include "host/tools/session_steps.h"
#include "host/window/person.h"

namespace host::window {

/// The hierarchy: selecting in it selects in the scene and the other way round; a row is renamed in
/// place; rows dropped on another go under it.
class Outliner : public QTreeWidget {
 public:
  explicit Outliner(Person& person, QWidget* parent = nullptr);
  void follow();

 protected:
  void dropEvent(QDropEvent* event) override;

 private:
  void addRows(const std::vector<scene::Node*>& tops);
  void select();
  Person& person_;
  std::string shown_;  ///< the hierarchy as it was read last
  bool isFollowing_ = false;
};

/// The attributes of what is selected and of the nodes in its history, to be looked at and changed:
/// by a double click, or numbers by dragging them with the middle button, one step of undo however
/// far; Shift is coarser, Ctrl finer, Escape lets go.
class AttributePanel : public QTreeWidget {
 public:
  explicit AttributePanel(Person& person, QWidget* parent = nullptr);
  ~AttributePanel() override;
  void follow();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  struct Row;
  /// A number that is being dragged.
  struct Drag {
    std::string plug;
    double begin = 0, x = 0;
    bool isWhole = false;  ///< counts whole steps
    std::unique_ptr<edits::Gesture> gesture;
  };
  void readNode(dg::Node& node, std::vector<Row>& rows);
  void show(const std::vector<Row>& rows);
  void change(QTreeWidgetItem* item);
  Person& person_;
  tools::SessionSteps steps_;
  std::unique_ptr<std::vector<Row>> shown_;
  Drag drag_;
  bool isFollowing_ = false;
};

/// What can be taken back, the latest last; a click goes back to after that step.
class UndoPanel : public QListWidget {
 public:
  explicit UndoPanel(Person& person, QWidget* parent = nullptr);
  void follow();

 private:
  Person& person_;
  std::string shown_;
};

}  // namespace host::window
