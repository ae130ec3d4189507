#pragma once

#include <span>

#include "host/scene/document.h"
#include "host/scene/name_index.h"

namespace host::scene {

/// The document whose graph this is; null for a graph that stands alone.
[[nodiscard]] Document* documentOf(const dg::Graph& graph);

/// One parent-child link and its place in both lists. A null parent is the world.
struct DagLink {
  dg::NodePtr child, parent;
  std::size_t childAt = 0;   ///< position among the parent's children
  std::size_t parentAt = 0;  ///< position among the child's parents: its instance number
};

/// What the document keeps beside its public values: the name index, the top of the hierarchy, its
/// observers.
struct Document::Impl final : dg::GraphObserver {
  explicit Impl(Document& documentIn) : document(documentIn) {}

  void nodeAdded(Node& node) override;
  void nodeRemoved(Node& node) override;
  void nodeRenamed(Node& node, const std::string& oldName) override;
  void attributeEvent(dg::AttributeEvent event, const dg::Plug& plug,
                      const dg::Plug& other) override;

  [[nodiscard]] std::vector<Node*>& childrenOf(Node* parent);
  [[nodiscard]] std::size_t childPosition(const Node& child, Node* parent);
  /// Whether the hierarchy as it is now allows a link or its removal.
  [[nodiscard]] Result<void> checkLink(const DagLink& link, bool adds) const;
  /// Checks, applies and records a link or its removal. A link goes to its places or, where the
  /// lists are shorter, to their ends.
  Result<void> editLink(DagLink link, bool adds);
  Result<void> link(Node& child, Node* parent);  ///< at the end of both lists
  Result<void> unlink(Node& child, Node* parent);
  /// What was checked; a removal notes where it found the link.
  void applyLink(DagLink& link, bool adds);
  void announceLink(const DagLink& link, bool added);
  class LinkChange;
  /// Whether the hierarchy and the names allow what a record is about to do with a node.
  [[nodiscard]] Result<void> mayReplay(const Node& node, dg::Graph::Replay what,
                                       const std::string& name) const;

  void record(std::unique_ptr<dg::Change> change);
  template <class Event>
  void notify(Event event) {
    // A copy: an observer may take itself off the list.
    for (DocumentObserver* observer : std::vector(observers)) event(*observer);
  }

  /// What a new or renamed node is called. `parents` matter for DAG nodes only.
  [[nodiscard]] std::string freeName(std::string_view wanted, bool isDag,
                                     std::span<Node* const> parents, const Node* except) const;
  [[nodiscard]] bool isNameTaken(std::string_view name, bool isDag, std::span<Node* const> parents,
                                 const Node* except) const;

  Document& document;
  NameIndex names;
  std::vector<Node*> worldChildren;
  std::vector<DocumentObserver*> observers;
};

}  // namespace host::scene
