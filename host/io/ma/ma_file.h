#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/base/result.h"
#include "host/io/ma/ma_row.h"
#include "host/mesh/mesh.h"
#include "host/scene/units.h"

namespace host::io {

/// A word of a statement's values. Strings come without quotes, escapes replaced, sums joined.
struct MaToken {
  enum class Kind : std::uint8_t { Number, Word, String };
  Kind kind = Kind::Word;
  std::string_view text;
};

/// `setAttr`: switches, a value or nothing.
struct MaSetAttr {
  std::size_t offset = 0;
  std::string_view path;  ///< without the leading dot
  std::string_view type;  ///< of -type; empty without
  std::optional<bool> keyable, locked, channelBox, caching;
  std::vector<MaToken> values;
  std::string_view raw;  ///< the whole statement, without its semicolon
};

/// `addAttr`: flags, long or short, each with its values.
struct MaAddAttr {
  std::size_t offset = 0;
  std::vector<std::pair<std::string_view, std::vector<MaToken>>> flags;
  std::string_view raw;
};

using MaLine = std::variant<MaSetAttr, MaAddAttr>;

/// A `createNode` block, or what follows a `select -ne` of a node that is there already.
struct MaNode {
  std::size_t offset = 0;
  std::string_view type;  ///< empty: a selected node
  std::string_view name, parent, uuid;
  bool isShared = false, isLocked = false;
  std::vector<MaLine> lines;
  std::optional<mesh::Mesh> mesh;  ///< from the rows of a mesh node, if it has any
};

struct MaConnection {
  std::size_t offset = 0;
  std::string_view source, destination;  ///< "node.attribute"
  bool toNextAvailable = false, isLocked = false;
  std::string_view raw;
};

/// `parent -add`: one more place for a node.
struct MaInstance {
  std::size_t offset = 0;
  std::string_view child, parent;  ///< no parent: the child of that path goes behind its siblings
  bool isWorld = false;            ///< the place is under the world
};

/// `relationship`: a pair of plugs that a link node keeps together.
struct MaRelationship {
  std::size_t offset = 0;
  std::string_view kind, node, object, light;
  std::string_view raw;
};

/// `file -r`: another file, whose nodes belong to the scene.
struct MaReference {
  std::size_t offset = 0;
  std::string_view nameSpace, prefix, node, options, type, path;
  bool isDeferred = false;               ///< not to be loaded with the scene
  std::vector<std::string_view> shared;  ///< kinds of nodes: "displayLayers", ...
  std::string_view raw;
};

/// What the text of a scene says, checked: every statement whole, every number finite, every mesh
/// sound. Refers to the text, which it keeps.
struct MaFile {
  std::string name;                     ///< for messages
  std::shared_ptr<const void> storage;  ///< what `text` refers to
  std::shared_ptr<const void> decoded;  ///< strings that were not in the text as such
  std::string_view text;
  scene::Units units;
  std::vector<MaNode> nodes;
  std::vector<MaConnection> connections;
  std::vector<MaInstance> instances;
  std::vector<MaRelationship> relationships;
  std::vector<MaReference> references;
  std::vector<std::pair<std::string, std::string>> fileInfo;
  std::vector<std::string_view> requirements;  ///< `requires` statements, but for the host's own
  std::vector<std::string_view> plugins;       ///< the names in them
  std::vector<std::string_view> early, late;   ///< statements that are not known, before and after
                                               ///< the first node
  std::vector<std::string> warnings;

  [[nodiscard]] std::size_t lineOf(std::size_t offset) const;
  /// "name:line: reason".
  [[nodiscard]] std::string message(std::size_t offset, std::string_view reason) const;
};

/// Reads the text of a scene. Nothing of a document is touched. Linear; the rows of meshes on all
/// cores.
/// @return an error as "file:line: reason", or naming the file when it cannot be opened.
[[nodiscard]] Result<MaFile> readMa(const std::string& path);
[[nodiscard]] Result<MaFile> parseMa(std::string text, const std::string& name);

}  // namespace host::io
