#include "host/api/mesh/mesh_walk.h"

#include <algorithm>
#include <utility>

namespace host::api {
namespace {

std::size_t totalOf(const mesh::Mesh& mesh, scene::ComponentType type) {
  switch (type) {
    case scene::ComponentType::Vertex:
      return at(mesh.vertexCount());
    case scene::ComponentType::Edge:
      return at(mesh.edgeCount());
    case scene::ComponentType::Face:
      return at(mesh.faceCount());
    default:
      return at(mesh.cornerCount());
  }
}

bool fits(const MObject& component, scene::ComponentType type) {
  if (component.isNull()) return true;
  const scene::Component* set = componentOf(component);
  return set && set->type() == type;
}

Handle makeWalk(MeshTarget target, const MObject& component, scene::ComponentType type,
                MStatus* status) {
  if (target.isNull() || !fits(component, type)) {
    setStatus(status, MStatus::kInvalidParameter);
    return Handle();
  }
  auto* walk = new MeshWalk(std::move(target), component, type);
  Handle handle(walk);
  setStatus(status, walk->isUsable() ? MStatus::kSuccess : MStatus::kFailure);
  return walk->isUsable() ? handle : Handle();
}

}  // namespace

MeshWalk::MeshWalk(MeshTarget target, const MObject& component, scene::ComponentType type)
    : target_(std::move(target)), component_(component), type_(type), data_(target_.read()) {
  if (data_) collect(component);
}

void MeshWalk::readAgain() {
  const auto now = target_.read();
  if (!now || now == data_) return;
  data_ = now;
  isComplete_ = true;
  ids_.clear();
  collect(component_);
}

void MeshWalk::collect(const MObject& component) {
  total_ = totalOf(data_->mesh, type_);
  const scene::Component* set = component.isNull() ? nullptr : componentOf(component);
  if (!set || set->isComplete()) return;
  isComplete_ = false;
  // Components that have gone since they were named are passed over.
  for (const Index id : set->indices())
    if (id >= 0 && at(id) < total_) ids_.push_back(id);
  // Vertex-faces are visited as corners, face by face.
  for (const scene::Component::VertexFace& pair : set->pairs()) {
    if (pair.face < 0 || pair.face >= data_->mesh.faceCount()) continue;
    const auto loop = data_->mesh.faceVertices(pair.face);
    const auto at = std::find(loop.begin(), loop.end(), pair.vertex);
    if (at != loop.end())
      ids_.push_back(data_->mesh.firstCorner(pair.face) + static_cast<Index>(at - loop.begin()));
  }
  if (type_ == scene::ComponentType::VertexFace) std::sort(ids_.begin(), ids_.end());
}

MeshWalk::~MeshWalk() {
  (void)flush();
}

bool MeshWalk::jumpTo(Index id) {
  if (id < 0 || at(id) >= total_) return false;
  if (isComplete_) {
    place_ = at(id);
    return true;
  }
  const auto at = std::lower_bound(ids_.begin(), ids_.end(), id);
  place_ = static_cast<std::size_t>(at - ids_.begin());
  if (at == ids_.end() || *at != id) ids_.insert(at, id);
  return true;
}

void MeshWalk::setPoint(VertexId v, const math::Vec3f& point) {
  if (edited_.empty()) {
    const auto points = data_->mesh.points();
    edited_.assign(points.begin(), points.end());
  }
  edited_[at(v)] = point;
}

MStatus MeshWalk::writeAttributes(mesh::Mesh mesh) {
  MStatus status = flush();
  if (!status) return status;
  status = target_.writeAttributes(std::move(mesh));
  if (status) data_ = target_.read();
  return status;
}

MStatus MeshWalk::flush() {
  if (edited_.empty()) return MStatus::kSuccess;
  const MStatus status = target_.writePoints(std::exchange(edited_, {}));
  if (status) data_ = target_.read();
  return status;
}

const MeshWalk* standing(const Handle& handle, MStatus* status) {
  const MeshWalk* walk = walkOf(handle);
  const bool isThere = walk && !walk->isDone();
  setStatus(status, isThere ? MStatus::kSuccess : MStatus::kFailure);
  return isThere ? walk : nullptr;
}

Handle makeWalk(const MObject& object, scene::ComponentType type, MStatus* status) {
  return makeWalk(MeshTarget(object), MObject(), type, status);
}

Handle makeWalk(const MObject& object, const MObject& component, scene::ComponentType type,
                MStatus* status) {
  return makeWalk(MeshTarget(object), component, type, status);
}

Handle makeWalk(const MDagPath& path, const MObject& component, scene::ComponentType type,
                MStatus* status) {
  return makeWalk(MeshTarget(path), component, type, status);
}

MStatus restart(const Handle& handle) {
  MeshWalk* walk = walkOf(handle);
  if (!walk) return MStatus::kFailure;
  walk->rewind();
  const MStatus status = walk->flush();
  walk->readAgain();
  return status;
}

MStatus advance(const Handle& handle) {
  if (isAtEnd(handle, nullptr)) return MStatus::kFailure;
  walkOf(handle)->next();
  return MStatus::kSuccess;
}

bool isAtEnd(const Handle& handle, MStatus* status) {
  const MeshWalk* walk = walkOf(handle);
  setStatus(status, walk ? MStatus::kSuccess : MStatus::kFailure);
  return !walk || walk->isDone();
}

}  // namespace host::api
