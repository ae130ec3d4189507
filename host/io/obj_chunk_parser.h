#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/io/obj_statements.h"

namespace host::io {

/// A fault at a place of the text.
struct ObjFault {
  const char* at = nullptr;
  std::string reason;
};

/// The statements of a part of a file. Negative indices are left relative to the part's own start.
struct ObjChunk {
  ObjStatements statements;
  struct Relative {
    std::vector<CornerId> points, uvs,
        normals;  ///< corners whose index counts from the chunk's start
  } relative;
  std::optional<ObjFault> fault;
};

/// Parses whole lines; stops at the first fault.
[[nodiscard]] ObjChunk parseObjChunk(std::string_view text);

/// Finds the place of a corner's `channel` (0 point, 1 UV, 2 normal) by reading the text again; for
/// messages.
[[nodiscard]] const char* findObjCorner(std::string_view text, CornerId corner, int channel);

}  // namespace host::io
