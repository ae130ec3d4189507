#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/dg/attribute.h"
#include "host/dg/plug.h"

namespace host::dg {

class DataBlock;
class Graph;
class Node;
struct Slot;

/// What computing a plug came to. Unhandled: the type does not compute this plug; its stored value
/// stands.
enum class Computed { Done, Unhandled };

/// The description that nodes of one kind share: attributes, dependencies and behaviour. Built
/// once, then registered in a TypeRegistry; nodes refer to it as long as they live. Along the chain
/// of base types, `compute`, `getInternal` and `setInternal` are asked from the most derived type
/// on until one handles the call; `postConstructor` (base first), `dependentsDirty`,
/// `connectionChanged` and `mayConnect` of all are called.
class NodeType {
 public:
  std::string name;
  std::uint32_t id = 0;
  const NodeType* base = nullptr;  ///< its attributes come first and its compute is asked last
  std::string classification;
  bool isAbstract = false;
  bool existsWithoutOutputs =
      true;                ///< false: a node goes when the last node that it feeds is deleted
  std::string pluginName;  ///< empty for built-in types
  mutable std::size_t nodeCount = 0;  ///< nodes in memory, deleted ones that records hold included

  /// Computes `plug` (an output, possibly an element or a child) and whatever else is cheap, into
  /// the block.
  std::function<Result<Computed>(Node&, const Plug& plug, DataBlock& block)> compute;
  /// Attributes with internalStorage. Return false to fall back to the stored value.
  std::function<bool(const Node&, const Plug&, Value&)> getInternal;
  std::function<Result<bool>(Node&, const Plug&, const Value&)> setInternal;
  /// Adds plugs to dirty beyond the static `affects` when `plug` is dirtied.
  std::function<void(Node&, const Plug& plug, std::vector<Plug>& alsoDirty)> dependentsDirty;
  std::function<void(Node&)> postConstructor;  ///< after the node joined the graph; not on redo
  std::function<void(Node&, const Plug& own, const Plug& other, bool ownIsSource, bool made)>
      connectionChanged;
  /// Veto of a connection, with a reason.
  std::function<Result<void>(Node&, const Plug& own, const Plug& other, bool ownIsSource)>
      mayConnect;

  /// Adds a top-level attribute (with its children) and fixes its indices. Order is kept: it is the
  /// listing order.
  const Attribute* add(AttributePtr attribute);
  /// Says that changing `from` dirties `to`; both may be top-level or nested. Holds for this type
  /// and those that inherit from it afterwards, so a derived type may relate inherited attributes.
  void affects(const Attribute* from, const Attribute* to);
  /// Says that `compute` makes an attribute that depends on none of the node's own, but on what
  /// `dependentsDirty` or Graph::dirty tell of.
  void markOutput(const Attribute* output);
  /// What `affects` was told of one attribute, in that order.
  [[nodiscard]] const std::vector<const Attribute*>& affected(const Attribute* from) const;
  /// All that changing an attribute dirties, through its relatives up and down and transitively.
  /// Cached.
  [[nodiscard]] const std::vector<const Attribute*>& reach(const Attribute* from) const;
  /// Whether something affects the attribute, or a relative up or down.
  [[nodiscard]] bool isComputed(const Attribute* attribute) const {
    return attribute->flatIndex >= 0 &&
           relations_[static_cast<std::size_t>(attribute->flatIndex)].isComputed;
  }

  /// Top-level attributes, inherited ones first.
  [[nodiscard]] const std::vector<AttributePtr>& attributes() const { return attributes_; }
  /// By long or short name, nested ones included; null when there is none. Constant time.
  [[nodiscard]] const Attribute* find(std::string_view attributeName) const;
  [[nodiscard]] bool isA(std::string_view typeName) const;
  /// Takes the base type's attributes (the same objects) and relations over; call before adding own
  /// attributes.
  void inherit(const NodeType* baseType);

 private:
  struct Relations {
    std::vector<const Attribute*> affected;
    mutable std::vector<const Attribute*> reach;
    mutable bool isReachKnown = false;
    bool isComputed = false;
  };
  void adopt(Attribute& attribute, int topIndex);
  void markComputed(const Attribute& attribute);
  std::vector<AttributePtr> attributes_;
  std::vector<Relations> relations_;  ///< by Attribute::flatIndex
  struct StringHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  std::unordered_map<std::string, const Attribute*, StringHash, std::equal_to<>> byName_;
};

/// What another layer hangs on a node (DAG links, a plug-in's node object). Owned by the node.
class NodeExtension {
 public:
  virtual ~NodeExtension() = default;
};

/// A node of the graph: a type, a name, values and connections. Created, changed and deleted
/// through Graph only. A deleted node stays alive while somebody (undo, an API handle) holds it;
/// `isAlive` tells.
class Node : public std::enable_shared_from_this<Node> {
 public:
  ~Node();
  Node(const Node&) = delete;
  Node& operator=(const Node&) = delete;

  [[nodiscard]] const NodeType& type() const { return *type_; }
  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const std::string& uuid() const { return uuid_; }
  [[nodiscard]] Graph& graph() const { return *graph_; }
  [[nodiscard]] bool isAlive() const { return isAlive_; }
  [[nodiscard]] std::uint64_t serial() const { return serial_; }  ///< order of creation
  [[nodiscard]] bool isLocked() const { return isLocked_; }
  [[nodiscard]] bool isDefault() const {
    return isDefault_;
  }  ///< of a new scene: not deletable, not saved as created
  void markDefault() { isDefault_ = true; }

  /// Static then dynamic attributes by long or short name; null when there is none.
  [[nodiscard]] const Attribute* findAttribute(std::string_view name) const;
  [[nodiscard]] const std::vector<AttributePtr>& dynamicAttributes() const {
    return dynamicAttributes_;
  }
  /// The plug of an attribute by name; null plug when there is none.
  [[nodiscard]] Plug plug(std::string_view attributeName);
  [[nodiscard]] Plug plug(const Attribute* attribute) { return Plug(this, attribute); }

  /// Owned by other layers: scene keeps DAG links here, api keeps the plug-in's node object.
  std::unique_ptr<NodeExtension> dagExtension;
  std::shared_ptr<void> userObject;

 private:
  friend class Graph;
  friend class DataBlock;
  friend struct NodeAccess;
  Node(Graph& graph, const NodeType& type, std::string name, std::uint64_t serial);

  Graph* graph_;
  const NodeType* type_;
  std::string name_, uuid_;
  std::uint64_t serial_;
  bool isAlive_ = false, isLocked_ = false, isDefault_ = false;
  std::vector<AttributePtr> dynamicAttributes_;
  std::vector<AttributePtr>
      removedAttributes_;  ///< kept: records and handles may still point at them
  std::vector<std::pair<std::string, Plug>> aliases_;
  std::vector<std::unique_ptr<Slot>>
      slots_;  ///< one a top-level attribute, static then dynamic, made on demand
};
using NodePtr = std::shared_ptr<Node>;

/// Node types by name and by id.
class TypeRegistry {
 public:
  /// Fails when the name or a non-zero id is taken.
  Result<const NodeType*> add(std::unique_ptr<NodeType> type);
  /// Takes a type out of the registry; nodes that live on keep it alive.
  Result<void> remove(std::string_view name);
  /// Forgets removed types that have no nodes any more.
  void releaseRemoved();
  [[nodiscard]] const NodeType* find(std::string_view name) const;
  [[nodiscard]] const NodeType* find(std::uint32_t id) const;
  [[nodiscard]] std::vector<const NodeType*> all() const;  ///< in order of registration

 private:
  std::vector<std::shared_ptr<NodeType>> types_;
  std::vector<std::shared_ptr<NodeType>> removed_;
};

}  // namespace host::dg
