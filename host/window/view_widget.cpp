#include "host/window/view_widget.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTabletEvent>
#include <QWheelEvent>
#include <array>
#include <chrono>
#include <cmath>
#include <utility>

#include "host/base/messages.h"
#include "host/window/menus.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using workspace::View;
using workspace::workspaceOf;

QString plain(const std::string& text) {
  return QString::fromStdString(text);
}

tools::MouseButton buttonFor(Qt::MouseButton button) {
  if (button == Qt::MiddleButton) return tools::MouseButton::Middle;
  if (button == Qt::RightButton) return tools::MouseButton::Right;
  return tools::MouseButton::Left;
}

double millisecondsSince(std::chrono::steady_clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin)
      .count();
}

}  // namespace

std::string keyName(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return "Return";
    case Qt::Key_Escape:
      return "Escape";
    case Qt::Key_Delete:
      return "Delete";
    case Qt::Key_Backspace:
      return "Backspace";
    case Qt::Key_Space:
      return "Space";
    case Qt::Key_Tab:
      return "Tab";
    case Qt::Key_Home:
      return "Home";
    case Qt::Key_End:
      return "End";
    case Qt::Key_Up:
      return "Up";
    case Qt::Key_Down:
      return "Down";
    case Qt::Key_Left:
      return "Left";
    case Qt::Key_Right:
      return "Right";
    default:
      break;
  }
  if (event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F12)
    return "F" + std::to_string(event.key() - Qt::Key_F1 + 1);
  if (event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z) {
    const char letter = static_cast<char>('a' + (event.key() - Qt::Key_A));
    const bool isShifted = (event.modifiers() & Qt::ShiftModifier) != 0;
    return std::string(1, isShifted ? static_cast<char>(std::toupper(letter)) : letter);
  }
  const QString text = event.text();
  return text.size() == 1 && text[0].isPrint() ? text.toStdString() : std::string();
}

ViewWidget::ViewWidget(Person& person, std::string panel, QWidget* parent)
    : QWidget(parent), person_(person), panel_(std::move(panel)) {
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(1, 1);
  setObjectName(plain(panel_));
  setAccessibleName(plain(panel_));
  looking_ = person_.looked.connect([this](Person::Parts parts) {
    if ((parts & Person::kViews) != 0) refresh();
    followCursor();
  });
}

/// The pointer's shape is the current tool's.
void ViewWidget::followCursor() {
  // As plug-ins number them: the default, cross hairs, the double ones, edit, pencil, hand.
  constexpr std::array<Qt::CursorShape, 6> kShapes = {Qt::ArrowCursor,   Qt::CrossCursor,
                                                      Qt::CrossCursor,   Qt::IBeamCursor,
                                                      Qt::UpArrowCursor, Qt::PointingHandCursor};
  const auto& tool = workspaceOf(person_.session()).toolbox.current();
  const auto id = static_cast<std::size_t>(tool ? tool->cursor : 0);
  const Qt::CursorShape shape = kShapes[id < kShapes.size() ? id : 0];
  if (cursor().shape() != shape) setCursor(shape);
}

void ViewWidget::hideEvent(QHideEvent*) {
  if (person_.hand().panel() == panel_) person_.letGo();
}

void ViewWidget::refresh() {
  isStale_ = true;
  update();
}

void ViewWidget::render() {
  isStale_ = false;
  fault_.clear();
  auto& views = workspaceOf(person_.session()).views;
  View* view = views.find(panel_);
  const QSize pixels = size() * devicePixelRatioF();
  if (!view || pixels.width() < 1 || pixels.height() < 1) return;
  view->port = {pixels.width(), pixels.height()};
  const auto begin = std::chrono::steady_clock::now();
  auto image = workspace::renderView(person_.document(), views, *view, view->port);
  if (!image) {
    fault_ = image.error().message;
    picture_ = QImage();
    return;
  }
  const QImage lent(image->rgba.data(), image->width, image->height, 4 * image->width,
                    QImage::Format_RGBA8888);
  picture_ = lent.convertToFormat(QImage::Format_RGB32);
  ++frameCount_;
  lastFrame_ = millisecondsSince(begin);
}

void ViewWidget::paintEvent(QPaintEvent*) {
  const bool isNew = isStale_ && !person_.isBusy;
  if (isNew) render();
  QPainter painter(this);
  if (picture_.isNull()) {
    painter.fillRect(rect(), QColor(60, 63, 68));
    painter.setPen(Qt::white);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, plain(fault_));
    return;
  }
  painter.drawImage(rect(), picture_);
  if (isNew && acted_ != std::chrono::steady_clock::time_point{})
    latency_ = millisecondsSince(std::exchange(acted_, {}));
  auto& work = workspaceOf(person_.session());
  const View* view = work.views.find(panel_);
  painter.setPen(QColor(235, 235, 235));
  if (view)
    painter.drawText(rect().adjusted(8, 0, -8, -6), Qt::AlignHCenter | Qt::AlignBottom,
                     plain(view->cameraName));
  if (view == &work.views.active()) {
    painter.setPen(QColor(96, 160, 255));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    drawHeadsUpTexts(painter);
    if (work.inViewMessages.isEnabled && !work.inViewMessages.shown.empty()) {
      painter.setPen(Qt::white);
      painter.drawText(rect().adjusted(8, 10, -8, 0), Qt::AlignHCenter | Qt::AlignTop,
                       plain(work.inViewMessages.shown));
    }
  }
}

/// Sections 0 to 4 stand side by side above, 5 to 9 below; the lines of one under each other.
void ViewWidget::drawHeadsUpTexts(QPainter& painter) const {
  painter.setPen(QColor(225, 228, 232));
  std::array<int, 10> used{};
  const int line = painter.fontMetrics().height() + 2;
  for (const Person::HeadsUpText& each : person_.headsUpTexts) {
    if (each.section < 0 || each.section > 9) continue;
    const int column = each.section % 5, row = used[static_cast<std::size_t>(each.section)]++;
    const bool isBelow = each.section > 4;
    const int top = isBelow ? height() - 24 - line * (row + 1) : 8 + line * row;
    const QRect place(8 + column * (width() - 16) / 5, top, (width() - 16) / 5, line);
    painter.drawText(place,
                     (column == 0   ? Qt::AlignLeft
                      : column == 4 ? Qt::AlignRight
                                    : Qt::AlignHCenter) |
                         Qt::AlignVCenter | Qt::TextDontClip,
                     plain(each.text));
  }
}

void ViewWidget::resizeEvent(QResizeEvent*) {
  refresh();
}

void ViewWidget::act(Act what, QPointF at, Qt::MouseButton button,
                     Qt::KeyboardModifiers modifiers) {
  tools::Hand& hand = person_.hand();
  tools::HandOptions options;
  options.panel = panel_;
  options.pressure = pressure_;
  options.tiltX = tiltX_;
  options.tiltY = tiltY_;
  if (what == Act::Press) options.button = buttonFor(button);
  options.shift = (modifiers & Qt::ShiftModifier) != 0;
  options.control = (modifiers & Qt::ControlModifier) != 0;
  options.alt = (modifiers & Qt::AltModifier) != 0;
  const double scale = devicePixelRatioF();
  // Tools count whole pixels from the lower left.
  const viewport::ViewPoint place{std::floor(at.x() * scale),
                                  std::floor(height() * scale) - 1 - std::floor(at.y() * scale)};
  const auto perform = [&]() -> Result<void> {
    HOST_TRY(hand.use(options));
    switch (what) {
      case Act::Press:
        return hand.press(place);
      case Act::Drag:
        return hand.drag(place);
      case Act::Release:
        return hand.release(place);
      case Act::Hover:
        break;
    }
    return hand.hover(place);
  };
  acted_ = std::chrono::steady_clock::now();
  if (const auto done = perform(); !done) postMessage(MessageKind::Warning, done.error().message);
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
  setFocus();
  const QPoint at = event->globalPosition().toPoint();
  if (!person_.hand().isDown())
    for (const std::string& owner : {panel_, std::string("viewPanes")})
      if (openPopup(person_, owner, *this, event->button(), event->modifiers(), at)) return;
  // A second button of a gesture belongs to it.
  if (person_.hand().isDown()) return;
  if (!isPenDown_) forgetPen();
  act(Act::Press, event->position(), event->button(), event->modifiers());
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
  const bool isDown = person_.hand().isDown() && person_.hand().panel() == panel_;
  if (!isDown && event->buttons() != Qt::NoButton) return;
  act(isDown ? Act::Drag : Act::Hover, event->position(), Qt::NoButton, event->modifiers());
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
  if (!person_.hand().isDown() || person_.hand().state().button != buttonFor(event->button()))
    return;
  act(Act::Release, event->position(), event->button(), event->modifiers());
  forgetPen();
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
  if (person_.hand().isDown() || event->angleDelta().y() == 0) return;
  // A step of the wheel is a short drag of the dolly.
  const double pixels = event->angleDelta().y() / 4.0;
  const QPointF at = event->position();
  act(Act::Press, at, Qt::RightButton, Qt::AltModifier);
  act(Act::Drag, at + QPointF(pixels, 0), Qt::RightButton, Qt::AltModifier);
  act(Act::Release, at + QPointF(pixels, 0), Qt::RightButton, Qt::AltModifier);
}

void ViewWidget::tabletEvent(QTabletEvent* event) {
  // The mouse event that follows takes them along. A pen that lifts reports no pressure any more:
  // its release has what it pressed with last, and what hovers is no mouse that presses softly.
  if (event->type() == QEvent::TabletPress) isPenDown_ = true;
  if (event->type() == QEvent::TabletRelease) isPenDown_ = false;
  if (isPenDown_) {
    pressure_ = event->pressure();
    tiltX_ = event->xTilt();
    tiltY_ = -event->yTilt();  // Qt's grows towards the user
  }
  event->ignore();
}

void ViewWidget::forgetPen() {
  pressure_ = 1;
  tiltX_ = tiltY_ = 0;
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
  const std::string name = keyName(*event);
  if (name.empty()) return QWidget::keyPressEvent(event);
  tools::HandOptions options;
  options.panel = panel_;
  options.shift = (event->modifiers() & Qt::ShiftModifier) != 0;
  options.control = (event->modifiers() & Qt::ControlModifier) != 0;
  options.alt = (event->modifiers() & Qt::AltModifier) != 0;
  if (const auto fits = person_.hand().use(options); fits) person_.hand().strike(name);
}

void ViewWidget::leaveEvent(QEvent*) {
  if (View* view = workspaceOf(person_.session()).views.find(panel_)) view->hasCursor = false;
  refresh();
}

}  // namespace host::window
