#pragma once

#include <string>
#include <string_view>

#include "host/base/result.h"
#include "host/io/obj_scene.h"

namespace host::io {

struct ObjReadOptions {
  bool lockNormals = true;  ///< keep normals that the smoothed surface does not give by itself
  double normalTolerance = 0.02;  ///< radians up to which a normal counts as the surface's own
};

/// Reads an OBJ file into meshes.
///
/// Objects: a statement `o` starts one; faces before the first belong to an object without name.
/// When one object has all faces, it keeps all points and UVs with the file's numbers, used or not.
/// Otherwise each object gets the points and UVs that its faces use, in file order; unused ones are
/// dropped and counted. Objects without faces are dropped. Faces keep their order; edges are
/// numbered in order of first use. Neighbouring corners on one point are joined, and a face of
/// which fewer than three are left is dropped, both with a warning. UVs keep the ids as written, a
/// face with UVs on some of its corners only loses them with a warning. Colours after points become
/// the colour set "colorSet1", one colour a point.
///
/// Smoothing: an edge is hard when its faces share no smoothing group other than 0, or when the
/// file's normals differ across it; a file that says neither is all smooth. Normals that the
/// smoothed surface gives by itself, up to the tolerance, are left to it, so that they follow later
/// edits; the others are locked.
/// @return an error as "file:line:column: reason", or naming the file when it cannot be opened.
/// Linear, on all cores.
[[nodiscard]] Result<ObjScene> readObj(const std::string& path, const ObjReadOptions& options = {});

/// Reads OBJ text; `name` stands for the file in messages.
[[nodiscard]] Result<ObjScene> parseObj(std::string_view text, const std::string& name,
                                        const ObjReadOptions& options = {});

}  // namespace host::io
