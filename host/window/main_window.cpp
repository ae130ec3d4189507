#include "host/window/main_window.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTabWidget>
#include <QThread>
#include <QUrl>
#include <algorithm>
#include <array>

#include "host/base/cancel.h"
#include "host/base/message_streams.h"
#include "host/builtins/file/scene_files.h"
#include "host/edits/duplicate.h"
#include "host/edits/remove.h"
#include "host/window/menus.h"
#include "host/workspace/edit_hooks.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using ui::Kind;
using workspace::workspaceOf;

QString text(std::string_view plain) {
  return QString::fromUtf8(plain.data(), static_cast<qsizetype>(plain.size()));
}

/// The panels in the order in which they stand: top, persp above; front, side below.
const std::array<std::string, 4> kPanels = {"modelPanel1", "modelPanel4", "modelPanel3",
                                            "modelPanel2"};

}  // namespace

MainWindow::MainWindow(Person& person) : person_(person) {
  resize(1440, 900);
  setAcceptDrops(true);
  setObjectName("MayaWindow");
  setDockOptions(AnimatedDocks | AllowTabbedDocks | AllowNestedDocks);
  buildViews();
  buildPanels();
  buildMenus();
  showMessages();
  showProgress();
  looking_ = person_.looked.connect([this](Person::Parts parts) {
    if ((parts & Person::kPanels) != 0) follow();
  });
  workspaceOf(person_.session()).applicationWindow = reinterpret_cast<void*>(winId());
  follow();
}

MainWindow::~MainWindow() {
  workspaceOf(person_.session()).applicationWindow = nullptr;
  setMessageSink(std::move(sinkBefore_));
  setProgressSink({});
}

void MainWindow::buildViews() {
  center_ = new QWidget(this);
  auto* grid = new QGridLayout(center_);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(2);
  for (std::size_t i = 0; i < kPanels.size(); ++i) {
    auto* view = new ViewWidget(person_, kPanels[i], center_);
    views_[kPanels[i]] = view;
    grid->addWidget(view, static_cast<int>(i / 2), static_cast<int>(i % 2));
  }
  setCentralWidget(center_);
  showViews(false);
}

void MainWindow::showViews(bool showsAll) {
  showsAll_ = showsAll;
  const std::string& active = workspaceOf(person_.session()).views.active().panel;
  for (const auto& [panel, view] : views_) view->setVisible(showsAll || panel == active);
  auto* grid = static_cast<QGridLayout*>(center_->layout());
  for (int i = 0; i < 2; ++i) {
    grid->setRowStretch(i, showsAll ? 1 : 0);
    grid->setColumnStretch(i, showsAll ? 1 : 0);
  }
}

void MainWindow::buildPanels() {
  const auto dock = [&](QWidget* panel, const QString& title, Qt::DockWidgetArea area) {
    auto* holder = new QDockWidget(title, this);
    holder->setObjectName(panel->objectName() + "Dock");
    holder->setWidget(panel);
    addDockWidget(area, holder);
    return holder;
  };
  outliner_ = new Outliner(person_);
  attributes_ = new AttributePanel(person_);
  undo_ = new UndoPanel(person_);
  scripts_ = new ScriptPanel(person_);
  scripts_->setObjectName("scriptEditor");
  uvs_ = new UvView(person_);
  std::vector<QDockWidget*> docks;
  docks.push_back(dock(outliner_, tr("Outliner"), Qt::LeftDockWidgetArea));
  docks.push_back(dock(undo_, tr("Undo"), Qt::LeftDockWidgetArea));
  docks.push_back(dock(attributes_, tr("Attributes"), Qt::RightDockWidgetArea));
  docks.push_back(dock(uvs_, tr("UVs"), Qt::RightDockWidgetArea));
  docks.push_back(dock(scripts_, tr("Script Editor"), Qt::BottomDockWidgetArea));
  resizeDocks({docks[0], docks[2]}, {220, 300}, Qt::Horizontal);
  resizeDocks({docks[4]}, {170}, Qt::Vertical);
  panelsMenu_ = new QMenu(tr("Panels"), this);
  QAction* four = panelsMenu_->addAction(tr("One or Four Views"));
  connect(four, &QAction::triggered, this, [this] { showViews(!showsAll_); });
  panelsMenu_->addSeparator();
  for (QDockWidget* each : docks) panelsMenu_->addAction(each->toggleViewAction());

  help_ = new QLabel(this);
  help_->setObjectName("helpLine");
  help_->setAccessibleName("helpLine");
  progress_ = new QProgressBar(this);
  progress_->setMaximumWidth(220);
  progress_->hide();
  statusBar()->addWidget(help_, 1);
  statusBar()->addPermanentWidget(progress_);
}

void MainWindow::buildMenus() {
  buildFileMenu();
  buildEditMenu();
  menuBar()->addMenu(panelsMenu_);
}

void MainWindow::buildFileMenu() {
  QMenu* file = menuBar()->addMenu(tr("&File"));
  const auto add = [&](const QString& name, const QKeySequence& keys, auto done) {
    QAction* action = file->addAction(name);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, done);
  };
  add(tr("New Scene"), QKeySequence::New, [this] {
    if (mayDropScene()) newScene();
  });
  add(tr("Open Scene..."), QKeySequence::Open, [this] {
    if (!mayDropScene()) return;
    const QString name =
        QFileDialog::getOpenFileName(this, tr("Open"), {}, tr("Scenes and meshes (*.ma *.obj)"));
    if (!name.isEmpty()) open(name);
  });
  QMenu* recent = file->addMenu(tr("Recent"));
  connect(recent, &QMenu::aboutToShow, this, [this, recent] {
    recent->clear();
    for (const QString& name : QSettings("qxmt", "qxmt").value("recent").toStringList())
      connect(recent->addAction(name), &QAction::triggered, this, [this, name] {
        if (mayDropScene()) open(name);
      });
  });
  add(tr("Save Scene"), QKeySequence::Save, [this] { save(); });
  add(tr("Save Scene As..."), QKeySequence::SaveAs, [this] { saveAs(); });
  file->addSeparator();
  add(tr("Import..."), {}, [this] {
    const QString name =
        QFileDialog::getOpenFileName(this, tr("Import"), {}, tr("Scenes and meshes (*.ma *.obj)"));
    if (name.isEmpty()) return;
    cmd::Context context{person_.session(), person_.document()};
    person_.edit("file", [&]() -> Result<void> {
      HOST_TRY(builtins::importFile(context, {.path = name.toStdString()}));
      return {};
    });
  });
  add(tr("Export Selected..."), {}, [this] {
    const QString name =
        QFileDialog::getSaveFileName(this, tr("Export"), {}, tr("Meshes (*.obj);;Scenes (*.ma)"));
    if (name.isEmpty()) return;
    cmd::Context context{person_.session(), person_.document()};
    const auto done = builtins::exportScene(context, {.path = name.toStdString()}, true);
    if (!done) postMessage(MessageKind::Error, done.error().message);
  });
  file->addSeparator();
  add(tr("Quit"), QKeySequence::Quit, [this] { close(); });
}

void MainWindow::buildEditMenu() {
  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  const auto add = [&](const QString& name, const QKeySequence& keys, auto done) {
    QAction* action = edit->addAction(name);
    action->setShortcut(keys);
    connect(action, &QAction::triggered, this, done);
  };
  add(tr("Undo"), QKeySequence("Ctrl+Z"), [this] { person_.undo(); });
  add(tr("Redo"), QKeySequence("Ctrl+Shift+Z"), [this] { person_.redo(); });
  edit->addSeparator();
  add(tr("Delete"), QKeySequence::Delete, [this] {
    person_.edit("delete", [this] {
      return edits::remove(person_.document(), person_.document().selection());
    });
  });
}

/// Menus of scripts that have something to show, or will when they open. Those that a host has from
/// the start and that nobody filled stay out of sight: the window's own are there.
void MainWindow::followScriptMenus() {
  std::vector<const ui::Control*> shown;
  std::string now;
  for (const auto& child : workspaceOf(person_.session()).controls.mainWindow().children) {
    if (!child->isKind(Kind::Menu) || !child->isOn("visible")) continue;
    const bool hasItems = std::ranges::any_of(
        child->children, [](const auto& item) { return item->isKind(Kind::MenuItem); });
    if (!hasItems && child->text("postMenuCommand").empty()) continue;
    shown.push_back(child.get());
    now += child->name + "|" + child->text("label") + "\n";
  }
  if (now == menusShown_) return;
  menusShown_ = now;
  for (QMenu* menu : scriptMenus_) delete menu;
  scriptMenus_.clear();
  for (const ui::Control* each : shown) {
    auto* menu = new QMenu(labelText(*each), this);
    menu->setObjectName(text(each->name));
    fillWhenOpened(person_, *menu, *each);
    menuBar()->addMenu(menu);
    scriptMenus_.push_back(menu);
  }
}

void MainWindow::followWindows() {
  ui::Tree& tree = workspaceOf(person_.session()).controls;
  std::map<std::string, std::unique_ptr<LayoutWindow>> left;
  left.swap(windows_);
  for (const auto& window : tree.windows()) {
    if (window.get() == &tree.mainWindow()) continue;
    const std::string path = ui::Tree::path(*window);
    auto& shown = windows_[path];
    if (const auto found = left.find(path); found != left.end()) shown = std::move(found->second);
    if (!shown && !window->isOn("visible")) {
      windows_.erase(path);
      continue;
    }
    if (!shown) shown = std::make_unique<LayoutWindow>(person_, *window);
    shown->follow();
  }
  // One of these may be in the middle of a click.
  for (auto& [path, window] : left) {
    if (!window) continue;
    window->hide();
    window.release()->deleteLater();
  }
}

void MainWindow::follow() {
  if (person_.session().isQuitting) {
    close();
    return;
  }
  const bool isDirty = person_.document().isModified();
  setWindowTitle(sceneName() + (isDirty ? "*" : "") + " - qxmt");
  outliner_->follow();
  if (attributes_->isVisible()) attributes_->follow();
  undo_->follow();
  if (uvs_->isVisible()) uvs_->follow();
  followScriptMenus();
  followWindows();
}

QString MainWindow::sceneName() const {
  const std::string& name = person_.document().fileName();
  return name.empty() ? tr("untitled") : QFileInfo(text(name)).fileName();
}

void MainWindow::showMessages() {
  sinkBefore_ = setMessageSink([this](MessageKind kind, std::string_view said) {
    writeMessageToStreams(kind, said);
    scripts_->say(kind, said);
    if (kind == MessageKind::Print) return;
    help_->setText((kind == MessageKind::Error     ? tr("Error: ")
                    : kind == MessageKind::Warning ? tr("Warning: ")
                                                   : QString()) +
                   text(said).section('\n', 0, 0));
    help_->setStyleSheet(kind == MessageKind::Error     ? "color: #ff6e64"
                         : kind == MessageKind::Warning ? "color: #e6be50"
                                                        : "");
  });
}

void MainWindow::showProgress() {
  setProgressSink([this](std::string_view what, double part, bool hasEnded) {
    if (QThread::currentThread() != thread()) return;
    progress_->setVisible(!hasEnded);
    progress_->setRange(0, part < 0 ? 0 : 1000);
    if (part >= 0) progress_->setValue(static_cast<int>(1000 * part));
    progress_->setFormat(text(what) + " %p%");
    statusBar()->repaint();
  });
}

bool MainWindow::mayDropScene() {
  if (!person_.document().isModified()) return true;
  QMessageBox box(QMessageBox::Question, tr("Unsaved changes"),
                  tr("Save the changes to %1?").arg(sceneName()), QMessageBox::NoButton, this);
  const QPushButton* keep = box.addButton(tr("&Save"), QMessageBox::AcceptRole);
  const QPushButton* drop = box.addButton(tr("&Don't Save"), QMessageBox::DestructiveRole);
  box.addButton(tr("&Cancel"), QMessageBox::RejectRole);
  box.exec();
  if (box.clickedButton() == drop) return true;
  return box.clickedButton() == keep && save();
}

void MainWindow::newScene() {
  cmd::Context context{person_.session(), person_.document()};
  (void)builtins::newScene(context, true);
  person_.lookSoon();
}

void MainWindow::open(const QString& file) {
  cmd::Context context{person_.session(), person_.document()};
  const builtins::FileRequest request{.path = file.toStdString(), .isForced = true};
  const bool isScene = file.endsWith(".ma", Qt::CaseInsensitive);
  const bool isDone = person_.edit("file", [&]() -> Result<void> {
    HOST_TRY(isScene ? builtins::openScene(context, request)
                     : builtins::importFile(context, request));
    return {};
  });
  if (!isDone) return;
  QSettings settings("qxmt", "qxmt");
  QStringList recent = settings.value("recent").toStringList();
  recent.removeAll(file);
  recent.prepend(file);
  while (recent.size() > 10) recent.removeLast();
  settings.setValue("recent", recent);
}

bool MainWindow::save() {
  if (person_.document().fileName().empty()) return saveAs();
  cmd::Context context{person_.session(), person_.document()};
  const auto done = builtins::saveScene(context, {});
  postMessage(done ? MessageKind::Info : MessageKind::Error,
              done ? "Saved " + *done : done.error().message);
  person_.lookSoon();
  return done.has_value();
}

bool MainWindow::saveAs() {
  const QString name = QFileDialog::getSaveFileName(this, tr("Save As"), {}, tr("Scenes (*.ma)"));
  if (name.isEmpty()) return false;
  cmd::Context context{person_.session(), person_.document()};
  const std::string before = person_.document().fileName();
  builtins::renameScene(context, (name.contains('.') ? name : name + ".ma").toStdString());
  if (save()) return true;
  builtins::renameScene(context, before);
  return false;
}

void MainWindow::closeEvent(QCloseEvent* event) {
  cmd::Session& session = person_.session();
  const bool isForced = workspaceOf(session).quitsAtOnce;
  if (!isForced && !mayDropScene()) {
    session.isQuitting = false;
    return event->ignore();
  }
  if (!session.isQuitting) session.scriptJobs().triggerEvent("quitApplication");
  session.isQuitting = true;
  windows_.clear();
  event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  for (const QUrl& url : event->mimeData()->urls()) {
    const QString file = url.toLocalFile();
    if (file.isEmpty()) continue;
    if (!file.endsWith(".ma", Qt::CaseInsensitive) || mayDropScene()) open(file);
  }
}

}  // namespace host::window
