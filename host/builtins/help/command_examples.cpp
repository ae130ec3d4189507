#include "host/builtins/help/command_examples.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace host::builtins {

namespace {

constexpr std::size_t kLongest = 80;

/// The statements of a line, and what stands in backquotes: ends at semicolons, braces and the
/// comment, but not within strings.
std::vector<std::string> statementsOf(const std::string& line) {
  std::vector<std::string> all;
  std::string current, quoted;
  bool inString = false, inQuotes = false;
  const auto end = [&] {
    all.push_back(std::move(current));
    current.clear();
  };
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (inString && c == '\\' && i + 1 < line.size()) {
      (inQuotes ? quoted : current) += c;
      (inQuotes ? quoted : current) += line[++i];
      continue;
    }
    if (c == '"') inString = !inString;
    if (!inString && c == '/' && i + 1 < line.size() && line[i + 1] == '/') break;
    if (!inString && c == '`') {
      if (inQuotes) all.push_back(std::move(quoted));
      quoted.clear();
      inQuotes = !inQuotes;
      continue;
    }
    if (inQuotes) {
      quoted += c;
    } else if (!inString && (c == ';' || c == '{' || c == '}')) {
      end();
    } else {
      current += c;
    }
  }
  end();
  return all;
}

std::vector<std::string> wordsOf(const std::string& statement) {
  std::vector<std::string> words;
  std::istringstream in(statement);
  for (std::string word; in >> word;) words.push_back(std::move(word));
  return words;
}

/// What a reader can make sense of: no variables, no arithmetic around.
bool isPlain(const std::string& statement) {
  return statement.size() <= kLongest && statement.find_first_of("$`()+") == std::string::npos &&
         std::ranges::count(statement, '"') % 2 == 0;
}

class Collector {
 public:
  explicit Collector(const cmd::CommandRegistry& registry) : registry_(registry) {}

  void addLine(const std::string& line) {
    if (line.find("//!") != std::string::npos || line.find("//?") != std::string::npos) return;
    for (const std::string& statement : statementsOf(line)) addStatement(statement);
  }
  CommandExamples take() { return std::move(examples_); }

 private:
  void addStatement(const std::string& statement) {
    const std::size_t first = statement.find_first_not_of(" \t");
    if (first == std::string::npos) return;
    const std::size_t last = statement.find_last_not_of(" \t");
    const std::string text = statement.substr(first, last - first + 1);
    const std::vector<std::string> words = wordsOf(text);
    if (words.empty()) return;
    const auto command = registry_.find(words.front());
    if (!command || !command->builtin() || !isPlain(text)) return;
    auto& own = examples_[command->name()];
    const cmd::Syntax& syntax = command->builtin()->syntax;
    bool hasFlag = false;
    for (std::size_t i = 1; i < words.size(); ++i) {
      if (words[i].size() < 2 || words[i][0] != '-') continue;
      const cmd::FlagSpec* flag = syntax.find(words[i].substr(1));
      if (!flag) continue;
      hasFlag = true;
      offer(own[flag->longName], text);
    }
    if (!hasFlag) offer(own[""], text);
  }
  static void offer(std::string& kept, const std::string& text) {
    const bool isBetter =
        kept.empty() || text.size() < kept.size() || (text.size() == kept.size() && text < kept);
    if (isBetter) kept = text;
  }

  const cmd::CommandRegistry& registry_;
  CommandExamples examples_;
};

}  // namespace

CommandExamples collectExamples(const cmd::CommandRegistry& registry, const std::string& folder) {
  Collector collector(registry);
  std::error_code ignored;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
    if (entry.path().extension() != ".mel") continue;
    std::ifstream in(entry.path());
    for (std::string line; std::getline(in, line);) collector.addLine(line);
  }
  return collector.take();
}

std::set<std::string> wordsReadBySources(const std::string& folder) {
  std::set<std::string> words;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
    if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
    std::ifstream in(entry.path());
    for (std::string line; std::getline(in, line);) {
      // A declaration names its flag twice; it says nothing of who reads it.
      if (line.find(".flag(\"") != std::string::npos) continue;
      for (std::size_t from = line.find('"'); from != std::string::npos;) {
        const std::size_t to = line.find('"', from + 1);
        if (to == std::string::npos) break;
        words.insert(line.substr(from + 1, to - from - 1));
        from = line.find('"', to + 1);
      }
    }
  }
  return words;
}

}  // namespace host::builtins
