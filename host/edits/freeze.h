#pragma once

#include <vector>

#include "host/base/result.h"
#include "host/scene/document.h"

namespace host::edits {

/// Parts of a transform to freeze or to reset.
struct TransformParts {
  bool translate = true, rotate = true, scale = true;
};

/// Moves parts of transforms down into the points of what is below them, which stays where it is;
/// pivots keep their places too. Meshes with history get a transformGeometry node.
/// @return an error naming what can't be frozen (instanced, driven, a scale of zero), with the
/// document as it was
Result<void> freeze(scene::Document& document, const std::vector<dg::Node*>& transforms,
                    const TransformParts& parts);
/// Sets parts of transforms to nothing; what is below them moves.
Result<void> resetTransforms(scene::Document& document, const std::vector<dg::Node*>& transforms,
                             const TransformParts& parts);

}  // namespace host::edits
