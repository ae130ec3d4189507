#pragma once

#include <string_view>
#include <vector>

#include "host/io/ma/ma_mesh_rows.h"

namespace host::io {

/// The ids of one set, as far as the rows of a chunk name them.
struct MaSetIds {
  Index set = 0;
  std::vector<Index> ids;  ///< one a corner of the chunk, up to the last row
};

/// The faces of one chunk.
struct MaFaceRows {
  std::vector<Index> sizes;
  std::vector<VertexId> vertices;
  std::vector<EdgeId> edges;
  std::vector<MaSetIds> uvs, colors;
  Index holes = 0;
};

/// What face rows refer to.
struct MaFaceScope {
  std::string_view text;
  const std::vector<mesh::EdgeVertices>& edges;
  std::vector<Index> uvCounts, colorCounts;
};

/// Reads the face rows of one chunk: loops as edge codes, with ids of UVs and colours.
/// @return a fault for codes and ids out of range, loops that do not close, numbers of faces that
/// are not as announced.
[[nodiscard]] MaResult<MaFaceRows> parseFaceRows(const MaFaceScope& scope,
                                                 const MaMeshRows::Chunk& chunk);

}  // namespace host::io
