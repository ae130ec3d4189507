#pragma once

#include <QMenuBar>
#include <QWidget>
#include <string>
#include <unordered_map>

#include "host/ui/geometry.h"
#include "host/window/control_widget.h"
#include "host/window/view_widget.h"

namespace host::window {

/// Shows one window of the control tree, or a layout of it: a widget a control, where the tree's
/// own geometry says. It follows the tree; it owns nothing that the tree doesn't have.
class LayoutWindow : public QWidget {
 public:
  LayoutWindow(Person& person, const ui::Control& root, QWidget* parent = nullptr);
  [[nodiscard]] const std::string& path() const { return path_; }
  /// Takes over what has changed. Linear in the controls when one was added, moved or removed.
  void follow();

 protected:
  void resizeEvent(QResizeEvent*) override;
  void closeEvent(QCloseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  [[nodiscard]] ui::Control* root() const;
  void followWindow(ui::Control& window);
  void arrange(const ui::Geometry& geometry);
  [[nodiscard]] int shiftOf(const ui::Control& control, const ui::Placed& placed);

  Person& person_;
  std::string path_;
  QMenuBar* menuBar_ = nullptr;
  std::unordered_map<const ui::Control*, ControlWidget> widgets_;
  std::unordered_map<std::string, ViewWidget*> views_;
  std::unordered_map<const ui::Control*, int> scrolled_;  ///< scroll layouts: pixels out of sight
  std::uint64_t seen_ = ~std::uint64_t{0};
  std::uint64_t menusSeen_ = ~std::uint64_t{0};
  QSize arrangedSize_;
  Connection changes_;
  bool isFollowing_ = false, wasPlaced_ = false;
};

}  // namespace host::window
