#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/builtins/common/command.h"
#include "host/nodes/mesh_components.h"

namespace host::builtins {

using nodes::componentFromIds;
using nodes::componentIds;
using nodes::MeshItem;
using nodes::meshItems;

/// The sets of one kind that a mesh keeps by name: its UV sets or its colour sets.
class NamedSets {
 public:
  virtual ~NamedSets() = default;
  [[nodiscard]] virtual int count(const mesh::Mesh& mesh) const = 0;
  [[nodiscard]] virtual std::string name(const mesh::Mesh& mesh, int set) const = 0;
  [[nodiscard]] virtual int find(const mesh::Mesh& mesh,
                                 std::string_view name) const = 0;      ///< -1: none
  [[nodiscard]] virtual int current(const mesh::Mesh& mesh) const = 0;  ///< -1: none
  virtual void setCurrent(mesh::Mesh& mesh, int set) const = 0;
  virtual int add(mesh::Mesh& mesh, std::string name) const = 0;
  virtual void rename(mesh::Mesh& mesh, int set, std::string name) const = 0;
  /// Replaces what `to` holds by what `from` holds; the name of `to` stays.
  virtual void copy(mesh::Mesh& mesh, int from, int to) const = 0;
  /// Fails for a set that has to stay.
  virtual Result<void> remove(mesh::Mesh& mesh, int set) const = 0;
  /// Keeps an edit of a shape in its history.
  /// @return false when there is no node that says it
  virtual Result<bool> record(scene::Document& /*document*/, dg::Node& /*shape*/,
                              const mesh::Mesh& /*before*/, const mesh::Mesh& /*after*/) const {
    return false;
  }
};

/// The words by which a command of named sets goes.
struct SetWords {
  std::string_view command, kind;        ///< "polyUVSet", "UV set": for messages
  std::string_view set, newSet, base;    ///< flags, and the name that a new set gets
  std::string_view allSets, currentSet;  ///< flags
};

/// Runs -create, -delete, -rename, -copy, the choice of the current set, and queries, over the
/// named or selected meshes. A set is the one that the set flag names, else the current one.
/// @return the names of the sets made, renamed or copied to; what was asked for of the first mesh
/// when querying
[[nodiscard]] CommandResult runSetCommand(Context& context, const ParsedArgs& args,
                                          const NamedSets& sets, const SetWords& words);

/// Adds -create -delete -rename -copy and the flags of `words` by their short names.
struct SetFlagNames {
  const char *set, *newSet, *allSets, *currentSet;
};
Syntax& addSetFlags(Syntax& syntax, const SetWords& words, const SetFlagNames& shortNames);

}  // namespace host::builtins
