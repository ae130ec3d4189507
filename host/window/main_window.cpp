#include "host/window/main_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QDockWidget>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QStatusBar>
#include <QTabWidget>
#include <QUrl>
#include <algorithm>
#include <array>
#include <cstdio>

#include "host/base/message_streams.h"
#include "host/builtins/file/recovery.h"
#include "host/builtins/file/scene_files.h"
#include "host/cmd/loop.h"
#include "host/edits/duplicate.h"
#include "host/edits/remove.h"
#include "host/window/hotkey_table.h"
#include "host/window/menus.h"
#include "host/workspace/edit_hooks.h"
#include "host/workspace/panes.h"
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

constexpr const char* kRecent = "RecentFilesList";

QStringList recentFiles(cmd::Session& session) {
  QStringList names;
  const cmd::OptionVars::Value* kept = session.optionVars().find(kRecent);
  const auto* files = kept ? std::get_if<std::vector<std::string>>(kept) : nullptr;
  if (files)
    for (const std::string& file : *files) names.push_back(text(file));
  return names;
}

}  // namespace

MainWindow::MainWindow(Person& person) : person_(person) {
  resize(1440, 900);
  setAcceptDrops(true);
  setObjectName("MayaWindow");
  setDockOptions(AnimatedDocks | AllowTabbedDocks | AllowNestedDocks);
  // Pictures show the ground grid when they are told to; a view to work in shows it from the start.
  for (workspace::View& view : workspaceOf(person_.session()).views.all())
    view.options.grid.visible = true;
  buildViews();
  buildShelf();
  buildPanels();
  buildMenus();
  showMessages();
  work_ = std::make_unique<WorkBar>(person_, *statusBar());
  restoreLayout();
  connect(&recovery_, &QTimer::timeout, this, [this] { keepRecovery(); });
  builtins::Recovery& recovery = workspaceOf(person_.session()).kept<builtins::Recovery>();
  recovery.isEnabled = true;
  recoveryDue_ = person_.session().loop().now() + recovery.intervalSeconds;
  recovery_.start(1000);
  looking_ = person_.looked.connect([this](Person::Parts parts) {
    // What scripts print is there at once for whoever reads it, be it a file or a pipe.
    std::fflush(stdout);
    tools_->follow();
    if ((parts & Person::kPanels) != 0) follow();
  });
  workspaceOf(person_.session()).applicationWindow = reinterpret_cast<void*>(winId());
  follow();
}

MainWindow::~MainWindow() {
  workspaceOf(person_.session()).applicationWindow = nullptr;
  setMessageSink(std::move(sinkBefore_));
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
  followPanes();
}

/// The views that the layout of panels has, each at its place among four.
void MainWindow::followPanes() {
  workspace::Workspace& work = workspaceOf(person_.session());
  std::vector<std::string> now = workspace::visiblePanels(work);
  if (now == panes_) return;
  panes_ = std::move(now);
  const auto shows = [&](std::size_t place) {
    return std::ranges::find(panes_, kPanels[place]) != panes_.end();
  };
  auto* grid = static_cast<QGridLayout*>(center_->layout());
  for (std::size_t i = 0; i < kPanels.size(); ++i) views_[kPanels[i]]->setVisible(shows(i));
  for (int i = 0; i < 2; ++i) {
    const auto at = static_cast<std::size_t>(i);
    grid->setRowStretch(i, shows(2 * at) || shows(2 * at + 1) ? 1 : 0);
    grid->setColumnStretch(i, shows(at) || shows(at + 2) ? 1 : 0);
  }
  // The one that a person works in is in sight.
  if (!panes_.empty() && std::ranges::find(panes_, work.views.active().panel) == panes_.end())
    work.views.setActive(panes_.front());
}

void MainWindow::buildShelf() {
  shelfBar_ = new QToolBar(tr("Shelf"), this);
  shelfBar_->setObjectName("shelfBar");
  addToolBar(shelfBar_);
  addToolBarBreak();
  tools_ = new ToolBar(person_, this);
  addToolBar(tools_);
  followShelf();
}

/// The shelves of scripts, when there are some.
void MainWindow::followShelf() {
  const auto shelf = workspaceOf(person_.session()).controls.find("ShelfLayout");
  const bool hasButtons = shelf && !(*shelf)->children.empty();
  if (hasButtons && !shelf_) {
    shelf_ = new LayoutWindow(person_, **shelf, shelfBar_);
    constexpr int kHeight = 74;
    shelf_->setFixedHeight(kHeight);
    shelf_->setMinimumWidth(600);
    shelf_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    shelfBar_->addWidget(shelf_);
  }
  shelfBar_->setVisible(hasButtons);
  if (shelf_ && hasButtons) shelf_->follow();
}

void MainWindow::restoreLayout() {
  const cmd::OptionVars& kept = person_.session().optionVars();
  const auto bytes = [&](const char* name) {
    const cmd::OptionVars::Value* value = kept.find(name);
    const auto* text = value ? std::get_if<std::string>(value) : nullptr;
    return text ? QByteArray::fromBase64(QByteArray::fromStdString(*text)) : QByteArray();
  };
  // What is damaged or of another version is passed over by both.
  if (const QByteArray geometry = bytes("mainWindowGeometry"); !geometry.isEmpty())
    restoreGeometry(geometry);
  if (const QByteArray state = bytes("mainWindowState"); !state.isEmpty()) restoreState(state);
  HotkeyTable::restore(person_.session());
}

void MainWindow::storeLayout() {
  cmd::OptionVars& kept = person_.session().optionVars();
  kept.set("mainWindowGeometry", saveGeometry().toBase64().toStdString());
  kept.set("mainWindowState", saveState().toBase64().toStdString());
  HotkeyTable::store(person_.session());
}

/// Writes the recovery file when it is due and nobody is in the middle of something.
void MainWindow::keepRecovery() {
  builtins::Recovery& recovery = workspaceOf(person_.session()).kept<builtins::Recovery>();
  const double now = person_.session().loop().now();
  if (!recovery.isEnabled || now < recoveryDue_) return;
  if (person_.hand().isDown() || person_.isBusy || QApplication::activeModalWidget()) return;
  recoveryDue_ = now + recovery.intervalSeconds;
  cmd::Context context{person_.session(), person_.document()};
  if (const auto kept = recovery.keep(context); !kept)
    postMessage(MessageKind::Warning,
                "The recovery file could not be written: " + kept.error().message);
}

void MainWindow::offerRecovery() {
  builtins::Recovery& recovery = workspaceOf(person_.session()).kept<builtins::Recovery>();
  for (const builtins::Leftover& left : recovery.leftovers()) {
    QMessageBox box(
        QMessageBox::Question, tr("Recovery"),
        tr("The program ended with unsaved work: %1.")
            .arg(left.original.empty() ? tr("a scene without a name") : text(left.original)),
        QMessageBox::NoButton, this);
    box.setInformativeText(
        tr("It was kept at %1.")
            .arg(QFileInfo(text(left.scene.string())).lastModified().toString(Qt::TextDate)));
    const QPushButton* take = box.addButton(tr("&Recover"), QMessageBox::AcceptRole);
    const QPushButton* drop = box.addButton(tr("&Discard"), QMessageBox::DestructiveRole);
    box.addButton(tr("&Later"), QMessageBox::RejectRole);
    box.exec();
    if (box.clickedButton() == drop) builtins::Recovery::discard(left);
    if (box.clickedButton() != take) continue;
    if (!mayDropScene()) continue;
    cmd::Context context{person_.session(), person_.document()};
    if (const auto done = recovery.takeUp(context, left); !done)
      postMessage(MessageKind::Error, done.error().message);
    person_.lookSoon();
    return;  // one scene at a time; the others are offered again
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
  uvs_ = new UvPanel(person_);
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
  four->setShortcut({});
  connect(four, &QAction::triggered, this, [this] { person_.runNamed("PanePopNameCommand"); });
  QAction* grid = panelsMenu_->addAction(tr("Grid"));
  grid->setCheckable(true);
  connect(panelsMenu_, &QMenu::aboutToShow, this, [this, grid] {
    grid->setChecked(workspaceOf(person_.session()).views.active().options.grid.visible);
  });
  connect(grid, &QAction::triggered, this, [this](bool isOn) {
    workspaceOf(person_.session()).views.active().options.grid.visible = isOn;
    person_.lookSoon(Person::kViews);
  });
  panelsMenu_->addSeparator();
  for (QDockWidget* each : docks) panelsMenu_->addAction(each->toggleViewAction());

  help_ = new QLabel(this);
  help_->setObjectName("helpLine");
  help_->setAccessibleName("helpLine");
  statusBar()->addWidget(help_, 1);
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
    for (const QString& name : recentFiles(person_.session()))
      connect(recent->addAction(name), &QAction::triggered, this, [this, name] {
        if (mayDropScene()) open(name);
      });
  });
  add(tr("Save Scene"), QKeySequence::Save, [this] { save(); });
  add(tr("Save Scene As..."), QKeySequence("Ctrl+Shift+S"), [this] { saveAs(); });
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
  add(tr("Hot Keys..."), {}, [this] { (new HotkeyTable(person_, this))->show(); });
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

/// What the displays over the views say now, by block within each section.
void MainWindow::readHeadsUpTexts() {
  std::vector<std::pair<int, Person::HeadsUpText>> all;
  cmd::Session& session = person_.session();
  const auto displays = workspaceOf(session).headsUpDisplays.byName;  // a script may change them
  for (const auto& [name, display] : displays) {
    if (!display.isVisible) continue;
    std::string said;
    if (!display.command.empty())
      if (const auto value = session.callCommand(
              "headsUpDisplay",
              std::vector<mel::Value>{mel::Value("-query"), mel::Value("-scriptResult"),
                                      mel::Value(name)}))
        said = value->toText().value_or("");
    all.push_back({display.block, {display.section, display.label + " " + said}});
  }
  std::ranges::stable_sort(all, {}, [](const auto& each) { return each.first; });
  person_.headsUpTexts.clear();
  for (auto& [block, text] : all) person_.headsUpTexts.push_back(std::move(text));
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
  readHeadsUpTexts();
  followScriptMenus();
  followPanes();
  followShelf();
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
    person_.lastMessage = said;
    help_->setText((kind == MessageKind::Error     ? tr("Error: ")
                    : kind == MessageKind::Warning ? tr("Warning: ")
                                                   : QString()) +
                   text(said).section('\n', 0, 0));
    help_->setStyleSheet(kind == MessageKind::Error     ? "color: #ff6e64"
                         : kind == MessageKind::Warning ? "color: #e6be50"
                                                        : "");
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
  remember(file);
}

void MainWindow::remember(const QString& file) {
  QStringList recent = recentFiles(person_.session());
  recent.removeAll(file);
  recent.prepend(file);
  constexpr int kMost = 10;
  std::vector<std::string> names;
  for (const QString& name : recent.mid(0, kMost)) names.push_back(name.toStdString());
  person_.session().optionVars().set(kRecent, names);
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

bool MainWindow::event(QEvent* event) {
  // A dialog takes the mouse away in the middle of a drag.
  if (event->type() == QEvent::WindowBlocked) person_.letGo();
  return QMainWindow::event(event);
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
  storeLayout();
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
