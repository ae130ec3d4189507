#pragma once

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/base/result.h"
#include "host/io/ma/ma_kept.h"
#include "host/scene/document.h"

namespace host::io {

/// A part of a scene: nodes with all that stands above them, and which of their places count.
struct MaPart {
  std::vector<dg::Node*> nodes;
  /// A node and one of its parents (null: the world), for each place that is written.
  std::set<std::pair<const dg::Node*, const dg::Node*>> links;
};

struct MaWriteOptions {
  std::string name;                       ///< of the file, for its first and last lines
  std::string modified;                   ///< date and time for the header; empty: no such line
  std::string version;                    ///< of the host, for the header and `requires`
  std::vector<std::string> requirements;  ///< `requires` statements of plug-ins in use
  const MaPart* only = nullptr;           ///< null: the whole scene
  bool withHistory = true;  ///< false: meshes as they are seen, without what made them
  /// Asked of the attributes of plug-in nodes: true leaves one out. Empty: all are written.
  std::function<bool(const dg::Plug&)> leavesOut = {};
};

struct MaText {
  std::string text;
  std::vector<std::string> warnings;
};

/// Writes a scene. Nodes: the hierarchy from the top, a child after its parent, then the others in
/// order of creation, then settings of default nodes; connections by their sources. The same scene
/// gives the same text.
///
/// A shape whose UVs, normals or edges were edited after its history was made is written as it is
/// seen, without that history, and a warning says so.
/// @return an error naming what no file can hold, such as points that are not finite. Linear.
[[nodiscard]] Result<MaText> formatMa(scene::Document& document, const MaKept& kept,
                                      const MaWriteOptions& options);

}  // namespace host::io
