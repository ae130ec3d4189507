#pragma once

#include <optional>
#include <span>
#include <variant>

#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// A corner of a new polygon: a vertex of the mesh, or a new point in object space, cm.
using PolygonCorner = std::variant<VertexId, math::Vec3>;

struct AppendPolygonResult {
  FaceId face = kNone;
  std::vector<VertexId> vertices;  ///< new ones, in order of the corners
};

/// Appends a polygon that joins vertices of a mesh and new points.
///
/// The loop is turned if it walks a border edge in the direction of the face there, so that the
/// surfaces face alike. New vertices, edges and the face follow the old ones; new edges are smooth
/// and the border edges that it closes keep what they have. The face has no UVs or colours, all
/// others keep theirs. Linear in the mesh.
/// @return an error for fewer than three corners, a vertex that does not exist, a corner repeated
/// in the loop, or a
///         point that is not finite, with `mesh` untouched.
[[nodiscard]] Result<AppendPolygonResult> appendPolygon(Mesh& mesh,
                                                        std::span<const PolygonCorner> corners);

/// Makes a mesh of one polygon around the given points, object space, cm.
///
/// Vertices, edges and the corners are in order of the points; border edges are hard. UVs are the
/// polygon seen along its normal, scaled evenly into the unit square from its lower left corner.
/// @return an error for fewer than three points or points that are not finite.
[[nodiscard]] Result<Mesh> createPolygon(std::span<const math::Vec3> points);

/// A UV for each corner of a polygon, in order: how it is seen along its normal, scaled evenly into
/// the unit square from the lower left corner. At least three points, object space, cm.
[[nodiscard]] std::vector<mesh::Vec2f> polygonUvs(std::span<const math::Vec3> points);
/// Gives a face without UVs such ones, behind those of the set.
void normalizeFaceUvs(Mesh& mesh, int uvSet, FaceId face);

/// Closes borders by one polygon each, for every border that one of the listed edges lies on.
///
/// New faces follow the old ones in order of the lowest listed edges; they face like their
/// neighbours and have no UVs. Edges keep smoothness and crease. A border that touches itself in a
/// vertex is closed piece by piece. Linear.
/// @return the new faces, or an error for a bad id or when no listed edge is a border edge, with
/// `mesh` untouched.
[[nodiscard]] Result<std::vector<FaceId>> closeBorders(Mesh& mesh, std::span<const EdgeId> edges);

}  // namespace host::ops
