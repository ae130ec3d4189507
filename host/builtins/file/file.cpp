#include "host/builtins/file/reference_query.h"
#include "host/builtins/file/scene_files.h"
#include "host/builtins/file/time_range.h"
#include "host/cmd/asking.h"
#include "host/edits/atomically.h"

namespace host::builtins {

namespace {

FileRequest readRequest(const ParsedArgs& args) {
  FileRequest request{.path = args.firstObject(),
                      .options = args.text("options"),
                      .isForced = args.has("force"),
                      .sharesNamespace = args.boolean("mergeNamespacesOnClash"),
                      .prefixesAll = args.boolean("renameAll"),
                      .addsExtension = args.boolean("defaultExtensions", true)};
  request.runsScripts = args.has("executeScriptNodes") && args.boolean("executeScriptNodes");
  if (args.has("type")) request.type = args.text("type");
  if (args.has("namespace")) request.nameSpace = args.text("namespace");
  if (args.has("renamingPrefix")) request.prefix = args.text("renamingPrefix");
  if (args.has("constructionHistory")) request.withHistory = args.boolean("constructionHistory");
  if (args.has("shader")) request.withShading = args.boolean("shader");
  return request;
}

CommandResult toResult(Result<std::string> path) {
  if (!path) return failWith(std::move(path.error()));
  return mel::Value(*std::move(path));
}

CommandResult import(Context& context, const ParsedArgs& args) {
  std::vector<dg::Node*> made;
  auto path = importFile(context, readRequest(args), &made);
  if (path && args.has("importTimeRange"))
    HOST_TRY(importTimeRange(context, made, args.text("importTimeRange")));
  if (!path || !args.has("returnNewNodes")) return toResult(std::move(path));
  std::vector<std::string> names;
  for (const dg::Node* node : made) names.push_back(nodeName(*node));
  return toValue(std::move(names));
}

/// What is selected goes into a file of its own, and comes back as a reference to it.
CommandResult exportAsReference(Context& context, const ParsedArgs& args) {
  std::vector<dg::Node*> gone;
  for (dg::Node* node : nodesOf(context.document.selection()))
    if (scene::isDagNode(*node) &&
        scene::dagLinks(*node).parents != std::vector<dg::Node*>{nullptr})
      return fail(
          "file: '{}' hangs below another object: only whole hierarchies can become a "
          "reference.",
          node->name());
    else
      gone.push_back(node);
  auto path = exportScene(context, readRequest(args), true);
  if (!path) return failWith(std::move(path.error()));
  CommandResult made;
  const auto done = edits::atomically(context.document, [&]() -> Result<void> {
    HOST_TRY(context.document.deleteNodes(gone));
    made = referenceFile(context, args, *path);
    return made ? Result<void>() : failWith(made.error());
  });
  if (!done) return failWith(done.error());
  return made;
}

CommandResult file(Context& context, const ParsedArgs& args) {
  if (args.isQuery()) {
    if (auto answer = queryReferences(context, args)) return *std::move(answer);
    return queryFile(context, args);
  }
  for (const char* flag : {"proxyManager", "proxyTag", "sharedReferenceFile"})
    if (args.has(flag))
      return fail(
          "file: -{} is not offered: a reference stands for one file, and shares nothing with "
          "others. Refer to the file without it.",
          flag);
  if (args.has("exportAsReference")) {
    cmd::askOnly();
    return exportAsReference(context, args);
  }
  if (auto done = editReferences(context, args)) return *std::move(done);
  const auto depth = referenceDepthScope(context, args);
  if (args.has("newFile")) return toResult(newScene(context, args.has("force")));
  if (args.has("open")) return toResult(openScene(context, readRequest(args)));
  if (args.has("import")) return import(context, args);
  if (args.has("exportSelected") || args.has("exportAll")) cmd::askOnly();
  if (args.has("exportSelected")) return toResult(exportScene(context, readRequest(args), true));
  if (args.has("exportAll")) return toResult(exportScene(context, readRequest(args), false));
  if (args.has("rename")) {
    const std::string name = renameScene(context, args.text("rename"));
    return args.has("save") ? toResult(saveScene(context, readRequest(args))) : mel::Value(name);
  }
  if (args.has("save")) return toResult(saveScene(context, readRequest(args)));
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
             .flag("er", "exportAsReference")
             .flag("pm", "proxyManager", {ArgType::String})
             .flag("pt", "proxyTag", {ArgType::String})
             .flag("srf", "sharedReferenceFile")
             .flag("shd", "sharedNodes", {ArgType::String})
             .multiUse()
             .multiUse()
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
             .flag("r", "reference")
             .flag("lr", "loadReference", {ArgType::String})
             .flag("ur", "unloadReference", {ArgType::String})
             .flag("rr", "removeReference")
             .flag("ir", "importReference")
             .flag("cr", "cleanReference", {ArgType::String})
             .flag("ec", "editCommand", {ArgType::String})
             .flag("rfn", "referenceNode", {ArgType::String})
             .flag("dr", "deferReference", {ArgType::Bool})
             .flag("lrd", "loadReferenceDepth", {ArgType::String})
             .flag("lnr", "loadNoReferences")
             .flag("lar", "loadAllReferences")
             .flag("gr", "groupReference")
             .flag("gn", "groupName", {ArgType::String})
             .flag("pns", "parentNamespace")
             .flag("itr", "importTimeRange", {ArgType::String})
             .flag("l", "list")
             .queryable()
             .strings(0, 1),
         file);
}

}  // namespace host::builtins
