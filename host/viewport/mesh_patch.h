#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/mesh/normals_at.h"
#include "host/viewport/mesh_draw.h"

namespace host::viewport {

/// Tells which of many numbered things were come to in one go, without clearing in between.
class Marks {
 public:
  void begin(std::size_t count) {
    if (stamps_.size() < count) stamps_.resize(count, 0);
    if (++stamp_ != 0) return;
    stamps_.assign(stamps_.size(), 0);
    stamp_ = 1;
  }
  /// Whether it is the first time.
  bool add(std::size_t index) {
    if (stamps_[index] == stamp_) return false;
    stamps_[index] = stamp_;
    return true;
  }

 private:
  std::vector<std::uint32_t> stamps_;
  std::uint32_t stamp_ = 0;
};

/// A mesh's buffers with the way to write them.
struct OpenBuffers {
  MeshBuffers shown;
  std::shared_ptr<VertexData> surface, points;  ///< those that are shown
  std::vector<std::uint32_t> corners;           ///< the place in `surface` of every corner
};
/// Whether a vertex's normal is too far from one of its faces' to tell the side it is seen from.
[[nodiscard]] bool isSharpAgainst(const Vec3f& faceNormal, const Vec3& vertexNormal);

/// Brings the buffers of a mesh up to date after some of its vertices have moved: their places, the
/// normals and triangles around them, the box. Costs these. Everything else about the mesh must be
/// what it was.
class MeshPatcher {
 public:
  /// @param before the mesh that the buffers show; `moved` may list a vertex twice
  /// @return false, with the buffers in no certain state, when they have to be built anew: somebody
  /// else holds them, or corners that looked alike don't any more
  bool patch(const mesh::Mesh& before, const mesh::Mesh& mesh, std::span<const VertexId> moved,
             SurfaceContent content, OpenBuffers& buffers);

 private:
  void findNeighbourhood(const mesh::Mesh& mesh, std::span<const VertexId> moved);
  void patchPoints(const mesh::Mesh& mesh, OpenBuffers& buffers) const;
  bool patchSurface(const mesh::Mesh& mesh, SurfaceContent content, OpenBuffers& buffers);
  bool setNormal(std::uint32_t place, const Vec3f& normal, VertexData& surface);
  void patchTriangles(const mesh::Mesh& mesh, OpenBuffers& buffers) const;

  Marks vertexMarks_, faceMarks_, placeMarks_;
  std::vector<VertexId> moved_;     ///< each once
  std::vector<VertexId> vertices_;  ///< those and the others of their faces
  std::vector<FaceId> faces_;
  std::vector<std::uint32_t> places_;  ///< in the surface's arrays
  mesh::NormalsAt normals_;
};

/// The box of a mesh's points, from the box that it had before some of them moved.
[[nodiscard]] math::Box boxAfter(const math::Box& box, const mesh::Mesh& before,
                                 const mesh::Mesh& mesh, std::span<const VertexId> moved);

}  // namespace host::viewport
