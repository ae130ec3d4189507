#include <unistd.h>

#include <cstdio>
#include <exception>
#include <filesystem>

#include "host/api/session/exiting.h"
#include "host/api/session/host_session.h"
#include "host/app/interrupts.h"
#include "host/app/options.h"
#include "host/app/paths.h"
#include "host/app/preferences.h"
#include "host/app/program.h"
#include "host/app/progress.h"
#include "host/app/prompt.h"
#include "host/app/replay.h"
#include "host/app/tour.h"
#include "host/app/unwrap.h"
#include "host/base/memory.h"
#include "host/base/messages.h"
#include "host/builtins/file/scene_files.h"
#include "host/builtins/help/command_texts.h"
#include "host/builtins/register.h"
#include "host/mel/literal.h"
#include "host/modelling/declare/reference.h"

namespace host::app {
namespace {

WindowEntry& windowEntry() {
  static WindowEntry entry = nullptr;
  return entry;
}

bool isReadable(const std::string& file) {
  if (access(file.c_str(), R_OK) == 0 && !std::filesystem::is_directory(file)) return true;
  std::fprintf(stderr, "qxmt: %s can't be read\n", file.c_str());
  return false;
}

int loadPlugIns(cmd::Session& session, const Options& options, const ProgramPaths& paths) {
  std::vector<std::string> files;
  if (!options.noModule) files.push_back(paths.module().string());
  // A file that was named on the command line is meant as it stands, not as a name on the path.
  for (const std::string& file : options.plugIns)
    files.push_back(
        file.find('/') == std::string::npos && std::filesystem::exists(file) ? "./" + file : file);
  for (const std::string& file : files) {
    const auto loaded = session.pluginLoader->load(file);
    if (loaded) continue;
    postMessage(MessageKind::Error, loaded.error().message);
    return std::filesystem::exists(file) ? kScriptFailed : kFileFailed;
  }
  return kDone;
}

/// Selects the meshes of a file that was brought in: what a person opened is what the next line is
/// about.
void selectMeshes(scene::Document& document, const std::vector<dg::Node*>& nodes) {
  scene::SelectionList list;
  for (const dg::Node* node : nodes)
    if (scene::isShape(*node) && node->type().name == "mesh")
      list.add(scene::firstPath(*node).parent());
  if (!list.isEmpty()) document.setSelection(std::move(list));
}

int openFile(cmd::Session& session, const std::string& file) {
  if (!isReadable(file)) return kFileFailed;
  std::error_code ignored;
  if (std::filesystem::is_regular_file(file, ignored) &&
      std::filesystem::file_size(file, ignored) == 0) {
    std::fprintf(stderr, "qxmt: %s is empty\n", file.c_str());
    return kFileFailed;
  }
  const bool isScene = std::filesystem::path(file).extension() == ".ma";
  cmd::Context context{session, session.document()};
  const builtins::FileRequest request{.path = file, .isForced = true};
  const auto done = session.dispatcher().recordStep("file", [&]() -> Result<void> {
    if (isScene) {
      HOST_TRY(builtins::openScene(context, request));
      return {};
    }
    std::vector<dg::Node*> made;
    HOST_TRY(builtins::importFile(context, request, &made));
    selectMeshes(context.document, made);
    return {};
  });
  if (!done) postMessage(MessageKind::Error, done.error().message);
  return done ? kDone : kFileFailed;
}

int runScript(cmd::Session& session, const Options& options) {
  if (options.script == "-" && !options.isScriptPlain) {
    (void)session.interpreter().setGlobal("$argv", mel::Value(mel::StringArray(options.arguments)));
    return runStandardInput(session);
  }
  if (!isReadable(options.script)) return kFileFailed;
  (void)session.interpreter().setGlobal("$argv", mel::Value(mel::StringArray(options.arguments)));
  // The script was named on the command line: that one is meant, wherever it is.
  const bool isBare = options.script.find('/') == std::string::npos;
  const auto done = session.executeFile(isBare ? "./" + options.script : options.script);
  runIdle(session);
  if (session.isQuitting) return session.exitStatus;
  return done && !wasInterrupted() ? kDone : kScriptFailed;
}

/// A session without a prompt, with the plug-ins loaded and a scene open; null when that fails.
std::unique_ptr<cmd::Session> batchSession(const Options& options, const ProgramPaths& paths,
                                           const std::string& scene, int& status) {
  auto session = api::makeHostSession();
  session->interpreter().setScriptPath({paths.scripts().string()});
  status = loadPlugIns(*session, options, paths);
  if (status == kDone && !scene.empty()) status = openFile(*session, scene);
  return status == kDone ? std::move(session) : nullptr;
}

int run(const Options& options) {
  const ProgramPaths paths = programPaths();
  if (options.isJob("replay"))
    return runReplay(options, [&](const std::string& scene, int& status) {
      return batchSession(options, paths, scene, status);
    });
  const bool isPrompt = options.interactive || options.window ||
                        (options.script.empty() && options.commands.empty() && isatty(0));
  auto session = api::makeHostSession();
  session->isBatch = !isPrompt;
  const InterruptScope interrupts(*session);
  session->interpreter().setScriptPath({paths.scripts().string()});
  Preferences preferences(session->optionVars(), preferencesFile());

  int status = loadPlugIns(*session, options, paths);
  if (status == kDone && !options.openFile.empty()) status = openFile(*session, options.openFile);
  for (const std::string& command : options.commands) {
    if (status != kDone || session->isQuitting) break;
    if (!session->executeLine(command, {.display = true})) status = kScriptFailed;
    runIdle(*session);
    if (session->isQuitting)
      status = session->exitStatus;
    else if (wasInterrupted())
      status = kScriptFailed;
  }
  if (status == kDone && !session->isQuitting) {
    if (options.isJob("tour"))
      status = runTour(*session, options.arguments);
    else if (!options.script.empty())
      status = runScript(*session, options);
    else if (!isPrompt && options.commands.empty() && !isatty(0))
      status = runStandardInput(*session);
    if (options.window && status == kDone && !session->isQuitting)
      status = windowEntry()(*session);
    else if (isPrompt && !session->isQuitting)
      status = runPrompt(*session);
  }
  api::tellExiting();
  preferences.save();
  return status;
}

}  // namespace

void setWindow(WindowEntry entry) {
  windowEntry() = entry;
}

int runProgram(int argc, char** argv) {
  keepFreedMemory();
  Options options;
  const int ended = parseOptions(argc, argv, options);
  if (ended >= 0) return ended;
  if (options.isJob("reference")) {
    const bool ofAll = !options.arguments.empty() && options.arguments.front() == "commands";
    const std::string page =
        ofAll ? host::builtins::commandReference(
                    host::builtins::makeSession()->commands(),
                    options.arguments.size() > 1 ? options.arguments[1] : std::string(),
                    options.arguments.size() > 2 ? options.arguments[2] : std::string())
              : host::modelling::referenceRows(host::modelling::declarations());
    std::fputs(page.c_str(), stdout);
    return kDone;
  }
  if (options.window && !windowEntry()) {
    // The window is a program of its own, so that batch runs don't load what it needs.
    const std::string program = programPaths().window().string();
    execv(program.c_str(), argv);
    std::fprintf(stderr, "qxmt: this build has no window; run a script, -c or -i\n");
    return kBadUsage;
  }
  try {
    if (options.isJob("unwrap")) return runUnwrap(options.arguments);
    showProgressOnTerminal();
    return run(options);
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "qxmt: %s\n", exception.what());
    return kScriptFailed;
  }
}

}  // namespace host::app
