#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "host/base/result.h"
#include "host/dg/graph.h"
#include "host/math/matrix4.h"

namespace host::scene {

using dg::Node;

/// A node and the place above it, back to the top: what a path is made of. Never changed, and
/// shared by all paths that lead through it, so that the paths of a hierarchy take no more memory
/// than its nodes. Keeps all its nodes in memory.
struct DagPlace {
  DagPlace(dg::NodePtr nodeIn, std::shared_ptr<const DagPlace> aboveIn)
      : node(std::move(nodeIn)), above(std::move(aboveIn)), length(above ? above->length + 1 : 1) {}
  ~DagPlace();  ///< without recursion: hierarchies are deeper than stacks
  DagPlace(const DagPlace&) = delete;
  DagPlace& operator=(const DagPlace&) = delete;

  dg::NodePtr node;
  std::shared_ptr<const DagPlace> above;  ///< null: the world
  std::size_t length;
};
using DagPlacePtr = std::shared_ptr<const DagPlace>;

/// The hierarchy links of a node whose type derives from dagNode. Several parents: the node is
/// instanced. A null parent is the world.
struct DagLinks final : dg::NodeExtension {
  std::vector<Node*> parents;
  std::vector<Node*> children;  ///< in sibling order, shapes and transforms mixed as they came
  bool isTransform = false, isShape = false;  ///< what the node's type derives from
  /// The first of the node's places, kept from when it is first asked for until the node or one
  /// above it comes under another parent. Where it is known, those above are known too.
  mutable DagPlacePtr first;
};

[[nodiscard]] bool isDagNode(const Node& node);
[[nodiscard]] bool isTransform(const Node& node);  ///< transform and types derived from it
[[nodiscard]] bool isShape(const Node& node);
[[nodiscard]] const DagLinks& dagLinks(
    const Node& node);  ///< empty for nodes that are not in the hierarchy

/// One way from the world down to a DAG node. The empty path is the world itself. Copying it, going
/// up, and going down to a node's first place take constant time and no memory.
class DagPath {
 public:
  DagPath() = default;
  explicit DagPath(DagPlacePtr place) : place_(std::move(place)) {}
  /// The nodes from the top to the leaf.
  explicit DagPath(const std::vector<Node*>& nodes);

  [[nodiscard]] bool isWorld() const { return !place_; }
  [[nodiscard]] Node* node() const { return place_ ? place_->node.get() : nullptr; }
  [[nodiscard]] std::size_t length() const { return place_ ? place_->length : 0; }
  /// A list of the nodes, the top first.
  [[nodiscard]] std::vector<Node*> nodes() const;

  /// The nodes one by one, the leaf first.
  class Upwards {
   public:
    class Iterator {
     public:
      using difference_type = std::ptrdiff_t;
      using value_type = Node*;
      Iterator() = default;
      explicit Iterator(const DagPlace* place) : place_(place) {}
      Node* operator*() const { return place_->node.get(); }
      Iterator& operator++() {
        place_ = place_->above.get();
        return *this;
      }
      Iterator operator++(int) {
        const Iterator before = *this;
        ++*this;
        return before;
      }
      friend bool operator==(const Iterator&, const Iterator&) = default;

     private:
      const DagPlace* place_ = nullptr;
    };
    explicit Upwards(DagPlacePtr leaf) : leaf_(std::move(leaf)) {}
    [[nodiscard]] Iterator begin() const { return Iterator(leaf_.get()); }
    [[nodiscard]] Iterator end() const { return {}; }

   private:
    DagPlacePtr leaf_;
  };
  [[nodiscard]] Upwards upwards() const { return Upwards(place_); }

  /// Whether every node is alive and each is still a child of the one before.
  [[nodiscard]] bool isValid() const;

  /// One step down or up in place.
  void push(Node* childNode) { *this = child(childNode); }
  void pop() { place_ = place_->above; }

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
  /// What the local matrix of the leaf is multiplied by: that of what is above it, nothing for a
  /// transform that does not inherit.
  [[nodiscard]] math::Matrix4 exclusiveMatrix() const;

  [[nodiscard]] std::string fullName() const;     ///< "|group1|pCube1|pCubeShape1"
  [[nodiscard]] std::string partialName() const;  ///< the shortest path that is unique in the scene

  friend bool operator==(const DagPath& a, const DagPath& b) {
    return a.place_ == b.place_ || haveSameNodes(a, b);
  }

 private:
  static bool haveSameNodes(const DagPath& a, const DagPath& b);
  DagPlacePtr place_;
};

/// All paths of a node, in instance order. A node without links gives none.
[[nodiscard]] std::vector<DagPath> allPaths(const Node& node);
[[nodiscard]] DagPath firstPath(const Node& node);
/// Local matrix of a transform node, from its attributes. Cached until one of them changes.
[[nodiscard]] math::Matrix4 localMatrix(Node& transform);

}  // namespace host::scene
