#pragma once

#include <set>
#include <string>
#include <vector>

#include "host/scene/document.h"
#include "host/viewport/picking.h"

namespace host::workspace {

/// What a click in a view may pick: whole objects or components, and which kinds of each. Kinds go
/// by the long names of the flags of `selectType`.
struct SelectionModes {
  using Kinds = std::set<std::string, std::less<>>;
  bool isComponentMode = false;
  Kinds componentTypes{"vertex"};        ///< that are on
  Kinds objectComponentTypes{"vertex"};  ///< of objects whose components are shown
  Kinds objectTypesOff;
};

/// What a click may pick now: in component mode the kinds that are on, else objects, and the kinds
/// that are on for objects whose components are shown.
[[nodiscard]] viewport::PickOptions pickOptions(const scene::Document& document,
                                                const SelectionModes& modes);

/// The command lines that bring the modes back.
[[nodiscard]] std::vector<std::string> settingLines(const SelectionModes& modes);

}  // namespace host::workspace
