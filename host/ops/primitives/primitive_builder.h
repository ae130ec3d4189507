#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::ops {

using math::Vec3;
using mesh::Mesh;

/// Collects a primitive's points, edges, faces and UVs in an explicit order and makes the mesh.
///
/// Edge numbers are the order of addEdge(); every edge of a face must have been added.
class PrimitiveBuilder {
 public:
  VertexId addPoint(const Vec3& p);
  UvId addUv(double u, double v);
  void addEdge(VertexId a, VertexId b, bool smooth);
  /// Adds a face; `uvs` is empty or has one id a corner.
  void addFace(std::span<const VertexId> vertices, std::span<const UvId> uvs);
  void addFace(std::initializer_list<VertexId> vertices, std::initializer_list<UvId> uvs) {
    addFace(std::span(vertices.begin(), vertices.size()), std::span(uvs.begin(), uvs.size()));
  }

  [[nodiscard]] Index pointCount() const { return static_cast<Index>(points_.size()); }
  [[nodiscard]] Index uvCount() const { return static_cast<Index>(uvs_.size()); }

  /// Turns the y axis onto `axis` and makes the mesh; its UVs are in set 0. Linear.
  [[nodiscard]] Mesh finish(const Vec3& axis) &&;

 private:
  void findFaceEdges();

  std::vector<Vec3> points_;
  std::vector<math::Vec2f> uvs_;
  std::vector<UvId> cornerUvs_;
  std::vector<std::uint8_t> edgeSmooth_;
  mesh::Topology topology_;
};

/// Refuses a size that is not finite and positive.
[[nodiscard]] Result<void> checkSize(const char* what, double size);
/// Refuses a count of subdivisions below `least`.
[[nodiscard]] Result<void> checkSubdivisions(const char* what, int count, int least);
/// Refuses meshes of more faces than ids can name.
[[nodiscard]] Result<void> checkFaceCount(double faces);
/// Refuses an axis without direction.
[[nodiscard]] Result<void> checkAxis(const Vec3& axis);

}  // namespace host::ops
