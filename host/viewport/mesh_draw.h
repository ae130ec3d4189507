#pragma once

#include <memory>
#include <unordered_map>

#include "host/viewport/scene_view.h"

namespace host::viewport {

/// A mesh as vertex and index arrays.
struct MeshBuffers {
  VertexDataPtr surface;  ///< one vertex a distinct (vertex, normal, UV, colour); object space
  IndexDataPtr
      triangles;  ///< into `surface`; face f's start at 3 * mesh::Triangulation::firstTriangle
  VertexDataPtr points;  ///< one a mesh vertex, with mean normals; zero where faces meet sharply
  IndexDataPtr edges;    ///< into `points`, two an edge, in edge order
};

/// Builds a mesh's buffers afresh. Linear.
struct SurfaceContent {
  bool uvs = false, colors = false;
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
void drawMesh(const RenderMesh& object, const ViewProjection& view, const ViewOptions& options,
              MeshDrawCache& cache, DrawList& list);

}  // namespace host::viewport
