#include <unistd.h>

#include <filesystem>

#include "host/builtins/file/file_formats.h"

namespace host::builtins {

namespace {

namespace fs = std::filesystem;

FileFormats& formatsOf(Context& context) {
  FileFormats& formats = context.session.service<FileFormats>();
  if (formats.all.empty()) formats.all.push_back(objFormat());
  return formats;
}

std::string absolutePath(const std::string& name) {
  std::error_code ignored;
  const fs::path path = fs::absolute(name, ignored).lexically_normal();
  return path.generic_string();
}

Result<const FileFormat*> formatFor(Context& context, const ParsedArgs& args, const std::string& path) {
  const FileFormats& formats = formatsOf(context);
  const FileFormat* format = args.has("type") ? formats.byName(args.text("type")) : formats.byPath(path);
  if (!format && args.has("type")) return fail("file: unrecognized file type '{}'.", args.text("type"));
  if (!format) return fail("file: unrecognized file: '{}' has no known extension.", path);
  return format;
}

Result<void> refuseUnsaved(Context& context, const ParsedArgs& args) {
  if (args.has("force") || !context.document.isModified()) return {};
  return fail("Unsaved changes.");
}

CommandResult newScene(Context& context, const ParsedArgs& args) {
  HOST_TRY(refuseUnsaved(context, args));
  context.session.newScene();
  return mel::Value("untitled");
}

std::vector<std::string> namesOf(const std::vector<dg::Node*>& nodes) {
  std::vector<std::string> names;
  for (const dg::Node* node : nodes) names.push_back(nodeName(*node));
  return names;
}

Result<std::string> existingFile(const ParsedArgs& args) {
  if (!args.hasObjects()) return fail("file: name the file.");
  std::string path = absolutePath(args.firstObject());
  std::error_code ignored;
  if (!fs::exists(path, ignored)) return fail("File not found: {}", args.firstObject());
  return path;
}

CommandResult openScene(Context& context, const ParsedArgs& args) {
  HOST_TRY(refuseUnsaved(context, args));
  auto path = existingFile(args);
  if (!path) return failWith(std::move(path.error()));
  auto format = formatFor(context, args, *path);
  if (!format) return failWith(std::move(format.error()));
  context.session.newScene();
  const scene::Journal::Scope unrecorded(context.document.journal(), nullptr);
  auto nodes = (*format)->read(context, *path, args.text("options"));
  if (!nodes) {
    context.session.newScene();
    return failWith(std::move(nodes.error()));
  }
  context.document.setFileName(*path);
  context.document.setModified(false);
  context.session.scriptJobs().triggerEvent("SceneOpened");
  return mel::Value(*path);
}

CommandResult importFile(Context& context, const ParsedArgs& args) {
  auto path = existingFile(args);
  if (!path) return failWith(std::move(path.error()));
  auto format = formatFor(context, args, *path);
  if (!format) return failWith(std::move(format.error()));
  const std::size_t before = context.document.graph().nodes().size();
  auto nodes = (*format)->read(context, *path, args.text("options"));
  if (!nodes) return failWith(std::move(nodes.error()));
  context.session.scriptJobs().triggerEvent("SceneImported");
  if (!args.has("returnNewNodes")) return mel::Value(*path);
  std::vector<dg::Node*> made;
  const auto& all = context.document.graph().nodes();
  for (std::size_t i = before; i < all.size(); ++i) made.push_back(all[i].get());
  return toValue(namesOf(made));
}

Result<void> writeTo(Context& context, const ParsedArgs& args, const std::string& path, bool onlySelected) {
  auto format = formatFor(context, args, path);
  if (!format) return failWith(std::move(format.error()));
  if (!(*format)->write) return fail("file: '{}' files can't be written.", (*format)->name);
  return (*format)->write(context, path, args.text("options"), onlySelected);
}

CommandResult saveScene(Context& context, const ParsedArgs& args) {
  const std::string path = context.document.fileName();
  if (path.empty()) return fail("file: the scene has no name yet: use file -rename first.");
  HOST_TRY(writeTo(context, args, path, false));
  context.document.setModified(false);
  context.session.scriptJobs().triggerEvent("SceneSaved");
  return mel::Value(path);
}

/// Exports add the format's extension where the name has none of its own.
CommandResult exportScene(Context& context, const ParsedArgs& args, bool onlySelected) {
  if (!args.hasObjects()) return fail("file: name the file to export to.");
  if (onlySelected && context.document.selection().isEmpty()) return fail("file: nothing is selected to export.");
  std::string path = absolutePath(args.firstObject());
  if (args.has("type") && !fs::path(path).has_extension())
    if (const FileFormat* format = formatsOf(context).byName(args.text("type"))) path += format->extensions.front();
  HOST_TRY(writeTo(context, args, path, onlySelected));
  return mel::Value(path);
}

CommandResult renameScene(Context& context, const ParsedArgs& args) {
  const std::string name = args.text("rename");
  context.document.setFileName(name.empty() ? name : absolutePath(name));
  return mel::Value(context.document.fileName());
}

CommandResult queryFile(Context& context, const ParsedArgs& args) {
  const std::string& current = context.document.fileName();
  const std::string named = args.firstObject();
  if (args.has("sceneName")) {
    if (!args.has("shortName")) return mel::Value(current);
    return mel::Value(fs::path(current).filename().generic_string());
  }
  if (args.has("modified") || args.has("anyModified")) return mel::Value(context.document.isModified());
  std::error_code ignored;
  if (args.has("exists")) return mel::Value(fs::exists(named, ignored));
  if (args.has("writable")) return mel::Value(!fs::exists(named, ignored) || ::access(named.c_str(), W_OK) == 0);
  if (args.has("expandName"))
    return mel::Value(named.empty() ? (current.empty() ? absolutePath("untitled") : current) : absolutePath(named));
  if (args.has("shortName")) return mel::Value(fs::path(named.empty() ? current : named).filename().generic_string());
  if (args.has("location")) return mel::Value(current.empty() ? std::string("unknown") : current);
  if (args.has("list")) return toValue({current.empty() ? absolutePath("untitled") : current});
  if (args.has("type")) {
    const FileFormat* format = formatsOf(context).byPath(named.empty() ? current : named);
    return toValue(format ? std::vector<std::string>{format->name} : std::vector<std::string>{});
  }
  return fail("file: say what to query.");
}

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
  return fail("file: say what to do: -new, -open, -import, -save, -rename, -exportSelected, -exportAll or -q.");
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
