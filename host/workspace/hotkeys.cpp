#include "host/workspace/hotkeys.h"

#include <array>
#include <cctype>

namespace host::workspace {
namespace {

struct FactoryKey {
  const char *key, *name, *line, *annotation;
  bool isWithControl = false;
};

constexpr std::array kFactory{FactoryKey{"q", "SelectToolMarkingMenuNameCommand",
                                         "setToolTo selectSuperContext", "Select tool"},
                              FactoryKey{"w", "TranslateToolWithSnapMarkingMenuNameCommand",
                                         "setToolTo moveSuperContext", "Move tool"},
                              FactoryKey{"e", "RotateToolWithSnapMarkingMenuNameCommand",
                                         "setToolTo RotateSuperContext", "Rotate tool"},
                              FactoryKey{"r", "ScaleToolWithSnapMarkingMenuNameCommand",
                                         "setToolTo scaleSuperContext", "Scale tool"},
                              FactoryKey{"z", "NameComUndo", "undo", "Undo the last action"},
                              FactoryKey{"z", "NameComUndo", "undo", "Undo the last action", true},
                              FactoryKey{"Z", "NameComRedo", "redo", "Redo what was undone"},
                              FactoryKey{"y", "NameComRedo", "redo", "Redo what was undone", true}};

}  // namespace

KeyStroke KeyStroke::of(const tools::InputEvent& event) {
  KeyStroke stroke{event.key, event.alt, event.control, false};
  if (event.shift && stroke.key.size() == 1)
    stroke.key[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(stroke.key[0])));
  return stroke;
}

Hotkeys::Hotkeys() {
  for (const FactoryKey& each : kFactory) commands[each.name] = {each.annotation, each.line, true};
  bindFactory();
}

void Hotkeys::bindFactory() {
  bindings.clear();
  for (const FactoryKey& each : kFactory)
    bindings[{each.key, false, each.isWithControl, false}].press = each.name;
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
