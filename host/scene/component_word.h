#pragma once

#include <string_view>
#include <vector>

#include "host/scene/component.h"

namespace host::scene {

/// The inclusive index range of one bracket; `last` of kNone stands for "[*]".
struct IndexRange {
  Index first = 0, last = kNone;
  [[nodiscard]] bool isAll() const { return last == kNone; }
};

/// A component as it was written, before any range is spelled out: "f[0:9]" costs the same as
/// "f[0:999999999]".
struct ComponentWord {
  ComponentType type = ComponentType::Vertex;
  std::vector<IndexRange> ranges;  ///< empty: the bare word, which means all
};

/// Splits "vtx[0:5]" or "vtxFace[1][2]" (two ranges a pair). @return an error that names the word.
[[nodiscard]] Result<ComponentWord> splitComponentWord(std::string_view word);

}  // namespace host::scene
