#pragma once

#include <maya/MObjectArray.h>
#include <maya/MPxSurfaceShape.h>

#include "host/scene/point_shape.h"

namespace host::api {

/// How a plug-in's shapes tell of their components: through the virtual functions of their class.
[[nodiscard]] const scene::PointShape& pluginPoints();

/// While it lives, what a plug-in writes into a data block that it asked for itself is an edit: it
/// is recorded, saved and dirties what depends on it. It is what a shape's class does to move its
/// points.
class PointEditScope {
 public:
  PointEditScope();
  ~PointEditScope();
  PointEditScope(const PointEditScope&) = delete;
  PointEditScope& operator=(const PointEditScope&) = delete;
  [[nodiscard]] static bool isOpen();
};

/// The components that are selected on a node, one object a kind.
[[nodiscard]] MObjectArray selectedComponents(const dg::Node& node);

// What the base class does where the plug-in's says nothing.
MPxSurfaceShape::MatchResult matchByDefault(const MPxSurfaceShape& shape,
                                            const MSelectionList& item,
                                            const MAttributeSpecArray& spec, MSelectionList& list);
void moveByDefault(MPxSurfaceShape& shape, const MMatrix& matrix, const MObjectArray& components);

}  // namespace host::api
