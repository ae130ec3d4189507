#include "brushes/uvSetTarget.h"

#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>

#include "uv/meshUvPins.h"
#include "uv/uvMessages.h"

uvSetTarget::uvSetTarget(const MDagPath& mesh) : path(mesh) {}

bool uvSetTarget::readUvs(MFloatArray& u, MFloatArray& v) const {
  MStatus status;
  const MFnMesh mesh(path, &status);
  return status && mesh.getUVs(u, v, &set);
}

bool uvSetTarget::readPlaces(std::vector<float>& places) const {
  MFloatArray u, v;
  if (!readUvs(u, v)) return false;
  places.resize(2 * static_cast<std::size_t>(u.length()));
  for (unsigned int i = 0; i < u.length(); ++i) {
    places[2 * static_cast<std::size_t>(i)] = u[i];
    places[2 * static_cast<std::size_t>(i) + 1] = v[i];
  }
  return true;
}

bool uvSetTarget::read(content& read) {
  const MFnMesh mesh(path);
  set = mesh.currentUVSetName();
  if (set.length() == 0 || !readPlaces(read.places) || read.places.empty() ||
      !mesh.getAssignedUVs(read.counts, read.ids, &set)) {
    failWith(path.partialPathName() + " has no UVs to brush");
    return false;
  }
  read.pins = meshUvPins(path, static_cast<unsigned int>(read.places.size() / 2));
  last = read.places;
  written.reset();
  return true;
}

bool uvSetTarget::isLast(const MFloatArray& u, const MFloatArray& v) const {
  for (unsigned int i = 0; i < u.length(); ++i)
    if (last[2 * static_cast<std::size_t>(i)] != u[i] ||
        last[2 * static_cast<std::size_t>(i) + 1] != v[i])
      return false;
  return true;
}

uvTarget::state uvSetTarget::keepUp(std::vector<float>& places) {
  if (!path.isValid()) return kGone;
  MFloatArray u, v;
  if (!readUvs(u, v) || 2 * static_cast<std::size_t>(u.length()) != last.size() ||
      MFnMesh(path).currentUVSetName() != set)
    return kGone;
  // Asked at every event: nothing is copied while nothing has changed.
  if (isLast(u, v)) return kSame;
  if (!readPlaces(last)) return kGone;
  places = last;
  settle();
  written.reset();
  return kMoved;
}

bool uvSetTarget::write(const std::vector<int>& uvs, const uvLayout& layout) {
  if (uvs.empty()) return true;
  if (!written) written = std::make_shared<uvSetRecord>(path, set);
  if (!written->change(uvs, layout, last) || !readPlaces(last)) {
    if (written->isEmpty()) written.reset();
    failWith("cannot set uvs on Mesh " + path.fullPathName());
    return false;
  }
  return true;
}

std::shared_ptr<brushRecord> uvSetTarget::record() const {
  return written;
}

void uvSetTarget::settle() {
  if (written) written->settle();
}
