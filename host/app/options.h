#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host::app {

/// What the program's exit status says.
enum ExitStatus : int { kDone = 0, kScriptFailed = 1, kBadUsage = 2, kFileFailed = 3 };

/// The program's command line.
struct Options {
  std::vector<std::string> commands;   ///< -c, in order
  std::vector<std::string> plugIns;    ///< --plug-in, in order
  std::string openFile;                ///< -o
  std::string script;                  ///< first word that is no option; "-": standard input
  bool isScriptPlain = false;          ///< it stood behind "--": a file, whatever its name
  std::vector<std::string> arguments;  ///< what follows it
  bool interactive = false;
  bool window = false;
  bool noModule = false;

  /// Whether the first word is the name of a job that the program itself does.
  [[nodiscard]] bool isJob(std::string_view name) const { return script == name && !isScriptPlain; }
};

/// Reads the command line. @return -1 when the program should go on, else its exit status (help,
/// version, bad usage: their text has been printed).
[[nodiscard]] int parseOptions(int argc, char** argv, Options& options);

}  // namespace host::app
