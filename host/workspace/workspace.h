#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <typeindex>
#include <vector>

#include "host/base/signal.h"
#include "host/cmd/session.h"
#include "host/io/ma/ma_kept.h"
#include "host/tools/hand.h"
#include "host/tools/tool_registry.h"
#include "host/ui/tree.h"
#include "host/workspace/file_formats.h"
#include "host/workspace/hooks.h"
#include "host/workspace/hotkeys.h"
#include "host/workspace/interface.h"
#include "host/workspace/recordings.h"
#include "host/workspace/selection_modes.h"
#include "host/workspace/views.h"

namespace host::workspace {

/// The hand that the session's scripts move. It has to come out of an event before it makes the
/// next.
struct ScriptHand {
  std::unique_ptr<tools::Hand> hand;
  bool isSending = false, isWaiting = false;
};

/// A compound attribute that is being declared on a node: its children come in the calls that
/// follow.
struct PendingCompound {
  dg::AttributePtr attribute;
  std::size_t childCount = 0;
};

/// What one running host has beside its document: views, tools, interface and preferences. Each
/// has one owner, this, and goes with the session.
class Workspace final : public cmd::SessionPart {
 public:
  explicit Workspace(cmd::Session& session);
  ~Workspace() override;

  // Views, and what may be picked in them.
  Views views;
  SelectionModes selectionModes;
  std::map<std::string, double, std::less<>> selectPrefs;  ///< that were set, by flag
  std::vector<std::array<double, 2>> selectConstraints;    ///< by the command's table

  // Tools.
  tools::ToolRegistry toolbox;
  Hotkeys hotkeys;
  ScriptHand hand;
  Recordings recordings;

  // Interface.
  ui::Tree controls;
  Dialogs dialogs;
  InViewMessages inViewMessages;
  HeadsUpDisplays headsUpDisplays;
  std::map<std::string, WindowPlace> windowPlaces;
  void* applicationWindow = nullptr;  ///< the system's handle; null without a window
  bool echoesCommands = false;
  bool quitsAtOnce = false;  ///< `quit -force`: nobody is asked about unsaved work

  // Files.
  Project project;
  FileFormats fileFormats;
  io::MaKept maKept;
  SceneHooks sceneHooks;
  DuplicateHooks duplicateHooks;
  std::map<std::string, PendingCompound> pendingCompounds;  ///< by the node's uuid and the name

  /// What one family of commands keeps for the session, made when it is first asked for.
  template <class T>
  [[nodiscard]] T& kept() {
    std::shared_ptr<void>& slot = kept_[std::type_index(typeid(T))];
    if (!slot) slot = std::make_shared<T>();
    return *static_cast<T*>(slot.get());
  }

 private:
  void giveToolsTheirViews();
  [[nodiscard]] View& viewOf(const std::string& panel);

  class Watcher;
  cmd::Session& session_;
  std::map<std::type_index, std::shared_ptr<void>> kept_;
  std::unique_ptr<Watcher> watcher_;
  std::vector<Connection> connections_;
};

/// The session's; whoever made the session has given it one.
[[nodiscard]] Workspace& workspaceOf(cmd::Session& session);

}  // namespace host::workspace
