#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <typeindex>
#include <unordered_map>

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

  /// Runs a text and returns the value of its last statement. Outside any command it is one item of
  /// undo, also when it fails half-way; inside one it belongs to that command's step.
  Result<mel::Value> executeLine(std::string_view text, const ExecuteOptions& options = {});
  /// Runs a script file as one line.
  Result<mel::Value> executeFile(const std::string& path, const ExecuteOptions& options = {});
  /// Ends the script that runs; may be called from a signal handler.
  void interrupt() noexcept { interpreter_->interrupt(); }

  // Idle time.
  void defer(std::string script, bool lowestPriority = false);
  void deferTask(std::function<void()> task);
  /// Runs deferred scripts, tasks and due script jobs, those included that they queue; gives up
  /// after `maxRounds`. Returns whether something ran.
  bool processIdle(int maxRounds = 100);
  [[nodiscard]] bool hasIdleWork() const;
  /// Called in every turn of the program's loop before idle work (timers, window events); may be
  /// empty.
  std::function<void()> pumpEvents;
  /// The same for the callbacks of plug-ins.
  std::function<void()> loopTask;
  /// One turn of the loop.
  void step();

  /// The scene empty, as new: document reset, undo forgotten, events triggered.
  void newScene();

  std::unique_ptr<PluginLoader> pluginLoader;  ///< null: this program loads no plug-ins
  std::function<void()> refreshViews;          ///< redraws; empty without views
  /// Set by `quit`: the loop ends with that exit status.
  bool isQuitting = false;
  int exitStatus = 0;
  bool isBatch = true;

  /// An object of another layer that lives with the session (the control tree, the tools, the
  /// views), by its type; made on first use.
  template <class T>
  [[nodiscard]] T& service() {
    std::shared_ptr<void>& slot = services_[std::type_index(typeid(T))];
    if (!slot) slot = std::make_shared<T>();
    return *static_cast<T*>(slot.get());
  }
  template <class T>
  void setService(std::shared_ptr<T> object) {
    services_[std::type_index(typeid(T))] = std::move(object);
  }
  template <class T>
  [[nodiscard]] T* findService() {
    const auto found = services_.find(std::type_index(typeid(T)));
    return found == services_.end() ? nullptr : static_cast<T*>(found->second.get());
  }

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
  OptionVars optionVars_;
  std::unordered_map<std::type_index, std::shared_ptr<void>> services_;
  std::deque<std::string> deferred_, deferredLow_;
  std::deque<std::function<void()>> tasks_;
  int lineDepth_ = 0;
};

/// The session of this process; asserts when there is none. Set by the session's constructor.
[[nodiscard]] Session& currentSession();
[[nodiscard]] bool hasSession();

}  // namespace host::cmd
