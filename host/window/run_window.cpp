#include "host/window/run_window.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "host/cmd/loop.h"
#include "host/window/dialogs.h"
#include "host/window/main_window.h"
#include "host/window/state_file.h"
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

constexpr int kNoDisplay = 2;  ///< the exit status

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
    palette.setColor(QPalette::Disabled, role, QColor(152, 155, 160));
  application.setPalette(palette);
}

/// Without a display that lets itself be opened Qt ends the program by a signal; this says what is
/// wrong and ends it as other failures to start do.
void sayNoDisplay(QtMsgType type, const QMessageLogContext&, const QString& text) {
  if (type != QtFatalMsg) return;
  const QByteArray display = qgetenv("DISPLAY");
  std::fprintf(stderr,
               "qxmt: the display %s can't be opened for the window; run a script, -c or -i\n%s\n",
               display.constData(), text.section('\n', 0, 0).toUtf8().constData());
  std::fflush(nullptr);
  std::_Exit(kNoDisplay);
}

bool hasDisplay() {
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  return !platform.isEmpty() || !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

int runWindow(cmd::Session& session) {
  if (!hasDisplay()) {
    std::fprintf(stderr, "qxmt: there is no display for the window; run a script, -c or -i\n");
    return kNoDisplay;
  }
  int count = 1;
  char name[] = "qxmt";
  char* words[] = {name, nullptr};
  const QtMessageHandler before = qInstallMessageHandler(sayNoDisplay);
  QApplication application(count, words);
  qInstallMessageHandler(before);
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
  const StateFile state(person, qEnvironmentVariable("QXMT_WINDOW_STATE"));
  window.show();
  person.lookSoon();
  QTimer::singleShot(0, &window, [&window] { window.offerRecovery(); });
  QApplication::exec();
  return session.exitStatus;
}

}  // namespace host::window
