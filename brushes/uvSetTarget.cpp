#include "brushes/uvSetTarget.h"

#include <maya/MFloatArray.h>
#include <maya/MFnMesh.h>

#include "uv/meshUvPins.h"
#include "uv/uvMessages.h"

uvSetTarget::uvSetTarget(const MDagPath& mesh) : path(mesh) {}

bool uvSetTarget::readPlaces(std::vector<float>& places) const {
  MStatus status;
  const MFnMesh mesh(path, &status);
  MFloatArray u, v;
  if (!status || !mesh.getUVs(u, v, &set)) return false;
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

uvTarget::state uvSetTarget::keepUp(std::vector<float>& places) {
  if (!path.isValid()) return kGone;
  std::vector<float> now;
  if (!readPlaces(now) || now.size() != last.size() || MFnMesh(path).currentUVSetName() != set)
    return kGone;
  if (now == last) return kSame;
  last = places = now;
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
