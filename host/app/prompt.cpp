#include "host/app/prompt.h"

#include <editline/readline.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <string>

#include "host/app/interrupts.h"
#include "host/app/options.h"
#include "host/cmd/loop.h"

namespace host::app {
namespace {

cmd::Session* promptSession = nullptr;

std::string historyFile() {
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  if (!state && !home) return {};
  const std::filesystem::path folder =
      state ? std::filesystem::path(state) / "qxmt"
            : std::filesystem::path(home) / ".local" / "state" / "qxmt";
  std::error_code ignored;
  std::filesystem::create_directories(folder, ignored);
  return (folder / "history").string();
}

/// One candidate after the other, as the line editor asks for them.
char* nextCandidate(const char* prefix, int state) {
  static std::vector<std::string> candidates;
  static std::size_t next = 0;
  if (state == 0) {
    candidates = promptSession->interpreter().complete(prefix);
    next = 0;
  }
  return next < candidates.size() ? strdup(candidates[next++].c_str()) : nullptr;
}

char** complete(const char* text, int start, int) {
  // Inside quotes a file is meant; elsewhere a name of the language, and nothing else.
  int quotes = 0;
  for (int i = 0; i < start; ++i)
    if (rl_line_buffer[i] == '"' && (i == 0 || rl_line_buffer[i - 1] != '\\')) ++quotes;
  rl_attempted_completion_over = quotes % 2 == 0 ? 1 : 0;
  return quotes % 2 == 0 ? rl_completion_matches(text, nextCandidate) : nullptr;
}

/// Whether a text ends inside braces, brackets, quotes or a comment, so that more lines belong to
/// it.
bool isUnfinished(const std::string& text) {
  int depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') {
      for (++i; i < text.size() && text[i] != '"'; ++i)
        if (text[i] == '\\') ++i;
      if (i >= text.size()) return true;
    } else if (c == '/' && i + 1 < text.size() && text[i + 1] == '/') {
      while (i < text.size() && text[i] != '\n') ++i;
    } else if (c == '/' && i + 1 < text.size() && text[i + 1] == '*') {
      const std::size_t end = text.find("*/", i + 2);
      if (end == std::string::npos) return true;
      i = end + 1;
    } else if (c == '{' || c == '(' || c == '[') {
      ++depth;
    } else if (c == '}' || c == ')' || c == ']') {
      --depth;
    }
  }
  return depth > 0;
}

}  // namespace

int runPrompt(cmd::Session& session) {
  promptSession = &session;
  rl_readline_name = const_cast<char*>("qxmt");
  rl_attempted_completion_function = complete;
  using_history();
  const std::string history = historyFile();
  if (!history.empty()) read_history(history.c_str());

  session.loop().setClock([] {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
  });
  std::string text;
  while (!session.isQuitting) {
    forgetInterrupt();
    char* line = readline(text.empty() ? "mel> " : "...> ");
    if (!line && wasInterrupted()) {
      text.clear();
      std::fputc('\n', stdout);
      continue;
    }
    if (!line) break;
    text += text.empty() ? line : std::string("\n") + line;
    if (*line) add_history(line);
    std::free(line);
    if (isUnfinished(text)) continue;
    (void)session.executeLine(text, {.display = true});
    text.clear();
    session.loop().step();
  }
  if (!history.empty()) write_history(history.c_str());
  promptSession = nullptr;
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
