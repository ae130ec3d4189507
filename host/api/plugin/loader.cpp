#include "host/api/plugin/loader.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>

#include "host/api/tool/retired_commands.h"
#include "host/base/messages.h"
#include "host/cmd/session.h"

namespace host::api {
namespace fs = std::filesystem;
namespace {

using EntryPoint = MStatus (*)(MObject);

// Modules export their entry points with C++ linkage, so they are looked up by their mangled names.
constexpr const char* kInitializeSymbol = "_Z16initializePlugin7MObject";
constexpr const char* kUninitializeSymbol = "_Z18uninitializePlugin7MObject";
constexpr const char* kVersionSymbol = "MApiVersion";

PluginRecord*& currentPlugin() {
  static PluginRecord* record = nullptr;
  return record;
}

struct RegisteringScope {
  explicit RegisteringScope(PluginRecord* record)
      : previous(std::exchange(currentPlugin(), record)) {}
  ~RegisteringScope() { currentPlugin() = previous; }
  PluginRecord* previous;
};

struct EnteredScope {
  explicit EnteredScope(int& countIn) : count(countIn) { ++count; }
  ~EnteredScope() { --count; }
  EnteredScope(const EnteredScope&) = delete;
  EnteredScope& operator=(const EnteredScope&) = delete;
  int& count;
};

bool isFile(const fs::path& path) {
  std::error_code ignored;
  return fs::is_regular_file(path, ignored);
}

std::vector<fs::path> searchFolders() {
  std::vector<fs::path> folders;
  const char* variable = std::getenv("MAYA_PLUG_IN_PATH");
  std::string_view rest = variable ? variable : "";
  while (!rest.empty()) {
    const std::size_t end = rest.find(':');
    if (end != 0) folders.emplace_back(rest.substr(0, end));
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
  }
  return folders;
}

/// A bare name is looked for on the plug-in path alone: in the working folder anybody may have put
/// a library of that name.
Result<fs::path> locate(const std::string& fileOrName) {
  std::vector<fs::path> tried;
  if (fileOrName.find('/') != std::string::npos)
    tried.emplace_back(fileOrName);
  else
    for (const fs::path& folder : searchFolders()) tried.push_back(folder / fileOrName);
  for (const fs::path& path : tried)
    for (const fs::path& candidate : {path, fs::path(path.string() + ".so")})
      if (isFile(candidate)) {
        std::error_code ignored;
        const fs::path full = fs::canonical(candidate, ignored);
        return full.empty() ? candidate : full;
      }
  return fail(ErrorKind::NotFound, "Plug-in, \"{}\", was not found on MAYA_PLUG_IN_PATH.",
              fileOrName);
}

template <class Function>
Function symbol(void* library, const char* name) {
  return reinterpret_cast<Function>(dlsym(library, name));
}

/// Runs an entry point; an exception that comes out of it is a failure like any other.
Result<void> callEntryPoint(EntryPoint entry, const std::shared_ptr<PluginRecord>& record,
                            const char* what) {
  RegisteringScope scope(record.get());
  const EnteredScope entered(record->entered);
  MStatus status = MStatus::kFailure;
  try {
    status = entry(Access::make<MObject>(new PluginRep(record)));
  } catch (const std::exception& exception) {
    return fail("{} of plug-in \"{}\" threw an exception: {}", what, record->info.name,
                exception.what());
  } catch (...) {
    return fail("{} of plug-in \"{}\" threw an exception", what, record->info.name);
  }
  if (status == MStatus::kSuccess) return {};
  return fail("{} of plug-in \"{}\" failed: {}", what, record->info.name,
              status.errorString().asChar());
}

}  // namespace

PluginRecord* registeringPlugin() {
  return currentPlugin();
}

void PluginRecord::add(Registration::Kind kind, std::string name, std::function<void()> takeBack) {
  registrations.push_back({kind, std::move(name), std::move(takeBack)});
}

bool PluginRecord::remove(Registration::Kind kind, std::string_view name) {
  const auto found = std::find_if(
      registrations.begin(), registrations.end(),
      [&](const Registration& entry) { return entry.kind == kind && entry.name == name; });
  if (found == registrations.end()) return false;
  const std::function<void()> takeBack = std::move(found->takeBack);
  registrations.erase(found);
  takeBack();
  return true;
}

void PluginRecord::removeAll() {
  while (!registrations.empty()) {
    const std::function<void()> takeBack = std::move(registrations.back().takeBack);
    registrations.pop_back();
    takeBack();
  }
}

std::string usedBy(const PluginRecord& record) {
  for (const dg::NodePtr& node : document().graph().nodes())
    if (node->type().pluginName == record.info.name)
      return "node \"" + node->name() + "\" of type " + node->type().name + " is in the scene";
  return {};
}

Loader::~Loader() {
  while (!plugins_.empty()) {
    const std::string name = plugins_.back()->info.name;
    if (const auto done = unload(name, true); !done) {
      plugins_.back()->removeAll();
      plugins_.pop_back();  // the library stays mapped: something in it may still be referred to
    }
  }
}

std::shared_ptr<PluginRecord> Loader::find(std::string_view nameOrPath) const {
  for (const auto& record : plugins_)
    if (record->info.name == nameOrPath || record->info.path == nameOrPath ||
        fs::path(record->info.path).filename() == nameOrPath)
      return record;
  return nullptr;
}

std::vector<std::string> Loader::loaded() const {
  std::vector<std::string> names;
  for (const auto& record : plugins_) names.push_back(record->info.name);
  return names;
}

const cmd::PluginInfo* Loader::info(std::string_view nameOrPath) const {
  const auto record = find(nameOrPath);
  return record ? &record->info : nullptr;
}

void Loader::setAutoload(std::string_view name, bool autoload) {
  if (const auto record = find(name)) record->info.isAutoload = autoload;
}

Result<std::string> Loader::load(const std::string& fileOrName) {
  if (const auto known = find(fileOrName)) return known->info.name;
  const auto path = locate(fileOrName);
  if (!path) return failWith(path.error());
  if (const auto known = find(path->string())) return known->info.name;

  auto record = std::make_shared<PluginRecord>();
  record->info.path = path->string();
  record->info.name = path->stem().string();
  record->library = dlopen(path->c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!record->library) return fail("Plug-in \"{}\" can't be loaded: {}", fileOrName, dlerror());
  plugins_.push_back(record);
  const auto done = initialize(record);
  if (!done) {
    session_.undo().flush();
    record->removeAll();
    plugins_.erase(std::find(plugins_.begin(), plugins_.end(), record));
    dlclose(record->library);
    return failWith(done.error());
  }
  return record->info.name;
}

Result<void> Loader::initialize(const std::shared_ptr<PluginRecord>& record) {
  if (!dlsym(record->library, kVersionSymbol))
    return fail("\"{}\" is no plug-in: it has no MApiVersion", record->info.path);
  const auto entry = symbol<EntryPoint>(record->library, kInitializeSymbol);
  if (!entry) return fail("\"{}\" is no plug-in: it has no initializePlugin", record->info.path);
  if (!dlsym(record->library, kUninitializeSymbol))
    return fail("\"{}\" is no plug-in: it has no uninitializePlugin", record->info.path);
  HOST_TRY(callEntryPoint(entry, record, "initializePlugin"));
  buildInterface(*record);
  return {};
}

void Loader::buildInterface(PluginRecord& record) {
  const std::string& procedure =
      session_.isBatch ? record.batchCreationProcedure : record.creationProcedure;
  if (!procedure.empty()) (void)session_.call(procedure, {}, {.undo = false});
}

void Loader::removeInterface(PluginRecord& record) {
  // What a script built on demand in batch mode is removed too, so the interface's own procedure
  // runs in both.
  const std::string& procedure = session_.isBatch && record.deletionProcedure.empty()
                                     ? record.batchDeletionProcedure
                                     : record.deletionProcedure;
  if (!procedure.empty() && session_.interpreter().hasProcedure(procedure))
    (void)session_.call(procedure, {}, {.undo = false});
}

Result<void> Loader::unload(const std::string& name, bool force) {
  const auto record = find(name);
  if (!record) return fail(ErrorKind::NotFound, "Plug-in, \"{}\", is not loaded.", name);
  // Its code would be gone when the call returns to it.
  const bool mayBeComputing = session_.document().graph().isEvaluating();
  if (record->entered > 0 || session_.dispatcher().isRunningOf(record->info.name) ||
      session_.undo().isReplaying() || (mayBeComputing && !record->info.nodeTypes.empty()))
    return fail("Plug-in \"{}\" can't be unloaded while its code is running.", record->info.name);
  const std::string user = usedBy(*record);
  if (!user.empty() && !force)
    return fail("Plug-in \"{}\" can't be unloaded: {}.", record->info.name, user);
  const auto entry = symbol<EntryPoint>(record->library, kUninitializeSymbol);
  session_.undo().flush();  // command objects of the plug-in must not outlive its code
  session_.document().graph().releaseRemoved();
  HOST_TRY(callEntryPoint(entry, record, "uninitializePlugin"));
  dropRetired();
  removeInterface(*record);
  for (const auto& left : record->registrations)
    postMessage(MessageKind::Warning, "Plug-in \"" + record->info.name + "\" left \"" + left.name +
                                          "\" registered; it is removed now");
  record->removeAll();
  plugins_.erase(std::find(plugins_.begin(), plugins_.end(), record));
  if (record->unloadCallback) (void)record->unloadCallback();
  session_.types().releaseRemoved();
  if (user.empty()) dlclose(record->library);
  return {};
}

void installPluginLoader(cmd::Session& session) {
  session.pluginLoader = std::make_unique<Loader>(session);
}

}  // namespace host::api
