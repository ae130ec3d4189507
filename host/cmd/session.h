#pragma once

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/cmd/dispatcher.h"
#include "host/cmd/option_vars.h"
#include "host/cmd/plugin_loader.h"
#include "host/cmd/registry.h"
#include "host/cmd/script_jobs.h"
#include "host/cmd/undo_queue.h"
#include "host/mel/interpreter.h"
#include "host/scene/document.h"

namespace host::cmd {

struct ExecuteOptions {
  bool display = false;         ///< post the result as a message
  bool undo = true;             ///< record; off: nothing that runs inside is undoable
  bool postErrors = true;       ///< post the error as a message besides returning it
  mel::SourceName source = {};  ///< for error messages
};

class Loop;

/// What a layer above keeps for as long as a session lives.
class SessionPart {
 public:
  SessionPart() = default;
  virtual ~SessionPart() = default;
  SessionPart(const SessionPart&) = delete;
  SessionPart& operator=(const SessionPart&) = delete;
};

/// The running host without its window: one document, the language, the commands, undo and what
/// waits for idle time. One at a time; main thread only, but for `interrupt`.
class Session {
 public:
  /// `registerTypes` fills the type registry before the document is made; `prepare` gets the
  /// document before its first reset, to install what makes a new scene's nodes.
  Session(const std::function<void(dg::TypeRegistry&)>& registerTypes,
          const std::function<void(scene::Document&)>& prepare);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  [[nodiscard]] dg::TypeRegistry& types() { return types_; }
  [[nodiscard]] scene::Document& document() { return *document_; }
  [[nodiscard]] CommandRegistry& commands() { return registry_; }
  [[nodiscard]] UndoQueue& undo() { return *undo_; }
  [[nodiscard]] Dispatcher& dispatcher() { return *dispatcher_; }
  [[nodiscard]] mel::Interpreter& interpreter() { return *interpreter_; }
  [[nodiscard]] ScriptJobs& scriptJobs() { return *scriptJobs_; }
  [[nodiscard]] OptionVars& optionVars() { return optionVars_; }
  [[nodiscard]] Loop& loop() { return *loop_; }

  /// Runs a text and returns the value of its last statement. Outside any command it is one item of
  /// undo, also when it fails half-way; inside one it belongs to that command's step.
  Result<mel::Value> executeLine(std::string_view text, const ExecuteOptions& options = {});
  /// Calls a procedure, a function of the language or a command by its name, as a script line
  /// would, with values instead of text: nothing is quoted or parsed. Flags are strings `-name`,
  /// their values follow.
  Result<mel::Value> call(const std::string& name, std::span<const mel::Value> values = {},
                          const ExecuteOptions& options = {});
  /// Runs a command of the host by its name; a procedure of that name is not it.
  Result<mel::Value> callCommand(std::string_view name, std::span<const mel::Value> values);
  /// Runs a script file as one line.
  Result<mel::Value> executeFile(const std::string& path, const ExecuteOptions& options = {});
  // Before and after a line that nothing else runs: its text. Lines that leave no undo aren't told
  // of.
  Signal<std::string_view> lineBegins, lineRun;
  /// Ends the script that runs; may be called from a signal handler.
  void interrupt() noexcept { interpreter_->interrupt(); }

  /// Runs what a person does while a script is at work (a gesture that the script makes): command
  /// lines and steps inside are items of undo of their own, as they are when no script runs, within
  /// the item of the script.
  void runByHand(const std::function<void()>& run);

  /// The scene empty, as new: document reset, undo forgotten, events triggered.
  void newScene();

  std::unique_ptr<PluginLoader> pluginLoader;  ///< null: this program loads no plug-ins
  /// Set by `quit`: the loop ends with that exit status.
  bool isQuitting = false;
  int exitStatus = 0;
  bool isBatch = true;

  /// What layers above keep for this session; set by whoever makes it. The parts go before the
  /// document does, the plug-ins' first.
  std::unique_ptr<SessionPart> workspace, plugInState;

 private:
  Result<mel::Value> runGuarded(const std::function<Result<mel::Value>()>& run,
                                std::string_view text, const ExecuteOptions& options);

  dg::TypeRegistry types_;
  std::unique_ptr<scene::Document> document_;
  CommandRegistry registry_;
  std::unique_ptr<UndoQueue> undo_;
  std::unique_ptr<Dispatcher> dispatcher_;
  std::unique_ptr<mel::Interpreter> interpreter_;
  std::unique_ptr<ScriptJobs> scriptJobs_;
  std::unique_ptr<Loop> loop_;
  OptionVars optionVars_;
  int lineDepth_ = 0;
};

/// The session of this process; asserts when there is none. Set by the session's constructor.
[[nodiscard]] Session& currentSession();
[[nodiscard]] bool hasSession();

}  // namespace host::cmd
