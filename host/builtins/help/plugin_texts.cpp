#include "host/builtins/help/plugin_texts.h"

#include <sstream>

namespace host::builtins {

namespace {

/// The long name in a line that tells of a flag, "  -ax -axis String"; empty in other lines.
std::string flagOf(const std::string& line) {
  std::istringstream words(line);
  std::string shortName, longName;
  words >> shortName >> longName;
  const bool isFlag = shortName.size() > 1 && shortName[0] == '-' && longName.size() > 1 &&
                      longName[0] == '-' && line.front() == ' ';
  return isFlag ? longName.substr(1) : std::string();
}

}  // namespace

std::string describedSynopsis(const std::string& synopsis, const std::string& command,
                              const DisplayStrings& strings) {
  const auto textOf = [&](const std::string& key) {
    const auto found = strings.texts.find(key);
    return found != strings.texts.end() ? found->second : std::string();
  };
  std::istringstream lines(synopsis);
  std::string described, line, about = textOf(command);
  while (std::getline(lines, line)) {
    const std::string flag = flagOf(line);
    const std::string meaning = flag.empty() ? std::string() : textOf(command + "." + flag);
    described += line + (meaning.empty() ? "" : "  : " + meaning) + "\n";
    if (about.empty() || line.find("Synopsis:") == std::string::npos) continue;
    described += about + "\n";
    about.clear();
  }
  return described;
}

}  // namespace host::builtins
