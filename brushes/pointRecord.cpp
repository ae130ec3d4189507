#include "brushes/pointRecord.h"

#include <maya/MFnMesh.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>
#include <maya/MItGeometry.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <cstring>
#include <numeric>

MStatus writeStoredPoints(const MDagPath& mesh, const std::vector<int>& vertices,
                          const std::vector<float>& places) {
  if (vertices.empty()) return MS::kSuccess;
  MIntArray ids(vertices.data(), static_cast<unsigned int>(vertices.size()));
  MPointArray points(ids.length());
  for (unsigned int i = 0; i < ids.length(); ++i) {
    const float* place = &places[3 * static_cast<std::size_t>(i)];
    points[i] = MPoint(static_cast<double>(place[0]), static_cast<double>(place[1]),
                       static_cast<double>(place[2]));
  }
  MStatus status;
  MFnSingleIndexedComponent component;
  const MObject some = component.create(MFn::kMeshVertComponent, &status);
  if (status == MS::kSuccess) status = component.addElements(ids);
  if (status != MS::kSuccess) return status;
  MItGeometry geometry(mesh, some, &status);
  if (status != MS::kSuccess) return status;
  if (geometry.count() != static_cast<int>(vertices.size())) return MS::kFailure;
  status = geometry.setAllPositions(points, MSpace::kObject);
  return status == MS::kSuccess ? MFnMesh(mesh).updateSurface() : status;
}

pointRecord::pointRecord(const MDagPath& mesh)
    : path(mesh), tweaksBefore(tweakPlugs::ofShape(mesh).readAll()) {}

int pointRecord::add(int vertex, const float* place) {
  vertices.push_back(vertex);
  placesBefore.insert(placesBefore.end(), place, place + 3);
  placesAfter.insert(placesAfter.end(), place, place + 3);
  return static_cast<int>(vertices.size()) - 1;
}

void pointRecord::setAfter(int slot, const float* place) {
  std::copy(place, place + 3, &placesAfter[3 * static_cast<std::size_t>(slot)]);
}

void pointRecord::settle() {
  if (isSettled) return;
  isSettled = true;
  std::vector<std::size_t> order(vertices.size());
  std::iota(order.begin(), order.end(), std::size_t(0));
  const auto hasMoved = [this](std::size_t i) {
    return std::memcmp(&placesBefore[3 * i], &placesAfter[3 * i], 3 * sizeof(float)) != 0;
  };
  order.erase(
      std::remove_if(order.begin(), order.end(), [&](std::size_t i) { return !hasMoved(i); }),
      order.end());
  std::sort(order.begin(), order.end(),
            [this](std::size_t a, std::size_t b) { return vertices[a] < vertices[b]; });
  std::vector<int> ids;
  std::vector<float> before, after;
  ids.reserve(order.size());
  before.reserve(3 * order.size());
  after.reserve(3 * order.size());
  for (const std::size_t i : order) {
    ids.push_back(vertices[i]);
    before.insert(before.end(), &placesBefore[3 * i], &placesBefore[3 * i] + 3);
    after.insert(after.end(), &placesAfter[3 * i], &placesAfter[3 * i] + 3);
  }
  vertices = std::move(ids);
  placesBefore = std::move(before);
  placesAfter = std::move(after);
  // Offsets that the stroke has left alone are none of its business.
  const auto isOurs = [this](const vertexTweak& tweak) {
    return std::binary_search(vertices.begin(), vertices.end(), tweak.vertex);
  };
  tweaksBefore.erase(std::remove_if(tweaksBefore.begin(), tweaksBefore.end(),
                                    [&](const vertexTweak& tweak) { return !isOurs(tweak); }),
                     tweaksBefore.end());
  tweaksBefore.shrink_to_fit();
}

MStatus pointRecord::show(bool after) {
  settle();
  if (vertices.empty()) return MS::kSuccess;
  MStatus status;
  if (!path.isValid()) return MS::kFailure;
  const MFnMesh mesh(path, &status);
  if (status != MS::kSuccess) return status;
  if (vertices.back() >= mesh.numVertices()) {
    MGlobal::displayError(
        "The mesh has lost vertices that a brush stroke has moved; the stroke "
        "stays as it is.");
    return MS::kFailure;
  }
  // Offsets as they were: what is written after them finds the vertices in place already.
  if (!after) status = tweakPlugs::ofShape(path).restore(tweaksBefore);
  return status == MS::kSuccess
             ? writeStoredPoints(path, vertices, after ? placesAfter : placesBefore)
             : status;
}

std::size_t pointRecord::bytes() const {
  return vertices.size() * sizeof(int) +
         (placesBefore.size() + placesAfter.size()) * sizeof(float) +
         tweaksBefore.size() * sizeof(vertexTweak);
}
