#include "host/window/run_window.h"

#include <fmt/format.h>

#include <QApplication>
#include <QFile>
#include <QPalette>
#include <QSaveFile>
#include <QStyleFactory>
#include <QTimer>
#include <chrono>
#include <cmath>

#include "host/cmd/loop.h"
#include "host/window/dialogs.h"
#include "host/window/main_window.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

/// Steps the session's loop: when a timer is due, when idle work waits, and not otherwise.
class Stepper : public QObject {
 public:
  explicit Stepper(Person& person) : person_(person) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { step(); });
    looking_ = person_.looked.connect([this](Person::Parts) { plan(); });
    plan();
  }

 private:
  void step() {
    person_.session().loop().step();
    plan();
  }
  void plan() {
    cmd::Loop& loop = person_.session().loop();
    constexpr double kRest = 0.25;  // seconds; a script may have added a timer meanwhile
    double wait = loop.hasIdleWork() ? 0 : std::min(loop.timers().nextDue() - loop.now(), kRest);
    wait = std::max(wait, 0.0);
    const int milliseconds = static_cast<int>(std::ceil(1000 * wait));
    if (!timer_.isActive() || timer_.remainingTime() > milliseconds) timer_.start(milliseconds);
  }

  Person& person_;
  QTimer timer_;
  Connection looking_;
};

/// Tells whoever drives the window from outside that all that was done has been looked at: a file
/// that says how often, written anew each time.
class StateFile {
 public:
  StateFile(Person& person, const QWidget& window, QString file)
      : person_(person), window_(window), file_(std::move(file)) {
    if (file_.isEmpty()) return;
    looking_ = person_.looked.connect(
        [this](Person::Parts) { QTimer::singleShot(0, &guard_, [this] { tell(); }); });
  }

 private:
  void tell() {
    if (!person_.isQuiet()) return;
    QSaveFile out(file_);
    if (!out.open(QIODevice::WriteOnly)) return;
    const std::string undo = person_.session().undo().undoName();
    out.write(QString("looks %1\nhash %2\nundo %3\nselected %4\n")
                  .arg(person_.lookCount())
                  .arg(person_.document().hash())
                  .arg(QString::fromStdString(undo))
                  .arg(QString::fromStdString(
                      fmt::format("{}", fmt::join(person_.document().selection().names(), " "))))
                  .toUtf8());
    // Where the views are on the screen, for a hand that comes from outside.
    for (const QWidget* view : window_.findChildren<QWidget*>())
      if (view->objectName().startsWith("modelPanel") && view->isVisible()) {
        const QPoint at = view->mapToGlobal(QPoint(0, 0));
        out.write(QString("view %1 %2 %3 %4 %5\n")
                      .arg(view->objectName())
                      .arg(at.x())
                      .arg(at.y())
                      .arg(view->width())
                      .arg(view->height())
                      .toUtf8());
      }
    out.commit();
  }

  Person& person_;
  const QWidget& window_;
  QString file_;
  QObject guard_;
  Connection looking_;
};

void makeDark(QApplication& application) {
  application.setStyle(QStyleFactory::create("Fusion"));
  QPalette palette;
  palette.setColor(QPalette::Window, QColor(68, 70, 74));
  palette.setColor(QPalette::WindowText, QColor(220, 222, 225));
  palette.setColor(QPalette::Base, QColor(43, 45, 48));
  palette.setColor(QPalette::AlternateBase, QColor(52, 54, 58));
  palette.setColor(QPalette::Text, QColor(220, 222, 225));
  palette.setColor(QPalette::Button, QColor(84, 87, 92));
  palette.setColor(QPalette::ButtonText, QColor(225, 227, 230));
  palette.setColor(QPalette::ToolTipBase, QColor(43, 45, 48));
  palette.setColor(QPalette::ToolTipText, QColor(220, 222, 225));
  palette.setColor(QPalette::PlaceholderText, QColor(130, 133, 138));
  palette.setColor(QPalette::Highlight, QColor(76, 128, 190));
  palette.setColor(QPalette::HighlightedText, Qt::white);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, QColor(125, 128, 132));
  application.setPalette(palette);
}

bool hasDisplay() {
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  return !platform.isEmpty() || !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

int runWindow(cmd::Session& session) {
  constexpr int kNoDisplay = 2;
  if (!hasDisplay()) {
    std::fprintf(stderr, "qxmt: there is no display for the window; run a script, -c or -i\n");
    return kNoDisplay;
  }
  int count = 1;
  char name[] = "qxmt";
  char* words[] = {name, nullptr};
  QApplication application(count, words);
  QApplication::setApplicationName("qxmt");
  makeDark(application);
  // As dense as tools with many controls are, and as wide as the tree's geometry counts on.
  QFont font = QApplication::font();
  font.setPixelSize(11);
  QApplication::setFont(font);
  session.loop().setClock([] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  });
  Person person(session);
  MainWindow window(person);
  const DialogHost dialogs(person, window);
  const Stepper stepper(person);
  const StateFile state(person, window, qEnvironmentVariable("QXMT_WINDOW_STATE"));
  window.show();
  person.lookSoon();
  QTimer::singleShot(0, &window, [&window] { window.offerRecovery(); });
  QApplication::exec();
  return session.exitStatus;
}

}  // namespace host::window
