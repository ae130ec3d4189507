#include "host/base/messages.h"
#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

/// A person sees what went or came back; scripts that a farm runs say enough already.
void tell(Context& context, std::string_view what, const std::string& name) {
  if (!context.session.isBatch) postMessage(MessageKind::Info, fmt::format("{}: {}", what, name));
}

CommandResult undo(Context& context, const ParsedArgs&) {
  const std::string name = context.session.undo().undoName();
  HOST_TRY(context.session.dispatcher().undo());
  tell(context, "Undo", name);
  context.session.scriptJobs().triggerEvent("Undo");
  return mel::Value();
}

CommandResult redo(Context& context, const ParsedArgs&) {
  const std::string name = context.session.undo().redoName();
  HOST_TRY(context.session.dispatcher().redo());
  tell(context, "Redo", name);
  context.session.scriptJobs().triggerEvent("Redo");
  return mel::Value();
}

CommandResult queryInfo(Context& context, const ParsedArgs& args) {
  const cmd::UndoQueue& queue = context.session.undo();
  const std::string_view what = args.queried();
  if (what == "state" || what == "stateWithoutFlush") return mel::Value(queue.isOn());
  if (what == "infinity") return mel::Value(queue.isInfinite());
  if (what == "length") return mel::Value(queue.length());
  if (what == "undoName") return mel::Value(queue.undoName());
  if (what == "redoName") return mel::Value(queue.redoName());
  if (what == "undoQueueEmpty") return mel::Value(!queue.canUndo());
  if (what == "redoQueueEmpty") return mel::Value(!queue.canRedo());
  if (what == "chunkName") return mel::Value(queue.undoName());
  if (what == "printQueue") {
    postMessage(MessageKind::Print, queue.describe());
    return mel::Value();
  }
  return fail("undoInfo: say what to query.");
}

CommandResult undoInfo(Context& context, const ParsedArgs& args) {
  if (args.isQuery()) return queryInfo(context, args);
  cmd::UndoQueue& queue = context.session.undo();
  if (args.has("printQueue")) postMessage(MessageKind::Print, queue.describe());
  if (args.has("state")) queue.setOn(args.boolean("state"), false);
  if (args.has("stateWithoutFlush")) queue.setOn(args.boolean("stateWithoutFlush"), true);
  if (args.has("length")) queue.setLength(args.integer("length"));
  if (args.has("infinity")) queue.setInfinite(args.boolean("infinity"));
  if (args.has("openChunk")) queue.openChunk(args.text("chunkName"));
  if (args.has("closeChunk")) queue.closeChunk();
  return mel::Value();
}

CommandResult flushUndo(Context& context, const ParsedArgs&) {
  context.session.undo().flush();
  return mel::Value();
}

}  // namespace

void registerUndo(CommandRegistry& registry) {
  defineQuery(registry, "undo", Syntax(), undo);
  defineQuery(registry, "redo", Syntax(), redo);
  defineQuery(registry, "flushUndo", Syntax(), flushUndo);
  defineQuery(registry, "undoInfo",
              Syntax()
                  .flag("st", "state", {ArgType::Bool})
                  .flag("swf", "stateWithoutFlush", {ArgType::Bool})
                  .flag("in", "infinity", {ArgType::Bool})
                  .flag("l", "length", {ArgType::Unsigned})
                  .flag("ock", "openChunk")
                  .flag("cck", "closeChunk")
                  .flag("cn", "chunkName", {ArgType::String})
                  .flag("un", "undoName")
                  .flag("rn", "redoName")
                  .flag("uqe", "undoQueueEmpty")
                  .flag("rqe", "redoQueueEmpty")
                  .flag("pq", "printQueue")
                  .queryable(),
              undoInfo);
}

}  // namespace host::builtins
