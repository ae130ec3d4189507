#pragma once

#include "host/dg/data.h"
#include "host/mesh/hash.h"
#include "host/mesh/mesh.h"

namespace host::scene {

/// A mesh on its way through the graph. Copies share the arrays.
class MeshData final : public dg::Data {
 public:
  explicit MeshData(mesh::Mesh meshIn) : mesh(std::move(meshIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "mesh"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const MeshData*>(&other);
    return same && same->mesh == mesh;
  }
  [[nodiscard]] std::uint64_t hash() const override { return mesh::hashMesh(mesh); }
  const mesh::Mesh mesh;
};
using MeshDataPtr = std::shared_ptr<const MeshData>;

}  // namespace host::scene
