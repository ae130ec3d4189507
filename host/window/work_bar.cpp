#include "host/window/work_bar.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QThread>

#include "host/base/cancel.h"
#include "host/mel/bell.h"

namespace host::window {
namespace {

constexpr auto kPatience = std::chrono::milliseconds(500);  ///< what ends sooner is not shown
constexpr auto kBellPause = std::chrono::milliseconds(100);

}  // namespace

bool isPersonsEvent(const QEvent& event) {
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::ContextMenu:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
    case QEvent::Close:
      return true;
    default:
      return false;
  }
}

WorkBar::WorkBar(Person& person, QStatusBar& bar) : person_(person) {
  what_ = new QLabel(&bar);
  bar_ = new QProgressBar(&bar);
  bar_->setObjectName("progress");
  bar_->setMaximumWidth(200);
  stop_ = new QPushButton(QObject::tr("Stop"), &bar);
  stop_->setObjectName("stop");
  stop_->setAccessibleName("stop");
  stop_->setFocusPolicy(Qt::NoFocus);
  stop_->setToolTip(QObject::tr("Ends the running work (Esc); the scene is as it was before it"));
  connect(stop_, &QPushButton::pressed, this, [this] { stop(); });
  for (QWidget* each :
       {static_cast<QWidget*>(what_), static_cast<QWidget*>(bar_), static_cast<QWidget*>(stop_)}) {
    bar.addPermanentWidget(each);
    each->hide();
  }
  lastIdle_ = Clock::now().time_since_epoch().count();
  QAbstractEventDispatcher* loop = QAbstractEventDispatcher::instance();
  connect(loop, &QAbstractEventDispatcher::aboutToBlock, this, [this] {
    if (isListening_) return;
    isWaiting_ = true;
    if (stop_->isVisible()) hide();
  });
  // Some systems hand events out while they wait, so what begins a piece of work is the event.
  qApp->installEventFilter(this);
  setProgressSink([this](std::string_view what, double part, bool hasEnded) {
    if (QThread::currentThread() == thread()) show(what, part, hasEnded);
  });
  setCancelListener([this] { listen(); });
  bell_ = std::jthread([this](const std::stop_token& token) {
    while (!token.stop_requested()) {
      std::this_thread::sleep_for(kBellPause);
      if (!isWaiting_ && isLate()) mel::ringBell();
    }
  });
}

WorkBar::~WorkBar() {
  setProgressSink({});
  setCancelListener({});
  bell_.request_stop();
  bell_.join();
}

bool WorkBar::isLate() const {
  return Clock::now().time_since_epoch() - Clock::duration(lastIdle_.load()) > kPatience;
}

void WorkBar::listen() {
  if (isListening_ || !isLate()) return;
  showWorking();
  letThrough();
}

void WorkBar::show(std::string_view what, double part, bool hasEnded) {
  if (isListening_) return;
  if (hasEnded) return hide();
  showWorking();
  what_->setText(QString::fromUtf8(what.data(), static_cast<qsizetype>(what.size())));
  bar_->setRange(0, part < 0 ? 0 : 1000);
  if (part >= 0) bar_->setValue(static_cast<int>(1000 * part));
  letThrough();
}

void WorkBar::showWorking() {
  if (stop_->isVisible()) return;
  what_->setText(QObject::tr("Working"));
  bar_->setRange(0, 0);
  stop_->setEnabled(true);
  for (QWidget* each :
       {static_cast<QWidget*>(what_), static_cast<QWidget*>(bar_), static_cast<QWidget*>(stop_)})
    each->show();
}

void WorkBar::hide() {
  for (QWidget* each :
       {static_cast<QWidget*>(what_), static_cast<QWidget*>(bar_), static_cast<QWidget*>(stop_)})
    each->hide();
}

void WorkBar::letThrough() {
  isListening_ = true;
  person_.isBusy = true;
  QCoreApplication::processEvents();
  person_.isBusy = false;
  isListening_ = false;
}

void WorkBar::stop() {
  requestCancel();
  person_.session().interpreter().interrupt();
  what_->setText(QObject::tr("Stopping"));
  stop_->setEnabled(false);
}

bool WorkBar::eventFilter(QObject* object, QEvent* event) {
  if (!isListening_) {
    if (isPersonsEvent(*event) || event->type() == QEvent::Timer ||
        event->type() == QEvent::MetaCall) {
      lastIdle_ = Clock::now().time_since_epoch().count();
      isWaiting_ = false;
    }
    return false;
  }
  // Timers fire again when the work has ended.
  if (event->type() == QEvent::Timer) return true;
  if (event->type() == QEvent::KeyPress &&
      static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Escape)
    stop();
  if (!isPersonsEvent(*event)) return false;
  // The system's window gets what it hands on to its widgets.
  const bool isDropped =
      object != stop_ && (object->isWidgetType() || event->type() == QEvent::Shortcut);
  if (isDropped) event->ignore();
  return isDropped;
}

}  // namespace host::window
