#pragma once

#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/ids.h"
#include "host/base/result.h"
#include "host/mesh/mesh.h"

namespace host::io {

/// A statement that changes what the following faces belong to.
struct ObjEvent {
  enum class Kind { Object, Group, Material, Library, Smoothing };
  Kind kind = Kind::Object;
  FaceId face = 0;        ///< the first face after it
  std::string_view text;  ///< the statement's arguments, in the file's memory
  std::uint32_t number = 0;
};

/// The statements of an OBJ file as flat arrays, before they are sorted into objects. Indices are
/// 0-based.
struct ObjStatements {
  static constexpr Index kAbsent = std::numeric_limits<Index>::min();

  std::vector<math::Vec3f> points;
  std::vector<mesh::Color4f>
      colors;  ///< empty, or one a point; a red of -1 where the file gives none
  std::vector<math::Vec2f> uvs;
  std::vector<math::Vec3f> normals;
  std::vector<CornerId> faceOffsets{0};
  std::vector<Index> cornerPoints;
  std::vector<Index> cornerUvs;      ///< empty, or one a corner; kAbsent where the file gives none
  std::vector<Index> cornerNormals;  ///< likewise
  std::vector<ObjEvent> events;
  std::map<std::string, std::size_t> warnings;
};

/// Parses a whole file on all cores; `fileName` is for messages, which read file:line:column:
/// reason.
///
/// Memory grows with the statements met, never with a number that the file states. Linear.
/// @return an error for anything that is not OBJ: a face of fewer than three corners, an index out
/// of range, a number
///         that is missing or not finite.
[[nodiscard]] Result<ObjStatements> parseObjStatements(std::string_view text,
                                                       const std::string& fileName);

}  // namespace host::io
