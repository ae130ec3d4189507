#pragma once

#include "host/math/nurbs_curve.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

/// nurbsCurve with its base types, and makeNurbCircle.
void registerCurveNodes(dg::TypeRegistry& types);
/// curveInfo, pointOnCurveInfo and nearestPointOnCurve.
void registerCurveInfoNodes(dg::TypeRegistry& types);

/// What a curve shape shows now: what drives it, or what is stored.
[[nodiscard]] Result<math::NurbsCurve> evaluatedCurve(Node& shape);
/// Replaces the stored curve, recorded. Fails on a shape with history and on a bad curve.
Result<void> setStoredCurve(Node& shape, math::NurbsCurve curve);

}  // namespace host::nodes
