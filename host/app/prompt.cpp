#include "host/app/prompt.h"

#include <editline/readline.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>

#include "host/app/completion.h"
#include "host/app/interrupts.h"
#include "host/app/options.h"
#include "host/base/message_streams.h"
#include "host/builtins/file/scene_files.h"
#include "host/cmd/loop.h"
#include "host/mel/unfinished.h"
#include "host/workspace/workspace.h"

namespace host::app {
namespace {

cmd::Session* promptSession = nullptr;

std::string historyFile() {
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  const bool hasState = state && *state;  // one that is empty counts as none
  if (!hasState && !(home && *home)) return {};
  const std::filesystem::path folder =
      hasState ? std::filesystem::path(state) / "qxmt"
               : std::filesystem::path(home) / ".local" / "state" / "qxmt";
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  return (folder / "history").string();
}

/// One candidate after the other, as the line editor asks for them.
char* nextCandidate(const char* word, int state) {
  static std::vector<std::string> candidates;
  static std::size_t next = 0;
  if (state == 0) {
    const std::string_view line(rl_line_buffer, at(rl_point));
    candidates = completions(*promptSession, line, word);
    next = 0;
    // Behind a folder, a component's bracket or a node of which an attribute is meant one types on.
    const bool goesOn =
        candidates.size() == 1 && (candidates[0].ends_with('/') || candidates[0].ends_with('['));
    rl_completion_append_character = goesOn ? '\0' : ' ';
  }
  return next < candidates.size() ? strdup(candidates[next++].c_str()) : nullptr;
}

char** complete(const char* text, int, int) {
  rl_attempted_completion_over = 1;
  return rl_completion_matches(text, nextCandidate);
}

/// Messages as always, but a line of the prompt never begins behind printed text, and what is said
/// while a line is being typed stands above it.
class PromptMessages {
 public:
  PromptMessages() {
    previous_ = setMessageSink([this](MessageKind kind, std::string_view text) {
      if (isTyping_ && !std::exchange(hasSpoken_, true)) std::fputs("\r\033[K", stdout);
      if (kind != MessageKind::Print)
        endLine();
      else if (!text.empty())
        isLineOpen_ = text.back() != '\n';
      writeMessageToStreams(kind, text);
    });
  }
  ~PromptMessages() { setMessageSink(std::move(previous_)); }
  PromptMessages(const PromptMessages&) = delete;
  PromptMessages& operator=(const PromptMessages&) = delete;
  void endLine() {
    if (std::exchange(isLineOpen_, false)) std::fputc('\n', stdout);
    std::fflush(stdout);
  }
  /// Lets the session live while a person thinks about the line.
  void liveOn(cmd::Session& session) {
    isTyping_ = isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0;
    hasSpoken_ = false;
    session.loop().step();
    isTyping_ = false;
    std::fflush(stdout);
    if (!hasSpoken_) return;
    endLine();
    rl_forced_update_display();
  }

 private:
  MessageSink previous_;
  bool isLineOpen_ = false, isTyping_ = false, hasSpoken_ = false;
};

PromptMessages* promptMessages = nullptr;

/// While a question stands: a program that is about to end waits for its answer.
bool isAsking = false;

/// The next byte of a stream, -1 at its end, after Ctrl-C and when the program is to end. Timers,
/// idle scripts and redraws have their turns until it comes.
int waitForByte(std::FILE* stream) {
  constexpr int kTurnMilliseconds = 20;
  static unsigned char bytes[4096];
  static ssize_t held = 0, next = 0;
  while (!wasInterrupted() && (isAsking || !promptSession->isQuitting)) {
    if (next < held) return bytes[next++];
    pollfd ready{fileno(stream), POLLIN, 0};
    const int found = poll(&ready, 1, kTurnMilliseconds);
    if (found == 0 && promptMessages) promptMessages->liveOn(*promptSession);
    if (found < 0 && errno != EINTR) return -1;
    if (found <= 0) continue;
    // A terminal's keys are taken one by one: its driver may still turn them over.
    next = 0;
    held = read(ready.fd, bytes, isatty(ready.fd) != 0 ? 1 : sizeof bytes);
    if (held == 0 || (held < 0 && errno != EINTR)) return -1;
  }
  return -1;
}

/// The next character, as the line editor wants it: wide.
int waitForCharacter(std::FILE* stream) {
  std::mbstate_t state{};
  while (true) {
    const int byte = waitForByte(stream);
    if (byte < 0) return -1;
    const char narrow = static_cast<char>(byte);
    wchar_t wide = 0;
    const std::size_t taken = std::mbrtowc(&wide, &narrow, 1, &state);
    if (taken == at(-2)) continue;  // the character goes on
    return taken == at(-1) ? byte : static_cast<int>(wide);
  }
}

/// The next line of what comes from no terminal, where there is nothing to edit; null at its end,
/// as readline has it, and after Ctrl-C. The caller frees it.
char* nextPipedLine() {
  std::string line;
  int byte = 0;
  while ((byte = waitForByte(stdin)) >= 0 && byte != '\n') line += static_cast<char>(byte);
  return byte < 0 && line.empty() ? nullptr : strdup(line.c_str());
}

/// A line, typed at a terminal or sent by another program.
char* nextLine(const char* prompt) {
  return isatty(STDIN_FILENO) != 0 ? readline(prompt) : nextPipedLine();
}

/// What a person answers; nothing at the end of input or after Ctrl-C.
std::optional<std::string> ask(const char* question) {
  isAsking = true;
  char* answer = nextLine(question);
  isAsking = false;
  if (!answer) return std::nullopt;
  std::string text = answer;
  std::free(answer);
  return text;
}

/// Asks what becomes of work that is in no file. @return false when the person stays
bool mayLeave(cmd::Session& session) {
  if (!session.document().isModified()) return true;
  cmd::Context context{session, session.document()};
  while (true) {
    const std::string& file = session.document().fileName();
    std::fprintf(stderr, "The scene%s%s has changes that are not saved.\n", file.empty() ? "" : " ",
                 file.c_str());
    const auto answer = ask("Save them? (y)es, (n)o, (c)ancel: ");
    // Nobody is there to answer at the end of input.
    if (!answer) return !wasInterrupted();
    if (*answer == "n" || *answer == "no") return true;
    if (*answer == "c" || *answer == "cancel") return false;
    if (*answer != "y" && *answer != "yes") continue;
    const bool isUntitled = file.empty();
    if (isUntitled) {
      const auto name = ask("File: ");
      if (!name || name->empty()) return false;
      builtins::renameScene(context, *name);
    }
    const auto saved = builtins::saveScene(context, {});
    if (saved) return true;
    postMessage(MessageKind::Error, saved.error().message);
    if (isUntitled) builtins::renameScene(context, "");
  }
}

}  // namespace

int runPrompt(cmd::Session& session) {
  promptSession = &session;
  rl_readline_name = const_cast<char*>("qxmt");
  rl_attempted_completion_function = complete;
  // What ends a word: names keep their dots, colons and bars, flags and variables their first
  // letter.
  static char breaks[] = " \t\n\"\\'`@><=;,{(}[]+*!&?";
  rl_completer_word_break_characters = breaks;
  rl_basic_word_break_characters = breaks;
  rl_getc_function = waitForCharacter;
  using_history();
  const std::string history = historyFile();
  if (!history.empty()) read_history(history.c_str());

  session.loop().setClock([] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  });
  PromptMessages messages;
  promptMessages = &messages;
  std::string text;
  while (true) {
    forgetInterrupt();
    messages.endLine();
    char* line = session.isQuitting ? nullptr : nextLine(text.empty() ? "mel> " : "...> ");
    if (!line && wasInterrupted() && !session.isQuitting) {
      text.clear();
      std::fputc('\n', stdout);
      continue;
    }
    if (!line) {
      if (workspace::workspaceOf(session).quitsAtOnce || mayLeave(session)) break;
      session.isQuitting = false;
      text.clear();
      continue;
    }
    const bool isEmpty = *line == '\0';
    text += text.empty() ? line : std::string("\n") + line;
    if (!isEmpty) add_history(line);
    std::free(line);
    // An empty line runs what there is, so that a slip can be seen for what it is.
    if (!isEmpty && mel::isUnfinished(text)) continue;
    (void)session.executeLine(text, {.display = true});
    text.clear();
    session.loop().step();
  }
  if (!history.empty()) write_history(history.c_str());
  promptSession = nullptr;
  promptMessages = nullptr;
  return session.exitStatus;
}

int runStandardInput(cmd::Session& session) {
  const std::string text{std::istreambuf_iterator<char>(std::cin),
                         std::istreambuf_iterator<char>()};
  const auto done = session.executeLine(text, {.source = {"standard input"}});
  runIdle(session);
  if (session.isQuitting) return session.exitStatus;
  return done && !wasInterrupted() ? kDone : kScriptFailed;
}

}  // namespace host::app
