#include "host/cmd/help_texts.h"

namespace host::cmd {

namespace {

// Commands are described once, whatever number of sessions a process has.
std::map<std::string, HelpText, std::less<>>& texts() {
  static std::map<std::string, HelpText, std::less<>> table;
  return table;
}

}  // namespace

void setHelpText(const std::string& command, HelpText text) {
  texts().insert_or_assign(command, std::move(text));
}

const HelpText* helpTextOf(std::string_view command) {
  const auto found = texts().find(command);
  return found == texts().end() ? nullptr : &found->second;
}

}  // namespace host::cmd
