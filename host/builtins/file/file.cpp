#include "host/builtins/file/scene_files.h"

namespace host::builtins {

namespace {

CommandResult file(Context& context, const ParsedArgs& args) {
  if (args.isQuery()) return queryFile(context, args);
  if (args.has("newFile")) return newScene(context, args);
  if (args.has("open")) return openScene(context, args);
  if (args.has("import")) return importFile(context, args);
  if (args.has("exportSelected")) return exportScene(context, args, true);
  if (args.has("exportAll")) return exportScene(context, args, false);
  if (args.has("rename")) {
    auto renamed = renameScene(context, args);
    return args.has("save") ? saveScene(context, args) : renamed;
  }
  if (args.has("save")) return saveScene(context, args);
  if (args.has("modified")) {
    context.document.setModified(args.boolean("modified"));
    return mel::Value();
  }
  return fail(
      "file: say what to do: -new, -open, -import, -save, -rename, -exportSelected, -exportAll or "
      "-q.");
}

}  // namespace

void registerFile(CommandRegistry& registry) {
  define(registry, "file",
         Syntax()
             .flag("new", "newFile")
             .flag("o", "open")
             .flag("i", "import")
             .flag("s", "save")
             .flag("rn", "rename", {ArgType::String}, cmd::kCreate | cmd::kEdit)
             .flag("es", "exportSelected")
             .flag("ea", "exportAll")
             .flag("f", "force")
             .flag("typ", "type", {ArgType::String})
             .flag("op", "options", {ArgType::String})
             .flag("rnn", "returnNewNodes")
             .flag("esn", "executeScriptNodes", {ArgType::Bool})
             .flag("pr", "preserveReferences")
             .flag("iv", "ignoreVersion")
             .flag("ra", "renameAll", {ArgType::Bool})
             .flag("rpr", "renamingPrefix", {ArgType::String})
             .flag("ns", "namespace", {ArgType::String})
             .flag("mnc", "mergeNamespacesOnClash", {ArgType::Bool})
             .flag("pmt", "prompt", {ArgType::Bool})
             .flag("de", "defaultExtensions", {ArgType::Bool})
             .flag("ch", "constructionHistory", {ArgType::Bool})
             .flag("sh", "shader", {ArgType::Bool})
             .flag("sn", "sceneName")
             .flag("shn", "shortName")
             .flag("mf", "modified", {ArgType::Bool})
             .flag("amf", "anyModified")
             .flag("ex", "exists")
             .flag("w", "writable")
             .flag("exn", "expandName")
             .flag("loc", "location")
             .flag("l", "list")
             .queryable()
             .strings(0, 1),
         file);
}

}  // namespace host::builtins
