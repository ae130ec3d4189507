#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "host/mesh/mesh.h"

namespace host::io {

/// Normals as a file gives them: an id a corner, negative where there is none.
struct FileNormals {
  std::span<const math::Vec3f> normals;  ///< of any length
  std::span<const Index> cornerIds;      ///< empty, or one a corner of the mesh
  [[nodiscard]] bool hasAny() const;
};

/// Clears the smooth flag of each edge across which the file's normals differ at either end. Empty
/// `smoothFlags` stand for all smooth and are filled when there is something to clear. Linear.
void hardenByNormals(const mesh::Mesh& mesh, const FileNormals& file,
                     std::vector<std::uint8_t>& smoothFlags);

/// Locks the normals that differ from the mesh's own by more than `tolerance` radians. Linear.
void lockNormals(mesh::Mesh& mesh, const FileNormals& file, double tolerance);

}  // namespace host::io
