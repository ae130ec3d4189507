#include "host/builtins/file/scene_files.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "host/builtins/file/formats.h"
#include "host/builtins/file/script_nodes.h"
#include "host/edits/atomically.h"

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

Result<const FileFormat*> formatFor(Context& context, const FileRequest& request,
                                    const std::string& path) {
  const FileFormats& formats = formatsOf(context);
  const FileFormat* format = request.type ? formats.byName(*request.type) : formats.byPath(path);
  if (!format && request.type) return fail("file: unrecognized file type '{}'.", *request.type);
  if (!format) return fail("file: unrecognized file: '{}' has no known extension.", path);
  return format;
}

Result<void> refuseUnsaved(Context& context, bool isForced) {
  if (isForced || !context.document.isModified()) return {};
  return fail("Unsaved changes.");
}

/// Reading goes by what the file is, also when -type names something else.
Result<const FileFormat*> formatToRead(Context& context, const FileRequest& request,
                                       const std::string& path) {
  const FileFormat* format = formatsOf(context).byPath(path);
  if (format && request.type && formatsOf(context).byName(*request.type)) return format;
  return formatFor(context, request, path);
}

Result<std::string> existingFile(const FileRequest& request) {
  if (request.path.empty()) return fail("file: name the file.");
  std::string path = absolutePath(request.path);
  std::error_code ignored;
  if (!fs::exists(path, ignored))
    return fail(ErrorKind::NotFound, "File not found: {}", request.path);
  return path;
}

void forgetScene(Context& context) {
  for (const FileFormat& format : formatsOf(context).all)
    if (format.forget) format.forget(context);
}

/// The namespace for imported nodes: with a number when it is there already and is not to be
/// shared.
std::string importNamespace(const scene::Document& document, const FileRequest& request) {
  std::string wanted = request.nameSpace.value_or("");
  while (wanted.starts_with(':')) wanted.erase(0, 1);
  const auto isTaken = [&](const std::string& name) {
    return std::ranges::any_of(document.graph().nodes(), [&](const dg::NodePtr& node) {
      return node->name().starts_with(name + ":");
    });
  };
  if (wanted.empty() || request.sharesNamespace || !isTaken(wanted)) return wanted;
  for (int number = 1;; ++number)
    if (std::string numbered = wanted + std::to_string(number); !isTaken(numbered)) return numbered;
}

Result<std::string> writeTo(Context& context, const FileRequest& request, const FileFormat& format,
                            std::string path, bool onlySelected) {
  if (!format.write) return fail("file: '{}' files can't be written.", format.name);
  if (!fs::path(path).has_extension() && request.addsExtension) path += format.extensions.front();
  std::error_code ignored;
  if (fs::is_directory(path, ignored)) return fail("Cannot write \"{}\": it is a folder", path);
  if (fs::exists(path, ignored) && ::access(path.c_str(), W_OK) != 0)
    return fail("Cannot write \"{}\": the file is write-protected", path);
  FileWriteOptions options{.options = request.options, .onlySelected = onlySelected};
  options.withHistory = request.withHistory.value_or(options.withHistory);
  options.withShading = request.withShading.value_or(options.withShading);
  HOST_TRY(format.write(context, path, options));
  return path;
}

}  // namespace

std::string absolutePath(const std::string& name) {
  std::error_code ignored;
  const fs::path path = fs::absolute(name, ignored).lexically_normal();
  return path.generic_string();
}

Result<std::string> newScene(Context& context, bool isForced) {
  HOST_TRY(refuseUnsaved(context, isForced));
  Work work(context, SceneHooks::Work::NewScene, {});
  HOST_TRY(work.begin(SceneStage::BeforeNew));
  forgetScene(context);
  context.session.newScene();
  work.reach(SceneStage::AfterNew);
  return std::string("untitled");
}

Result<std::string> openScene(Context& context, const FileRequest& request) {
  HOST_TRY(refuseUnsaved(context, request.isForced));
  auto path = existingFile(request);
  if (!path) return failWith(std::move(path.error()));
  auto format = formatToRead(context, request, *path);
  if (!format) return failWith(std::move(format.error()));
  Work work(context, SceneHooks::Work::Opening, *path);
  HOST_TRY(work.begin(SceneStage::BeforeOpen));
  auto placing = (*format)->read(context, *path,
                                 {.options = request.options, .nameSpace = {}, .clashPrefix = {}});
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
  runScriptNodes(context, request.runsScripts);
  context.document.setFileName(*path);
  context.document.setModified(false);
  context.session.scriptJobs().triggerEvent("PostSceneRead");
  context.session.scriptJobs().triggerEvent("SceneOpened");
  work.reach(SceneStage::AfterOpen);
  return *std::move(path);
}

Result<std::string> importFile(Context& context, const FileRequest& request,
                               std::vector<dg::Node*>* made) {
  auto path = existingFile(request);
  if (!path) return failWith(std::move(path.error()));
  auto format = formatToRead(context, request, *path);
  if (!format) return failWith(std::move(format.error()));
  Work work(context, SceneHooks::Work::Importing, *path);
  HOST_TRY(work.begin(SceneStage::BeforeImport));
  FileReadOptions options{.options = request.options,
                          .isImport = true,
                          .nameSpace = importNamespace(context.document, request),
                          .clashPrefix = {},
                          .renamesAll = request.prefixesAll};
  if (!request.nameSpace)
    options.clashPrefix = request.prefix.value_or(fs::path(*path).stem().generic_string());
  auto placing = (*format)->read(context, *path, options);
  if (!placing) return failWith(std::move(placing.error()));
  work.reach(SceneStage::BeforeRead);
  const std::size_t before = context.document.graph().nodes().size();
  // Placed wholly or not at all, also where edits are not recorded.
  const auto nodes = edits::atomically(context.document, [&] { return (*placing)(context); });
  if (!nodes) return failWith(nodes.error());
  work.reach(SceneStage::AfterRead);
  context.session.scriptJobs().triggerEvent("SceneImported");
  work.reach(SceneStage::AfterImport);
  const auto& all = context.document.graph().nodes();
  for (std::size_t i = before; made && i < all.size(); ++i) made->push_back(all[i].get());
  return *std::move(path);
}

Result<std::string> saveScene(Context& context, const FileRequest& request) {
  const std::string& name = context.document.fileName();
  if (name.empty()) return fail("file: the scene has no name yet: use file -rename first.");
  const FileFormats& formats = formatsOf(context);
  const FileFormat* format = &formats.native();
  if (request.type)
    format = formats.byName(*request.type);
  else if (const FileFormat* byName = formats.byPath(name))
    format = byName;
  if (!format) return fail("file: unrecognized file type '{}'.", *request.type);
  Work work(context, SceneHooks::Work::Writing, name);
  HOST_TRY(work.begin(SceneStage::BeforeSave));
  auto path = writeTo(context, request, *format, name, false);
  if (!path) return failWith(std::move(path.error()));
  // A save that leaves out most of the scene is what was asked for, but hardly what was meant.
  if (format != &formats.native())
    postMessage(MessageKind::Warning,
                fmt::format("{} is written as {}, which keeps meshes alone; a name that ends in "
                            ".ma keeps the whole scene.",
                            *path, format->name));
  context.document.setFileName(*path);
  context.document.setModified(false);
  context.session.scriptJobs().triggerEvent("SceneSaved");
  work.reach(SceneStage::AfterSave);
  return path;
}

Result<std::string> exportScene(Context& context, const FileRequest& request, bool onlySelected) {
  if (request.path.empty()) return fail("file: name the file to export to.");
  if (onlySelected && context.document.selection().isEmpty())
    return fail("file: nothing is selected to export.");
  const std::string wanted = absolutePath(request.path);
  auto format = formatFor(context, request, wanted);
  if (!format) return failWith(std::move(format.error()));
  Work work(context, SceneHooks::Work::Writing, wanted);
  HOST_TRY(work.begin(SceneStage::BeforeExport));
  auto path = writeTo(context, request, **format, wanted, onlySelected);
  if (!path) return failWith(std::move(path.error()));
  work.reach(SceneStage::AfterExport);
  return path;
}

std::string renameScene(Context& context, const std::string& name) {
  context.document.setFileName(name.empty() ? name : absolutePath(name));
  return context.document.fileName();
}

std::string fileType(Context& context, const std::string& path) {
  const FileFormats& formats = formatsOf(context);
  const FileFormat* format = formats.byPath(path.empty() ? context.document.fileName() : path);
  if (!format && path.empty()) format = &formats.native();
  return format ? format->name : std::string();
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
    const std::string type = fileType(context, named);
    return toValue(type.empty() ? std::vector<std::string>{} : std::vector<std::string>{type});
  }
  return fail("file: say what to query.");
}

}  // namespace host::builtins
