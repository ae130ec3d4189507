#pragma once

#include <filesystem>

#include "host/cmd/option_vars.h"

namespace host::app {

/// `$XDG_CONFIG_HOME/qxmt/preferences.mel`, or below `~/.config`; empty when there is no home.
[[nodiscard]] std::filesystem::path preferencesFile();

/// The option variables of a person, kept in a file between runs of the program: read where this is
/// made; what a run changed is written where it is saved, over what other runs wrote meanwhile.
///
/// The file holds `optionVar` lines and is read as data, never run. One that holds anything else is
/// put aside as `preferences.mel.broken`, with a warning, and nothing of it is taken.
class Preferences {
 public:
  Preferences(cmd::OptionVars& variables, std::filesystem::path file);
  /// Writes what changed since it was read; a warning when that fails.
  void save();

 private:
  cmd::OptionVars& variables_;
  cmd::OptionVars asRead_;
  std::filesystem::path file_;
};

/// The lines that give these variables. @see readOptionVars
[[nodiscard]] std::string writeOptionVars(const cmd::OptionVars& variables);
/// Fails at the first line that is no `optionVar` line as written, with its number.
[[nodiscard]] Result<cmd::OptionVars> readOptionVars(std::string_view text);

}  // namespace host::app
