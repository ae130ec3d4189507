#pragma once

#include <compare>
#include <map>
#include <string>
#include <string_view>

#include "host/tools/input_event.h"

namespace host::workspace {

/// A key with what is held beside it. Shift is in the key itself: "Q" is q with Shift.
struct KeyStroke {
  std::string key;
  bool alt = false, control = false, command = false;
  auto operator<=>(const KeyStroke&) const = default;

  /// What an event strikes.
  [[nodiscard]] static KeyStroke of(const tools::InputEvent& event);
};

/// Named commands, and the keys that run them. Neither is part of a scene.
class Hotkeys {
 public:
  /// Begins with the keys that every scene has: q w e r take the select, move, rotate and scale
  /// tool, z and Ctrl+z undo, Z and Ctrl+y redo.
  Hotkeys();

  struct Command {
    std::string annotation, line;
    bool isFactory = false;
  };
  /// What a key runs: the names of commands, empty for none.
  struct Binding {
    std::string press, release;
    bool pressRepeats = false, releaseRepeats = false;
  };

  std::map<std::string, Command, std::less<>> commands;
  std::map<KeyStroke, Binding> bindings;

  /// Gives the keys back what they had at first. Named commands stay.
  void bindFactory();
  /// The line that an event runs; empty for none.
  [[nodiscard]] std::string lineFor(const tools::InputEvent& event) const;
};

}  // namespace host::workspace
