#pragma once

#include <array>

#include "host/base/result.h"
#include "host/edits/soft_selection.h"
#include "host/math/vec.h"
#include "host/scene/document.h"

namespace host::edits {

enum class MoveSpace {
  World,
  Object,  ///< along an object's own axes; components in their object's space
  Local,   ///< along the axes of what is above an object
};

struct MoveOptions {
  std::array<bool, 3> axes{true, true, true};  ///< an absolute move leaves the other coordinates
  math::Vec3 amount = {};                      ///< cm: by that much, or to there
  bool isRelative = false;
  MoveSpace space = MoveSpace::World;
  /// An absolute move in world space puts that pivot, not the object's origin, at the amount.
  bool byRotatePivot = false, byScalePivot = false;
  const SoftSelection* soft = nullptr;  ///< of components; null: only what is listed moves
};

/// Moves objects by their translate, components by their points, and pivots that plugs name
/// ("rotatePivot", "scalePivot") without moving their object.
///
/// An object and components of it in one list are moved each in its turn.
/// @return an error naming what can't be moved (no place in space, below a scale of zero, a locked
/// or driven translate), with the document as it was
Result<void> move(scene::Document& document, const scene::SelectionList& list,
                  const MoveOptions& options);

}  // namespace host::edits
