#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/dg/graph.h"
#include "host/scene/dag.h"
#include "host/scene/journal.h"
#include "host/scene/selection.h"
#include "host/scene/units.h"

namespace host::scene {

/// Scene-wide events, beyond those of the graph.
class DocumentObserver {
 public:
  virtual ~DocumentObserver() = default;
  virtual void selectionChanged() {}
  virtual void hiliteChanged() {}
  virtual void dagChanged(Node& /*child*/, Node* /*parent*/, bool /*added*/) {}
  virtual void unitsChanged() {}
  virtual void cleared(bool /*before*/) {}
};

/// The open scene: graph, hierarchy, names, selection, units, undo records. One lives at a time.
///
/// All edits are recorded in the journal while a recording is open. Node types come from a registry
/// that outlives the document. Main thread only.
class Document {
 public:
  /// The registry must already hold the built-in types "dagNode", "transform", ...
  explicit Document(dg::TypeRegistry& types);
  ~Document();

  [[nodiscard]] dg::Graph& graph() { return graph_; }
  [[nodiscard]] const dg::Graph& graph() const { return graph_; }
  [[nodiscard]] dg::TypeRegistry& types() { return types_; }
  [[nodiscard]] Journal& journal() { return journal_; }
  void addObserver(DocumentObserver* observer);
  void removeObserver(DocumentObserver* observer);

  // Nodes.
  /// Creates a node of a registered type. DAG types: a transform goes under `parent` (world if
  /// null), a shape under `parent` or, without one, under a new transform named after it
  /// ("fooShape1" makes "foo1"; a shape without a name names both by its type). `name` may end in
  /// '#' (next free number); empty means the type's name with a number. Illegal characters become
  /// '_'; a taken name gets the next free number.
  /// @return the node (for a shape without parent: the shape; its transform is the parent), or an
  /// error naming the type
  Result<dg::NodePtr> createNode(std::string_view typeName, std::string_view name = {},
                                 Node* parent = nullptr);
  /// Deletes nodes and, for DAG nodes, all below them that has no other parent; also history nodes
  /// that only fed what was deleted. Default and locked nodes are refused with an error naming the
  /// first, before anything is deleted.
  Result<void> deleteNodes(std::vector<Node*> nodes);
  /// Gives a free name made from `name` ('#' and illegal characters as in createNode) and returns
  /// it. Renaming a transform takes its shape along when the shape was named after it.
  Result<std::string> rename(Node& node, std::string_view name);
  /// The name that `wanted` comes to. Unique among the children of `parent` and against nodes
  /// outside the hierarchy; without a parent, in the whole scene. `except` may keep its name; its
  /// own parents then count.
  [[nodiscard]] std::string freeName(std::string_view wanted, const Node* parent = nullptr,
                                     const Node* except = nullptr) const;

  // Hierarchy. Records; keeps `parents`/`children` in order; world matrices of everything below are
  // dirtied.
  /// Moves `child` (one of its instances: `path`) under `parent` (null: world). Fails on cycles, on
  /// a shape under the world, and when the child is already there.
  Result<void> reparent(const DagPath& path, Node* parent);
  Result<void> addInstance(Node& child, Node* parent);
  /// Removes one instance; the last one can't be removed this way.
  Result<void> removeInstance(const DagPath& path);
  Result<void> reorder(Node& child, Node* parent, int position);
  [[nodiscard]] const std::vector<Node*>& worldChildren() const;

  // Names. Patterns take '*' and '?' (which do not cross a ':'), paths '|', components and
  // attributes after '.';
  // `^1s` and `uuid`s are not names. A leading ':' is the root namespace.
  /// Nodes of exactly this name, in creation order. Constant time.
  [[nodiscard]] const std::vector<Node*>& nodesNamed(std::string_view name) const;
  /// Every node whose name or path matches, in creation order.
  [[nodiscard]] std::vector<Node*> findNodes(std::string_view pattern) const;
  /// The one node of that name or path: an error when there is none or more than one ("More than
  /// one object matches name: x", "No object matches name: x").
  Result<Node*> node(std::string_view name) const;
  Result<DagPath> dagPath(std::string_view name) const;
  /// A plug from "node.attr[3].child". An attribute that a transform does not have is looked for on
  /// its shape.
  Result<dg::Plug> plug(std::string_view path) const;
  /// Everything a script's object argument may be: nodes, paths, components, plugs, wildcards. A
  /// name that several nodes have gives them all. Component ranges are cut to what the mesh has;
  /// nothing left is an error. A transform's component names its shape's. An instanced node without
  /// a path gives its first one.
  Result<SelectionList> resolve(std::string_view pattern) const;
  Result<SelectionList> resolveAll(const std::vector<std::string>& patterns) const;

  // Selection, recorded as edits.
  [[nodiscard]] const SelectionList& selection() const { return selection_; }
  void setSelection(SelectionList list);
  [[nodiscard]] const SelectionList& hilite() const { return hilite_; }
  void setHilite(SelectionList list);

  /// Takes out of both lists what is not there any more, unrecorded.
  /// @return what brings it back, as long as nobody selects anything else; null when all is there
  std::unique_ptr<dg::Change> sweepSelection();

  // Units (recorded).
  [[nodiscard]] const Units& units() const { return units_; }
  void setUnits(const Units& units);

  // The file.
  [[nodiscard]] const std::string& fileName() const { return fileName_; }  ///< empty: untitled
  void setFileName(std::string name) { fileName_ = std::move(name); }
  [[nodiscard]] bool isModified() const { return isModified_; }
  void setModified(bool modified) { isModified_ = modified; }
  std::vector<std::pair<std::string, std::string>>
      fileInfo;  ///< keyword and value, kept in order and saved

  /// Empties the scene, unrecorded, and makes the nodes of a new one through the hook below.
  void reset();
  /// Creates the default nodes (time1, persp, initialShadingGroup, ...); set by the nodes layer.
  std::function<void(Document&)> populateNewScene;

  /// A hash of everything an edit can change: nodes, values, connections, hierarchy, selection,
  /// units. For undo tests.
  [[nodiscard]] std::uint64_t hash() const;

 private:
  struct Impl;
  class Sweep;
  dg::TypeRegistry& types_;
  dg::Graph graph_;
  Journal journal_;
  SelectionList selection_, hilite_;
  Units units_;
  std::string fileName_;
  bool isModified_ = false;
  std::unique_ptr<Impl> impl_;
};

/// The document that commands and the API work on. Set by the program; asserts when there is none.
[[nodiscard]] Document& currentDocument();
void setCurrentDocument(Document* document);

}  // namespace host::scene
