#pragma once

#include "host/math/box.h"
#include "host/math/matrix4.h"
#include "host/math/nurbs_surface.h"
#include "host/nodes/type_builder.h"
#include "host/scene/document.h"

namespace host::nodes {

/// nurbsSurface and makeNurbPlane.
void registerSurfaceNodes(dg::TypeRegistry& types);

/// What a surface shape shows now: what drives it, or what is stored, with the shape's own moves of
/// control points.
[[nodiscard]] Result<math::NurbsSurface> evaluatedSurface(Node& shape);
/// Replaces the stored surface and forgets moves of its points, recorded. Fails on a shape with
/// history and on a bad surface.
Result<void> setStoredSurface(Node& shape, math::NurbsSurface surface);
/// Puts the control points where `points` are, recorded: in the stored surface or, with history, as
/// the shape's moves. As many as the surface has, in its order.
Result<void> moveSurfacePoints(Node& shape, const std::vector<math::Vec3>& points);

/// Stores what a curve or surface shape shows and parts it from what makes it; a maker that makes
/// nothing else goes. Nothing happens to other shapes.
Result<void> deleteCurvedHistory(scene::Document& document, Node& shape);

/// A box around the curve or surface that a shape shows, placed by a matrix, from places on it that
/// lie close; empty for other shapes.
[[nodiscard]] math::Box boundsOfCurved(Node& shape, const math::Matrix4& matrix = {});

}  // namespace host::nodes
