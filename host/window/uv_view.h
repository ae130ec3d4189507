#pragma once

#include <QImage>
#include <QWidget>

#include "host/window/person.h"

namespace host::window {

/// The current UV set of the selected meshes, shells in colours or faces by their stretch. The
/// wheel zooms, a drag moves.
class UvView : public QWidget {
 public:
  explicit UvView(Person& person, QWidget* parent = nullptr);
  void follow() { update(); }
  void showStretch(bool isOn);

 protected:
  void paintEvent(QPaintEvent*) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  Person& person_;
  QPointF center_{0.5, 0.5}, grabbed_;
  double span_ = 1.15;  ///< of v over the height of the widget
  bool showsStretch_ = false;
};

}  // namespace host::window
