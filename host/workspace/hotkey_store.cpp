#include "host/workspace/hotkey_store.h"

#include <fmt/format.h>

namespace host::workspace {
namespace {

constexpr char kBetween = '\t';

std::vector<std::string> parts(const std::string& text) {
  std::vector<std::string> all(1);
  for (const char c : text) c == kBetween ? (void)all.emplace_back() : all.back().push_back(c);
  return all;
}

}  // namespace

std::vector<std::string> hotkeyChanges(const Hotkeys& hotkeys) {
  std::vector<std::string> lines;
  for (const auto& [name, command] : hotkeys.commands)
    if (!command.isFactory)
      lines.push_back(fmt::format("command\t{}\t{}\t{}", name, command.annotation, command.line));
  const auto factory = Hotkeys().bindings;
  const auto add = [&](const KeyStroke& stroke, const Hotkeys::Binding& bound) {
    lines.push_back(fmt::format("key\t{}\t{}{}\t{}\t{}", stroke.key, stroke.alt ? "a" : "",
                                stroke.control ? "c" : "", bound.press, bound.release));
  };
  for (const auto& [stroke, bound] : hotkeys.bindings) {
    const auto before = factory.find(stroke);
    if (before == factory.end() || before->second.press != bound.press ||
        before->second.release != bound.release)
      add(stroke, bound);
  }
  for (const auto& [stroke, bound] : factory)
    if (!hotkeys.bindings.contains(stroke)) add(stroke, {});
  return lines;
}

void takeHotkeys(Hotkeys& hotkeys, const std::vector<std::string>& lines) {
  hotkeys.bindFactory();
  std::erase_if(hotkeys.commands, [](const auto& each) { return !each.second.isFactory; });
  for (const std::string& line : lines) {
    const std::vector<std::string> words = parts(line);
    if (words.size() == 4 && words[0] == "command" && !hotkeys.commands.contains(words[1]))
      hotkeys.commands[words[1]] = {words[2], words[3], false};
    if (words.size() != 5 || words[0] != "key") continue;
    const KeyStroke stroke{words[1], words[2].find('a') != std::string::npos,
                           words[2].find('c') != std::string::npos, false};
    if (words[3].empty() && words[4].empty()) {
      hotkeys.bindings.erase(stroke);
      continue;
    }
    hotkeys.bindings[stroke].press = words[3];
    hotkeys.bindings[stroke].release = words[4];
  }
}

}  // namespace host::workspace
