#pragma once

#include <random>
#include <unordered_map>
#include <utility>

#include "host/dg/data_block.h"
#include "host/dg/graph.h"
#include "host/dg/packed_patch.h"
#include "host/dg/slot.h"

// The graph's inner primitives, private to this folder: edits that are neither checked nor
// recorded, from which the checked ones and the records are made.

namespace host::dg {

/// Work that spreads dirtiness from one plug.
struct DirtyStep {
  Plug plug;
  bool isReachDone;  ///< the static dependents were marked with the attribute that reached this one
};

/// Elements that an edit made on the way to a plug: they go when it is taken back, with all that
/// came to hang on them, and come back with it.
struct MadeElements {
  int level = -1;  ///< the first array level that was missing; -1: none was
  bool isDropped = false;
  DetachedElement kept = {};
};

struct Graph::Impl {
  explicit Impl(Graph& graphIn);

  Graph& graph;

  // --- observers and records
  std::vector<GraphObserver*> observers;
  int notifying = 0;
  template <class Notify>
  void notify(const Notify& tell) {
    if (observers.empty()) return;
    ++notifying;
    for (std::size_t i = 0; i < observers.size(); ++i)
      if (observers[i]) tell(*observers[i]);
    if (--notifying == 0) std::erase(observers, nullptr);
  }
  /// Observers hear of an edit when it is whole and recorded: what they do then comes after it, in
  /// the records too.
  struct Edit {
    explicit Edit(Impl& implIn) : impl(implIn) { ++impl.editing; }
    ~Edit() {
      if (--impl.editing == 0) impl.tellWaiting();
    }
    Edit(const Edit&) = delete;
    Edit& operator=(const Edit&) = delete;
    Impl& impl;
  };
  struct Waiting {
    Plug plug, other;
    AttributeEvent event;
    bool isDirtiness;
  };
  int editing = 0;
  std::vector<Waiting> waiting;
  void tell(const Waiting& what);
  void tellWaiting();
  void attributeEvent(AttributeEvent event, const Plug& plug, const Plug& other = {}) {
    tell({plug, other, event, false});
  }
  template <class Record, class... Args>
  void record(Args&&... args) {
    if (graph.isRecording())
      graph.recorder_->record(std::make_unique<Record>(*this, std::forward<Args>(args)...));
  }

  // --- nodes (graph_nodes.cpp)
  std::mt19937_64 random;
  std::uint64_t nextSerial = 1;
  [[nodiscard]] std::string makeUuid();
  void putIn(const NodePtr& node);
  void takeOut(const NodePtr& node);
  /// A node of an earlier run that may live again as this one; null when there is none.
  NodePtr renewed(const NodeType& type, const std::string& name);
  /// Nodes that were taken out stay in memory until releaseRemoved: whoever took one out may have
  /// been called by somebody who goes on with it.
  std::vector<NodePtr> removed;
  void rename(Node& node, const std::string& name);
  static void setLocked(Node& node, bool locked) { node.isLocked_ = locked; }
  static void swapUuid(Node& node, std::string& uuid) { node.uuid_.swap(uuid); }

  // --- values (graph_values.cpp)
  [[nodiscard]] static Result<void> checkLeaf(const Plug& plug);
  [[nodiscard]] static Value current(const Plug& plug);
  /// Whether the type took the value of an attribute with internal storage.
  [[nodiscard]] static Result<bool> setInternally(const Plug& plug, const Value& value);
  Result<void> apply(const Plug& plug, const Value& value, bool isClean);

  // --- elements (graph_arrays.cpp)
  /// Makes the elements on the way to a plug and tells of them; the first level that was missing,
  /// or -1.
  int makeElements(const Plug& plug, bool wired);
  /// Refuses when an element on the way to a plug is missing from an array that is driven as a
  /// whole.
  Result<void> checkCreatable(const Plug& plug);
  /// Takes back what makeElements made, and gives it back.
  void dropElements(const Plug& plug, MadeElements& made);
  void bringBack(const Plug& plug, MadeElements& made);
  DetachedElement detach(const Plug& element);
  void attach(const Plug& element, DetachedElement detached);
  void swapPacked(const Plug& array, PackedArray& packed);
  void swapPacked(const Plug& array, PackedPatch& patch);

  // --- connections (graph_connections.cpp)
  void wire(const Plug& source, const Plug& destination, std::ptrdiff_t position);
  std::ptrdiff_t unwire(const Plug& source, const Plug& destination);
  void breakConnection(const Plug& source, const Plug& destination, bool keepValue);
  void afterDisconnect(const Plug& destination);
  /// Breaks what connects a slot and all below, with no record in the journal.
  /// @return the records that bring the connections back, for `restore`
  std::vector<std::unique_ptr<Change>> severBelow(const Slot& slot);
  static void restore(std::vector<std::unique_ptr<Change>>& severed);
  void restoreFree(const Plug& plug, const ValueTree& tree);
  [[nodiscard]] static std::vector<Graph::Connection> connectionsBelow(const Slot& slot,
                                                                       bool incoming,
                                                                       bool outgoing);

  // --- dynamic attributes, flags, aliases (graph_attributes.cpp)
  void putAttribute(Node& node, const AttributePtr& attribute, std::size_t position,
                    std::unique_ptr<Slot> slot);
  std::unique_ptr<Slot> takeAttribute(Node& node, std::size_t position);
  /// Refuses a plug whose node or attribute is gone, or whose value comes over a connection.
  [[nodiscard]] static Result<void> checkFree(const Plug& plug);
  /// Takes all dynamic attributes off a node that is not alive.
  static void dropAttributes(Node& node);
  static auto& aliases(Node& node) { return node.aliases_; }
  static const auto& aliases(const Node& node) { return node.aliases_; }
  void dropAliasesBelow(const Plug& plug);

  // --- dirtiness (graph_dirty.cpp)
  /// Marks all that depends on a plug, not the plug itself. Observers hear of it afterwards, so
  /// that they may read.
  void spread(const Plug& plug);
  void spreadStep(const DirtyStep& step, std::vector<DirtyStep>& work);
  void askHooks(const Plug& plug, std::vector<DirtyStep>& work);
  void mark(Slot& slot, bool isReachDone, std::vector<DirtyStep>& work);
  void markClean(const Plug& plug);
  std::vector<DirtyStep> spareWork;  ///< memory kept from one call to the next
  std::vector<Plug> marked;          ///< plugs to tell observers of

  // --- evaluation (graph_evaluate.cpp)
  /// Who drives a plug: the connected slot at or above it, and the array on the way that is then
  /// fetched as one.
  struct Driver {
    Slot* slot = nullptr;
    Slot* unit = nullptr;
  };
  [[nodiscard]] static Driver driverOf(Slot* deepest);
  [[nodiscard]] static bool needsRefresh(const Plug& plug, const Place& place);
  Result<void> refresh(const Plug& plug);
  Result<void> refreshLeaf(const Plug& plug);
  Result<void> refreshCompound(const Plug& plug);
  Result<void> refreshArray(const Plug& plug);
  Result<void> fetchLeaf(const Plug& plug, const Slot& driver);
  Result<void> fetchArray(Slot& array, const Slot& driver);
  Result<void> compute(const Plug& plug);
  Result<Computed> computeExactly(const Plug& plug);
  void refreshUpstream(const Plug& plug);
  void collectDirtyInputs(const Plug& plug, std::vector<Plug>& inputs);
  /// Runs `work` with the slot marked as being evaluated: cycles end here, errors are remembered
  /// for the pass.
  template <class Work>
  Result<void> evaluating(const Plug& plug, Slot& slot, const Work& work);
  int depth = 0;
  bool isCycleReported = false;
  std::unordered_map<const Slot*, Error>
      failed;  ///< in this pass, so that a failing input is computed once
};

}  // namespace host::dg
