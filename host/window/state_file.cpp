#include "host/window/state_file.h"

#include <fmt/format.h>

#include <QApplication>
#include <QEvent>
#include <QSaveFile>
#include <QTextStream>
#include <QWidget>

#include "host/window/view_widget.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

void place(QTextStream& out, const char* what, const QWidget& widget) {
  const QPoint at = widget.mapToGlobal(QPoint(0, 0));
  out << what << ' ' << widget.objectName() << ' ' << at.x() << ' ' << at.y() << ' '
      << widget.width() << ' ' << widget.height() << '\n';
}

}  // namespace

StateFile::StateFile(Person& person, QString file) : person_(person), file_(std::move(file)) {
  if (file_.isEmpty()) return;
  soon_.setSingleShot(true);
  connect(&soon_, &QTimer::timeout, this, [this] { tell(); });
  looking_ = person_.looked.connect([this](Person::Parts) { soon_.start(0); });
  // Dialogs come and go without anything having been looked at.
  qApp->installEventFilter(this);
}

StateFile::~StateFile() = default;

bool StateFile::eventFilter(QObject* object, QEvent* event) {
  const bool isWindow = object->isWidgetType() && static_cast<QWidget*>(object)->isWindow();
  if (event->type() == QEvent::FocusIn) soon_.start(0);
  if (event->type() == QEvent::Resize && dynamic_cast<const ViewWidget*>(object)) soon_.start(0);
  if (isWindow && (event->type() == QEvent::Show || event->type() == QEvent::Hide ||
                   event->type() == QEvent::Move || event->type() == QEvent::Resize))
    soon_.start(20);
  return false;
}

void StateFile::tell() {
  if (!person_.isQuiet() || person_.isBusy) return soon_.start(20);
  QSaveFile file(file_);
  if (!file.open(QIODevice::WriteOnly)) return;
  QTextStream out(&file);
  workspace::Workspace& work = workspace::workspaceOf(person_.session());
  const auto plain = [](const std::string& text) { return QString::fromStdString(text); };
  out << "looks " << person_.lookCount() << "\nhash " << person_.document().hash() << "\nundo "
      << plain(person_.session().undo().undoName()) << "\nselected "
      << plain(fmt::format("{}", fmt::join(person_.document().selection().names(), " ")))
      << "\ntool " << plain(work.toolbox.currentName()) << "\nmessage "
      << plain(person_.lastMessage).section('\n', 0, 0) << '\n';
  if (const QWidget* focus = QApplication::focusWidget())
    out << "focus " << focus->objectName() << '\n';
  if (person_.hand().isDown()) out << "hand " << plain(person_.hand().panel()) << '\n';
  if (const QWidget* modal = QApplication::activeModalWidget())
    out << "modal " << (modal->objectName().isEmpty() ? "dialog" : modal->objectName()) << ' '
        << modal->windowTitle() << '\n';
  constexpr int kMost = 2000;  // a window of ten thousand controls is no list to be read
  int count = 0;
  for (const QWidget* widget : QApplication::allWidgets()) {
    if (!widget->isVisible() || widget->objectName().isEmpty()) continue;
    if (widget->objectName().startsWith("qt_") || widget->objectName().contains(' ')) continue;
    if (const auto* view = dynamic_cast<const ViewWidget*>(widget)) {
      place(out, "view", *view);
      out << "frames " << view->frameCount() << ' ' << view->lastFrame() << ' ' << view->latency()
          << '\n';
      if (!view->fault().empty())
        out << "fault " << plain(view->panel()) << ' ' << plain(view->fault()).section('\n', 0, 0)
            << '\n';
    } else if (++count < kMost) {
      place(out, "widget", *widget);
    }
  }
  out.flush();
  file.commit();
}

}  // namespace host::window
