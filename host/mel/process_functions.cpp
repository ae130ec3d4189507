#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include "host/base/cancel.h"
#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

Result<void> sourceFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& path) -> Result<void> {
    Result<Value> value = engine.sourceFile(path);
    if (!value) return failWith(std::move(value).error());
    result = std::move(*value);
    return {};
  });
}

Result<void> getenvFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& name) {
    const char* value = std::getenv(name.c_str());
    result = Value(value ? value : "");
  });
}
Result<void> putenvFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string, std::string>(
      arguments, [&](const std::string& name, const std::string& value) -> Result<void> {
        if (name.empty() || name.find('=') != std::string::npos)
          return fail("putenv: \"{}\" is not a variable name.", name);
        result = Value(::setenv(name.c_str(), value.c_str(), 1));
        return {};
      });
}

/// A shell command at work, with its output to be read; ended with its reader.
class ShellCommand {
 public:
  explicit ShellCommand(const std::string& command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) return;
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(ends[1], STDOUT_FILENO);
      ::signal(SIGINT, SIG_DFL);
      ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
      ::_exit(127);
    }
    ::close(ends[1]);
    output_ = ends[0];
    if (process_ < 0) ::close(std::exchange(output_, -1));
  }
  ~ShellCommand() {
    if (output_ >= 0) ::close(output_);
    if (process_ > 0) ::waitpid(process_, nullptr, 0);
  }
  ShellCommand(const ShellCommand&) = delete;
  ShellCommand& operator=(const ShellCommand&) = delete;
  [[nodiscard]] bool hasStarted() const { return output_ >= 0; }

  /// Adds what it prints to its end. @return false when the program was asked to stop meanwhile
  bool readAll(std::string& text) {
    std::array<char, 4096> buffer{};
    constexpr int kPatience = 100;  // milliseconds between looks at whether to stop
    while (true) {
      pollfd end{output_, POLLIN, 0};
      const int ready = ::poll(&end, 1, kPatience);
      if (isCancelled()) {
        ::kill(process_, SIGTERM);
        return false;
      }
      if (ready <= 0) continue;
      const ssize_t count = ::read(output_, buffer.data(), buffer.size());
      if (count == 0 || (count < 0 && errno != EINTR)) return true;
      if (count > 0) text.append(buffer.data(), static_cast<std::size_t>(count));
    }
  }

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

/// Runs a shell command and gives what it printed. Ctrl-C ends it.
Result<void> systemFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<std::string>(arguments, [&](const std::string& command) -> Result<void> {
    std::fflush(nullptr);
    ShellCommand shell(command);
    if (!shell.hasStarted()) return fail("system: \"{}\" could not be started.", command);
    std::string output;
    if (!shell.readAll(output)) return cancelled();
    result = Value(std::move(output));
    return {};
  });
}

constexpr Builtin kProcess[] = {
    {"source", sourceFunction, 1, 1, Type::None},
    {"getenv", getenvFunction, 1, 1, Type::String},
    {"putenv", putenvFunction, 2, 2, Type::Int},
    {"system", systemFunction, 1, 1, Type::String},
};

}  // namespace

std::span<const Builtin> processFunctions() {
  return kProcess;
}

}  // namespace host::mel
