#pragma once

#include "host/nodes/type_builder.h"
#include "host/scene/document.h"

namespace host::nodes {

/// Registers skinCluster: geometry that follows the matrices of its influences, each vertex by its
/// weights. Points go to the world by geomMatrix, from there with every influence by its
/// bindPreMatrix and matrix, and back by geomMatrix; so moving the bound object moves it twice.
/// Where the weights of a vertex add up to less than one the rest of it stays where it was bound.
/// skinningMethod 0 mixes matrices, 1 dual quaternions (scale and shear of influences don't count;
/// Kavan and others 2008), 2 both by blendWeights. Locked normals turn with it.
void registerSkinCluster(dg::TypeRegistry& types);

struct SkinInfluence {
  Index index = 0;       ///< in `matrix`, `bindPreMatrix` and each vertex' `weights`
  Node* node = nullptr;  ///< whose world matrix drives it
};
/// What the cluster's geometry follows, in order of the numbers.
[[nodiscard]] std::vector<SkinInfluence> skinInfluences(Node& cluster);

/// Lets the geometry follow one more transform, bound as both are now, with no weight yet.
/// @return its number, or an error when it is one already or has no inverse
Result<Index> addSkinInfluence(scene::Document& document, Node& cluster, Node& transform);
/// Takes an influence and its weights away; the others of a vertex share what it had. What followed
/// it alone follows the first of the others.
Result<void> removeSkinInfluence(scene::Document& document, Node& cluster, Node& transform);

/// The weights of one vertex: ascending numbers of influences, and as many values.
struct SkinWeights {
  std::vector<Index> influences;
  std::vector<double> values;

  [[nodiscard]] double of(Index influence) const;
  void set(Index influence, double value);
  /// Scales to a sum of one all but `kept`, whose value stays; -1 for none. With nothing to scale
  /// the sum stays what it is.
  void normalize(Index kept);
};
[[nodiscard]] SkinWeights skinWeights(Node& cluster, VertexId vertex);
Result<void> setSkinWeights(Node& cluster, VertexId vertex, SkinWeights weights);
/// Whether edits of weights keep their sums at one: normalizeWeights is interactive.
[[nodiscard]] bool keepsSumsAtOne(Node& cluster);

struct SkinBinding {
  Index mostInfluences = 5;  ///< for one vertex
  double dropoff = 4;        ///< weights fall with this power of the distance
  bool byHierarchy = true;   ///< after the nearest influence those next to it in the hierarchy
};
/// Gives every vertex weights by how far the bones of the influences are from it, in the world: the
/// lines from each to those below it. Our own rule, near the real host's.
Result<void> bindSkin(Node& cluster, Node& shape, const SkinBinding& binding);

}  // namespace host::nodes
