#pragma once

#include <string>

#include "host/base/result.h"
#include "host/io/obj_scene.h"

namespace host::io {

struct ObjWriteOptions {
  enum class Normals {
    Never,
    WhereNeeded,  ///< for objects that came with normals, have locked ones, or hard edges that
                  ///< groups cannot state
    Always,
  };
  Normals normals = Normals::WhereNeeded;
  bool uvs = true;     ///< of the current UV set
  bool colors = true;  ///< of the current colour set, if it has one colour a point
  bool groups = true;
  bool materials = true;
  bool smoothing = true;
};

/// Writes meshes as OBJ text: objects, points, UVs, normals, groups, materials and smoothing
/// groups.
///
/// Points and UVs keep their order, and so their numbers when there is one object; numbers are the
/// shortest that read back to the same bits. Smoothing groups are the object's own where they still
/// fit its edges, otherwise regions joined by smooth edges are numbered; flags of border edges are
/// not kept. What OBJ has no words for is left out: creases, hidden faces, further UV sets. Reading
/// the text back gives an equal mesh in all else. Linear.
[[nodiscard]] std::string formatObj(const ObjScene& scene, const ObjWriteOptions& options = {});

/// Writes formatObj() to a file, replacing it in one step. The scene's numbers must be finite:
/// makeFinite sees to that.
/// @return an error naming the file, which is then unchanged.
[[nodiscard]] Result<void> writeObj(const std::string& path, const ObjScene& scene,
                                    const ObjWriteOptions& options = {});

}  // namespace host::io
