#include "host/cmd/session.h"

#include <exception>
#include <utility>

#include "host/base/assert.h"
#include "host/base/messages.h"
#include "host/cmd/loop.h"
#include "host/cmd/pending_edits.h"
#include "host/mel/literal.h"

namespace host::cmd {

namespace {
Session* theSession = nullptr;
}

Session& currentSession() {
  HOST_ASSERT(theSession, "make a Session before commands or API calls are used");
  return *theSession;
}

bool hasSession() {
  return theSession != nullptr;
}

Session::Session(const std::function<void(dg::TypeRegistry&)>& registerTypes,
                 const std::function<void(scene::Document&)>& prepare) {
  HOST_ASSERT(!theSession, "one session at a time: end the other one first");
  registerTypes(types_);
  document_ = std::make_unique<scene::Document>(types_);
  if (prepare) prepare(*document_);
  scene::setCurrentDocument(document_.get());
  undo_ = std::make_unique<UndoQueue>(document_->journal());
  undo_->sweep = [this] { return document_->sweepSelection(); };
  dispatcher_ = std::make_unique<Dispatcher>(*this, registry_, *undo_);
  interpreter_ = std::make_unique<mel::Interpreter>(*dispatcher_);
  scriptJobs_ = std::make_unique<ScriptJobs>(*document_);
  loop_ = std::make_unique<Loop>(*this);
  theSession = this;
  document_->reset();
  document_->setModified(false);
}

Session::~Session() {
  // The scene goes first: plug-ins see their nodes off and take their callbacks back while both
  // are still there.
  undo_->flush();
  document_->reset();
  document_->graph().releaseRemoved();
  if (pluginLoader) {
    const std::vector<std::string> plugins = pluginLoader->loaded();
    for (auto name = plugins.rbegin(); name != plugins.rend(); ++name)
      (void)pluginLoader->unload(*name, true);
  }
  pluginLoader.reset();
  if (const auto finish = std::exchange(pendingEdits().finish, {})) finish();
  undo_->flush();
  plugInState.reset();
  workspace.reset();
  loop_.reset();
  scriptJobs_.reset();
  interpreter_.reset();
  dispatcher_.reset();
  undo_.reset();
  registry_.changed = {};
  scene::setCurrentDocument(nullptr);
  document_.reset();
  theSession = nullptr;
}

namespace {

/// Holds the queue's line open, or recording off, for as long as a text runs.
class LineScope {
 public:
  LineScope(UndoQueue& queue, std::string_view text, bool isOutermost, bool records)
      : queue_(queue), text_(text), isLine_(isOutermost && records), isSuspended_(!records) {
    if (isLine_) {
      lineBefore_ = std::exchange(pendingEdits().line, text_);
      outer_ = std::exchange(innermost_, this);
      queue_.beginLine(text_);
    }
    if (isSuspended_) queue_.suspend();
  }
  ~LineScope() {
    if (isSuspended_) queue_.resume();
    if (!isLine_) return;
    pendingEdits().line = std::move(lineBefore_);
    innermost_ = outer_;
    queue_.endLine();
  }
  /// What a hand does from within a line is no part of it: what the line has done so far is an
  /// item, and so is what it does afterwards.
  static void runOutside(const std::function<void()>& run) {
    LineScope* const line = std::exchange(innermost_, nullptr);
    if (!line) return run();
    line->queue_.endLine();
    try {
      run();
    } catch (...) {
      line->goOn();
      throw;
    }
    line->goOn();
  }
  LineScope(const LineScope&) = delete;
  LineScope& operator=(const LineScope&) = delete;

 private:
  void goOn() {
    innermost_ = this;
    queue_.beginLine(text_);
  }

  inline static LineScope* innermost_ = nullptr;
  UndoQueue& queue_;
  LineScope* outer_ = nullptr;
  std::string text_;
  std::string lineBefore_;  ///< of the script that makes a gesture, while the gesture runs lines
  bool isLine_, isSuspended_;
};

class DepthScope {
 public:
  explicit DepthScope(int& depth) : depth_(depth) { ++depth_; }
  ~DepthScope() { --depth_; }
  DepthScope(const DepthScope&) = delete;
  DepthScope& operator=(const DepthScope&) = delete;

 private:
  int& depth_;
};

#ifdef QXMT_PARANOID
/// Undoes and redoes what a line did, and ends the program when the document isn't the same again.
void checkUndoOfLine(Session& session, std::string_view text, std::size_t itemsBefore,
                     std::size_t unrecordedBefore, std::uint64_t hashBefore) {
  UndoQueue& queue = session.undo();
  if (queue.itemCount() != itemsBefore + 1 || queue.unrecordedCount() != unrecordedBefore ||
      queue.isChunkOpen())
    return;
  const std::uint64_t hashAfter = session.document().hash();
  const std::vector<int> pendingJobs = session.scriptJobs().pending();
  HOST_ASSERT(queue.undo().has_value(), "an item that was just added can be undone");
  if (session.document().hash() != hashBefore)
    fmt::print(stderr, "Undo left the document another one than before this line:\n{}\n", text);
  HOST_ASSERT(session.document().hash() == hashBefore,
              "record every edit that this command line makes");
  HOST_ASSERT(queue.redo().has_value(), "an item that was just undone can be redone");
  HOST_ASSERT(session.document().hash() == hashAfter, "make redo of every edit exact");
  session.scriptJobs().setPending(pendingJobs);
}
#endif

}  // namespace

Result<mel::Value> Session::runGuarded(const std::function<Result<mel::Value>()>& run,
                                       std::string_view text, const ExecuteOptions& options) {
  const bool isOutermost = lineDepth_ == 0 && !dispatcher_->isRunning() && !undo_->isReplaying();
#ifdef QXMT_PARANOID
  const bool checks = isOutermost && options.undo && undo_->isOn() && !undo_->isChunkOpen();
  const std::size_t itemsBefore = undo_->itemCount(), unrecordedBefore = undo_->unrecordedCount();
  const std::uint64_t hashBefore = checks ? document_->hash() : 0;
#endif
  Result<mel::Value> result;
  if (isOutermost && options.undo) lineBegins(text);
  {
    const DepthScope depth(lineDepth_);
    const LineScope line(*undo_, text, isOutermost, options.undo);
    try {
      result = run();
    } catch (const std::exception& exception) {
      result = fail("{}", exception.what());
    } catch (...) {
      result = fail("An exception of unknown type ended the script.");
    }
  }
#ifdef QXMT_PARANOID
  if (checks) checkUndoOfLine(*this, text, itemsBefore, unrecordedBefore, hashBefore);
#endif
  if (isOutermost && options.undo) lineRun(text);
  if (!result) {
    // A script that quits is interrupted, which is no error.
    if (options.postErrors && !isQuitting) postMessage(MessageKind::Error, result.error().message);
  } else if (options.display && !result->isNone()) {
    postMessage(MessageKind::Result, result->resultText());
  }
  return result;
}

Result<mel::Value> Session::executeLine(std::string_view text, const ExecuteOptions& options) {
  return runGuarded([&] { return interpreter_->execute(text, options.source); }, text, options);
}

Result<mel::Value> Session::executeFile(const std::string& path, const ExecuteOptions& options) {
  return runGuarded([&] { return interpreter_->sourceFile(path); },
                    fmt::format("source \"{}\"", path), options);
}

Result<mel::Value> Session::call(const std::string& name, std::span<const mel::Value> values,
                                 const ExecuteOptions& options) {
  std::string text = name;  // as a line would say it: undo and recordings show lines
  for (const mel::Value& value : values) text += " " + mel::flagWords(value);
  return runGuarded([&] { return interpreter_->callProcedure(name, values); }, text, options);
}

Result<mel::Value> Session::callCommand(std::string_view name, std::span<const mel::Value> values) {
  const mel::CommandHandle* handle = dispatcher_->findCommand(name);
  if (!handle) return fail(ErrorKind::NotFound, "There is no command '{}'.", name);
  mel::Value result;
  HOST_TRY(dispatcher_->invoke(*handle, values, result));
  return result;
}

void Session::runByHand(const std::function<void()>& run) {
  struct Outermost {
    explicit Outermost(int& depthIn) : depth(depthIn), kept(std::exchange(depthIn, 0)) {}
    ~Outermost() { depth = kept; }
    int &depth, kept;
  } outermost(lineDepth_);
  LineScope::runOutside([&] { dispatcher_->runOutside(run); });
}

void Session::newScene() {
  scriptJobs_->triggerEvent("deleteAll");
  settlePendingEdits(*this);
  undo_->flush();
  const scene::Journal::Scope unrecorded(document_->journal(), nullptr);
  document_->reset();
  document_->setFileName({});
  document_->setModified(false);
  scriptJobs_->triggerEvent("NewSceneOpened");
}

}  // namespace host::cmd
