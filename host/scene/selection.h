#pragma once

#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/dg/plug.h"
#include "host/scene/component.h"
#include "host/scene/dag.h"

namespace host::scene {

/// One entry of a selection list: a DAG path with all component sets selected on it, or a non-DAG
/// node, or a plug. The list keeps one item a DAG path; several component types on one path are one
/// item.
struct SelectionItem {
  dg::NodePtr node;                   ///< kept alive; a DAG item's leaf
  DagPath path;                       ///< world path for non-DAG items
  std::vector<Component> components;  ///< at most one a type; empty: the object as a whole
  dg::Plug plug;                      ///< null unless a plug is selected

  [[nodiscard]] bool isDag() const { return !path.isWorld(); }
  [[nodiscard]] bool isObject() const { return components.empty() && plug.isNull(); }
  [[nodiscard]] const Component* component(ComponentType type) const;
  /// Whether both name the same thing apart from which of its components.
  [[nodiscard]] bool isSameTarget(const SelectionItem& other) const;
  friend bool operator==(const SelectionItem&, const SelectionItem&) = default;
};

enum class SelectionMerge { Add, Remove, Toggle };

/// An ordered list of items without repeats. Finding an item takes constant time however long the
/// list is.
class SelectionList {
 public:
  [[nodiscard]] const std::vector<SelectionItem>& items() const { return items_; }
  [[nodiscard]] bool isEmpty() const { return items_.empty(); }
  [[nodiscard]] std::size_t length() const { return items_.size(); }
  void clear();

  void add(const DagPath& path);
  /// A transform's path stands for its shape: the item gets the shape's path.
  void add(const DagPath& path, const Component& component);
  void add(const dg::NodePtr& node);
  void add(const dg::Plug& plug);
  /// A shape path and its transform count as the same object for components; an object and its
  /// components are separate entries only by kind. Toggle works component by component.
  void merge(const SelectionItem& item, SelectionMerge how = SelectionMerge::Add);
  void merge(const SelectionList& other, SelectionMerge how = SelectionMerge::Add);
  void removeAt(std::size_t index);
  void replaceAt(std::size_t index, SelectionItem item);
  /// Drops items whose node died or whose path broke.
  void removeDead();
  /// The items for which `keep` holds, in order.
  [[nodiscard]] SelectionList filtered(const std::function<bool(const SelectionItem&)>& keep) const;

  /// Names as `ls -sl` gives them: components in runs, partial paths through the transform
  /// ("pCube1.vtx[0:3]").
  [[nodiscard]] std::vector<std::string> names(bool fullPaths = false) const;
  [[nodiscard]] std::size_t bytes() const;  ///< memory of the list, an estimate

  friend bool operator==(const SelectionList& a, const SelectionList& b) {
    return a.items_ == b.items_;
  }

 private:
  [[nodiscard]] std::size_t find(const SelectionItem& item) const;
  void append(SelectionItem item);
  /// Leaves an emptied item in place for `dropEmptied`, so that removing many costs one pass.
  void mergeOne(const SelectionItem& item, SelectionMerge how);
  void dropEmptied();

  std::vector<SelectionItem> items_;
  /// Positions by leaf node, built for long lists when first needed; empty: not built.
  mutable std::unordered_multimap<const dg::Node*, std::size_t> index_;
};

/// How a component's name appears: on the transform, "pCube1.vtx[2]", the shape's when it has
/// siblings.
[[nodiscard]] std::string itemBaseName(const SelectionItem& item, bool fullPaths = false);
/// Number of components of a type that the mesh at `path` has now; evaluates the mesh.
[[nodiscard]] Index componentCount(const DagPath& path, ComponentType type);

}  // namespace host::scene
