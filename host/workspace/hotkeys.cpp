#include "host/workspace/hotkeys.h"

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
  bindings.clear();
  for (const FactoryKey& each : kFactoryKeys)
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
