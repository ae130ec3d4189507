#pragma once

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
  IdView cornerPoints;                        ///< -1 in faces without the channel
  IdView cornerEdges;                         ///< -1 where an edge is not divided
  std::span<const std::uint8_t> isDivided;    ///< one a face
  std::span<const mesh::EdgeVertices> edges;  ///< in points of the channel
  std::vector<float> edgeSharpness;    ///< 0 smooth, kInfinitelySharp never smoothed; edges without
                                       ///< two faces count as such; empty: all 0
  std::vector<float> pointSharpness;   ///< likewise; one a point, or empty
  std::vector<std::uint8_t> isPinned;  ///< points that stay; one a point
  double weight = 1;                   ///< 1 smooth, 0 linear, between: a blend of both places
};

/// Places the points of one Catmull-Clark step with semi-sharp creases (Catmull and Clark 1978;
/// DeRose, Kass and Truong 1998, section 3 and 4): the old points, one point an edge, one a face,
/// in this order. Points of edges and faces that are not divided mean nothing. Where points of
/// several fans meet, they stay. Computes in double precision. Linear.
template <class Value>
[[nodiscard]] std::vector<Value> catmullClarkPoints(std::span<const Value> points,
                                                    const SubdivisionChannel& channel);

extern template std::vector<math::Vec2f> catmullClarkPoints<math::Vec2f>(
    std::span<const math::Vec2f>, const SubdivisionChannel&);
extern template std::vector<math::Vec3f> catmullClarkPoints<math::Vec3f>(
    std::span<const math::Vec3f>, const SubdivisionChannel&);

}  // namespace host::ops
