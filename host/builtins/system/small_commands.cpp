// launch, date, timer, scriptEditorInfo and stringArrayIntersector.
#include <algorithm>
#include <chrono>
#include <ctime>
#include <map>

#include "host/base/message_filter.h"
#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::workspaceOf;

// scriptEditorInfo
// -----------------------------------------------------------------------------------------------

constexpr std::pair<const char*, MessageKind> kSuppressed[] = {
    {"suppressErrors", MessageKind::Error},
    {"suppressWarnings", MessageKind::Warning},
    {"suppressInfo", MessageKind::Info},
    {"suppressResults", MessageKind::Result}};

/// Which messages are kept from showing; a script that was told so turns them on again itself.
CommandResult scriptEditorInfo(Context&, const ParsedArgs& args) {
  for (const auto& [flag, kind] : kSuppressed) {
    if (!args.has(flag)) continue;
    if (args.isQuery()) return mel::Value(!areMessagesShown(kind));
    showMessages(kind, !args.boolean(flag));
  }
  return mel::Value();
}

// date
// -----------------------------------------------------------------------------------------------

/// "YYYY/MM/DD hh:mm:ss" with each group of letters as its number, as wide as it is written.
std::string formatted(const std::string& format, const std::tm& now) {
  const std::pair<std::string_view, int> kParts[] = {{"YYYY", now.tm_year + 1900},
                                                     {"YY", now.tm_year % 100},
                                                     {"MM", now.tm_mon + 1},
                                                     {"DD", now.tm_mday},
                                                     {"hh", now.tm_hour},
                                                     {"mm", now.tm_min},
                                                     {"ss", now.tm_sec}};
  std::string text;
  for (std::size_t i = 0; i < format.size();) {
    const std::string_view rest = std::string_view(format).substr(i);
    const auto* part = std::ranges::find_if(
        kParts, [&](const auto& each) { return rest.starts_with(each.first); });
    if (part == std::end(kParts)) {
      text += format[i++];
      continue;
    }
    text += fmt::format("{:0{}}", part->second, part->first.size());
    i += part->first.size();
  }
  return text;
}

CommandResult date(Context&, const ParsedArgs& args) {
  const std::time_t seconds =
      std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  std::tm now{};
  localtime_r(&seconds, &now);
  if (args.has("format")) return mel::Value(formatted(args.text("format"), now));
  if (args.has("date")) return mel::Value(formatted("YYYY/MM/DD", now));
  if (args.has("shortDate")) return mel::Value(formatted("MM/DD", now));
  if (args.has("time")) return mel::Value(formatted("hh:mm:ss", now));
  if (args.has("shortTime")) return mel::Value(formatted("hh:mm", now));
  return mel::Value(formatted("YYYY/MM/DD hh:mm:ss", now));
}

// timer
// -----------------------------------------------------------------------------------------------

struct StopWatches {
  std::map<std::string, std::chrono::steady_clock::time_point> started;
};

CommandResult timer(Context& context, const ParsedArgs& args) {
  auto& watches = workspaceOf(context.session).kept<StopWatches>().started;
  const std::string name = args.text("name");
  const auto now = std::chrono::steady_clock::now();
  if (args.has("startTimer")) {
    watches[name] = now;
    return mel::Value(0.0);
  }
  const auto found = watches.find(name);
  if (found == watches.end())
    return fail("timer: {} was not started.", name.empty() ? "it" : "'" + name + "'");
  const double seconds = std::chrono::duration<double>(now - found->second).count();
  if (args.has("endTimer")) watches.erase(found);
  return mel::Value(seconds);
}

// stringArrayIntersector
// -----------------------------------------------------------------------------------------------

/// Each keeps what all the arrays that it was given have.
struct Intersectors {
  struct One {
    std::vector<std::string> common;
    bool isFresh = true;
  };
  std::map<std::string, One> byName;
  int last = 0;
};

CommandResult stringArrayIntersector(Context& context, const ParsedArgs& args) {
  auto& all = workspaceOf(context.session).kept<Intersectors>();
  std::string name = args.firstObject();
  if (args.has("exists")) return mel::Value(all.byName.contains(name));
  if (args.isCreate()) {
    if (name.empty()) name = fmt::format("stringArrayIntersector{}", ++all.last);
    all.byName[name] = {};
  }
  const auto found = all.byName.find(name);
  if (found == all.byName.end())
    return fail("stringArrayIntersector: Object '{}' not found.", name);
  Intersectors::One& one = found->second;
  if (args.isQuery()) return toValue(one.common);
  if (args.has("reset")) one = {};
  if (args.has("intersect")) {
    std::vector<std::string> given;
    for (int use = 0; use < args.uses("intersect"); ++use)
      for (const mel::Value& value : args.values("intersect", use))
        given.push_back(value.toText().value_or(""));
    if (!one.isFresh)
      std::erase_if(one.common, [&](const std::string& text) {
        return std::ranges::find(given, text) == given.end();
      });
    else
      one.common = given;
    one.isFresh = false;
  }
  return mel::Value(name);
}

// launch
// -----------------------------------------------------------------------------------------------

/// A page or a document is a person's to open: a script may ask, and the address is told.
CommandResult launch(Context&, const ParsedArgs& args) {
  for (const char* flag : {"webPage", "pdfFile", "directory", "movie", "imageFile"})
    if (args.has(flag)) {
      postMessage(MessageKind::Info, "launch: " + args.text(flag));
      return mel::Value(true);
    }
  return fail("launch: say what to open: -webPage, -directory, -pdfFile, -movie or -imageFile.");
}

}  // namespace

void registerSmallCommands(CommandRegistry& registry) {
  defineQuery(registry, "date",
              Syntax()
                  .flag("d", "date")
                  .flag("t", "time")
                  .flag("sd", "shortDate")
                  .flag("st", "shortTime")
                  .flag("f", "format", {ArgType::String}),
              date);
  defineQuery(registry, "timer",
              Syntax()
                  .flag("s", "startTimer")
                  .flag("e", "endTimer")
                  .flag("lap", "lapTime")
                  .flag("n", "name", {ArgType::String}),
              timer);
  defineQuery(registry, "scriptEditorInfo",
              Syntax()
                  .flag("se", "suppressErrors", {ArgType::Bool})
                  .flag("sw", "suppressWarnings", {ArgType::Bool})
                  .flag("si", "suppressInfo", {ArgType::Bool})
                  .flag("sr", "suppressResults", {ArgType::Bool})
                  .editable()
                  .queryable(),
              scriptEditorInfo);
  defineQuery(registry, "stringArrayIntersector",
              Syntax()
                  .flag("i", "intersect", {ArgType::Any})
                  .multiUse()
                  .flag("ex", "exists")
                  .flag("r", "reset")
                  .flag("dt", "defineTemplate", {ArgType::String})
                  .flag("ut", "useTemplate", {ArgType::String})
                  .editable()
                  .queryable()
                  .strings(0, 1),
              stringArrayIntersector);
  defineQuery(registry, "launch",
              Syntax()
                  .flag("web", "webPage", {ArgType::String})
                  .flag("pdf", "pdfFile", {ArgType::String})
                  .flag("dir", "directory", {ArgType::String})
                  .flag("mov", "movie", {ArgType::String})
                  .flag("i", "imageFile", {ArgType::String}),
              launch);
}

}  // namespace host::builtins
