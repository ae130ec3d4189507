#include "brushes/pointStroke.h"

#include <algorithm>
#include <cmath>

void pointStroke::begin(brushSurfaces& all, const std::shared_ptr<brushSurface>& surfaceIn) {
  surfaces = &all;
  surface = surfaceIn;
  unwritten.clear();
  waiting.begin(surface->vertexCount());
  newRecord();
}

void pointStroke::newRecord() {
  kept = std::make_shared<pointRecord>(surface->mesh());
  recorded.begin(surface->vertexCount());
}

std::shared_ptr<brushRecord> pointStroke::record() const {
  return kept && !kept->isEmpty() ? kept : nullptr;
}

const float* pointStroke::startOf(int vertex) const {
  const int slot = recorded.find(vertex);
  return slot >= 0 ? kept->before(slot) : surface->stored(vertex);
}

void pointStroke::move(const std::vector<int>& vertices, const std::vector<float>& places) {
  if (!isOn()) return;
  moved.clear();
  movedTo.clear();
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const int vertex = vertices[i];
    const float *place = &places[3 * i], *now = surface->stored(vertex);
    if (!std::isfinite(place[0]) || !std::isfinite(place[1]) || !std::isfinite(place[2])) continue;
    if (std::equal(place, place + 3, now)) continue;
    int slot = recorded.find(vertex);
    if (slot < 0) {
      slot = kept->add(vertex, now);
      recorded.set(vertex, slot);
    }
    kept->setAfter(slot, place);
    moved.push_back(vertex);
    movedTo.insert(movedTo.end(), place, place + 3);
    if (waiting.find(vertex) >= 0) continue;
    waiting.set(vertex, 0);
    unwritten.push_back(vertex);
  }
  surface->move(moved, movedTo);
}

MStatus pointStroke::show() {
  if (!isOn() || unwritten.empty()) return MS::kSuccess;
  std::sort(unwritten.begin(), unwritten.end());
  movedTo.clear();
  for (const int vertex : unwritten) {
    const float* place = surface->stored(vertex);
    movedTo.insert(movedTo.end(), place, place + 3);
  }
  const brushSurfaces::ownEdit writing(*surfaces, *surface);
  const MStatus status = writeStoredPoints(surface->mesh(), unwritten, movedTo);
  unwritten.clear();
  waiting.begin(surface->vertexCount());
  return status;
}

void pointStroke::split() {
  if (!isOn() || kept->isEmpty()) return;
  kept->settle();
  newRecord();
}

void pointStroke::end() {
  if (kept) kept->settle();
  kept.reset();
  surface.reset();
  unwritten.clear();
}
