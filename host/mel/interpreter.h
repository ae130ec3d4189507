#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/mel/command_host.h"
#include "host/mel/value.h"

namespace host::mel {

class Engine;

/// Where a source text comes from, for error messages; an empty file is text that a person or the
/// program entered.
struct SourceName {
  std::string file;
};

/// The language: global variables, procedures and the evaluator. Everything else it reaches through
/// a CommandHost, which must outlive it. One thread; only `interrupt` may be called from others and
/// from signal handlers.
class Interpreter {
 public:
  explicit Interpreter(CommandHost& host);
  ~Interpreter();
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  /// Runs a text at global scope and returns the value of its last statement (None if that has
  /// none).
  ///
  /// The text is compiled as a whole first: after a syntax error nothing has run. Compiled short
  /// texts are kept, so repeating one costs a hash and the run. May be called from within a
  /// command. The error's message begins with the place, `Line 3.12: ` or `file: a.mel line 3: `,
  /// and is not printed; the caller does that.
  Result<Value> execute(std::string_view source, const SourceName& name = {});

  /// Runs a file as `source` does, with or without `.mel`: a path with a folder in it as it stands;
  /// else, and for a bare name, beside the script that runs and along the script path. The working
  /// folder is only looked into when the name says so: `./tool.mel`.
  Result<Value> sourceFile(const std::string& path);

  /// A global procedure that is defined now; files on the script path are not searched.
  [[nodiscard]] bool hasProcedure(std::string_view name) const;
  /// Calls a global procedure (loading it from the script path if need be), a function of the
  /// language or a command.
  Result<Value> callProcedure(std::string_view name, std::span<const Value> arguments);

  /// Ends whatever runs at its next loop turn or call; `catch` doesn't hold it. Without effect on
  /// later runs.
  void interrupt() noexcept;
  /// Whether something runs that has been told to end.
  [[nodiscard]] bool isInterrupted() const noexcept;
  [[nodiscard]] bool isRunning() const noexcept;

  /// Folders searched for `name.mel`, before those of MAYA_SCRIPT_PATH.
  [[nodiscard]] const std::vector<std::string>& scriptPath() const;
  void setScriptPath(std::vector<std::string> folders);
  /// The script file that would be sourced for a name, with or without `.mel`; empty if there is
  /// none.
  [[nodiscard]] std::string findScript(std::string_view name) const;

  /// A global variable by its name with or without `$`; nothing if it doesn't exist.
  [[nodiscard]] std::optional<Value> global(std::string_view name) const;
  /// Creates or assigns a global variable; an existing one keeps its type and the value is
  /// converted.
  Result<void> setGlobal(std::string_view name, const Value& value);

  /// Names that can follow: variables for a prefix with `$`, else procedures, functions and
  /// commands. Sorted.
  [[nodiscard]] std::vector<std::string> complete(std::string_view prefix) const;
  /// What a name stands for, in the words of the `whatIs` function.
  [[nodiscard]] std::string whatIs(std::string_view name) const;

 private:
  std::unique_ptr<Engine> engine_;
};

}  // namespace host::mel
