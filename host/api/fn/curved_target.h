#pragma once

#include <maya/MObject.h>
#include <maya/MSpace.h>

#include <optional>
#include <vector>

#include "host/api/core/access.h"
#include "host/math/nurbs_surface.h"

namespace host::api {

/// The curve or curved surface that a function set or iterator works on: a shape node (with the
/// path that gives it a world space) or a value that belongs to no node.
class CurvedTarget {
 public:
  CurvedTarget() = default;
  /// Null unless the object, or the shape below it, is of the kind: "nurbsCurve", "nurbsSurface".
  CurvedTarget(const MObject& object, const MDagPath& path, const char* kind);

  [[nodiscard]] bool isNull() const { return !shape_ && !value_; }
  [[nodiscard]] dg::Node* shape() const { return shape_; }
  /// What is there now; fails, with the reason remembered, for none.
  [[nodiscard]] std::optional<math::NurbsCurve> curve(MStatus* status) const;
  [[nodiscard]] std::optional<math::NurbsSurface> surface(MStatus* status) const;
  [[nodiscard]] MStatus write(math::NurbsCurve curve) const;
  [[nodiscard]] MStatus write(math::NurbsSurface surface) const;
  /// Object space to `space`, nothing when they are one. World space needs a path; data on its way
  /// between nodes is in no place, so that all spaces are its own.
  [[nodiscard]] MStatus spaceMatrix(MSpace::Space space,
                                    std::optional<math::Matrix4>& toSpace) const;

 private:
  Handle keepAlive_;
  dg::NodePtr node_;
  dg::Node* shape_ = nullptr;
  DataRep* value_ = nullptr;
  scene::DagPath path_;
};

/// Control points of a curve or a surface, held while they are walked over and written in one go.
class CurvedPoints {
 public:
  CurvedPoints() = default;
  /// Of what the object or the path is: a curve or a surface.
  CurvedPoints(const MObject& object, const MDagPath& path);

  [[nodiscard]] bool isThere() const { return isThere_; }
  [[nodiscard]] const CurvedTarget& target() const { return target_; }
  [[nodiscard]] std::size_t size() const { return points_.size(); }
  [[nodiscard]] bool isSurface() const { return surface_.has_value(); }
  [[nodiscard]] const math::NurbsSurface& surface() const { return *surface_; }
  [[nodiscard]] const std::optional<math::NurbsCurve>& curve() const { return curve_; }

  [[nodiscard]] MPoint point(std::size_t index, MSpace::Space space, MStatus* status) const;
  MStatus setPoint(std::size_t index, const MPoint& point, MSpace::Space space);
  /// Writes what was moved and is not written yet.
  MStatus flush();

 private:
  CurvedTarget target_;
  std::optional<math::NurbsCurve> curve_;
  std::optional<math::NurbsSurface> surface_;
  std::vector<math::Vec3> points_;
  bool isThere_ = false, isChanged_ = false;
};

}  // namespace host::api
