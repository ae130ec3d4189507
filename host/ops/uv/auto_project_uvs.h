#pragma once

#include <span>

#include "host/math/matrix4.h"
#include "host/mesh/mesh.h"

namespace host::ops {

struct AutoProjectUvsOptions {
  int planes = 6;  ///< 3 to 12 directions of view
  /// From object space to the one that the planes stand in, where they look along their axes.
  math::Matrix4 toProjection = {};
  bool projectsBothWays = false;  ///< a plane sees the faces that look at it and those that look
                                  ///< away; otherwise opposite directions are planes of their own
  bool makesFewerPieces = true;   ///< small islands join the plane of the faces around them
  bool splitsOverlaps = true;     ///< no piece covers itself
  /// How the pieces are arranged.
  enum class Layout { None, AlongU, Square } layout = Layout::Square;
  enum class Scale { None, Uniform, Stretch } scale = Scale::Uniform;
  bool packsShapes = false;  ///< into the square by outlines instead of boxes
  double spacing = 0;        ///< between pieces, fraction of the square's side
};

/// Projects each face along the direction, of some spread around evenly, that sees it best, and
/// lays the connected pieces out beside each other, without overlap and in one scale.
///
/// Directions: 3 planes are the main axes, each seen from both sides; 4 are those of a
/// tetrahedron, 5 the sides of a three-sided prism, 6 those of a cube, 8 of an octahedron, 12 of a
/// dodecahedron; other numbers are spread along a spiral. With `makesFewerPieces` a face may look
/// up to 80 degrees away from its plane where that lets its piece grow together with its
/// neighbours'. Faces share a UV where they share a vertex within a piece. New UVs follow the
/// others in piece and vertex order; those that lost their last corner go. Near-linear; parallel.
/// @return an error for a number of planes that is out of range, or points that are no numbers
[[nodiscard]] Result<void> autoProjectUvs(mesh::Mesh& mesh, int uvSet,
                                          std::span<const FaceId> faces,
                                          const AutoProjectUvsOptions& options = {});

}  // namespace host::ops
