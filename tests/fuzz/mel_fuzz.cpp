// Any bytes as a script: a result or an error, never a crash. Functions that reach the machine are
// taken out of the text.
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

#include "host/mel/interpreter.h"

namespace {

using namespace host;

class SilentHost final : public mel::CommandHost {
 public:
  const mel::CommandHandle* findCommand(std::string_view name) override {
    return name == "ls" ? &command_ : nullptr;
  }
  Result<void> invoke(const mel::CommandHandle&, std::span<const mel::Value> arguments,
                      mel::Value& result) override {
    if (!arguments.empty()) result = arguments[0].clone();
    return {};
  }
  void defer(std::string, bool) override {}
  void message(MessageKind, std::string_view) override {}
  void completeCommand(std::string_view, std::vector<std::string>&) override {}

 private:
  struct Command : mel::CommandHandle {};
  Command command_;
};

/// Interrupts a script that runs longer than a moment.
class Watchdog {
 public:
  explicit Watchdog(mel::Interpreter& interpreter)
      : thread_([this, &interpreter] {
          std::unique_lock lock(mutex_);
          while (!done_.wait_for(lock, std::chrono::milliseconds(20), [this] { return isDone_; }))
            interpreter.interrupt();
        }) {}
  ~Watchdog() {
    {
      const std::lock_guard lock(mutex_);
      isDone_ = true;
    }
    done_.notify_one();
    thread_.join();
  }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

 private:
  std::mutex mutex_;
  std::condition_variable done_;
  bool isDone_ = false;
  std::thread thread_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string source(reinterpret_cast<const char*>(data), size);
  for (const char* word : {"system", "popen", "fopen", "sysFile", "chdir", "putenv", "source"})
    for (std::size_t at = 0; (at = source.find(word, at)) != std::string::npos;) source[at] = '_';
  // A text can put such a word together when it runs, so evaluation of built text is left to the
  // unit tests.
  for (std::size_t at = 0; (at = source.find("eval", at)) != std::string::npos;) source[at] = '_';
  SilentHost host;
  mel::Interpreter interpreter(host);
  const Watchdog watchdog(interpreter);
  (void)interpreter.execute(source, {"fuzz.mel"});
  return 0;
}
