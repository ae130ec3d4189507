#pragma once

#include "host/math/transform.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerTransform(dg::TypeRegistry& types);

/// Reads all that makes up the local matrix. Angles in radians.
[[nodiscard]] Result<math::TransformComponents> readTransform(Node& transform);
/// Writes what differs from the present values, recorded. Fails naming the first plug that is
/// locked or connected and would have to change, before anything is written.
Result<void> writeTransform(Node& transform, const math::TransformComponents& components);
/// Sets translate, rotate, scale and shear so that the local matrix is `matrix`; pivots, rotate
/// order and rotate axis stay.
Result<void> setLocalMatrix(Node& transform, const math::Matrix4& matrix);

}  // namespace host::nodes
