#pragma once

#include <maya/MFnMesh.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "host/api/core/access.h"
#include "host/mesh/mesh.h"
#include "host/scene/mesh_data.h"

namespace host::api {

/// The mesh that a function set or iterator works on: a shape node (with the path that gives it a
/// world space) or a value that belongs to no node.
class MeshTarget {
 public:
  MeshTarget() = default;
  explicit MeshTarget(const MObject& object);
  explicit MeshTarget(const MDagPath& path);
  MeshTarget(const MObject& object, const MDagPath& path);

  [[nodiscard]] bool isNull() const { return !shape_ && !value_; }
  [[nodiscard]] dg::Node* shape() const { return shape_; }
  [[nodiscard]] const scene::DagPath& path() const { return path_; }

  /// The mesh as it is now; null, with the reason remembered, when it can't be evaluated.
  [[nodiscard]] scene::MeshDataPtr read() const;
  /// The same in two steps, for who may know the data already: what is there, and that as a mesh
  /// (an empty one for none).
  [[nodiscard]] bool readData(dg::DataPtr& data) const;
  [[nodiscard]] static scene::MeshDataPtr asMesh(const dg::DataPtr& data);
  /// Moves points only (object space, one a vertex).
  [[nodiscard]] MStatus writePoints(std::vector<math::Vec3f> points) const;
  /// Replaces corner data, flags and creases; the topology must be the same.
  [[nodiscard]] MStatus writeAttributes(mesh::Mesh mesh) const;
  /// Replaces all, topology included. Fails on a shape with history.
  [[nodiscard]] MStatus writeMesh(mesh::Mesh mesh) const;

  /// Object to `space`, when they differ. Fails for world space without a path.
  [[nodiscard]] MStatus spaceMatrix(MSpace::Space space,
                                    std::optional<math::Matrix4>& toSpace) const;

 private:
  void takeShape(dg::Node* node);

  dg::NodePtr keepAlive_;
  dg::Node* shape_ = nullptr;
  dg::Plug outMesh_;  ///< of the shape
  scene::DagPath path_;
  Handle holder_;  ///< keeps `value_`
  DataRep* value_ = nullptr;
};

[[nodiscard]] inline MPoint toMPoint(const math::Vec3f& p) {
  return MPoint(p.x, p.y, p.z);
}
[[nodiscard]] inline MPoint toMPoint(const math::Vec3& p) {
  return MPoint(p.x, p.y, p.z);
}
[[nodiscard]] inline MVector toMVector(const math::Vec3& v) {
  return MVector(v.x, v.y, v.z);
}
[[nodiscard]] inline math::Vec3 toVec3(const MPoint& p) {
  return {p.x, p.y, p.z};
}
[[nodiscard]] inline math::Vec3 toVec3(const MVector& v) {
  return {v.x, v.y, v.z};
}

/// The way from a space back to where the mesh stores its points. A coordinate that comes to less
/// than the rounding of its terms is zero: so what was zero in object space, went to a turned space
/// and comes back, is zero again.
class WayToObject {
 public:
  /// Nothing when the space has no inverse.
  [[nodiscard]] static std::optional<WayToObject> from(const math::Matrix4& toSpace);
  [[nodiscard]] math::Vec3f operator()(const math::Vec3& p) const {
    if (!isAffine_) return math::transformPoint(p, inverse_).toFloat();
    return {coordinate(p, 0), coordinate(p, 1), coordinate(p, 2)};
  }

 private:
  explicit WayToObject(const math::Matrix4& inverse)
      : inverse_(inverse), isAffine_(math::isAffine(inverse)) {}
  [[nodiscard]] float coordinate(const math::Vec3& p, int axis) const {
    const double x = p.x * inverse_.m[0][axis], y = p.y * inverse_.m[1][axis],
                 z = p.z * inverse_.m[2][axis], t = inverse_.m[3][axis];
    const double sum = x + y + z + t;
    constexpr double kRounding = 8 * std::numeric_limits<double>::epsilon();
    const bool isNothing =
        std::fabs(sum) <= kRounding * (std::fabs(x) + std::fabs(y) + std::fabs(z) + std::fabs(t));
    return isNothing ? 0.0F : static_cast<float>(sum);
  }
  math::Matrix4 inverse_;
  bool isAffine_;
};

/// A point that the mesh stores, in a space.
[[nodiscard]] MPoint pointIn(const math::Vec3f& stored,
                             const std::optional<math::Matrix4>& toSpace);
/// A point given in a space, as the mesh stores it; nothing when the space can't be inverted.
[[nodiscard]] std::optional<math::Vec3f> pointFrom(const MPoint& point,
                                                   const std::optional<math::Matrix4>& toSpace);
/// A normal in a space, of unit length.
[[nodiscard]] MVector normalIn(const math::Vec3& normal,
                               const std::optional<math::Matrix4>& toSpace);

/// The UV or colour set a call names: by name, or the current one; -1 when there is none of that
/// name.
[[nodiscard]] int uvSetIndex(const mesh::Mesh& mesh, const MString* name);
[[nodiscard]] int colorSetIndex(const mesh::Mesh& mesh, const MString* name);

}  // namespace host::api
