#pragma once

#include <functional>
#include <span>

#include "host/math/vec.h"
#include "host/ops/topology/edit_maps.h"

namespace host::ops {

/// Cuts the faces of a mesh along a plane, in object space, keeping both sides.
///
/// Vertices within `tolerance` (cm) of the plane count as on it. Numbering and corner data as in
/// connectComponents(). Linear in the mesh.
/// @return the new edges, ascending
std::vector<EdgeId> cutAlongPlane(Mesh& mesh, const math::Vec3& origin, const math::Vec3& normal,
                                  double tolerance);

/// The same along the zeros of a function of the vertices, which is linear along edges; values
/// within the tolerance count as zero. In a face that meets the zeros more than twice, every other
/// stretch between them is cut.
/// @param maps filled with what became of components, unless null
/// @param only one byte a face, nonzero for those that are cut; their neighbours only get the new
/// vertices of the edges between. Empty: all faces.
std::vector<EdgeId> cutAtZero(Mesh& mesh, const std::function<double(VertexId)>& valueAt,
                              double tolerance, EditMaps* maps = nullptr,
                              std::span<const std::uint8_t> only = {});

}  // namespace host::ops
