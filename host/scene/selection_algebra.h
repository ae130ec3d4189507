#pragma once

#include "host/scene/selection.h"

namespace host::scene {

/// Set algebra over what lists name, component by component.
[[nodiscard]] SelectionList unionOf(const SelectionList& a, const SelectionList& b);
[[nodiscard]] SelectionList differenceOf(const SelectionList& a, const SelectionList& b);
[[nodiscard]] SelectionList intersectionOf(const SelectionList& a, const SelectionList& b);

}  // namespace host::scene
