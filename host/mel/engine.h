#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/base/result.h"
#include "host/mel/bytecode.h"
#include "host/mel/command_host.h"
#include "host/mel/files.h"
#include "host/mel/machine.h"
#include "host/mel/random.h"

namespace host::mel {

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>()(text);
  }
};
template <class T>
using TextMap = std::unordered_map<std::string, T, TextHash, std::equal_to<>>;

/// The state behind an Interpreter: names, compiled texts, and what the language's own functions
/// keep.
class Engine {
 public:
  static constexpr std::size_t kStackValues = std::size_t{1} << 20;
  explicit Engine(CommandHost& host, std::size_t stackValues = kStackValues);

  Result<Value> execute(std::string_view source, const std::string& file);
  Result<Value> sourceFile(const std::string& path);
  Result<Value> call(std::string_view name, std::span<const Value> arguments);
  [[nodiscard]] std::string findScript(std::string_view name) const;
  [[nodiscard]] std::vector<std::string> scriptFolders() const;

  [[nodiscard]] Symbol& symbol(std::string_view name);
  [[nodiscard]] const Symbol* findSymbol(std::string_view name) const;
  /// Gives a name a new meaning; the old one stays alive while something runs.
  void define(Symbol& symbol, std::shared_ptr<const Function> function);
  /// Looks a command up anew if the host's commands changed.
  [[nodiscard]] const CommandHandle* commandOf(Symbol& symbol);
  /// Sources the script named after a missing procedure; true if that defined it.
  Result<bool> loadProcedure(Symbol& symbol);

  [[nodiscard]] GlobalVariable* findGlobal(std::string_view name) const;
  GlobalVariable& makeGlobal(std::string_view name, Type type);
  void removeGlobal(std::string_view name);
  [[nodiscard]] std::vector<std::string> globalNames() const;
  Result<void> setGlobal(std::string_view name, const Value& value);

  [[nodiscard]] std::vector<std::string> complete(std::string_view prefix) const;
  [[nodiscard]] std::string whatIs(std::string_view name);
  /// " Did you mean \"polyCube\"?" for a name that nothing has but that is one or two letters off;
  /// empty when nothing is near.
  [[nodiscard]] std::string suggestion(std::string_view name) const;
  [[nodiscard]] bool exists(std::string_view name);

  [[nodiscard]] CommandHost& host() { return host_; }
  [[nodiscard]] Machine& machine() { return machine_; }
  [[nodiscard]] FileTable& files() { return files_; }
  [[nodiscard]] RandomSource& random() { return random_; }
  std::vector<std::string>& scriptPath() { return scriptPath_; }

 private:
  Result<std::shared_ptr<const Function>> compile(std::string_view source, const std::string& file);
  Result<Value> run(const Function& function);

  static constexpr std::size_t kLongestCachedText = 4096;
  static constexpr std::size_t kMaxCachedTexts = 8192;

  CommandHost& host_;
  TextMap<std::unique_ptr<Symbol>> symbols_;
  TextMap<std::unique_ptr<GlobalVariable>> globals_;
  TextMap<std::shared_ptr<const Function>> cache_;
  std::vector<std::shared_ptr<const Function>> retired_;
  std::vector<std::string> scriptPath_;
  FileTable files_;
  RandomSource random_;
  Machine machine_;
};

}  // namespace host::mel
