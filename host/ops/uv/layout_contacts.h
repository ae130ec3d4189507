#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/ops/uv/layout_pack.h"

namespace host::ops::flat {

/// A flat shape that can be moved and turned as a whole: its outline about its centre.
struct PackBody {
  /// An edge of the outline, the inside on its left.
  struct Edge {
    Point from, to, outward;
  };
  std::vector<Edge> edges;
  Point centre;      ///< of area, in the shape's coordinates
  double reach = 0;  ///< of the corner farthest from the centre
  double area = 0;
  double gyration = 0;  ///< mean square distance of the area from the centre
  double ease = 0;      ///< how readily it moves: 0 stays where it is
  double turnEase = 0;  ///< how readily it turns, at the scale of the packing
  /// Measures a shape. Linear in triangles but for sorting their edges.
  [[nodiscard]] static PackBody of(const PackShape& shape);
};

/// Where a body is.
struct PackPose {
  Point at;          ///< of the centre
  Point turn{1, 0};  ///< cosine and sine
  double scale = 1;
  [[nodiscard]] Point turned(Point p) const {
    return {turn.x * p.x - turn.y * p.y, turn.y * p.x + turn.x * p.y};
  }
  [[nodiscard]] Point of(Point p) const { return at + scale * turned(p); }
};

/// An edge of body `a` and one of body `b`.
struct EdgePair {
  std::uint32_t a, b, edgeA, edgeB;
};

/// How much two edges lack to be apart, and how b best leaves a.
struct EdgeContact {
  double depth = 0;  ///< 0 when they are apart
  Point normal, at;
};

/// Tells how two edges lie, `gap` apart being enough as the greater of the distances in u and v:
/// separating axes of the two edges and the square between them. Of ways out only those are taken
/// that lead out of both outlines; two edges that turn their backs to each other give none.
[[nodiscard]] EdgeContact contactOf(const PackBody::Edge& a, const PackPose& poseA,
                                    const PackBody::Edge& b, const PackPose& poseB, double gap);

/// All pairs of edges of different bodies whose boxes are at most `within` apart, in an order that
/// depends on nothing else. Pairs of bodies that both stay where they are count not.
[[nodiscard]] std::vector<EdgePair> nearEdges(std::span<const PackBody> bodies,
                                              std::span<const PackPose> poses, double within,
                                              std::uint64_t& work);

/// Whether any two bodies are at least `gap` apart, none inside another, and all of them as far
/// from the edges of an area of this width and height.
[[nodiscard]] bool areApart(std::span<const PackBody> bodies, std::span<const PackPose> poses,
                            double gap, double width, double height);

}  // namespace host::ops::flat
