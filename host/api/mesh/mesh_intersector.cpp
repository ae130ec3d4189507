#include <maya/MMeshIntersector.h>
#include <maya/MPointOnMesh.h>

#include "host/api/mesh/fn_mesh.h"

namespace host::api {
namespace {

class IntersectorRep final : public SharedRep {
 public:
  IntersectorRep(const scene::MeshDataPtr& data, const std::optional<math::Matrix4>& toSpace)
      : surface(sharedMesh(data), toSpace), own(sharedMesh(data), std::nullopt) {
    // Builds what questions need now, so that they can come from several threads.
    (void)surface.closestPoint({});
  }
  const spatial::Surface surface;  ///< in the space that is asked in
  const spatial::Surface own;      ///< in object space, that of the answers
};

std::optional<math::Matrix4> unlessIdentity(const math::Matrix4& matrix) {
  return math::isIdentity(matrix) ? std::nullopt : std::optional(matrix);
}

}  // namespace

}  // namespace host::api

using namespace host;

MStatus MMeshIntersector::create(const MObject& meshObject, const MMatrix& matrix) {
  handle_ = api::Handle();
  const api::MeshTarget target(meshObject);
  const auto data = target.isNull() ? nullptr : target.read();
  if (!data) return MStatus::kInvalidParameter;
  handle_ = api::Handle(new api::IntersectorRep(data, api::unlessIdentity(api::toMatrix4(matrix))));
  return MStatus::kSuccess;
}
bool MMeshIntersector::isCreated() const {
  return static_cast<bool>(handle_);
}

MStatus MMeshIntersector::getClosestPoint(const MPoint& point, MPointOnMesh& meshPoint,
                                          double maxDistance) const {
  if (!handle_) return MStatus::kFailure;
  const auto& rep = *static_cast<const api::IntersectorRep*>(handle_.get());
  const auto found = rep.surface.closestPoint(api::toVec3(point), maxDistance);
  if (!found) return MStatus::kFailure;
  meshPoint.point_ = MFloatPoint(api::toMPoint(rep.own.pointOf(*found)));
  meshPoint.normal_ = MFloatVector(api::toMVector(rep.own.normalOf(found->face)));
  meshPoint.u_ = static_cast<float>(1 - found->u - found->v);
  meshPoint.v_ = static_cast<float>(found->u);
  meshPoint.face_ = found->face;
  meshPoint.triangle_ = found->triangle;
  return MStatus::kSuccess;
}
