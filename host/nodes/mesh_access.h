#pragma once

#include "host/nodes/type_builder.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

/// The attributes of a mesh shape that stand for parts of its mesh: points, edges, UV sets. Nothing
/// of them is stored beside the mesh. Reading gives what is there, writing changes the stored mesh
/// of a shape without history.
class MeshAccess {
 public:
  /// Adds the attributes; changing one dirties outMesh.
  void addTo(TypeBuilder& builder, const Attribute* inMesh);
  [[nodiscard]] const std::vector<const Attribute*>& written() const { return written_; }
  bool read(const Node& node, const Plug& plug, dg::Value& value) const;
  Result<bool> write(Node& node, const Plug& plug, const dg::Value& value) const;

 private:
  Result<bool> writeVertex(mesh::Mesh& mesh, const Plug& plug, double value) const;
  Result<bool> writeUv(mesh::Mesh& mesh, const Plug& plug, const dg::Value& value) const;

  const Attribute *inMesh_ = nullptr, *vertices_ = nullptr, *edges_ = nullptr, *normals_ = nullptr;
  const Attribute *uvSetName_ = nullptr, *uvSetPoints_ = nullptr, *currentUvSet_ = nullptr;
  const Attribute *colorSetName_ = nullptr, *currentColorSet_ = nullptr;
  std::vector<const Attribute*> written_;
};

}  // namespace host::nodes
