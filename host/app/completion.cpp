#include "host/app/completion.h"

#include <algorithm>
#include <filesystem>

#include "host/scene/dag.h"

namespace host::app {
namespace {

namespace fs = std::filesystem;

struct Statement {
  std::string_view command;  ///< its first word when more words follow, else empty
  bool isInQuotes = false;
};

/// The statement that is open at the end of a line: behind the last `;`, brace, bracket or
/// backquote that is not in a string.
Statement statementAt(std::string_view line) {
  std::size_t begin = 0;
  bool isInQuotes = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const char c = line[i];
    if (c == '\\' && isInQuotes)
      ++i;
    else if (c == '"')
      isInQuotes = !isInQuotes;
    else if (!isInQuotes && std::string_view(";{}(`=\n").find(c) != std::string_view::npos)
      begin = i + 1;
  }
  std::string_view rest = line.substr(begin);
  rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
  const std::size_t end = rest.find_first_of(" \t");
  return {end == std::string_view::npos ? std::string_view() : rest.substr(0, end), isInQuotes};
}

void addFlags(cmd::Session& session, std::string_view command, std::vector<std::string>& found) {
  const auto known = session.commands().find(command);
  if (!known) return;
  // The help text has a line a flag, which begins with its names.
  const std::string text = known->synopsis();
  for (std::size_t i = text.find('\n'); i != std::string::npos; i = text.find('\n', i + 1)) {
    std::size_t at = i + 1;
    while (true) {
      while (at < text.size() && text[at] == ' ') ++at;
      if (at >= text.size() || text[at] != '-') break;
      const std::size_t end = std::min(text.find_first_of(" \n", at), text.size());
      found.push_back(text.substr(at, end - at));
      at = end;
    }
  }
}

void addAttributes(const dg::Node& node, const std::string& before,
                   std::vector<std::string>& found) {
  const auto add = [&](const dg::Attribute& attribute, const auto& self) -> void {
    found.push_back(before + attribute.longName);
    for (const auto& child : attribute.children) self(*child, self);
  };
  for (const auto& attribute : node.type().attributes()) add(*attribute, add);
  for (const auto& attribute : node.dynamicAttributes()) add(*attribute, add);
}

void addNodes(cmd::Session& session, std::string_view word, std::vector<std::string>& found) {
  scene::Document& document = session.document();
  const std::size_t dot = word.rfind('.');
  if (dot == std::string_view::npos) {
    for (const dg::Node* node : document.findNodes(std::string(word) + "*"))
      found.push_back(node->name());
    return;
  }
  const std::string before(word.substr(0, dot + 1));
  if (const auto node = document.node(word.substr(0, dot))) addAttributes(**node, before, found);
  // A transform answers for its shape, and for the components of that.
  const auto path = document.dagPath(word.substr(0, dot));
  const scene::DagPath shape = path ? path->toShape() : scene::DagPath();
  if (shape.isWorld()) return;
  addAttributes(*shape.node(), before, found);
  if (shape.node()->type().isA("mesh"))
    for (const char* kind : {"vtx[", "e[", "f[", "map["}) found.push_back(before + kind);
}

void addFiles(std::string_view word, std::vector<std::string>& found) {
  const std::size_t slash = word.rfind('/');
  const std::string folder(slash == std::string_view::npos ? "" : word.substr(0, slash + 1));
  std::error_code problem;
  for (const auto& entry : fs::directory_iterator(folder.empty() ? "." : folder, problem)) {
    const std::string name = entry.path().filename().string();
    // Hidden files are offered to who asks for them.
    if (name.front() == '.' && word.substr(folder.size()).substr(0, 1) != ".") continue;
    std::error_code ignored;
    found.push_back(folder + name + (entry.is_directory(ignored) ? "/" : ""));
  }
}

}  // namespace

std::vector<std::string> completions(cmd::Session& session, std::string_view line,
                                     std::string_view word) {
  const Statement statement = statementAt(line);
  std::vector<std::string> found;
  if (statement.isInQuotes) {
    addNodes(session, word, found);
    addFiles(word, found);
  } else if (word.starts_with('$')) {
    found = session.interpreter().complete(word);
  } else if (word.starts_with('-')) {
    addFlags(session, statement.command, found);
  } else {
    if (word.find('.') == std::string_view::npos) found = session.interpreter().complete(word);
    if (!statement.command.empty()) addNodes(session, word, found);
  }
  std::erase_if(found, [&](const std::string& name) { return !name.starts_with(word); });
  std::ranges::sort(found);
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

}  // namespace host::app
