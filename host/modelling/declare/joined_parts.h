#pragma once

#include <map>

#include "host/math/matrix4.h"
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

/// The groups of several meshes, in the numbers of the mesh that they are united to.
class JoinedGroups {
 public:
  void add(const scene::MeshData& part);
  [[nodiscard]] scene::MeshGroupsPtr finish();  ///< null without any; used up

 private:
  void addGroup(const scene::MeshGroup& group, const mesh::Mesh& mesh);

  std::map<std::pair<std::int64_t, ComponentType>, std::vector<Index>> members_;
  Index vertices_ = 0, edges_ = 0, faces_ = 0;
};

/// A mesh that arrives at `inputPoly`, and the matrix beside it.
struct JoinedPart {
  scene::MeshDataPtr data;
  math::Matrix4 space;
};
/// All that arrive, in order of the indices; empty slots are left out.
[[nodiscard]] Result<std::vector<JoinedPart>> joinedParts(DataBlock& block, const Attribute* meshes,
                                                          const Attribute* matrices);

/// The command of a node that makes one object of several: connects the named or selected meshes,
/// with the groups and shading groups they are in, and shows the result as a new object. The parts
/// stay as intermediate shapes that feed it, or go with -ch 0; so does what had nothing but them.
/// @param items at least two
/// @return the new object, and the node where it stays
[[nodiscard]] CommandResult joinObjects(Context& context, const ParsedArgs& args,
                                        const Declaration& declaration,
                                        const std::vector<MeshItem>& items);
/// The distinct meshes of the arguments; an error that names the command when there are too few.
[[nodiscard]] Result<std::vector<MeshItem>> partsToJoin(Context& context, const ParsedArgs& args,
                                                        const Declaration& declaration);

}  // namespace host::modelling
