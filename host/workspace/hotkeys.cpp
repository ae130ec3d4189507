#include "host/workspace/hotkeys.h"

#include <fmt/format.h>

#include <array>
#include <cctype>

namespace host::workspace {
namespace {

struct FactoryCommand {
  const char *name, *line, *annotation;
};
const std::array kFactory{
    FactoryCommand{"SelectToolMarkingMenuNameCommand", "setToolTo selectSuperContext",
                   "Select tool"},
    FactoryCommand{"TranslateToolWithSnapMarkingMenuNameCommand", "setToolTo moveSuperContext",
                   "Move tool"},
    FactoryCommand{"RotateToolWithSnapMarkingMenuNameCommand", "setToolTo RotateSuperContext",
                   "Rotate tool"},
    FactoryCommand{"ScaleToolWithSnapMarkingMenuNameCommand", "setToolTo scaleSuperContext",
                   "Scale tool"},
    FactoryCommand{"NameComUndo", "undo", "Undo the last action"},
    FactoryCommand{"NameComRedo", "redo", "Redo what was undone"},
    FactoryCommand{"RepeatLastNameCommand", "repeatLast", "Repeat the last command of a menu"},
    FactoryCommand{"NameComDuplicate", "duplicate -renameChildren", "Duplicate what is selected"},
    FactoryCommand{"FrameSelectedNameCommand", "viewFit", "Frame what is selected, or all"},
    FactoryCommand{"FrameAllNameCommand", "viewFit -allObjects", "Frame everything"},
    FactoryCommand{"PanePopNameCommand", "panePop", "One view or all four"},
    FactoryCommand{"DisplayWireframeNameCommand",
                   "modelEditor -edit -displayAppearance \"wireframe\" `getPanel -withFocus`",
                   "Wireframe"},
    FactoryCommand{"DisplayShadedNameCommand",
                   "modelEditor -edit -displayAppearance \"smoothShaded\" -displayTextures 0 "
                   "`getPanel -withFocus`",
                   "Shaded"},
    FactoryCommand{"DisplayShadedAndTexturedNameCommand",
                   "modelEditor -edit -displayAppearance \"smoothShaded\" -displayTextures 1 "
                   "`getPanel -withFocus`",
                   "Shaded with textures"},
    FactoryCommand{"DisplayLightsNameCommand",
                   "modelEditor -edit -displayLights \"all\" `getPanel -withFocus`",
                   "The scene's lights"},
    FactoryCommand{"ToggleSelectModeNameCommand",
                   "if (`selectMode -q -object`) selectMode -component; else selectMode -object;",
                   "Objects or components"},
    FactoryCommand{"SelectVertexNameCommand",
                   "selectMode -component; selectType -allComponents 0; selectType -vertex 1;",
                   "Pick vertices"},
    FactoryCommand{"SelectEdgeNameCommand",
                   "selectMode -component; selectType -allComponents 0; selectType -edge 1;",
                   "Pick edges"},
    FactoryCommand{"SelectFaceNameCommand",
                   "selectMode -component; selectType -allComponents 0; selectType -facet 1;",
                   "Pick faces"},
};

struct FactoryKey {
  const char *key, *name;
  bool isWithControl = false;
};
constexpr std::array kFactoryKeys{FactoryKey{"q", "SelectToolMarkingMenuNameCommand"},
                                  FactoryKey{"w", "TranslateToolWithSnapMarkingMenuNameCommand"},
                                  FactoryKey{"e", "RotateToolWithSnapMarkingMenuNameCommand"},
                                  FactoryKey{"r", "ScaleToolWithSnapMarkingMenuNameCommand"},
                                  FactoryKey{"z", "NameComUndo"},
                                  FactoryKey{"z", "NameComUndo", true},
                                  FactoryKey{"Z", "NameComRedo"},
                                  FactoryKey{"y", "NameComRedo", true},
                                  FactoryKey{"g", "RepeatLastNameCommand"},
                                  FactoryKey{"d", "NameComDuplicate", true},
                                  FactoryKey{"f", "FrameSelectedNameCommand"},
                                  FactoryKey{"a", "FrameAllNameCommand"},
                                  FactoryKey{"Space", "PanePopNameCommand"},
                                  FactoryKey{"4", "DisplayWireframeNameCommand"},
                                  FactoryKey{"5", "DisplayShadedNameCommand"},
                                  FactoryKey{"6", "DisplayShadedAndTexturedNameCommand"},
                                  FactoryKey{"7", "DisplayLightsNameCommand"},
                                  FactoryKey{"F8", "ToggleSelectModeNameCommand"},
                                  FactoryKey{"F9", "SelectVertexNameCommand"},
                                  FactoryKey{"F10", "SelectEdgeNameCommand"},
                                  FactoryKey{"F11", "SelectFaceNameCommand"}};

std::map<KeyStroke, Hotkeys::Binding> factoryBindings() {
  std::map<KeyStroke, Hotkeys::Binding> bindings;
  for (const FactoryKey& each : kFactoryKeys)
    bindings[{each.key, false, each.isWithControl, false}].press = each.name;
  return bindings;
}

constexpr char kBetween = '\t';

std::vector<std::string> parts(const std::string& text) {
  std::vector<std::string> all(1);
  for (const char c : text) c == kBetween ? (void)all.emplace_back() : all.back().push_back(c);
  return all;
}

}  // namespace

KeyStroke KeyStroke::of(const tools::InputEvent& event) {
  KeyStroke stroke{event.key, event.alt, event.control, false};
  if (event.shift && stroke.key.size() == 1)
    stroke.key[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(stroke.key[0])));
  return stroke;
}

Hotkeys::Hotkeys() {
  for (const FactoryCommand& each : kFactory)
    commands[each.name] = {each.annotation, each.line, true};
  bindFactory();
}

void Hotkeys::bindFactory() {
  bindings = factoryBindings();
}

std::vector<std::string> Hotkeys::changes() const {
  std::vector<std::string> lines;
  for (const auto& [name, command] : commands)
    if (!command.isFactory)
      lines.push_back(fmt::format("command\t{}\t{}\t{}", name, command.annotation, command.line));
  const auto factory = factoryBindings();
  const auto add = [&](const KeyStroke& stroke, const Binding& bound) {
    lines.push_back(fmt::format("key\t{}\t{}{}\t{}\t{}", stroke.key, stroke.alt ? "a" : "",
                                stroke.control ? "c" : "", bound.press, bound.release));
  };
  for (const auto& [stroke, bound] : bindings) {
    const auto before = factory.find(stroke);
    if (before == factory.end() || before->second.press != bound.press ||
        before->second.release != bound.release)
      add(stroke, bound);
  }
  for (const auto& [stroke, bound] : factory)
    if (!bindings.contains(stroke)) add(stroke, {});
  return lines;
}

void Hotkeys::take(const std::vector<std::string>& lines) {
  bindFactory();
  std::erase_if(commands, [](const auto& each) { return !each.second.isFactory; });
  for (const std::string& line : lines) {
    const std::vector<std::string> words = parts(line);
    if (words.size() == 4 && words[0] == "command" && !commands.contains(words[1]))
      commands[words[1]] = {words[2], words[3], false};
    if (words.size() != 5 || words[0] != "key") continue;
    const KeyStroke stroke{words[1], words[2].find('a') != std::string::npos,
                           words[2].find('c') != std::string::npos, false};
    if (words[3].empty() && words[4].empty()) {
      bindings.erase(stroke);
      continue;
    }
    bindings[stroke].press = words[3];
    bindings[stroke].release = words[4];
  }
}

std::string Hotkeys::lineFor(const tools::InputEvent& event) const {
  const auto bound = bindings.find(KeyStroke::of(event));
  if (bound == bindings.end()) return {};
  const std::string& name =
      event.kind == tools::InputKind::KeyPress ? bound->second.press : bound->second.release;
  const auto command = commands.find(name);
  return command == commands.end() ? std::string() : command->second.line;
}

}  // namespace host::workspace
