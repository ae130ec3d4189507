#include "brushes/uvPointTarget.h"

#include <maya/MFnMesh.h>

#include <algorithm>

#include "shared/mesh/vertexPins.h"
#include "uv/uvMessages.h"
#include "uv/uvPlacement.h"

uvPointTarget::uvPointTarget(const MDagPath& uvObject) : path(uvObject) {}

/// @return null when they can't be read; good until the mesh is edited
const float* uvPointTarget::rawPoints(std::size_t& numbers) const {
  MStatus status;
  const MFnMesh mesh(path, &status);
  if (!status) return nullptr;
  numbers = 3 * static_cast<std::size_t>(mesh.numVertices(&status));
  const float* const raw = status ? mesh.getRawPoints(&status) : nullptr;
  return status ? raw : nullptr;
}

bool uvPointTarget::readPoints() {
  std::size_t numbers = 0;
  const float* const raw = rawPoints(numbers);
  if (!raw) return false;
  points.assign(raw, raw + numbers);
  return true;
}

void uvPointTarget::givePlaces(std::vector<float>& places) const {
  places.resize(points.size() / 3 * 2);
  for (std::size_t i = 0; i < places.size() / 2; ++i) {
    places[2 * i] = points[3 * i];
    places[2 * i + 1] = points[3 * i + 2];
  }
}

bool uvPointTarget::read(content& read) {
  const MFnMesh mesh(path);
  if (!readPoints() || !mesh.getVertices(read.counts, read.ids)) {
    failWith(path.partialPathName() + " has no UVs to brush");
    return false;
  }
  givePlaces(read.places);
  read.pins = vertexPins::pinFlags(path);
  written.reset();
  slotOf.clear();
  return true;
}

uvTarget::state uvPointTarget::keepUp(std::vector<float>& places) {
  std::size_t numbers = 0;
  const float* const raw = path.isValid() ? rawPoints(numbers) : nullptr;
  if (!raw || numbers != points.size()) return kGone;
  // Asked at every event: nothing is copied while nothing has changed.
  if (std::equal(points.begin(), points.end(), raw)) return kSame;
  points.assign(raw, raw + numbers);
  givePlaces(places);
  settle();
  written.reset();
  slotOf.clear();
  return kMoved;
}

bool uvPointTarget::write(const std::vector<int>& uvs, const uvLayout& layout) {
  if (uvs.empty()) return true;
  std::vector<int> vertices = uvs;
  std::sort(vertices.begin(), vertices.end());
  std::vector<float> places;
  places.reserve(3 * vertices.size());
  for (const int vertex : vertices) {
    const float* const to = layout.place(vertex);
    places.insert(places.end(), {to[0], stored(vertex)[1], to[1]});
  }
  const bool isFirst = !written;
  if (isFirst) written = std::make_shared<pointRecord>(path);
  if (!writeStoredPoints(path, vertices, places)) {
    if (isFirst) written.reset();
    failWith("cannot move the vertices of " + path.partialPathName());
    return false;
  }
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const auto [known, isNew] = slotOf.emplace(vertices[i], 0);
    if (isNew) known->second = written->add(vertices[i], stored(vertices[i]));
    written->setAfter(known->second, &places[3 * i]);
    std::copy_n(&places[3 * i], 3, &points[3 * static_cast<std::size_t>(vertices[i])]);
  }
  return readPoints();  // with history what comes back may be rounded
}

void uvPointTarget::settle() {
  if (written) written->settle();
}

double uvPointTarget::unit() const {
  return uvPlacement().toDistance(1.0);
}
