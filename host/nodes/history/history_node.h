#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/mesh/mesh.h"
#include "host/nodes/type_builder.h"
#include "host/scene/component.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

/// What a history node's operation works with: the mesh to change, the components it is to work on,
/// its parameters.
class HistoryContext {
 public:
  HistoryContext(DataBlock& blockIn, mesh::Mesh meshIn) : block(blockIn), mesh(std::move(meshIn)) {}

  DataBlock& block;
  mesh::Mesh mesh;  ///< arrives as the input; what is here when the operation returns is the output
  scene::MeshDataPtr input;            ///< what arrived; null for primitives
  std::vector<scene::Component> made;  ///< what the operation made, as a command would select it
  std::shared_ptr<const void> plan;    ///< what the operation kept at the last evaluation; an
                                       ///< operation that finds it unusable replaces or clears it

  /// Says what the operation made, each once; the ids are those of `mesh` as it is now.
  template <AnyId Id>
  void makes(const std::vector<Id>& ids) {
    makes(mesh::kTypeOf<Id>, copyIds(ids));
  }

  [[nodiscard]] Node& node() const { return block.node(); }
  [[nodiscard]] double real(std::string_view attribute) const {
    return block.real(find(attribute));
  }
  [[nodiscard]] int integer(std::string_view attribute) const {
    return static_cast<int>(block.integer(find(attribute)));
  }
  /// One of `count` choices, from 0 on; other numbers are an error that names the attribute.
  [[nodiscard]] Result<int> choice(std::string_view attribute, int count) const;
  [[nodiscard]] bool boolean(std::string_view attribute) const {
    return block.boolean(find(attribute));
  }
  [[nodiscard]] std::string text(std::string_view attribute) const {
    return block.text(find(attribute));
  }
  [[nodiscard]] math::Vec3 vec3(std::string_view attribute) const {
    return block.vec3(find(attribute));
  }
  [[nodiscard]] math::Matrix4 matrix(std::string_view attribute) const {
    return block.matrix(find(attribute));
  }
  /// From object space to the space that lengths are measured in: that of inputMatrix with
  /// worldSpace on, of types based on polyModifierWorld.
  [[nodiscard]] math::Matrix4 space() const {
    return boolean("worldSpace") ? matrix("inputMatrix") : math::Matrix4();
  }
  /// Packed offsets such as `tweak`: ascending indices and `width` numbers each.
  void packed(std::string_view attribute, std::vector<Index>& indices,
              std::vector<double>& values) const;

  /// The input components of a type, ascending; those that the mesh does not have are left out.
  [[nodiscard]] std::vector<Index> components(scene::ComponentType type) const;
  [[nodiscard]] std::vector<VertexId> vertices() const { return componentsOf<VertexId>(); }
  [[nodiscard]] std::vector<EdgeId> edges() const { return componentsOf<EdgeId>(); }
  [[nodiscard]] std::vector<FaceId> faces() const { return componentsOf<FaceId>(); }
  [[nodiscard]] std::vector<UvId> uvs() const { return componentsOf<UvId>(); }
  [[nodiscard]] std::vector<scene::Component::VertexFace> vertexFaces() const;
  /// The payload of `inputComponents`: the same one as long as nobody sets it.
  [[nodiscard]] std::shared_ptr<const scene::ComponentListData> componentList() const {
    return block.data<scene::ComponentListData>(find("inputComponents"));
  }
  /// Whether `inputComponents` names anything of the type, there or not.
  [[nodiscard]] bool names(scene::ComponentType type) const;

 private:
  void makes(scene::ComponentType type, std::vector<Index> ids);
  template <AnyId Id>
  [[nodiscard]] std::vector<Id> componentsOf() const {
    return copyIds<Id>(components(mesh::kTypeOf<Id>));
  }
  [[nodiscard]] const Attribute* find(std::string_view attribute) const;
  [[nodiscard]] std::vector<scene::Component> inputComponents() const;
};

using HistoryOperation = std::function<Result<void>(HistoryContext&)>;

/// What a history node's last evaluation made, in terms of its output.
[[nodiscard]] std::vector<scene::Component> componentsMade(Node& node);

/// Declares a type of history node: one operation between `inputPolymesh` and `output`.
///
/// With nodeState 1 the input passes unchanged. A failing operation fails the evaluation, with the
/// node's name before the reason. Every attribute added here dirties the output.
class HistoryNodeBuilder {
 public:
  /// `base` is polyModifier, polyModifierWorld (with inputMatrix, worldSpace, manipMatrix) or a
  /// type derived from them.
  HistoryNodeBuilder(dg::TypeRegistry& types, std::string_view name, std::uint32_t id = 0,
                     std::string_view base = "polyModifier");
  HistoryNodeBuilder& parameter(AttributePtr attribute);
  [[nodiscard]] bool has(std::string_view attribute) { return builder_.has(attribute); }
  void operation(HistoryOperation operation);  ///< registers the type

 private:
  TypeBuilder builder_;
};

/// Declares a type of node that makes a mesh from nothing: `axis`, `createUVs` and what is added
/// here.
class PrimitiveNodeBuilder {
 public:
  /// `base` is polyPrimitive (with an axis) or polyCreator.
  PrimitiveNodeBuilder(dg::TypeRegistry& types, std::string_view name, std::uint32_t id = 0,
                       std::string_view base = "polyPrimitive");
  PrimitiveNodeBuilder& parameter(AttributePtr attribute);
  [[nodiscard]] bool has(std::string_view attribute) { return builder_.has(attribute); }
  /// The operation replaces the empty mesh of its context.
  void operation(HistoryOperation operation);  ///< registers the type

 private:
  TypeBuilder builder_;
};

/// Registers polyBase, polyModifier, polyModifierWorld, polyModifierUV (with uvSetName),
/// polyCreator, polyPrimitive.
void registerHistoryBaseTypes(dg::TypeRegistry& types);

}  // namespace host::nodes
