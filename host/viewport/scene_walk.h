#pragma once

#include <optional>
#include <span>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "host/scene/dag_paths.h"
#include "host/scene/document.h"
#include "host/viewport/scene_view.h"

// What a view shows is found in one walk through the hierarchy, in which meshes, lights and what
// else is drawn take what is theirs.

namespace host::viewport {

/// How a node, and what hangs under it without an override of its own, is drawn instead.
struct DrawOverride {
  enum class Type : std::uint8_t { Normal, Template, Reference };
  Type type = Type::Normal;
  bool isBox = false, isShaded = true;
  std::optional<Rgba> color;
};

struct PathHash {
  std::size_t operator()(const scene::DagPath& path) const { return scene::hashOf(path); }
};

/// What the selection and the hilite list say of each path, read once: asking takes constant time
/// however much is selected. Good while the lists stay as they are.
class PathStates {
 public:
  explicit PathStates(const scene::Document& document);

  [[nodiscard]] bool isHilited(const scene::DagPath& shape) const {
    return !hilited_.empty() && hilited_.contains(shape);
  }
  /// Selected, Lead or Dormant, by an item of exactly this path.
  [[nodiscard]] ObjectState objectState(const scene::DagPath& path) const;
  /// The same by items of the path or of any above it.
  [[nodiscard]] ObjectState coveringState(scene::DagPath path) const;
  [[nodiscard]] std::span<const scene::SelectionItem* const> componentsOf(
      const scene::DagPath& shape) const;

  /// The lead object stands out among all that are selected.
  [[nodiscard]] static ObjectState stronger(ObjectState a, ObjectState b);

 private:
  std::unordered_set<scene::DagPath, PathHash> hilited_;
  std::unordered_map<scene::DagPath, ObjectState, PathHash> objects_;
  std::unordered_map<scene::DagPath, std::vector<const scene::SelectionItem*>, PathHash>
      withComponents_;
};

/// A place of a node as the walk meets it.
struct ShownPlace {
  const scene::DagPath& path;
  dg::Node& node;
  const Matrix4& world;      ///< of the node or, for a shape, of the transform above it
  std::uint64_t number = 0;  ///< of the path among the node's
  /// The node stands elsewhere too: what is found out about it alone holds there.
  bool isShared = false;
  // What comes down from the nodes above as well.
  ObjectState selected = ObjectState::Dormant;
  bool isTemplate = false;
  bool isListed = true;  ///< among those that a view which isolates lets show
  std::optional<DrawOverride> looks;
};

class PlaceVisitor {
 public:
  virtual ~PlaceVisitor() = default;
  virtual void visit(const ShownPlace& place) = 0;
};

struct ShownOptions {
  /// Only these nodes and what hangs under them are listed; none: all are.
  const std::unordered_set<const dg::Node*>* only = nullptr;
};

/// Goes once through everything that shows, a node before its children, and lets all visitors see
/// each place. Intermediate shapes and all below something invisible are left out. What a node says
/// of itself is asked once, however many places it has.
///
/// Where instances lie within instances it ends when the budget is spent.
void walkShown(scene::Document& document, const PathStates& states, const ShownOptions& options,
               std::span<PlaceVisitor* const> visitors, scene::PlaceBudget& budget);

}  // namespace host::viewport
