#pragma once

#include <maya/MAttributeSpecArray.h>

#include <optional>
#include <string_view>

namespace host::api {

/// A written component, "vtx[0:3]" or "face[2].corner[*]", in its parts. "[*]" and a bare word have
/// no bounds and no dimension. Nothing for what is not written so.
[[nodiscard]] std::optional<MAttributeSpecArray> specOf(std::string_view word);

}  // namespace host::api
