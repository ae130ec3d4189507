#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

inline constexpr float kInfinitelySharp = std::numeric_limits<float>::infinity();

/// What a subdivision step needs to know of one channel (positions, a UV set): which of its points
/// the corners use, and how sharp edges and points are. Faces that are not subdivided are left out
/// by `isDivided`.
struct SubdivisionChannel {
  std::span<const CornerId> faceOffsets;
  std::span<const Index> cornerPoints;        ///< -1 in faces without the channel
  std::span<const Index> cornerEdges;         ///< -1 where an edge is not divided
  std::span<const std::uint8_t> isDivided;    ///< one a face
  std::span<const mesh::EdgeVertices> edges;  ///< in points of the channel
  std::vector<float> edgeSharpness;   ///< 0 smooth, kInfinitelySharp never smoothed; edges without
                                      ///< two faces count as such
  std::vector<float> pointSharpness;  ///< likewise; one a point
  std::vector<std::uint8_t>
      isPinned;  ///< points that stay, with the middles of edges between two of them; one a point
  std::vector<std::uint8_t> isEdgePinned;  ///< edges whose new point is the middle; one an edge
  double weight = 1;                       ///< 1 smooth, 0 linear, between: a blend of both places
};

/// Places the points of one Catmull-Clark step with semi-sharp creases (Catmull and Clark 1978;
/// DeRose, Kass and Truong 1998, section 3 and 4): the old points, one point an edge, one a face,
/// in this order. Points of edges and faces that are not divided are zero and mean nothing. Where
/// points of several fans meet, they stay. Linear.
template <int N>
[[nodiscard]] std::vector<std::array<double, N>> catmullClarkPoints(
    std::span<const std::array<double, N>> points, const SubdivisionChannel& channel);

extern template std::vector<std::array<double, 2>> catmullClarkPoints<2>(
    std::span<const std::array<double, 2>>, const SubdivisionChannel&);
extern template std::vector<std::array<double, 3>> catmullClarkPoints<3>(
    std::span<const std::array<double, 3>>, const SubdivisionChannel&);

}  // namespace host::ops
