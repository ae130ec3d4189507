#include "host/builtins/file/scene_files.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "host/builtins/file/formats.h"
#include "host/builtins/file/script_nodes.h"

namespace host::builtins {

namespace {

using workspace::SceneHooks;
using workspace::SceneStage;
namespace fs = std::filesystem;

/// Tells the hooks of a work's stations for as long as it lives.
class Work {
 public:
  Work(Context& context, SceneHooks::Work work, std::string path)
      : hooks_(workspace::workspaceOf(context.session).sceneHooks),
        path_(std::move(path)),
        before_(hooks_.work) {
    hooks_.work = work;
  }
  ~Work() { hooks_.work = before_; }
  Work(const Work&) = delete;
  Work& operator=(const Work&) = delete;

  [[nodiscard]] Result<void> begin(SceneStage stage) {
    bool isRefused = false;
    hooks_.asked(stage, path_, isRefused);
    if (isRefused) return fail("file: a plug-in has stopped it.");
    reach(stage);
    return {};
  }
  void reach(SceneStage stage) { hooks_.reached(stage, path_); }

 private:
  SceneHooks& hooks_;
  std::string path_;
  SceneHooks::Work before_;
};

Result<const FileFormat*> formatFor(Context& context, const ParsedArgs& args,
                                    const std::string& path) {
  const FileFormats& formats = formatsOf(context);
  const FileFormat* format =
      args.has("type") ? formats.byName(args.text("type")) : formats.byPath(path);
  if (!format && args.has("type"))
    return fail("file: unrecognized file type '{}'.", args.text("type"));
  if (!format) return fail("file: unrecognized file: '{}' has no known extension.", path);
  return format;
}

Result<void> refuseUnsaved(Context& context, const ParsedArgs& args) {
  if (args.has("force") || !context.document.isModified()) return {};
  return fail("Unsaved changes.");
}

/// Reading goes by what the file is, also when -type names something else.
Result<const FileFormat*> formatToRead(Context& context, const ParsedArgs& args,
                                       const std::string& path) {
  const FileFormat* format = formatsOf(context).byPath(path);
  if (format && args.has("type") && formatsOf(context).byName(args.text("type"))) return format;
  return formatFor(context, args, path);
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

void forgetScene(Context& context) {
  for (const FileFormat& format : formatsOf(context).all)
    if (format.forget) format.forget(context);
}

/// Places what was read, or nothing of it: also where edits are not recorded otherwise.
Result<std::vector<dg::Node*>> place(Context& context, const FileFormat::Placing& placing) {
  scene::Journal& journal = context.document.journal();
  scene::ChangeSet changes;
  Result<std::vector<dg::Node*>> nodes;
  {
    const scene::Journal::Scope recording(journal, &changes);
    nodes = placing(context);
  }
  if (!nodes) {
    const scene::Journal::Scope unrecorded(journal, nullptr);
    (void)changes.undo();
  } else if (journal.isRecording()) {
    journal.record(scene::makeChange(std::move(changes)));
  }
  return nodes;
}

/// The namespace for imported nodes: with a number when it is there already and is not to be
/// shared.
std::string importNamespace(const scene::Document& document, const ParsedArgs& args) {
  std::string wanted = args.text("namespace");
  while (wanted.starts_with(':')) wanted.erase(0, 1);
  const auto isTaken = [&](const std::string& name) {
    return std::ranges::any_of(document.graph().nodes(), [&](const dg::NodePtr& node) {
      return node->name().starts_with(name + ":");
    });
  };
  if (wanted.empty() || args.boolean("mergeNamespacesOnClash") || !isTaken(wanted)) return wanted;
  for (int number = 1;; ++number)
    if (std::string numbered = wanted + std::to_string(number); !isTaken(numbered)) return numbered;
}

std::string importPrefix(const ParsedArgs& args, const std::string& path) {
  if (args.has("renamingPrefix")) return args.text("renamingPrefix");
  return fs::path(path).stem().generic_string();
}

Result<std::string> writeTo(Context& context, const ParsedArgs& args, const FileFormat& format,
                            std::string path, bool onlySelected) {
  if (!format.write) return fail("file: '{}' files can't be written.", format.name);
  if (!fs::path(path).has_extension() &&
      (!args.has("defaultExtensions") || args.boolean("defaultExtensions")))
    path += format.extensions.front();
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) return fail("Cannot write \"{}\": it is a folder", path);
  if (fs::exists(path, ignored) && ::access(path.c_str(), W_OK) != 0)
    return fail("Cannot write \"{}\": the file is write-protected", path);
  FileWriteOptions options{.options = args.text("options"), .onlySelected = onlySelected};
  if (args.has("constructionHistory")) options.withHistory = args.boolean("constructionHistory");
  if (args.has("shader")) options.withShading = args.boolean("shader");
  HOST_TRY(format.write(context, path, options));
  return path;
}

}  // namespace

std::string absolutePath(const std::string& name) {
  std::error_code ignored;
  const fs::path path = fs::absolute(name, ignored).lexically_normal();
  return path.generic_string();
}

CommandResult newScene(Context& context, const ParsedArgs& args) {
  HOST_TRY(refuseUnsaved(context, args));
  Work work(context, SceneHooks::Work::NewScene, {});
  HOST_TRY(work.begin(SceneStage::BeforeNew));
  forgetScene(context);
  context.session.newScene();
  work.reach(SceneStage::AfterNew);
  return mel::Value("untitled");
}

CommandResult openScene(Context& context, const ParsedArgs& args) {
  HOST_TRY(refuseUnsaved(context, args));
  auto path = existingFile(args);
  if (!path) return failWith(std::move(path.error()));
  auto format = formatToRead(context, args, *path);
  if (!format) return failWith(std::move(format.error()));
  Work work(context, SceneHooks::Work::Opening, *path);
  HOST_TRY(work.begin(SceneStage::BeforeOpen));
  auto placing = (*format)->read(
      context, *path, {.options = args.text("options"), .nameSpace = {}, .clashPrefix = {}});
  if (!placing) return failWith(std::move(placing.error()));
  forgetScene(context);
  context.session.newScene();
  work.reach(SceneStage::BeforeRead);
  const scene::Journal::Scope unrecorded(context.document.journal(), nullptr);
  auto nodes = (*placing)(context);
  if (!nodes) {
    forgetScene(context);
    context.session.newScene();
    return failWith(std::move(nodes.error()));
  }
  work.reach(SceneStage::AfterRead);
  runScriptNodes(context, args.has("executeScriptNodes") && args.boolean("executeScriptNodes"));
  context.document.setFileName(*path);
  context.document.setModified(false);
  context.session.scriptJobs().triggerEvent("PostSceneRead");
  context.session.scriptJobs().triggerEvent("SceneOpened");
  work.reach(SceneStage::AfterOpen);
  return mel::Value(*path);
}

CommandResult importFile(Context& context, const ParsedArgs& args) {
  auto path = existingFile(args);
  if (!path) return failWith(std::move(path.error()));
  auto format = formatToRead(context, args, *path);
  if (!format) return failWith(std::move(format.error()));
  Work work(context, SceneHooks::Work::Importing, *path);
  HOST_TRY(work.begin(SceneStage::BeforeImport));
  FileReadOptions options{.options = args.text("options"),
                          .isImport = true,
                          .nameSpace = importNamespace(context.document, args),
                          .clashPrefix = {}};
  if (!args.has("namespace")) options.clashPrefix = importPrefix(args, *path);
  options.renamesAll = args.has("renameAll") && args.boolean("renameAll");
  auto placing = (*format)->read(context, *path, options);
  if (!placing) return failWith(std::move(placing.error()));
  work.reach(SceneStage::BeforeRead);
  const std::size_t before = context.document.graph().nodes().size();
  auto nodes = place(context, *placing);
  if (!nodes) return failWith(std::move(nodes.error()));
  work.reach(SceneStage::AfterRead);
  context.session.scriptJobs().triggerEvent("SceneImported");
  work.reach(SceneStage::AfterImport);
  if (!args.has("returnNewNodes")) return mel::Value(*path);
  std::vector<dg::Node*> made;
  const auto& all = context.document.graph().nodes();
  for (std::size_t i = before; i < all.size(); ++i) made.push_back(all[i].get());
  return toValue(namesOf(made));
}

CommandResult saveScene(Context& context, const ParsedArgs& args) {
  const std::string& name = context.document.fileName();
  if (name.empty()) return fail("file: the scene has no name yet: use file -rename first.");
  const FileFormats& formats = formatsOf(context);
  const FileFormat* format = &formats.native();
  if (args.has("type"))
    format = formats.byName(args.text("type"));
  else if (const FileFormat* byName = formats.byPath(name))
    format = byName;
  if (!format) return fail("file: unrecognized file type '{}'.", args.text("type"));
  Work work(context, SceneHooks::Work::Writing, name);
  HOST_TRY(work.begin(SceneStage::BeforeSave));
  auto path = writeTo(context, args, *format, name, false);
  if (!path) return failWith(std::move(path.error()));
  context.document.setFileName(*path);
  context.document.setModified(false);
  context.session.scriptJobs().triggerEvent("SceneSaved");
  work.reach(SceneStage::AfterSave);
  return mel::Value(*path);
}

CommandResult exportScene(Context& context, const ParsedArgs& args, bool onlySelected) {
  if (!args.hasObjects()) return fail("file: name the file to export to.");
  if (onlySelected && context.document.selection().isEmpty())
    return fail("file: nothing is selected to export.");
  const std::string wanted = absolutePath(args.firstObject());
  auto format = formatFor(context, args, wanted);
  if (!format) return failWith(std::move(format.error()));
  Work work(context, SceneHooks::Work::Writing, wanted);
  HOST_TRY(work.begin(SceneStage::BeforeExport));
  auto path = writeTo(context, args, **format, wanted, onlySelected);
  if (!path) return failWith(std::move(path.error()));
  work.reach(SceneStage::AfterExport);
  return mel::Value(*path);
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
  if (args.has("modified") || args.has("anyModified"))
    return mel::Value(context.document.isModified());
  std::error_code ignored;
  if (args.has("exists")) return mel::Value(fs::exists(named, ignored));
  if (args.has("writable"))
    return mel::Value(!fs::exists(named, ignored) || ::access(named.c_str(), W_OK) == 0);
  if (args.has("expandName"))
    return mel::Value(named.empty() ? (current.empty() ? absolutePath("untitled") : current)
                                    : absolutePath(named));
  if (args.has("shortName"))
    return mel::Value(fs::path(named.empty() ? current : named).filename().generic_string());
  if (args.has("location")) return mel::Value(current.empty() ? std::string("unknown") : current);
  if (args.has("list")) return toValue({current.empty() ? absolutePath("untitled") : current});
  if (args.has("type")) {
    const FileFormat* format = formatsOf(context).byPath(named.empty() ? current : named);
    if (!format && named.empty()) format = &formatsOf(context).native();
    return toValue(format ? std::vector<std::string>{format->name} : std::vector<std::string>{});
  }
  return fail("file: say what to query.");
}

}  // namespace host::builtins
