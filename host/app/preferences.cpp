#include "host/app/preferences.h"

#include <charconv>
#include <cstdlib>
#include <optional>

#include "host/base/messages.h"
#include "host/io/whole_file.h"
#include "host/mel/literal.h"

namespace host::app {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kCommand = "optionVar ";

/// The words of a line, those in quotes without them; nothing when a quote stays open.
std::optional<std::vector<std::string>> wordsOf(std::string_view line) {
  std::vector<std::string> words;
  for (std::size_t i = 0; i < line.size();) {
    if (line[i] == ' ' || line[i] == '\t' || line[i] == '\r') {
      ++i;
      continue;
    }
    std::string word;
    if (line[i] != '"') {
      while (i < line.size() && line[i] != ' ') word += line[i++];
      words.push_back(std::move(word));
      continue;
    }
    for (++i; i < line.size() && line[i] != '"'; ++i) {
      if (line[i] != '\\') {
        word += line[i];
      } else if (++i < line.size()) {
        const char c = line[i];
        word += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
      }
    }
    if (i++ >= line.size()) return std::nullopt;
    words.push_back(std::move(word));
  }
  return words;
}

template <class Number>
std::optional<Number> numberOf(const std::string& word) {
  Number number{};
  const char* const end = word.data() + word.size();
  const auto read = std::from_chars(word.data(), end, number);
  return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

/// Gives one variable the value of a line. @return false when the line isn't one of ours
bool readLine(std::string_view line, cmd::OptionVars& variables) {
  if (!line.starts_with(kCommand) || !line.ends_with(';')) return false;
  line.remove_suffix(1);
  const auto words = wordsOf(line.substr(kCommand.size()));
  if (!words || words->size() < 2) return false;
  const std::string &flag = (*words)[0], &name = (*words)[1];
  if (flag == "-clearArray" && words->size() == 2) {
    variables.set(name, std::vector<int>{});
    return true;
  }
  if (words->size() != 3) return false;
  const std::string& value = (*words)[2];
  const bool appends = flag.ends_with("Append");
  if (flag == "-stringValue" || flag == "-stringValueAppend") {
    appends ? variables.append(name, value) : variables.set(name, value);
    return true;
  }
  if (flag == "-intValue" || flag == "-intValueAppend") {
    const auto number = numberOf<int>(value);
    if (number && appends) variables.append(name, *number);
    if (number && !appends) variables.set(name, *number);
    return number.has_value();
  }
  if (flag == "-floatValue" || flag == "-floatValueAppend") {
    const auto number = numberOf<double>(value);
    if (number && appends) variables.append(name, *number);
    if (number && !appends) variables.set(name, *number);
    return number.has_value();
  }
  return false;
}

struct LineWriter {
  const std::string& name;
  std::string text = {};

  void line(std::string_view flag, const std::string& value) {
    text += fmt::format("{}-{} {} {};\n", kCommand, flag, mel::quoted(name), value);
  }
  void one(int value, const char* more = "") {
    line(fmt::format("intValue{}", more), fmt::format("{}", value));
  }
  void one(double value, const char* more = "") {
    line(fmt::format("floatValue{}", more), fmt::format("{}", value));
  }
  void one(const std::string& value, const char* more = "") {
    line(fmt::format("stringValue{}", more), mel::quoted(value));
  }
  template <class T>
  void operator()(const T& value) {
    one(value);
  }
  template <class T>
  void operator()(const std::vector<T>& values) {
    if (values.empty()) text += fmt::format("{}-clearArray {};\n", kCommand, mel::quoted(name));
    for (const T& value : values) one(value, "Append");
  }
};

}  // namespace

fs::path preferencesFile() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  const char* home = std::getenv("HOME");
  if (config && *config) return fs::path(config) / "qxmt" / "preferences.mel";
  if (home && *home) return fs::path(home) / ".config" / "qxmt" / "preferences.mel";
  return {};
}

std::string writeOptionVars(const cmd::OptionVars& variables) {
  std::string text;
  for (const std::string& name : variables.names()) {
    LineWriter writer{name};
    std::visit(writer, *variables.find(name));
    text += writer.text;
  }
  return text;
}

Result<cmd::OptionVars> readOptionVars(std::string_view text) {
  cmd::OptionVars variables;
  int number = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    ++number;
    if (line.empty() || line.starts_with("//")) continue;
    if (!readLine(line, variables)) return fail("line {} is no option variable", number);
  }
  return variables;
}

Preferences::Preferences(cmd::OptionVars& variables, fs::path file)
    : variables_(variables), file_(std::move(file)) {
  std::error_code ignored;
  if (file_.empty() || !fs::exists(file_, ignored)) return;
  const auto content = io::FileContent::read(file_.string());
  auto read = content ? readOptionVars(content->text()) : failWith(content.error());
  if (!read) {
    const fs::path aside = file_.string() + ".broken";
    fs::rename(file_, aside, ignored);
    postMessage(MessageKind::Warning,
                fmt::format("The preferences {} can't be used ({}); they are put aside as {}.",
                            file_.string(), read.error().message, aside.string()));
    return;
  }
  variables_ = asRead_ = std::move(*read);
}

void Preferences::save() {
  if (file_.empty()) return;
  // Another run may have saved since; only what this one changed goes over it.
  cmd::OptionVars kept;
  std::error_code problem;
  if (fs::exists(file_, problem)) {
    const auto content = io::FileContent::read(file_.string());
    if (auto now = content ? readOptionVars(content->text()) : failWith(content.error()))
      kept = std::move(*now);
  }
  bool isChanged = false;
  for (const std::string& name : asRead_.names())
    if (!variables_.find(name)) isChanged = kept.remove(name) || isChanged;
  for (const std::string& name : variables_.names()) {
    const cmd::OptionVars::Value& value = *variables_.find(name);
    const cmd::OptionVars::Value* before = asRead_.find(name);
    if (before && *before == value) continue;
    kept.set(name, value);
    isChanged = true;
  }
  if (!isChanged) return;
  fs::create_directories(file_.parent_path(), problem);
  const auto written = io::writeFileAtomically(
      file_.string(), "// Option variables, one a line.\n" + writeOptionVars(kept));
  if (written)
    asRead_ = variables_;
  else
    postMessage(MessageKind::Warning, "The preferences are not saved: " + written.error().message);
}

}  // namespace host::app
