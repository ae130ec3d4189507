#pragma once

#include <functional>

#include "host/base/parallel.h"
#include "host/mesh/mesh.h"
#include "host/nodes/type_builder.h"
#include "host/scene/document.h"

namespace host::nodes {

/// What a deformer works with, for one of its geometries.
struct DeformInput {
  DataBlock& block;
  Index geometry = 0;   ///< its number in `input` and `outputGeometry`
  mesh::Mesh mesh;      ///< arrives as it is to be deformed, in object space
  double envelope = 1;  ///< not zero

  [[nodiscard]] Node& node() const { return block.node(); }
  [[nodiscard]] Plug plug(std::string_view attribute) const { return node().plug(attribute); }
  [[nodiscard]] double real(std::string_view attribute) const;
  [[nodiscard]] std::int64_t integer(std::string_view attribute) const;
  [[nodiscard]] math::Vec3 vec3(std::string_view attribute) const;
  [[nodiscard]] math::Matrix4 matrix(const Plug& plug) const;  ///< the identity where none is
  /// Takes the geometry to the world.
  [[nodiscard]] math::Matrix4 geometryMatrix() const;
};
using Deformation = std::function<Result<void>(DeformInput&)>;

/// Computes a deformer's outputs by what `deform` makes of the points; with nodeState 1 or an
/// envelope of zero the geometry passes unchanged. A mesh whose points are not written passes as
/// the same payload.
void setDeformation(TypeBuilder& builder, Deformation deform);

/// The mesh that arrives at a plug, in object space. Scenes connect the `worldMesh` of a hidden
/// original where the mesh in its own space is meant: its `outMesh` is taken for it.
[[nodiscard]] Result<dg::Value> arrivingGeometry(dg::Graph& graph, const Plug& plug);

/// An array of numbers by vertex as one number a vertex; `otherwise` for those that it leaves out.
/// Empty when the array is. `numbers` may be null.
[[nodiscard]] std::vector<float> numbersByVertex(dg::Graph& graph, const Plug& numbers, Index count,
                                                 float otherwise);
/// How strongly each vertex is deformed: by its number in `weights` (1 where none is set; may be
/// null), and not at all when the deformer does not work on it. Empty: all by 1.
[[nodiscard]] std::vector<float> vertexStrengths(Node& deformer, Index geometry,
                                                 const mesh::Mesh& mesh, const Plug& weights);

/// Moves every point towards `place(vertex, point)`, as far as envelope and strengths say. A point
/// that would go nowhere keeps its bits. Runs in parallel.
template <class Place>
void movePoints(mesh::Mesh& mesh, const std::vector<float>& strengths, double envelope,
                Place&& place) {
  const std::span<math::Vec3f> points = mesh.editPoints();
  parallelFor(points.size(), 4096, [&](std::size_t begin, std::size_t end) {
    for (std::size_t v = begin; v < end; ++v) {
      const double strength = strengths.empty() ? envelope : envelope * strengths[v];
      if (strength == 0) continue;
      const math::Vec3 rest(points[v]);
      const math::Vec3 way = place(v, rest) - rest;
      if (way.x != 0 || way.y != 0 || way.z != 0) points[v] = (rest + way * strength).toFloat();
    }
  });
}

/// The components that a deformer works on in one of its geometries: those of the groupParts node
/// that feeds it, else all. Null for all.
[[nodiscard]] std::shared_ptr<const scene::ComponentListData> deformedComponents(Node& deformer,
                                                                                 Index geometry);

/// Where in the history of a shape a deformer goes.
struct DeformerPlace {
  enum class Where : std::uint8_t {
    Last,      ///< behind all history
    First,     ///< in front of the other deformers, but for a tweak node
    Before,    ///< in front of `other`
    After,     ///< behind `other`
    Parallel,  ///< beside the other deformers: a blendShape adds up what each does
  };
  Where where = Where::Last;
  Node* other = nullptr;  ///< a deformer of the shape
};

/// Puts a deformer's next free geometry into the history of a shape; `components` limits it to
/// parts of the shape through a groupParts node. Offsets that the shape has go into a tweak node in
/// front of its first deformer.
/// @return the number of the geometry, or an error with the document as it was
Result<Index> addDeformedShape(scene::Document& document, Node& deformer, Node& shape,
                               const std::vector<scene::Component>& components,
                               const DeformerPlace& place = {});
/// Puts a deformer with its components elsewhere in the history of one of its shapes.
Result<void> moveDeformer(scene::Document& document, Node& deformer, Node& shape,
                          const DeformerPlace& place);

/// Takes a shape off a deformer: what came in goes straight on.
Result<void> removeDeformedShape(scene::Document& document, Node& deformer, Node& shape);

/// Where the mesh of a shape arrives at the first of the deformers in front of it; null when the
/// last thing in front of the shape is no deformer.
[[nodiscard]] dg::Plug arrivalBeforeDeformers(Node& shape);

/// Tells deformers where their geometries are, which scenes from elsewhere don't: connects each
/// shape's matrix to the `geometryMatrix` of what deforms it, where nothing is connected.
void placeDeformedGeometry(scene::Document& document);

/// The shapes that a deformer's geometries end in, with their numbers, in order of these.
[[nodiscard]] std::vector<std::pair<Index, Node*>> deformedShapes(Node& deformer);

}  // namespace host::nodes
