#pragma once

#include <maya/MPointArray.h>

#include "shared/tool/ownedLocator.h"

/// Lights up the component under the cursor: a dot, or a line. It is a draw locator, which the
/// module registers for its tools, of its own name.
class hoverLocator {
 public:
  hoverLocator();
  void create();
  void remove() { locator.remove(); }
  void forget();
  /// @param corners one point for a vertex, two for an edge, none for nothing; world
  /// @return whether anything changed
  bool show(const MPointArray& corners);

 private:
  ownedLocator locator;
  MPointArray shown;
};
