#pragma once

#include <string>
#include <vector>

namespace host::app {

/// `qxmt unwrap in.obj ... -o out.obj|folder [--seams hard|angle=DEGREES|uvs|FILE] [--packing
/// PERCENT]
/// [--report report.json] [--picture uv.png] [--map-size PIXELS]`: gives every mesh of the files
/// UVs of their own.
/// @return an ExitStatus: done; failed when a file could not be unwrapped or was interrupted; bad
/// usage; a file could not be read or written. Output files are written whole or not at all.
[[nodiscard]] int runUnwrap(const std::vector<std::string>& arguments);

}  // namespace host::app
