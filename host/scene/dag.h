#pragma once

#include <string>
#include <vector>

#include "host/base/result.h"
#include "host/dg/graph.h"
#include "host/math/matrix4.h"

namespace host::scene {

using dg::Node;

/// The hierarchy links of a node whose type derives from dagNode. Several parents: the node is
/// instanced. A null parent is the world.
struct DagLinks final : dg::NodeExtension {
  std::vector<Node*> parents;
  std::vector<Node*> children;  ///< in sibling order, shapes and transforms mixed as they came
  bool isTransform = false, isShape = false;  ///< what the node's type derives from
};

[[nodiscard]] bool isDagNode(const Node& node);
[[nodiscard]] bool isTransform(const Node& node);  ///< transform and types derived from it
[[nodiscard]] bool isShape(const Node& node);
[[nodiscard]] const DagLinks& dagLinks(
    const Node& node);  ///< empty for nodes that are not in the hierarchy

/// One way from the world down to a DAG node: the nodes from the top to the leaf. Empty is the
/// world itself.
class DagPath {
 public:
  DagPath() = default;
  explicit DagPath(std::vector<Node*> nodes) : nodes_(std::move(nodes)) {}

  [[nodiscard]] bool isWorld() const { return nodes_.empty(); }
  [[nodiscard]] Node* node() const { return nodes_.empty() ? nullptr : nodes_.back(); }
  [[nodiscard]] const std::vector<Node*>& nodes() const { return nodes_; }
  [[nodiscard]] std::size_t length() const { return nodes_.size(); }
  /// Whether every node is alive and each is still a child of the one before. Needs only the leaf
  /// to be kept alive.
  [[nodiscard]] bool isValid() const;

  /// One step down or up in place.
  void push(Node* childNode) { nodes_.push_back(childNode); }
  void pop() { nodes_.pop_back(); }

  [[nodiscard]] DagPath parent() const;
  [[nodiscard]] DagPath child(Node* childNode) const;
  /// The nearest transform at or above the leaf.
  [[nodiscard]] DagPath transform() const;
  /// The shapes directly below (the leaf itself when it is a shape), intermediate ones left out
  /// unless asked for.
  [[nodiscard]] std::vector<DagPath> shapes(bool withIntermediate = false) const;
  /// The path itself if it is a shape, else its first non-intermediate shape; the world path when
  /// there is none.
  [[nodiscard]] DagPath toShape() const;
  [[nodiscard]] bool isAncestorOf(const DagPath& other) const;
  [[nodiscard]] std::size_t instanceNumber() const;

  /// Product of the local matrices from the leaf to the top (a shape adds none); a transform whose
  /// inheritsTransform is off ends the product.
  [[nodiscard]] math::Matrix4 inclusiveMatrix() const;
  [[nodiscard]] math::Matrix4 exclusiveMatrix() const;

  [[nodiscard]] std::string fullName() const;     ///< "|group1|pCube1|pCubeShape1"
  [[nodiscard]] std::string partialName() const;  ///< the shortest path that is unique in the scene

  friend bool operator==(const DagPath&, const DagPath&) = default;

 private:
  std::vector<Node*> nodes_;
};

/// All paths of a node, in instance order. A node without links gives none.
[[nodiscard]] std::vector<DagPath> allPaths(const Node& node);
[[nodiscard]] DagPath firstPath(const Node& node);
/// Local matrix of a transform node, from its attributes. Cached until one of them changes.
[[nodiscard]] math::Matrix4 localMatrix(Node& transform);

}  // namespace host::scene
