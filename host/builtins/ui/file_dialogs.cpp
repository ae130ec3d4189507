// fileDialog and fileDialog2. Without a person they are answered from the queue that uiGesture
// fills, else as by closing them.
#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/workspace/dialog_hooks.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::DialogHooks;
using workspace::Dialogs;
using workspace::workspaceOf;

/// The file names that a person gives; nothing when the dialog is closed.
DialogHooks::FileAnswer filesGiven(Context& context, const DialogHooks::FileQuestion& question) {
  postMessage(MessageKind::Info, question.caption.empty() ? "Which file?" : question.caption);
  Dialogs& dialogs = workspaceOf(context.session).dialogs;
  const auto& hooks = workspaceOf(context.session).kept<DialogHooks>();
  if (dialogs.answers.empty() && hooks.askFiles) return hooks.askFiles(question);
  if (dialogs.answers.empty()) return {};
  const Dialogs::Answer given = dialogs.answers.front();
  dialogs.answers.pop_front();
  std::vector<std::string> files;
  // Several files stand between semicolons in the text, or the button's word is the file.
  std::string text = given.text.empty() ? given.button : given.text;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find(';', start), text.size());
    if (end > start) files.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return {files, question.filter};
}

CommandResult fileDialog2(Context& context, const ParsedArgs& args) {
  const int mode = args.integer("fileMode");
  const auto [given, filter] = filesGiven(
      context, {args.text("caption"), args.text("startingDirectory"), args.text("fileFilter"),
                args.text("selectFileFilter"), args.text("okCaption"), mode});
  std::vector<std::string> files = given;
  if (mode != 4 && files.size() > 1) files.resize(1);
  if (files.empty()) return mel::Value();
  if (args.boolean("returnFilter")) files.push_back(filter);
  return toValue(std::move(files));
}

CommandResult fileDialog(Context& context, const ParsedArgs& args) {
  // -directoryMask names a folder with a pattern: "/scenes/*.ma".
  const std::string mask = args.text("directoryMask");
  const std::size_t slash = mask.rfind('/');
  DialogHooks::FileQuestion question;
  question.caption = args.text("title");
  question.mode = args.integer("mode") == 1 ? 0 : 1;
  if (slash != std::string::npos) question.folder = mask.substr(0, slash);
  const std::string pattern = slash == std::string::npos ? mask : mask.substr(slash + 1);
  if (!pattern.empty()) question.filters = "Files (" + pattern + ")";
  const std::vector<std::string> files = filesGiven(context, question).files;
  return mel::Value(files.empty() ? std::string() : files.front());
}

}  // namespace

void registerFileDialogs(CommandRegistry& registry) {
  defineQuery(registry, "fileDialog2",
              Syntax()
                  .flag("bbo", "buttonBoxOrientation", {ArgType::Int})
                  .flag("cc", "cancelCaption", {ArgType::String})
                  .flag("cap", "caption", {ArgType::String})
                  .flag("ds", "dialogStyle", {ArgType::Int})
                  .flag("ff", "fileFilter", {ArgType::String})
                  .flag("fm", "fileMode", {ArgType::Int})
                  .flag("ftc", "fileTypeChanged", {ArgType::String})
                  .flag("hne", "hideNameEdit", {ArgType::Bool})
                  .optionalArgs()
                  .flag("okc", "okCaption", {ArgType::String})
                  .flag("oca", "optionsUICancel", {ArgType::Script})
                  .flag("ocm", "optionsUICommit", {ArgType::Script})
                  .flag("oc2", "optionsUICommit2", {ArgType::Script})
                  .flag("ocr", "optionsUICreate", {ArgType::Script})
                  .flag("oin", "optionsUIInit", {ArgType::Script})
                  .flag("rf", "returnFilter", {ArgType::Bool})
                  .flag("sff", "selectFileFilter", {ArgType::String})
                  .flag("sc", "selectionChanged", {ArgType::Script})
                  .flag("spe", "setProjectBtnEnabled", {ArgType::Bool})
                  .flag("dir", "startingDirectory", {ArgType::String}),
              fileDialog2);
  defineQuery(registry, "fileDialog",
              Syntax()
                  .flag("dm", "directoryMask", {ArgType::String})
                  .flag("m", "mode", {ArgType::Int})
                  .flag("t", "title", {ArgType::String})
                  .flag("ab", "application", {ArgType::String})
                  .flag("dfn", "defaultFileName", {ArgType::String}),
              fileDialog);
}

}  // namespace host::builtins
