#include <chrono>
#include <cstdlib>
#include <ctime>

#include "host/builtins/common/command.h"
#include "host/builtins/help/command_texts.h"
#include "host/builtins/help/plugin_texts.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

constexpr int kApiVersion = 201400;
constexpr std::string_view kVersion = "2014";

std::string formatNow(const char* format) {
  const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm parts{};
  localtime_r(&now, &parts);
  char text[64];
  return std::string(text, std::strftime(text, sizeof text, format, &parts));
}

CommandResult about(Context& context, const ParsedArgs& args) {
  if (args.flagUses().empty()) return mel::Value(kVersion);
  const std::string& what = args.flagUses().front().spec->longName;
  if (what == "version" || what == "installedVersion" || what == "product" || what == "file")
    return mel::Value(kVersion);
  if (what == "apiVersion" || what == "api") return mel::Value(kApiVersion);
  if (what == "batch") return mel::Value(context.session.isBatch);
  if (what == "linux" || what == "linux64" || what == "is64") return mel::Value(true);
  if (what == "operatingSystem") return mel::Value("linux64");
  if (what == "currentTime") return mel::Value(formatNow("%H:%M:%S"));
  if (what == "currentDate") return mel::Value(formatNow("%Y/%m/%d"));
  if (what == "application") return mel::Value("qxmt");
  if (what == "cutIdentifier") return mel::Value(std::string(kVersion) + "0000");
  if (what == "uiLanguage") return mel::Value("en_US");
  if (what == "preferences" || what == "environmentFile") {
    const char* home = std::getenv("HOME");
    return mel::Value(std::string(home ? home : ""));
  }
  return mel::Value(false);
}

/// What there is to ask for, and the commands that plug-ins have brought.
std::string helpOfHelp(CommandRegistry& registry) {
  std::string text, own;
  if (cmd::Command* const help = registry.findBuiltin("help")) {
    describeFlags(*help);
    text = help->synopsis();
  }
  const std::vector<std::string> names = registry.names();
  for (const std::string& name : names)
    if (const auto command = registry.find(name); command && command->plugin()) own += " " + name;
  text += fmt::format(
      "help NAME tells of a command and its flags; help -list \"poly*\" lists commands by how they "
      "begin. There are {}.\n",
      names.size());
  return own.empty() ? text : text + "Of plug-ins:" + own + "\n";
}

CommandResult help(Context& context, const ParsedArgs& args) {
  if (args.has("list")) {
    std::vector<std::string> names = context.session.commands().names();
    const std::string pattern = args.firstObject();
    if (!pattern.empty() && pattern != "*") {
      const std::string prefix = pattern.substr(0, pattern.find('*'));
      std::erase_if(names, [&](const std::string& name) {
        return name.compare(0, prefix.size(), prefix) != 0;
      });
    }
    return toValue(std::move(names));
  }
  if (args.firstObject().empty()) return mel::Value(helpOfHelp(context.session.commands()));
  const std::string name = args.firstObject();
  if (cmd::Command* const builtin = context.session.commands().findBuiltin(name))
    describeFlags(*builtin);
  const auto command = context.session.commands().find(name);
  if (!command) return fail("help: there is no command '{}'.", name);
  if (command->builtin()) return mel::Value(command->synopsis());
  const auto& strings = workspace::workspaceOf(context.session).kept<DisplayStrings>();
  return mel::Value(describedSynopsis(command->synopsis(), name, strings));
}

}  // namespace

void registerAbout(CommandRegistry& registry) {
  defineQuery(registry, "about",
              Syntax()
                  .flag("v", "version")
                  .flag("iv", "installedVersion")
                  .flag("p", "product")
                  .flag("f", "file")
                  .flag("api", "apiVersion")
                  .flag("b", "batch")
                  .flag("a", "application")
                  .flag("c", "cutIdentifier")
                  .flag("os", "operatingSystem")
                  .flag("lnx", "linux")
                  .flag("l64", "linux64")
                  .flag("nt", "nt")
                  .flag("win", "windows")
                  .flag("mac", "macOS")
                  .flag("x64", "is64")
                  .flag("ct", "currentTime")
                  .flag("cd", "currentDate")
                  .flag("pd", "preferences")
                  .flag("env", "environmentFile")
                  .flag("uil", "uiLanguage")
                  .flag("ev", "evalVersion"),
              about);
  defineQuery(registry, "help",
              Syntax()
                  .flag("l", "list")
                  .flag("doc", "documentation")
                  .flag("lng", "language", {ArgType::String})
                  .strings(0, 1),
              help);
}

}  // namespace host::builtins
