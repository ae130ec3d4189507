#pragma once

#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>

#include <vector>

#include "host/api/mesh/mesh_target.h"
#include "host/mesh/adjacency.h"

namespace host::api {

/// What the mesh iterators share: a snapshot of the mesh, the ids to visit, a place among them, and
/// point edits that wait to be written. Edits are written together by `flush` (updateSurface,
/// reset, end of the iterator), because each write goes over the whole mesh; the iterator itself
/// sees them at once.
class MeshWalk final : public SharedRep {
 public:
  MeshWalk(MeshTarget target, const MObject& component, scene::ComponentType type);
  ~MeshWalk() override;

  [[nodiscard]] bool isUsable() const { return data_ != nullptr; }
  [[nodiscard]] const mesh::Mesh& mesh() const { return data_->mesh; }
  [[nodiscard]] const mesh::Adjacency& adjacency() const { return data_->mesh.adjacency(); }
  [[nodiscard]] const MeshTarget& target() const { return target_; }
  [[nodiscard]] const scene::MeshDataPtr& data() const { return data_; }

  [[nodiscard]] bool isDone() const { return !data_ || place_ >= count(); }
  [[nodiscard]] std::size_t count() const { return isComplete_ ? total_ : ids_.size(); }
  [[nodiscard]] Index current() const {
    return isComplete_ ? static_cast<Index>(place_) : ids_[place_];
  }
  void next() { ++place_; }
  void rewind() { place_ = 0; }
  /// Looks at the mesh as it is now; what was named and is not there any more is passed over.
  void readAgain();
  [[nodiscard]] Index total() const { return static_cast<Index>(total_); }
  /// Goes to an id; it need not be one of those visited, `next` then goes on after the nearest one
  /// below.
  [[nodiscard]] bool jumpTo(Index id);

  [[nodiscard]] math::Vec3f point(VertexId v) const {
    return edited_.empty() ? data_->mesh.points()[at(v)] : edited_[at(v)];
  }
  void setPoint(VertexId v, const math::Vec3f& point);
  /// Replaces corner data at once.
  MStatus writeAttributes(mesh::Mesh mesh);
  MStatus flush();

 private:
  void collect(const MObject& component);

  MeshTarget target_;
  MObject component_;
  scene::ComponentType type_;
  scene::MeshDataPtr data_;
  bool isComplete_ = true;
  std::size_t total_ = 0, place_ = 0;
  std::vector<Index> ids_;
  std::vector<math::Vec3f> edited_;
};

[[nodiscard]] inline MeshWalk* walkOf(const Handle& handle) {
  return static_cast<MeshWalk*>(handle.get());
}
/// The walk when it stands on something; else null with the status saying so.
[[nodiscard]] const MeshWalk* standing(const Handle& handle, MStatus* status);

/// Makes the walk of an iterator over `object` or `path` and `component`; null handle and a failed
/// status when there is no mesh or the component is of another kind.
[[nodiscard]] Handle makeWalk(const MObject& object, scene::ComponentType type, MStatus* status);
[[nodiscard]] Handle makeWalk(const MObject& object, const MObject& component,
                              scene::ComponentType type, MStatus* status);
[[nodiscard]] Handle makeWalk(const MDagPath& path, const MObject& component,
                              scene::ComponentType type, MStatus* status);

// The members that all mesh iterators have, for their handles.
MStatus restart(const Handle& handle);  ///< back to the first, edits written
/// The same with a walk over something else.
template <class... Target>
MStatus restartOn(Handle& handle, const Target&... target) {
  MStatus status;
  handle = makeWalk(target..., &status);
  return status;
}
MStatus advance(const Handle& handle);
[[nodiscard]] bool isAtEnd(const Handle& handle, MStatus* status);

}  // namespace host::api
