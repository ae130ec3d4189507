#pragma once

#include <optional>

#include "host/base/result.h"
#include "host/math/transform.h"
#include "host/scene/document.h"

namespace host::edits {

/// Parts of a transform to set; what has no value stays. Lengths in cm, angles in radians.
struct XformOptions {
  bool isRelative = false;  ///< to what is there, not instead of it
  bool isWorld = false;     ///< in world space; else in an object's parent's, components in the
                            ///< object's own
  bool isEuler = false;     ///< a relative rotation adds to the angles
  std::optional<math::Matrix4> matrix = {};
  std::optional<math::Vec3> translation = {}, rotation = {}, scale = {}, shear = {};
  bool zeroesPivots = false;
  bool centersPivots = false;  ///< both to the middle of the object's box
  std::optional<math::Vec3> pivots = {}, rotatePivot = {},
                            scalePivot = {};  ///< nothing moves by them
  std::optional<math::Vec3> rotateTranslation = {}, scaleTranslation = {}, rotateAxis = {};
  std::optional<math::RotateOrder> rotateOrder = {};
  bool preservesRotation = true;  ///< another order: the angles change so that nothing turns
};

/// Sets the transforms of objects. Components take translation, and scale, rotation and matrix as a
/// change of their points about the origin of the space.
/// @return an error naming what can't be set, with the document as it was
Result<void> xform(scene::Document& document, const scene::SelectionList& list,
                   const XformOptions& options);

}  // namespace host::edits
