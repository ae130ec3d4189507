#include <algorithm>
#include <cmath>
#include <queue>

#include "brushes/brushSurface.h"

namespace {

std::size_t at(int index) {
  return static_cast<std::size_t>(index);
}

/// How much of a dab arrives where the surface turns away from the viewer: all up to some 78
/// degrees, nothing from the silhouette on, so that no step is left there.
double facing(const MVector& normal, const MVector& towardsViewer) {
  constexpr double kFull = 0.2;
  const double turned = normal * towardsViewer;
  return std::clamp(turned / kFull, 0.0, 1.0);
}

/// Turns a vector by the smallest turn that takes one unit vector to another.
MVector turned(const MVector& vector, const MVector& from, const MVector& to) {
  const double c = from * to;
  if (c < -0.999) return vector;
  const MVector axis = from ^ to;
  return vector * c + (axis ^ vector) + axis * ((axis * vector) / (1.0 + c));
}

}  // namespace

void brushSurface::newSearch() const {
  if (++search != 0) return;
  std::fill(seen.begin(), seen.end(), 0);
  std::fill(seenFaces.begin(), seenFaces.end(), 0);
  search = 1;
}

bool brushSurface::seeFirst(int vertex) const {
  if (seen[at(vertex)] == search) return false;
  seen[at(vertex)] = search;
  return true;
}

bool brushSurface::cast(const MPoint& origin, const MVector& direction, faceHit& hit,
                        MPoint& place) const {
  const MPoint from = origin * objectMatrix;
  const MVector along = direction * objectMatrix;
  const double start[3] = {from.x, from.y, from.z}, way[3] = {along.x, along.y, along.z};
  hit = tree.cast(arrays, start, way);
  if (!hit.isHit()) return false;
  place = origin + direction * hit.distance;
  return true;
}

void brushSurface::boxAround(const MPoint& centre, double radius, double* low, double* high) const {
  const MPoint middle = centre * objectMatrix;
  for (unsigned int k = 0; k < 3; ++k) {
    const double half =
        radius * std::hypot(objectMatrix[0][k], objectMatrix[1][k], objectMatrix[2][k]);
    low[k] = middle[k] - half;
    high[k] = middle[k] + half;
  }
}

int brushSurface::nearestVertex(const MPoint& place, double reach) const {
  double low[3], high[3];
  boxAround(place, reach, low, high);
  std::vector<int> near;
  tree.facesInBox(low, high, near);
  int nearest = -1;
  double best = reach * (1.0 + 1e-9);
  for (const int face : near)
    for (int c = arrays.offsets[at(face)]; c < arrays.offsets[at(face) + 1]; ++c) {
      const int vertex = arrays.corners[at(c)];
      const double distance = worldPoint(vertex).distanceTo(place);
      if (distance > best || (distance == best && nearest >= 0 && vertex >= nearest)) continue;
      best = distance;
      nearest = vertex;
    }
  return nearest;
}

void brushSurface::keep(const dabQuery& query, int vertex, double distance, const MVector& normal,
                        const double* onStamp, dabRegion& region) const {
  const double seenShare = query.backFaces ? 1.0 : facing(normal, query.towardsViewer);
  if (!(seenShare > 0.0)) return;
  const double share = distance / query.radius;
  region.vertices.push_back(vertex);
  region.shares.push_back(share);
  region.weights.push_back(seenShare * (query.falloff ? query.falloff->weight(share) : 1.0));
  region.stamp.push_back(onStamp[0] / query.radius);
  region.stamp.push_back(onStamp[1] / query.radius);
}

void brushSurface::keepByPlace(const dabQuery& query, int vertex, dabRegion& region) const {
  const MVector away = worldPoint(vertex) - query.centre;
  const MVector along = query.normal ^ query.across;
  const double onStamp[2] = {away * query.across, away * along};
  const MVector normal = query.backFaces ? MVector() : worldNormal(vertex);
  keep(query, vertex, away.length(), normal, onStamp, region);
}

void brushSurface::gather(const dabQuery& query, dabRegion& region) const {
  region.clear();
  if (!(query.radius > 0.0) || !std::isfinite(query.radius) || !isRead()) return;
  newSearch();
  if (query.islands && !query.overSurface)
    gatherIslands(query, region);
  else if (query.startFace < 0 || query.startFace >= faceCount())
    return;
  else if (query.overSurface)
    gatherSurface(query, region);
  else
    gatherVolume(query, region);
}

/// What lies within the radius and hangs together with the start there.
void brushSurface::gatherVolume(const dabQuery& query, dabRegion& region) const {
  std::vector<int> open;
  const double square = query.radius * query.radius;
  const auto visit = [&](int vertex) {
    if (!seeFirst(vertex)) return;
    const MVector away = worldPoint(vertex) - query.centre;
    if (away * away < square) open.push_back(vertex);
  };
  const auto face = at(query.startFace);
  for (int c = arrays.offsets[face]; c < arrays.offsets[face + 1]; ++c)
    visit(arrays.corners[at(c)]);
  for (std::size_t i = 0; i < open.size(); ++i) {
    const int vertex = open[i];
    keepByPlace(query, vertex, region);
    for (const int* next = neighboursBegin(vertex); next != neighboursEnd(vertex); ++next)
      visit(*next);
  }
}

void brushSurface::gatherIslands(const dabQuery& query, dabRegion& region) const {
  double low[3], high[3];
  boxAround(query.centre, query.radius, low, high);
  std::vector<int> near;
  tree.facesInBox(low, high, near);
  const double square = query.radius * query.radius;
  for (const int face : near)
    for (int c = arrays.offsets[at(face)]; c < arrays.offsets[at(face) + 1]; ++c) {
      const int vertex = arrays.corners[at(c)];
      if (!seeFirst(vertex)) continue;
      const MVector away = worldPoint(vertex) - query.centre;
      if (away * away < square) keepByPlace(query, vertex, region);
    }
}

/// A vertex that the surface walk has come to, with its place on the tangent plane at the start.
struct brushSurface::unrolled {
  int vertex;
  double place[2];
  double distance;
  bool isDone;
};

/// Unrolls the surface around the start by carrying tangent coordinates from vertex to vertex in
/// the order of their distance (discrete exponential map: Schmidt, Grimm, Wyvill 2006). Unlike
/// lengths along edges these are round on grids.
void brushSurface::gatherSurface(const dabQuery& query, dabRegion& region) const {
  std::vector<unrolled> met;
  using candidate = std::pair<double, std::size_t>;
  std::priority_queue<candidate, std::vector<candidate>, std::greater<>> queue;
  const MVector along = query.normal ^ query.across;
  if (slotOf.size() < seen.size()) slotOf.resize(seen.size());

  const auto offer = [&](int vertex, double x, double y, double straight) {
    const double distance = std::max(std::hypot(x, y), straight);
    if (!(distance < query.radius)) return;
    if (seeFirst(vertex)) {
      slotOf[at(vertex)] = static_cast<std::uint32_t>(met.size());
      met.push_back({vertex, {x, y}, distance, false});
    } else {
      unrolled& known = met[slotOf[at(vertex)]];
      if (known.isDone || known.distance <= distance) return;
      known = {vertex, {x, y}, distance, false};
    }
    queue.push({distance, slotOf[at(vertex)]});
  };
  const auto flattened = [](const MVector& way, const MVector& normal) {
    const MVector flat = way - normal * (way * normal);
    const double length = flat.length();
    return length > 0.0 ? flat * (way.length() / length) : MVector();
  };

  const auto start = at(query.startFace);
  for (int c = arrays.offsets[start]; c < arrays.offsets[start + 1]; ++c) {
    const int vertex = arrays.corners[at(c)];
    const MVector way = worldPoint(vertex) - query.centre;
    const MVector flat = flattened(way, query.normal);
    offer(vertex, flat * query.across, flat * along, way.length());
  }
  while (!queue.empty()) {
    const auto [distance, slot] = queue.top();
    queue.pop();
    if (met[slot].isDone || met[slot].distance < distance) continue;
    met[slot].isDone = true;
    const unrolled here = met[slot];
    const MPoint place = worldPoint(here.vertex);
    const MVector normal = worldNormal(here.vertex);
    keep(query, here.vertex, here.distance, normal, here.place, region);
    for (const int* face = facesBegin(here.vertex); face != facesEnd(here.vertex); ++face)
      for (int c = arrays.offsets[at(*face)]; c < arrays.offsets[at(*face) + 1]; ++c) {
        const int next = arrays.corners[at(c)];
        if (seen[at(next)] == search && met[slotOf[at(next)]].isDone) continue;
        const MPoint there = worldPoint(next);
        const MVector flat = turned(flattened(there - place, normal), normal, query.normal);
        offer(next, here.place[0] + flat * query.across, here.place[1] + flat * along,
              (there - query.centre).length());
      }
  }
}
