#pragma once

#include <memory>
#include <vector>

#include "host/dg/data.h"
#include "host/mesh/hash.h"
#include "host/mesh/mesh.h"
#include "host/scene/component.h"

namespace host::scene {

/// Components of a mesh that are in a set, under the number that the set's group has on the shape.
struct MeshGroup {
  std::int64_t id = 0;
  std::shared_ptr<const Component> members;  ///< several of one id: several types
};
using MeshGroups = std::vector<MeshGroup>;
using MeshGroupsPtr = std::shared_ptr<const MeshGroups>;

/// A mesh on its way through the graph, with the groups that go with its faces. Copies share the
/// arrays.
class MeshData final : public dg::Data {
 public:
  explicit MeshData(mesh::Mesh meshIn, MeshGroupsPtr groupsIn = nullptr)
      : mesh(std::move(meshIn)), groups(std::move(groupsIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "mesh"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const MeshData*>(&other);
    return same && same->mesh == mesh;
  }
  [[nodiscard]] std::uint64_t hash() const override { return mesh::hashMesh(mesh); }
  const mesh::Mesh mesh;
  const MeshGroupsPtr groups;  ///< null: none. No part of what makes two meshes equal.
};
using MeshDataPtr = std::shared_ptr<const MeshData>;

}  // namespace host::scene
