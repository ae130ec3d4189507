#include <maya/MFnMesh.h>

#include "host/api/mesh/fn_mesh.h"
#include "host/spatial/surface.h"

namespace host::api {

// The member template that the host's own representations are read through; here it reaches what a
// set is attached to, without the counting that a copy costs.
template <>
const MObject* Access::rep<const MObject, MFnMesh>(const MFnMesh& set) {
  return &set.object_;
}
template <>
const MDagPath* Access::rep<const MDagPath, MFnMesh>(const MFnMesh& set) {
  return &set.path_;
}

namespace {

/// What a mesh function set keeps between calls.
struct MeshSetRep final : SharedRep {
  MeshSetRep(const MObject& objectIn, const MDagPath& pathIn)
      : object(objectIn), path(pathIn), target(object, path) {}
  MObject object;
  MDagPath path;
  MeshTarget target;
  dg::DataPtr surfaceData;  ///< what `surface` was made of
  std::optional<spatial::Surface> surface;
};

bool isSame(const MeshSetRep& rep, const MObject& object, const MDagPath& path) {
  return Access::handle(rep.object).get() == Access::handle(object).get() &&
         Access::handle(rep.path).get() == Access::handle(path).get();
}

/// The set's own; made anew when `create` or `setObject` has put something else into the set.
MeshSetRep& repOf(const MFnMesh& set) {
  Handle& handle = Access::handle(const_cast<MFnMesh&>(set));
  const MObject& object = *Access::rep<const MObject, MFnMesh>(set);
  const MDagPath& path = *Access::rep<const MDagPath, MFnMesh>(set);
  auto* rep = static_cast<MeshSetRep*>(handle.get());
  if (!rep || !isSame(*rep, object, path)) {
    rep = new MeshSetRep(object, path);
    handle = Handle(rep);
  }
  return *rep;
}

}  // namespace

const MeshTarget& targetOf(const MFnMesh& set) {
  return repOf(set).target;
}

scene::MeshDataPtr readMesh(const MFnMesh& set, MStatus* status) {
  const MeshTarget& target = targetOf(set);
  auto data = target.isNull() ? nullptr : target.read();
  setStatus(status, data ? MStatus::kSuccess : MStatus::kFailure);
  return data;
}

const spatial::Surface* surfaceOf(const MFnMesh& set, MSpace::Space space, MStatus& status) {
  MeshSetRep& rep = repOf(set);
  dg::DataPtr data;
  status = rep.target.readData(data) ? MStatus::kSuccess : MStatus::kFailure;
  std::optional<math::Matrix4> toSpace;
  // Object space needs no path, and looking one up costs as much as a short ray.
  if (status && space != MSpace::kObject) status = rep.target.spaceMatrix(space, toSpace);
  if (!status) return nullptr;
  if (!rep.surface || rep.surfaceData != data || rep.surface->space() != toSpace) {
    rep.surfaceData = data;
    rep.surface.emplace(sharedMesh(MeshTarget::asMesh(data)), toSpace);
  }
  return &*rep.surface;
}

void forgetSurface(const MFnMesh& set) {
  repOf(set).surface.reset();
}

}  // namespace host::api
