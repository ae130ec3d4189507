#include "tests/host/app/program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <utility>

namespace program_test {
namespace {

constexpr int kPatience = 20'000;  // milliseconds without a word from the program

void become(const std::vector<std::string>& words) {
  std::string program = QXMT_BINARY_DIR "/bin/qxmt";
  std::vector<std::string> copies = words;
  std::vector<char*> arguments{program.data()};
  for (std::string& word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  setenv("HOME", QXMT_BINARY_DIR "/program_test_home", 1);
  unsetenv("XDG_STATE_HOME");
  for (const char* name : {"XDG_CONFIG_HOME", "DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
    unsetenv(name);
  setenv("TERM", "dumb", 1);
  execv(program.c_str(), arguments.data());
  _exit(127);
}

int statusOf(int process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/// Adds what can be read now. @return false at the end
bool readSome(int from, std::string& text) {
  std::array<char, 4096> buffer;
  const ssize_t count = read(from, buffer.data(), buffer.size());
  if (count <= 0) return false;
  text.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

}  // namespace

Outcome run(const std::vector<std::string>& words, const std::string& input,
            const std::string& interruptAfter) {
  const std::filesystem::path inputFile = scratchFolder("input") / "text";
  writeFile(inputFile, input);
  std::array<int, 2> out{}, err{};
  if (pipe(out.data()) != 0 || pipe(err.data()) != 0) return {};
  const int process = fork();
  if (process == 0) {
    dup2(open(inputFile.c_str(), O_RDONLY), 0);
    dup2(out[1], 1);
    dup2(err[1], 2);
    for (const int end : {out[0], out[1], err[0], err[1]}) close(end);
    become(words);
  }
  close(out[1]);
  close(err[1]);
  Outcome outcome;
  std::array<pollfd, 2> ends{{{out[0], POLLIN, 0}, {err[0], POLLIN, 0}}};
  bool mayInterrupt = !interruptAfter.empty();
  while (std::any_of(ends.begin(), ends.end(), [](const pollfd& end) { return end.fd >= 0; })) {
    if (poll(ends.data(), ends.size(), kPatience) <= 0) {
      kill(process, SIGKILL);
      break;
    }
    for (pollfd& end : ends)
      if (end.fd >= 0 && end.revents != 0 &&
          !readSome(end.fd, end.fd == out[0] ? outcome.output : outcome.errors))
        end.fd = -1;
    if (mayInterrupt && outcome.says(interruptAfter)) {
      mayInterrupt = false;
      usleep(50'000);  // so that it is in what follows
      kill(process, SIGINT);
    }
  }
  close(out[0]);
  close(err[0]);
  outcome.status = statusOf(process);
  return outcome;
}

Terminal::Terminal(const std::vector<std::string>& words, bool isTerminal) {
  std::array<int, 2> ends{-1, -1};
  if (isTerminal) {
    process_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
  } else if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0) {
    process_ = fork();
    if (process_ == 0)
      for (const int stream : {0, 1, 2}) dup2(ends[1], stream);
    close(ends[1]);
    terminal_ = ends[0];
  }
  if (process_ == 0) become(words);
}

Terminal::~Terminal() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    (void)statusOf(process_);
  }
  close(terminal_);
}

void Terminal::type(const std::string& text) const {
  (void)!write(terminal_, text.data(), text.size());
}

std::string Terminal::readTo(const std::string& text) {
  pollfd end{terminal_, POLLIN, 0};
  std::size_t at = std::string::npos;
  while ((at = unread_.find(text)) == std::string::npos)
    if (poll(&end, 1, kPatience) <= 0 || !readSome(terminal_, unread_))
      return std::exchange(unread_, {});
  const std::string shown = unread_.substr(0, at + text.size());
  unread_.erase(0, at + text.size());
  return shown;
}

int Terminal::finish() {
  while (readSome(terminal_, unread_)) {
  }
  return statusOf(std::exchange(process_, -1));
}

std::filesystem::path scratchFolder(const std::string& name) {
  const std::filesystem::path folder =
      std::filesystem::path(QXMT_BINARY_DIR) / "program_test_files" / name;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder;
}

std::string writeFile(const std::filesystem::path& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
  return file.string();
}

}  // namespace program_test
