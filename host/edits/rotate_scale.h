#pragma once

#include <array>
#include <optional>

#include "host/base/result.h"
#include "host/edits/soft_selection.h"
#include "host/math/vec.h"
#include "host/scene/document.h"

namespace host::edits {

struct TurnOptions {
  /// Which axes an absolute change of an object touches; on the others a relative change has the
  /// neutral amount.
  std::array<bool, 3> axes{true, true, true};
  math::Vec3 amount = {};  ///< rotate: radians about x, then y, then z; scale: factors
  bool isRelative = false;
  bool isWorld = false;                  ///< rotate: objects turn about the world's axes
  bool isEuler = false;                  ///< rotate: a relative amount is added to the angles
  bool componentsByObject = false;       ///< components turn and grow along their object's axes
  std::optional<math::Vec3> pivot = {};  ///< world space, cm; else an object's own pivot, for
                                         ///< components the middle of the box around all of them
  const SoftSelection* soft = nullptr;   ///< of components; null: only what is listed turns
};

/// Turns objects by their rotate, components by their points. An absolute rotation of components
/// turns them by the amount, as they have no rotation to replace.
/// @return as `move` does
Result<void> rotate(scene::Document& document, const scene::SelectionList& list,
                    const TurnOptions& options);
/// Scales objects by their scale, components by their points.
/// @return as `move` does
Result<void> scale(scene::Document& document, const scene::SelectionList& list,
                   const TurnOptions& options);

}  // namespace host::edits
