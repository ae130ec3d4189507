#pragma once

#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "host/base/result.h"
#include "host/math/matrix4.h"
#include "host/scene/component.h"
#include "host/scene/selection.h"

namespace host::scene {

/// A point of a shape: its number, and where it is in object space, cm.
struct NumberedPoint {
  Index index = 0;
  math::Vec3 place;
};

/// What shapes of one type have of points and components that are not a mesh's: those of plug-ins.
/// Whoever selects, moves, shows or deletes them asks here.
class PointShape {
 public:
  virtual ~PointShape() = default;

  /// Points that the shape has now; kinds other than vertices are not counted: 0.
  [[nodiscard]] virtual Index count(dg::Node& shape, ComponentType type) const = 0;
  /// What a written component ("vtx[0:3]") stands for; nothing when it is no component's name.
  /// @return an error where it is one of something that is not there
  [[nodiscard]] virtual Result<std::optional<Component>> match(const DagPath& shape,
                                                               std::string_view word) const = 0;
  /// The points of components, of all without any; in the shape's order, each once a component.
  [[nodiscard]] virtual Result<std::vector<NumberedPoint>> points(
      dg::Node& shape, std::span<const Component> components) const = 0;
  /// Moves components by a matrix of object space; recorded as edits are.
  virtual Result<void> transform(dg::Node& shape, std::span<const Component> components,
                                 const math::Matrix4& change) const = 0;
  /// Deletes components; recorded. @return an error when the shape keeps them
  virtual Result<void> remove(dg::Node& shape, std::span<const Component> components) const = 0;

 protected:
  PointShape() = default;
  PointShape(const PointShape&) = default;
  PointShape& operator=(const PointShape&) = default;
};

/// Says what the shapes of a type have; null: nothing more. Types are known as long as they live.
void setPointShape(const dg::NodeType& type, const PointShape* points);
/// What a node's own type has; null for all others.
[[nodiscard]] const PointShape* pointShapeOf(const dg::Node& node);

/// Components of such a shape in a list: what a selection names of one, or all that it has.
struct PointItem {
  DagPath path;  ///< of the shape
  const PointShape* shape = nullptr;
  std::vector<Component> components;

  [[nodiscard]] Result<std::vector<NumberedPoint>> points() const {
    return shape->points(*path.node(), components);
  }
};

/// The components of such shapes in a list, in order; objects as a whole and all else left out.
[[nodiscard]] std::vector<PointItem> pointItems(const SelectionList& list);

}  // namespace host::scene
