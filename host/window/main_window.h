#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QTimer>
#include <map>
#include <memory>
#include <string>

#include "host/window/layout_window.h"
#include "host/window/scene_panels.h"
#include "host/window/script_panel.h"
#include "host/window/tool_bar.h"
#include "host/window/uv_panel.h"
#include "host/window/work_bar.h"

namespace host::window {

/// The program's window: one view or four, the menus that scripts put there, the panels beside, and
/// the windows that scripts show. Everything it shows is the session's.
class MainWindow : public QMainWindow {
 public:
  explicit MainWindow(Person& person);
  ~MainWindow() override;
  /// Offers to take up what a run that crashed left; once the window stands.
  void offerRecovery();

  // What the File menu does. A failure is shown and nothing has changed.
  bool mayDropScene();  ///< asks about unsaved work; whether it may go
  void newScene();
  void open(const QString& file);
  bool save();
  bool saveAs();

 protected:
  bool event(QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void buildMenus();
  void buildFileMenu();
  void buildEditMenu();
  void buildPanels();
  void buildViews();
  void buildShelf();
  void restoreLayout();
  void storeLayout();
  void remember(const QString& file);
  void keepRecovery();
  void followPanes();
  void followShelf();
  void readHeadsUpTexts();
  void follow();
  void followScriptMenus();
  void followWindows();
  void showMessages();
  [[nodiscard]] QString sceneName() const;

  Person& person_;
  QWidget* center_ = nullptr;
  std::map<std::string, ViewWidget*> views_;
  std::map<std::string, std::unique_ptr<LayoutWindow>> windows_;
  std::vector<QMenu*> scriptMenus_;
  std::string menusShown_;  ///< names and labels of the menus of scripts that have one here
  Outliner* outliner_ = nullptr;
  AttributePanel* attributes_ = nullptr;
  UndoPanel* undo_ = nullptr;
  ScriptPanel* scripts_ = nullptr;
  UvPanel* uvs_ = nullptr;
  QLabel* help_ = nullptr;
  ToolBar* tools_ = nullptr;
  QToolBar* shelfBar_ = nullptr;
  LayoutWindow* shelf_ = nullptr;
  std::unique_ptr<WorkBar> work_;
  QTimer recovery_;
  double recoveryDue_ = 0;
  QMenu* panelsMenu_ = nullptr;
  Connection looking_;
  MessageSink sinkBefore_;
  std::vector<std::string> panes_;  ///< the panels that show
};

}  // namespace host::window
