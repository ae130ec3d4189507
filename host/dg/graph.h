#pragma once

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "host/base/result.h"
#include "host/dg/change.h"
#include "host/dg/node.h"
#include "host/dg/plug.h"

namespace host::dg {

/// What observers hear of an attribute's life; combined as flags.
enum class AttributeEvent : std::uint32_t {
  Set = 1,
  ConnectionMade = 2,
  ConnectionBroken = 4,
  Locked = 8,
  Unlocked = 16,
  Added = 32,
  Removed = 64,
  ArrayElementAdded = 128,
  ArrayElementRemoved = 256,
  KeyableChanged = 512,
  Evaluated = 1024,
  Renamed = 2048,
};

/// Hears of every edit after it happened (undo and redo included). Must not edit the graph from
/// within, except through the deferred queue of its own layer.
class GraphObserver {
 public:
  virtual ~GraphObserver() = default;
  virtual void nodeAdded(Node&) {}
  virtual void nodeAboutToBeRemoved(Node&) {}
  /// Before a node goes, undo and redo included: its values and connections can still be read.
  virtual void nodeLeaving(Node&) {}
  virtual void nodeRemoved(Node&) {}
  virtual void nodeRenamed(Node&, const std::string& /*oldName*/) {}
  /// For connections `plug` is the destination and `other` the source; otherwise `other` is null.
  virtual void attributeEvent(AttributeEvent, const Plug& /*plug*/, const Plug& /*other*/) {}
  virtual void plugDirty(const Plug&) {}
};

/// The dependency graph: nodes, values, connections, lazy evaluation. All edits go through here, so
/// that they are recorded, propagate dirtiness and reach the observers. Main thread only.
class Graph {
 public:
  struct Impl;  ///< defined within this folder only

  Graph();
  ~Graph();
  Graph(const Graph&) = delete;
  Graph& operator=(const Graph&) = delete;

  void setRecorder(ChangeRecorder* recorder) { recorder_ = recorder; }
  [[nodiscard]] ChangeRecorder* recorder() const { return recorder_; }
  [[nodiscard]] bool isRecording() const { return recorder_ && recorder_->isRecording(); }
  void addObserver(GraphObserver* observer);
  void removeObserver(GraphObserver* observer);

  // Nodes, in order of creation. Names are not checked here: uniqueness is the scene's business.
  NodePtr createNode(const NodeType& type, std::string name);
  /// Breaks its connections and takes it out. The scene unparents first. Fails on a locked node.
  Result<void> deleteNode(Node& node);
  Result<void> renameNode(Node& node, std::string name);
  Result<void> setNodeLocked(Node& node, bool locked);
  void setUuid(Node& node, std::string uuid);
  /// Makes the uuids of nodes created from here on reproducible.
  void seedUuids(std::uint64_t seed);
  [[nodiscard]] const std::vector<NodePtr>& nodes() const { return nodes_; }
  /// Nodes that a run of foreign code made, in order. While one is current, createNode gives the
  /// nodes of an earlier run that are deleted now a new life before it makes others: of the same
  /// type, fresh in every value, and the same to whoever knew them.
  struct Creations {
    std::vector<NodePtr> earlier, made;
  };
  /// Makes a list current (null: none) and returns the one that was.
  Creations* exchangeCreations(Creations* creations) {
    return std::exchange(creations_, creations);
  }
  /// Forgets everything, unrecorded.
  void clear();
  /// Lets go of nodes that were deleted and that nobody else holds. Called when nothing that works
  /// on nodes is running.
  void releaseRemoved();
  /// Asked before a record brings a node back, takes it away or renames it, with the name it is to
  /// have: whether that fits the scene as it is now. Empty: all fits.
  enum class Replay { Revival, Removal, Rename };
  std::function<Result<void>(const Node&, Replay, const std::string& name)> mayReplay;

  // Values. `get` pulls: evaluates what is dirty upstream, then reads a leaf plug.
  [[nodiscard]] Result<Value> get(const Plug& plug);
  /// Reads a leaf without evaluating: what is stored now.
  [[nodiscard]] Value stored(const Plug& plug) const;
  /// Writes a leaf that is writable, unlocked, unconnected; converts; dirties what it affects;
  /// records.
  Result<void> set(const Plug& plug, const Value& value);
  /// Whether `set` would be refused, and why: "locked", "connected", not writable.
  [[nodiscard]] Result<void> settable(const Plug& plug) const;
  [[nodiscard]] Result<math::Vec3> getVec3(const Plug& compound);
  Result<void> setVec3(const Plug& compound, const math::Vec3& value);

  // Arrays. Elements are sparse and sorted by logical index. Arrays of numbers and of numeric
  // triples are packed: contiguous, no allocation an element, until an element is connected.
  [[nodiscard]] std::vector<Index> elementIndices(const Plug& array);  ///< existing logical indices
  [[nodiscard]] Index elementCount(const Plug& array);
  [[nodiscard]] Index nextFreeIndex(
      const Plug& array);  ///< lowest index with no connection at or below the element
  [[nodiscard]] bool elementExists(const Plug& element) const;
  /// Makes an element with default values, if it is not there.
  Result<void> addElement(const Plug& element);
  /// Removes an element; with connections only when `breakConnections`.
  Result<void> removeElement(const Plug& element, bool breakConnections);
  /// Packed numeric array (children = 1) or array of numeric triples/pairs (children = 2, 3), whole
  /// and at once: ascending logical indices, `children` doubles each. Replaces all elements; one
  /// record.
  Result<void> setPacked(const Plug& array, std::vector<Index> indices, std::vector<double> values);
  /// The same, read; evaluates connected elements first. False when the array is not of that kind.
  bool getPacked(const Plug& array, std::vector<Index>& indices, std::vector<double>& values);

  // Connections. A destination has one source.
  /// Fails, naming both plugs, when the kinds differ, the source is not readable, the destination
  /// is not writable, locked or connected (unless `force`, which disconnects first), or the two are
  /// the same.
  Result<void> connect(const Plug& source, const Plug& destination, bool force = false);
  Result<void> disconnect(const Plug& source, const Plug& destination);
  [[nodiscard]] Plug source(
      const Plug& destination) const;  ///< exact plug; null when not connected
  [[nodiscard]] std::vector<Plug> destinations(const Plug& source) const;
  /// Whether the plug itself, or one above it, is the destination of a connection.
  [[nodiscard]] bool isDriven(const Plug& plug) const;
  struct Connection {
    Plug source, destination;
  };
  /// All connections of a node: first those that arrive, in attribute order, then those that leave.
  [[nodiscard]] std::vector<Connection> incoming(const Node& node) const;
  [[nodiscard]] std::vector<Connection> outgoing(const Node& node) const;

  // Dynamic attributes and per-node flags.
  Result<const Attribute*> addAttribute(Node& node, AttributePtr attribute);
  Result<void> removeAttribute(Node& node, const Attribute* attribute);
  enum class PlugFlag : std::uint8_t { Locked, Keyable, ChannelBox, Caching };
  [[nodiscard]] bool flag(const Plug& plug,
                          PlugFlag which) const;  ///< the node's own, else the attribute's
  [[nodiscard]] bool isLockedHereOrAbove(const Plug& plug) const;
  Result<void> setFlag(const Plug& plug, PlugFlag which, bool on);
  Result<void> setAlias(const Plug& plug, std::string alias);
  [[nodiscard]] std::string alias(const Plug& plug) const;
  [[nodiscard]] Plug findAlias(Node& node, std::string_view alias) const;

  // Dirtiness.
  /// Marks the plug and all that depends on it, across connections.
  void dirty(const Plug& plug);
  [[nodiscard]] bool isDirty(const Plug& plug) const;
  /// Whether some node is computing now.
  [[nodiscard]] bool isEvaluating() const;
  /// Brings a plug of any shape (leaf, compound, array) up to date.
  Result<void> evaluate(const Plug& plug);

  // For compute functions and node implementations: writes outputs without recording and without
  // dirtying.
  void storeOutput(const Plug& plug, Value value);

  /// Takes an element out of an output array, likewise; one that is connected stays.
  void dropOutputElement(const Plug& element);

  /// A digest of all that a document keeps of a node: name, uuid, lock, dynamic attributes, values
  /// that are neither computed nor driven, element indices, connections, flags and aliases. Equal
  /// before an edit and after its undo.
  [[nodiscard]] std::uint64_t storedHash(const Node& node) const;

 private:
  friend class DataBlock;
  friend class Node;
  std::unique_ptr<Impl> impl_;
  std::vector<NodePtr> nodes_;
  ChangeRecorder* recorder_ = nullptr;
  Creations* creations_ = nullptr;
};

/// Resolves "attr", "attr[3].child", "a.b.c" or an alias on a node. Short and long names mix. A
/// leading parent may be left out as in `pnts` for a nested name that is unique on the node.
/// @return an error naming the node and the part that was not found.
[[nodiscard]] Result<Plug> parsePlug(Node& node, std::string_view path);

}  // namespace host::dg
