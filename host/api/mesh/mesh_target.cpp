#include "host/api/mesh/mesh_target.h"

#include "host/nodes/mesh_shape.h"

namespace host::api {

MeshTarget::MeshTarget(const MObject& object) {
  if (dg::Node* node = nodeOf(object)) {
    takeShape(node);
    return;
  }
  auto* value = objectAs<DataRep>(object);
  if (!value || (value->data && value->data->typeName() != "mesh")) return;
  holder_ = Access::handle(object);
  value_ = value;
}

MeshTarget::MeshTarget(const MDagPath& path) {
  const scene::DagPath shapePath =
      pathOf(path).isWorld() ? scene::DagPath() : pathOf(path).toShape();
  dg::Node* node = shapePath.node();
  if (node) takeShape(node);
  if (shape_) path_ = shapePath;
}

void MeshTarget::takeShape(dg::Node* node) {
  if (!node->type().isA("mesh")) return;
  keepAlive_ = node->shared_from_this();
  shape_ = node;
  outMesh_ = node->plug("outMesh");
}

MeshTarget::MeshTarget(const MObject& object, const MDagPath& path) : MeshTarget(object) {
  const scene::DagPath& inner = pathOf(path);
  if (shape_ && !inner.isWorld() && inner.toShape().node() == shape_) path_ = inner.toShape();
}

bool MeshTarget::readData(dg::DataPtr& data) const {
  if (value_) {
    data = value_->data;
    return true;
  }
  if (!shape_ || !shape_->isAlive()) return false;
  auto value = shape_->graph().get(outMesh_);
  if (!value) {
    rememberError(value.error());
    return false;
  }
  auto* arrived = std::get_if<dg::DataPtr>(&*value);
  data = arrived ? std::move(*arrived) : nullptr;
  return true;
}

scene::MeshDataPtr MeshTarget::asMesh(const dg::DataPtr& data) {
  auto mesh = std::dynamic_pointer_cast<const scene::MeshData>(data);
  return mesh ? mesh : std::make_shared<const scene::MeshData>(mesh::Mesh());
}

scene::MeshDataPtr MeshTarget::read() const {
  dg::DataPtr data;
  return readData(data) ? asMesh(data) : nullptr;
}

MStatus MeshTarget::writePoints(std::vector<math::Vec3f> points) const {
  if (shape_) return toStatus(nodes::setEvaluatedPoints(*shape_, std::move(points)));
  if (!value_) return MStatus::kFailure;
  mesh::Mesh mesh = read()->mesh;
  if (points.size() != mesh.points().size()) return MStatus::kInvalidParameter;
  mesh.setPoints(std::move(points));
  value_->data = std::make_shared<const scene::MeshData>(std::move(mesh));
  return MStatus::kSuccess;
}

MStatus MeshTarget::writeAttributes(mesh::Mesh mesh) const {
  if (shape_) return toStatus(nodes::setEvaluatedMesh(*shape_, std::move(mesh)));
  return writeMesh(std::move(mesh));
}

MStatus MeshTarget::writeMesh(mesh::Mesh mesh) const {
  if (shape_) return toStatus(nodes::setStoredMesh(*shape_, std::move(mesh)));
  if (!value_) return MStatus::kFailure;
  value_->data = std::make_shared<const scene::MeshData>(std::move(mesh));
  return MStatus::kSuccess;
}

MStatus MeshTarget::spaceMatrix(MSpace::Space space, std::optional<math::Matrix4>& toSpace) const {
  toSpace.reset();
  switch (space) {
    case MSpace::kObject:
      return MStatus::kSuccess;
    case MSpace::kTransform:
    case MSpace::kWorld:
    case MSpace::kPostTransform:
      break;
    default:
      return MStatus::kInvalidParameter;
  }
  // Data on its way between nodes is in no place: all spaces are its own.
  if (path_.isWorld()) return value_ ? MStatus::kSuccess : MStatus::kInvalidParameter;
  if (!path_.isValid()) return MStatus::kFailure;
  if (space == MSpace::kWorld) {
    toSpace = path_.inclusiveMatrix();
  } else {
    dg::Node* transform = path_.transform().node();
    if (!transform) return MStatus::kFailure;
    toSpace = scene::localMatrix(*transform);
  }
  if (math::isIdentity(*toSpace)) toSpace.reset();
  return MStatus::kSuccess;
}

std::optional<WayToObject> WayToObject::from(const math::Matrix4& toSpace) {
  const auto inverse = math::inverse(toSpace);
  return inverse ? std::optional(WayToObject(*inverse)) : std::nullopt;
}

MPoint pointIn(const math::Vec3f& stored, const std::optional<math::Matrix4>& toSpace) {
  return toSpace ? toMPoint(math::transformPoint(math::Vec3(stored), *toSpace)) : toMPoint(stored);
}

std::optional<math::Vec3f> pointFrom(const MPoint& point,
                                     const std::optional<math::Matrix4>& toSpace) {
  if (!toSpace) return toVec3(point).toFloat();
  const auto wayBack = WayToObject::from(*toSpace);
  if (!wayBack) return std::nullopt;
  return (*wayBack)(toVec3(point));
}

MVector normalIn(const math::Vec3& normal, const std::optional<math::Matrix4>& toSpace) {
  return toMVector(math::normalized(toSpace ? math::transformNormal(normal, *toSpace) : normal));
}

int uvSetIndex(const mesh::Mesh& mesh, const MString* name) {
  if (name && name->length() > 0) return mesh.findUvSet(name->asChar());
  return mesh.uvSetCount() > 0 ? mesh.currentUvSet() : -1;
}

int colorSetIndex(const mesh::Mesh& mesh, const MString* name) {
  if (name && name->length() > 0) return mesh.findColorSet(name->asChar());
  return mesh.currentColorSet();
}

}  // namespace host::api
