#include "host/app/replay.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <limits>

#include "host/app/interrupts.h"
#include "host/base/messages.h"
#include "host/workspace/workspace.h"

namespace host::app {
namespace {

struct ReplayOptions {
  std::string file, scene, condition, output;
  std::vector<std::string> commands;
  std::size_t until = std::numeric_limits<std::size_t>::max();
};

/// -1 to go on, else the exit status.
int parse(const std::vector<std::string>& arguments, ReplayOptions& options) {
  CLI::App app{"Does again what a recording says, without a window.", "qxmt replay"};
  app.footer(
      "The scene is the one that the recording names, unless another one is given.\n"
      "The condition `crash` holds when the program ends by a fault.");
  app.add_option("file", options.file, "the recording")->required()->type_name("FILE");
  app.add_option("--until", options.until, "stop after so many events")->type_name("N");
  app.add_option("--reduce", options.condition,
                 "write a recording that is as short as can be and still makes this true")
      ->type_name("MEL");
  app.add_option("-o,--open", options.scene, "the scene to begin with")->type_name("FILE");
  app.add_option("--output", options.output,
                 "where the reduced recording goes; without it, standard output")
      ->type_name("FILE");
  app.add_option("-c,--command", options.commands,
                 "run a MEL command line afterwards and show its result (repeatable)")
      ->type_name("MEL")
      ->take_all()
      ->allow_extra_args(false);
  try {
    std::vector<std::string> reversed(arguments.rbegin(), arguments.rend());
    app.parse(reversed);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadUsage;
  }
  return -1;
}

/// A session in which the recording, up to an event, has been done.
std::unique_ptr<cmd::Session> replayed(const tools::Recording& recording,
                                       const ReplayOptions& options, const MakeSession& makeSession,
                                       int& status) {
  auto session = makeSession(options.scene.empty() ? recording.scene : options.scene, status);
  if (!session) return nullptr;
  const InterruptScope interrupts(*session);
  const auto done = workspace::workspaceOf(*session).recordings.play(
      recording, tools::stepsUntil(recording, options.until));
  if (!done) {
    postMessage(MessageKind::Error, done.error().message);
    status = kScriptFailed;
    return nullptr;
  }
  runIdle(*session);
  return session;
}

void silence() {
  const int nowhere = open("/dev/null", O_WRONLY);
  if (nowhere < 0) return;
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  close(nowhere);
}

/// Whether the condition is true after the recording, tried in a process of its own: what one trial
/// leaves behind, or breaks, doesn't touch the next.
bool holds(const tools::Recording& recording, const ReplayOptions& options,
           const MakeSession& makeSession, bool isQuiet) {
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    if (isQuiet) silence();
    int status = kDone;
    bool isTrue = false;
    if (const auto session = replayed(recording, options, makeSession, status)) {
      const auto value = session->executeLine(options.condition, {.undo = false});
      isTrue = value && value->toInt().value_or(0) != 0;
    }
    std::fflush(nullptr);
    _exit(isTrue ? 0 : 1);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child) return false;
  if (options.condition == "crash") return WIFSIGNALED(status);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

int reduce(const tools::Recording& recording, ReplayOptions options,
           const MakeSession& makeSession) {
  tools::Recording whole = recording;
  whole.steps.resize(tools::stepsUntil(whole, options.until));
  options.until = std::numeric_limits<std::size_t>::max();
  if (!holds(whole, options, makeSession, false)) {
    std::fprintf(stderr, "qxmt: the condition is not true after the whole recording\n");
    return kScriptFailed;
  }
  int trials = 0;
  const tools::Recording reduced =
      tools::reduceRecording(whole, [&](const tools::Recording& tried) {
        const bool isTrue = holds(tried, options, makeSession, true);
        std::fprintf(stderr, "trial %d: %zu of %zu steps %s\n", ++trials, tried.steps.size(),
                     whole.steps.size(), isTrue ? "are enough" : "are too few");
        return isTrue;
      });
  const std::string text = tools::formatRecording(reduced);
  if (options.output.empty()) {
    std::fputs(text.c_str(), stdout);
    return kDone;
  }
  std::ofstream file(options.output, std::ios::binary);
  file << text;
  file.close();
  if (file) return kDone;
  std::fprintf(stderr, "qxmt: %s can't be written\n", options.output.c_str());
  return kFileFailed;
}

}  // namespace

int runReplay(const Options& options, const MakeSession& makeSession) {
  ReplayOptions replay;
  replay.scene = options.openFile;
  if (const int ended = parse(options.arguments, replay); ended >= 0) return ended;
  std::ifstream file(replay.file, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "qxmt: %s can't be read\n", replay.file.c_str());
    return kFileFailed;
  }
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  const auto recording = tools::parseRecording(text);
  if (!recording) {
    std::fprintf(stderr, "qxmt: %s: %s\n", replay.file.c_str(), recording.error().message.c_str());
    return kFileFailed;
  }
  if (!replay.condition.empty()) return reduce(*recording, replay, makeSession);
  int status = kDone;
  const auto session = replayed(*recording, replay, makeSession, status);
  if (!session) return status;
  const InterruptScope interrupts(*session);
  for (const std::string& command : replay.commands) {
    if (session->isQuitting || wasInterrupted()) break;
    if (!session->executeLine(command, {.display = true})) status = kScriptFailed;
    runIdle(*session);
  }
  return session->isQuitting ? session->exitStatus : status;
}

}  // namespace host::app
