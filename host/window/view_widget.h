#pragma once

#include <QImage>
#include <QWidget>
#include <chrono>
#include <string>

#include "host/window/person.h"

namespace host::window {

/// One panel's view of the scene: drawn by what draws pictures too, and its mouse and pen go to the
/// tools as gestures of scripts do.
class ViewWidget : public QWidget {
 public:
  ViewWidget(Person& person, std::string panel, QWidget* parent = nullptr);
  [[nodiscard]] const std::string& panel() const { return panel_; }
  /// Pictures drawn so far, and what the last took, milliseconds.
  [[nodiscard]] std::uint64_t frameCount() const { return frameCount_; }
  [[nodiscard]] double lastFrame() const { return lastFrame_; }
  /// Why there is no picture; empty when there is one.
  [[nodiscard]] const std::string& fault() const { return fault_; }
  /// From the last press, drag or hover until its picture was on the screen, milliseconds.
  [[nodiscard]] double latency() const { return latency_; }
  /// The picture is out of date: it is drawn anew when it next shows.
  void refresh();

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
  void wheelEvent(QWheelEvent* event) override;
  void tabletEvent(QTabletEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void enterEvent(QEnterEvent*) override { setFocus(); }
  void leaveEvent(QEvent*) override;
  void hideEvent(QHideEvent*) override;

 private:
  enum class Act { Press, Drag, Release, Hover };
  void act(Act what, QPointF at, Qt::MouseButton button, Qt::KeyboardModifiers modifiers);
  void render();
  void forgetPen();
  void followCursor();
  void drawHeadsUpTexts(QPainter& painter) const;

  Person& person_;
  std::string panel_, fault_;
  QImage picture_;
  Connection looking_;
  double pressure_ = 1, tiltX_ = 0, tiltY_ = 0;  ///< of the pen, while it presses
  bool isPenDown_ = false;
  bool isStale_ = true;
  std::uint64_t frameCount_ = 0;
  double lastFrame_ = 0, latency_ = 0;
  std::chrono::steady_clock::time_point acted_;  ///< when the hand last did something; none: shown
};

/// The name that tools and hot keys know a key by; empty for modifiers alone.
[[nodiscard]] std::string keyName(const QKeyEvent& event);

}  // namespace host::window
