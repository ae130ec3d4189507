#pragma once

#include <memory>
#include <unordered_map>

#include "host/math/box.h"
#include "host/viewport/scene_view.h"

namespace host::viewport {

/// A mesh as vertex and index arrays.
struct MeshBuffers {
  VertexDataPtr surface;  ///< one vertex a distinct (vertex, normal, UV, colour); object space
  IndexDataPtr
      triangles;  ///< into `surface`; face f's start at 3 * mesh::Triangulation::firstTriangle
  VertexDataPtr points;  ///< one a mesh vertex, with mean normals; zero where faces meet sharply
  IndexDataPtr edges;    ///< into `points`, two an edge, in edge order
  math::Box box;         ///< of the points, object space
};

/// For each face the number of its material.
using FaceMaterials = std::shared_ptr<const std::vector<std::uint32_t>>;

/// Builds a mesh's buffers afresh. Linear.
struct SurfaceContent {
  bool uvs = false, colors = false;
  bool flat = false;  ///< every face by its own normal
  friend bool operator==(const SurfaceContent&, const SurfaceContent&) = default;
};
[[nodiscard]] MeshBuffers buildMeshBuffers(const mesh::Mesh& mesh, SurfaceContent content = {});

/// Keeps the buffers of meshes that did not change. It holds on to a copy of each mesh (which
/// shares its arrays), so an unchanged array is recognised by its address.
class MeshDrawCache {
 public:
  MeshDrawCache();
  ~MeshDrawCache();

  /// The buffers of instance `id`; rebuilt only as far as the mesh differs from the last one given.
  const MeshBuffers& buffers(std::uint64_t id, const mesh::Mesh& mesh, SurfaceContent content = {});
  /// The box of an instance's points, object space.
  [[nodiscard]] math::Box box(std::uint64_t id, const mesh::Mesh& mesh) const;
  /// The triangles of an instance sorted by the material of their faces, one array each; rebuilt
  /// when its buffers or the numbers are others. Call after buffers().
  const std::vector<IndexDataPtr>& parts(std::uint64_t id, const FaceMaterials& numbers,
                                         std::size_t materialCount);
  /// Drops what was not asked for since the last call.
  void dropUnused();

 private:
  struct Entry;
  std::unordered_map<std::uint64_t, std::unique_ptr<Entry>> entries_;
  std::uint64_t round_ = 0;
};

/// Appends the items of one mesh: surface, wire, vertices, selected and hovered components, by
/// style and state. Wire that would be too dense to tell lines apart at this size fades, and is
/// left out when nothing of it remains.
/// @param nearness the object's rank from the nearest on: surfaces are drawn near ones first, those
/// that let light through far ones first
void drawMesh(const RenderMesh& object, int nearness, const ViewProjection& view,
              const ViewOptions& options, MeshDrawCache& cache, DrawList& list);

}  // namespace host::viewport
