#pragma once

#include <memory>
#include <unordered_map>

#include "host/math/box.h"
#include "host/viewport/backends/gl_api.h"
#include "host/viewport/draw_list.h"

namespace host::viewport {

/// The driver's copies of vertex arrays, indices and textures, kept for as long as the originals
/// live.
class GlBuffers {
 public:
  ~GlBuffers();

  /// Binds the arrays to the shared attribute slots; missing ones get a constant.
  void bindVertices(const VertexDataPtr& data);
  void bindIndices(const IndexDataPtr& indices);
  /// Bounds of the positions, measured once; where some are changed later they grow with them.
  const math::Box& bounds(const VertexDataPtr& data);
  /// Binds to the active texture unit.
  void bindTexture(const TexturePtr& texture);
  /// Frees the copies of originals that are gone.
  void dropUnused();

 private:
  template <class T>
  struct Copy {
    std::weak_ptr<const T> original;
    GLuint id = 0;
    std::uint64_t revision = 0;  ///< of vertices: the one that is copied
  };
  template <class T>
  using Copies = std::unordered_map<const T*, Copy<T>>;

  struct Bounds {
    std::weak_ptr<const VertexData> original;
    math::Box box;
    std::uint64_t revision = 0;
  };
  std::unordered_map<const VertexData*, Bounds> bounds_;
  Copies<VertexData> vertices_;
  Copies<IndexData> indices_;
  Copies<Texture> textures_;
};

}  // namespace host::viewport
