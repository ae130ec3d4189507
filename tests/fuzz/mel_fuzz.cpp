// Any bytes as a script: a result or an error, never a crash.
//
// Each text runs in an interpreter of its own, so that it does the same every time. The language
// has nothing here that reaches files, folders or processes, whatever a text puts together and
// evaluates.
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>

#include "host/mel/builtins.h"
#include "host/mel/engine.h"

// Lists that double with each turn end at "Out of memory." and not at the machine's.
static std::size_t mostBytes = SIZE_MAX;

void* operator new(std::size_t size) {
  void* const memory = size <= mostBytes ? std::malloc(size > 0 ? size : 1) : nullptr;
  if (!memory) throw std::bad_alloc();
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size > 0 ? size : 1);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace host::mel {

// Linked in place of the language's own.
std::span<const Builtin> fileFunctions() {
  return {};
}
std::span<const Builtin> folderFunctions() {
  return {};
}
std::span<const Builtin> processFunctions() {
  return {};
}

namespace {

constexpr std::size_t kStackValues = 8192;
constexpr std::uint32_t kMostTurns = 500;

/// Has one command, which gives back its first argument.
class QuietHost final : public CommandHost {
 public:
  const CommandHandle* findCommand(std::string_view name) override {
    return name == "ls" ? &command_ : nullptr;
  }
  Result<void> invoke(const CommandHandle&, std::span<const Value> arguments,
                      Value& result) override {
    if (!arguments.empty()) result = arguments[0].clone();
    return {};
  }
  void defer(std::string, bool) override {}
  void message(MessageKind, std::string_view) override {}
  void completeCommand(std::string_view, std::vector<std::string>&) override {}

 private:
  struct Command : CommandHandle {};
  Command command_;
};

}  // namespace
}  // namespace host::mel

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace host::mel;
  QuietHost host;
  Engine engine(host, kStackValues);
  engine.machine().limitTurns(kMostTurns);
  mostBytes = std::size_t{16} << 20;
  (void)engine.execute({reinterpret_cast<const char*>(data), size}, "");
  mostBytes = SIZE_MAX;
  return 0;
}
