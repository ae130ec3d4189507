#include "brushes/pointBrush.h"

#include <maya/MGlobal.h>

#include <algorithm>
#include <cmath>

#include "shared/mesh/vertexPins.h"

pointBrush::~pointBrush() = default;

bool pointBrush::beginStroke(const brushHit& hit) {
  const brushSurface& mesh = *hit.surface;
  pins = settings.pins ? vertexPins::pinFlags(mesh.mesh()) : std::vector<char>();
  if (settings.mirror) pairs.begin(mesh, settings.mirrorAxis, settings.mirrorsInWorld());
  stroke.begin(surfaces, hit.surface);
  held.clear();
  heldFrom = hit.point;
  return true;
}

void pointBrush::endStroke() {
  stroke.end();
  pins.clear();
}

std::shared_ptr<brushRecord> pointBrush::strokeRecord() {
  return stroke.record();
}

/// What was moved so far was moved before the others' change, and is undone after it.
void pointBrush::meshChanged() {
  if (!stroke.record()) return;
  stroke.split();
  heldFrom = lastHeld.held;
}

MVector pointBrush::stampAxis(const brushDab& dab) const {
  const MVector& normal = dab.hit.normal;
  MVector across = sight().right();
  across -= normal * (across * normal);
  if (across.length() < 1e-6) across = sight().up() ^ normal;
  return across.normal();
}

dabQuery pointBrush::queryFor(const brushDab& dab) const {
  dabQuery query;
  query.centre = dab.hit.point;
  query.normal = dab.hit.normal;
  query.across = stampAxis(dab);
  query.radius = dab.radius;
  query.startFace = dab.hit.face;
  query.overSurface = settings.distance == brushSettings::kSurface;
  query.islands = settings.islands;
  query.backFaces = settings.backFaces;
  query.towardsViewer = dab.hit.towardsViewer;
  query.falloff = &settings.falloff;
  return query;
}

void pointBrush::dab(const brushDab& dab) {
  if (followsPointer()) {
    holdOn(dab);
    return;
  }
  if (!dab.hit.isHit()) return;
  surface().gather(queryFor(dab), reachedNow);
  if (reachedNow.isEmpty()) return;
  movesNow.assign(reachedNow.vertices.size(), MVector());
  plan(dab, reachedNow, movesNow);
  move(reachedNow, movesNow, false);
}

/// What was under the brush when it was pressed goes along with the pointer.
void pointBrush::holdOn(const brushDab& dab) {
  lastHeld = dab;
  if (dab.count == 0) {
    surface().gather(queryFor(dab), held);
    return;
  }
  if (held.isEmpty()) return;
  const MVector way = (dab.held - heldFrom) * (dab.invert ? -dab.strength : dab.strength);
  movesNow.assign(held.vertices.size(), MVector());
  for (std::size_t i = 0; i < movesNow.size(); ++i) movesNow[i] = way * held.weights[i];
  move(held, movesNow, true);
}

bool pointBrush::isFixed(int vertex) const {
  return (!pins.empty() && pins[static_cast<std::size_t>(vertex)] != 0) ||
         (settings.lockBorders && surface().isBorder(vertex));
}

void pointBrush::move(const dabRegion& reached, const dabMoves& by, bool fromStart) {
  const MMatrix& toObject = surface().toObject();
  shifts.clear();
  for (std::size_t i = 0; i < by.size(); ++i) {
    const MVector& one = by[i];
    if (one.x == 0.0 && one.y == 0.0 && one.z == 0.0 && !fromStart) continue;
    if (!std::isfinite(one.x + one.y + one.z)) continue;
    shifts.push_back({reached.vertices[i], reached.weights[i], one * toObject, false});
  }
  if (settings.mirror) mirror();
  movedNow.clear();
  placesNow.clear();
  for (const shift& one : shifts)
    if (!isFixed(one.vertex)) put(one, fromStart);
  stroke.move(movedNow, placesNow);
}

/// Has both vertices of a pair go alike: the one that the brush has a firmer grip of decides. What
/// lies on the plane stays on it.
void pointBrush::mirror() {
  shiftOf.begin(surface().vertexCount());
  for (std::size_t i = 0; i < shifts.size(); ++i)
    shiftOf.set(shifts[i].vertex, static_cast<int>(i));
  const std::size_t own = shifts.size();
  for (std::size_t i = 0; i < own; ++i) {
    const int other = pairs.partner(shifts[i].vertex);
    if (other < 0) continue;
    if (other == shifts[i].vertex) {
      shifts[i].by = pairs.alongPlane(shifts[i].by);
      shifts[i].isOnPlane = true;
      continue;
    }
    const int place = shiftOf.find(other);
    if (place < 0) {
      shiftOf.set(other, static_cast<int>(shifts.size()));
      shifts.push_back({other, shifts[i].weight, pairs.reflect(shifts[i].by), false});
      continue;
    }
    shift& theirs = shifts[static_cast<std::size_t>(place)];
    const shift& mine = shifts[i];
    const bool isFirmer = mine.weight > theirs.weight ||
                          (mine.weight == theirs.weight && mine.vertex < theirs.vertex);
    if (isFirmer) theirs.by = pairs.reflect(mine.by);
  }
}

void pointBrush::put(const shift& one, bool fromStart) {
  const float* from = fromStart ? stroke.startOf(one.vertex) : surface().stored(one.vertex);
  for (unsigned int k = 0; k < 3; ++k) {
    // On the plane the coordinate across it keeps its bits.
    const bool staysOnPlane = one.isOnPlane && static_cast<int>(k) == pairs.objectAxis();
    placesNow.push_back(
        staysOnPlane ? from[k] : static_cast<float>(static_cast<double>(from[k]) + one.by[k]));
  }
  movedNow.push_back(one.vertex);
}

void pointBrush::showDabs() {
  if (stroke.show() != MS::kSuccess) MGlobal::displayError("error setting points");
}
