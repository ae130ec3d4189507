#include "host/cmd/dispatcher.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>

#include "host/base/cancel.h"
#include "host/base/messages.h"
#include "host/cmd/asking.h"
#include "host/cmd/loop.h"
#include "host/cmd/pending_edits.h"
#include "host/cmd/session.h"
#include "host/scene/replay.h"

namespace host::cmd {

namespace {

// Scripts and plug-ins that call each other end in an error long before the stack ends.
constexpr int kDeepestNesting = 200;

/// While commands run inside each other: of the sets that collect their edits, how many but for the
/// innermost hold some already. There is one session at a time.
int enclosingWithEdits = 0;

/// What runs inside a command collects into `own`, to land between the command's own edits in
/// order, and to be taken back with them.
class CollectedInside {
 public:
  CollectedInside(scene::ChangeSet*& step, scene::ChangeSet* outer, scene::ChangeSet& own)
      : step_(step), before_(step), counts_(outer && !outer->isEmpty() ? 1 : 0) {
    if (outer) step_ = &own;
    enclosingWithEdits += counts_;
  }
  ~CollectedInside() {
    step_ = before_;
    enclosingWithEdits -= counts_;
  }
  CollectedInside(const CollectedInside&) = delete;
  CollectedInside& operator=(const CollectedInside&) = delete;

 private:
  scene::ChangeSet*& step_;
  scene::ChangeSet* before_;
  int counts_;
};

template <class Body>
Result<void> fenced(const std::string& name, const Body& body) {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return fail(ErrorKind::OutOfMemory, "{}: not enough memory.", name);
  } catch (const std::exception& exception) {
    return fail("{}: {}", name, exception.what());
  } catch (...) {
    return fail("{}: an exception of unknown type.", name);
  }
}

}  // namespace

/// Collects the edits of one command into the step of the outermost command that runs.
class Dispatcher::StepScope {
 public:
  StepScope(Dispatcher& dispatcher, std::string_view name)
      : dispatcher_(dispatcher), flushes_(dispatcher.undo_.flushCount()) {
    if (dispatcher.step_ || !dispatcher.undo_.isRecording()) return;
    settlePendingEdits(dispatcher.session_);
    own_.emplace();
    own_->name = name;
    own_->sets.emplace_back();
    dispatcher.step_ = &own_->sets.front();
  }
  ~StepScope() {
    if (own_) dispatcher_.step_ = nullptr;
  }
  StepScope(const StepScope&) = delete;
  StepScope& operator=(const StepScope&) = delete;

  /// Where this command's edits go: null when nothing is recorded now.
  [[nodiscard]] scene::ChangeSet* target() const {
    return dispatcher_.collectors_ > 0 || dispatcher_.undo_.isRecording() ? dispatcher_.step_
                                                                          : nullptr;
  }
  [[nodiscard]] bool isOutermost() const { return own_.has_value(); }

  /// Puts the step on the queue; an empty one only when `evenEmpty`.
  void commit(bool evenEmpty) {
    if (!own_ || flushes_ != dispatcher_.undo_.flushCount()) return;
    dispatcher_.step_ = nullptr;
    if (evenEmpty || !own_->changesNothing()) dispatcher_.undo_.add(std::move(*own_));
    own_.reset();
  }

 private:
  Dispatcher& dispatcher_;
  std::size_t flushes_;
  std::optional<UndoItem> own_;
};

Dispatcher::Dispatcher(Session& session, CommandRegistry& registry, UndoQueue& undo)
    : session_(session), registry_(registry), undo_(undo) {
  registry_.changed = [this] { commandsChanged(); };
}

const mel::CommandHandle* Dispatcher::findCommand(std::string_view name) {
  return registry_.find(name).get();
}

std::string Dispatcher::describe(const mel::CommandHandle& command) {
  return static_cast<const Command&>(command).builtin() ? "Command" : "Plug-in Command";
}

void Dispatcher::defer(std::string script, bool lowestPriority) {
  session_.loop().defer(std::move(script), lowestPriority);
}

void Dispatcher::completeCommand(std::string_view prefix, std::vector<std::string>& names) {
  for (std::string& name : registry_.names())
    if (name.compare(0, prefix.size(), prefix) == 0) names.push_back(std::move(name));
}

Result<void> Dispatcher::invoke(const mel::CommandHandle& handle,
                                std::span<const mel::Value> arguments, mel::Value& result) {
  const Command& command = static_cast<const Command&>(handle);
  if (depth_ >= kDeepestNesting)
    return fail("Commands are nested too deeply at '{}'.", command.name());
  struct Depth {
    explicit Depth(Dispatcher& dispatcher) : self(dispatcher) { ++self.depth_; }
    ~Depth() {
      if (--self.depth_ == 0 && !self.undo_.isReplaying())
        self.session_.document().graph().releaseRemoved();
    }
    Dispatcher& self;
  } depth(*this);
  std::optional<NamedWork> named;
  if (depth_ == 1) named.emplace(command.name());
  if (const CommandSpec* spec = command.builtin()) return invokeBuiltin(*spec, arguments, result);
  // A plug-in may take its command out while it runs.
  const std::shared_ptr<const Command> alive = registry_.find(command.name());
  return invokePlugin(*alive->plugin(), arguments, result);
}

void Dispatcher::revert(scene::ChangeSet& edits) {
  const scene::ReplayScope replay(session_.document().journal());
  const scene::PutBackScope putBack;
  if (const auto reverted = edits.undo(); !reverted)
    postMessage(MessageKind::Warning,
                fmt::format("What the command had done stays: {}.", reverted.error().message));
  // What others deleted meanwhile, unrecorded, is selected no more.
  (void)session_.document().sweepSelection();
}

Result<void> Dispatcher::invokeBuiltin(const CommandSpec& spec,
                                       std::span<const mel::Value> arguments, mel::Value& result) {
  auto parsed = parseArguments(spec.syntax, arguments, session_.document().units());
  if (!parsed) return failWith(std::move(parsed.error()));
  Context context{session_, session_.document()};
  const auto run = [&]() -> Result<void> {
    return fenced(spec.name, [&]() -> Result<void> {
      auto value = spec.function(context, *parsed);
      if (!value) return failWith(std::move(value.error()));
      result = std::move(*value);
      return {};
    });
  };
  if (!spec.isUndoable || parsed->isQuery()) return run();

  StepScope step(*this, spec.name);
  scene::ChangeSet* const outer = step.target();
  scene::ChangeSet own;
  Result<void> done;
  AskingScope asking;
  scene::Journal& journal = session_.document().journal();
  {
    // Also where nobody keeps it: what fails half-way leaves nothing behind.
    const scene::Journal::Scope recording(journal, &own);
    {
      const CollectedInside collected(step_, outer, own);
      done = run();
    }
    if (!done) revert(own);
  }
  if (!done || (asking.asksOnly() && own.isEmpty())) return done;
  if (outer)
    outer->append(std::move(own));
  else if (journal.isRecording() && !own.isEmpty())
    journal.record(scene::makeChange(std::move(own)));  // in the middle of what is recorded
  step.commit(true);
  return done;
}

bool Dispatcher::isRunningOf(std::string_view plugin) const {
  return std::ranges::find(runningPlugins_, plugin) != runningPlugins_.end();
}

Result<void> Dispatcher::invokePlugin(const PluginCommandSpec& spec,
                                      std::span<const mel::Value> arguments, mel::Value& result) {
  StepScope step(*this, spec.name);
  scene::ChangeSet* const target = step.target();
  std::unique_ptr<PluginCommand> command;
  bool isUndoable = false;
  // Only a command that undo keeps needs to know its nodes again.
  dg::Graph& graph = session_.document().graph();
  dg::Graph::Creations made;
  dg::Graph::Creations* const outer = graph.exchangeCreations(nullptr);
  graph.exchangeCreations(target ? &made : outer);
  runningPlugins_.push_back(spec.pluginName);
  const Result<void> done = fenced(spec.name, [&]() -> Result<void> {
    const scene::Journal::Scope unrecorded(session_.document().journal(), nullptr);
    command = spec.create();
    if (!command) return fail("{}: the plug-in made no command object.", spec.name);
    HOST_TRY(command->doIt(arguments));
    result = command->result();
    isUndoable = command->isUndoable();
    return {};
  });
  runningPlugins_.pop_back();
  graph.exchangeCreations(outer);
  if (done && isUndoable && target)
    target->append(makePluginChange(spec.name, std::move(command), &graph, std::move(made.made)));
  if (!isUndoable) undo_.noteUnrecorded();
  // What nested commands recorded stays undoable when the command itself fails or isn't.
  step.commit(false);
  return done;
}

void Dispatcher::addFinished(std::string name, std::unique_ptr<PluginCommand> command) {
  StepScope step(*this, name);
  if (scene::ChangeSet* target = step.target())
    target->append(makePluginChange(std::move(name), std::move(command)));
  step.commit(false);
}

Result<void> Dispatcher::recordStep(std::string_view name,
                                    const std::function<Result<void>()>& edits) {
  StepScope step(*this, name);
  scene::ChangeSet own;
  scene::ChangeSet* const target = step.target();
  Result<void> done;
  {
    const scene::Journal::Scope recording(session_.document().journal(), target ? &own : nullptr);
    {
      const CollectedInside collected(step_, target, own);
      done = fenced(std::string(name), edits);
    }
    if (!done) revert(own);
  }
  if (done && target) target->append(std::move(own));
  step.commit(false);
  return done;
}

Result<void> Dispatcher::collectInto(scene::ChangeSet& target,
                                     const std::function<Result<void>()>& run) {
  scene::ChangeSet* const before = std::exchange(step_, &target);
  ++depth_;
  ++collectors_;
  const Result<void> done = fenced("command", run);
  --collectors_;
  --depth_;
  step_ = before;
  return done;
}

void Dispatcher::runOutside(const std::function<void()>& run) {
  struct Depth {
    explicit Depth(int& valueIn) : value(valueIn), kept(std::exchange(valueIn, 0)) {}
    ~Depth() { value = kept; }
    int &value, kept;
  };
  if (step_) return run();
  const Depth outside(depth_);
  run();
}

Result<void> Dispatcher::undo() {
  if (enclosingWithEdits > 0 || (step_ && !step_->isEmpty()))
    return fail("Can't undo while a command is at work.");
  settlePendingEdits(session_);
  return undo_.undo();
}

Result<void> Dispatcher::redo() {
  if (enclosingWithEdits > 0 || (step_ && !step_->isEmpty()))
    return fail("Can't redo while a command is at work.");
  settlePendingEdits(session_);
  return undo_.redo();
}

}  // namespace host::cmd
