#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "host/io/obj_scene.h"
#include "host/io/obj_statements.h"

namespace host::io {

/// Faces [first, end) of a file, which become one object.
struct ObjObjectSpan {
  std::string_view name;
  FaceId first = 0, end = 0;
};

/// Splits the faces at the statements `o`; spans without faces are left out. At least one span when
/// there are faces.
[[nodiscard]] std::vector<ObjObjectSpan> findObjectSpans(std::span<const ObjEvent> events,
                                                         FaceId faceCount);

/// What an object's faces belong to, in the object's own face ids.
struct ObjFaceParts {
  std::vector<ObjFaceSet> groups, materials;
  std::vector<ObjSmoothingRun> smoothing;  ///< empty when no statement reaches the object
};

/// Sorts the groups, materials and smoothing groups in force into objects, one part a span. A
/// statement `g` or `usemtl` without a name ends the one before. Of a statement with more than 32
/// group names the rest is passed over with a warning, since all names may apply to all objects.
/// Linear.
[[nodiscard]] std::vector<ObjFaceParts> collectFaceParts(
    const ObjStatements& statements, std::span<const ObjObjectSpan> spans,
    std::map<std::string, std::size_t>& warnings);

}  // namespace host::io
