#include "commands/regularPlan.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int kRounds = 60;
constexpr double kCollapsed = 0.05;  ///< of the area that a face had, both measured by the mean
constexpr int kMembranePasses = 30, kSpreadPasses = 6;

unsigned int at(int index) {
  return static_cast<unsigned int>(index);
}
std::size_t place(int index) {
  return static_cast<std::size_t>(index);
}

}  // namespace

regularPlan::regularPlan(const MPointArray& before, const MIntArray& counts,
                         const MIntArray& connects, const std::vector<char>& isHeld, double side)
    : corners(connects), held(isHeld), sideOfFaces(side), firsts(1, 0) {
  for (unsigned int f = 0; f < counts.length(); ++f) firsts.push_back(firsts.back() + counts[f]);
  facesOf.resize(before.length());
  neighbours.resize(before.length());
  points = before;
  faces.resize(counts.length());
  for (int f = 0; f < static_cast<int>(faces.size()); ++f) {
    const MVector area = areaOf(points, f);
    areasBefore.push_back(area.length());
    meanBefore += area.length() / static_cast<double>(faces.size());
    faces[place(f)].normal = area.normal();
  }
  join();
}

MVector regularPlan::areaOf(const MPointArray& all, int face) const {
  const int first = firsts[place(face)], end = firsts[place(face) + 1];
  const MPoint& origin = all[at(corners[at(first)])];
  MVector area, last;
  for (int c = first + 1; c < end; ++c) {
    const MVector offset = all[at(corners[at(c)])] - origin;
    area += last ^ offset;
    last = offset;
  }
  return area * (0.5 * sideOfFaces);
}

MPoint regularPlan::centreOf(int face) const {
  const int first = firsts[place(face)], end = firsts[place(face) + 1];
  MVector sum;
  for (int c = first; c < end; ++c) sum += MVector(points[at(corners[at(c)])]);
  return MPoint(sum / static_cast<double>(end - first));
}

void regularPlan::join() {
  struct run {
    int low, high, face;
  };
  std::vector<run> runs;
  const double shortest = 1e-3 * std::sqrt(meanBefore);
  for (int f = 0; f < static_cast<int>(faces.size()); ++f) {
    const int first = firsts[place(f)], end = firsts[place(f) + 1];
    const MPoint centre = centreOf(f);
    for (int c = first; c < end; ++c) {
      const int a = corners[at(c)], b = corners[at(c + 1 < end ? c + 1 : first)];
      facesOf[place(a)].push_back(f);
      // As wide as the strip between the two faces is, as long as the edge: so a fan around a pole
      // keeps its size.
      const MPoint middle = points[at(a)] + (points[at(b)] - points[at(a)]) * 0.5;
      const double weight =
          middle.distanceTo(centre) / (points[at(a)].distanceTo(points[at(b)]) + shortest);
      neighbours[place(a)].push_back({b, weight});
      neighbours[place(b)].push_back({a, weight});
      runs.push_back({std::min(a, b), std::max(a, b), f});
    }
  }
  std::sort(runs.begin(), runs.end(), [](const run& a, const run& b) {
    if (a.low != b.low) return a.low < b.low;
    return a.high != b.high ? a.high < b.high : a.face < b.face;
  });
  for (std::size_t i = 0; i + 1 < runs.size(); ++i) {
    const run &a = runs[i], &b = runs[i + 1];
    if (a.low == b.low && a.high == b.high)
      joints.push_back(
          {a.face, b.face, faces[place(a.face)].normal * faces[place(b.face)].normal < 0});
  }
  jointsOf.resize(faces.size());
  for (std::size_t j = 0; j < joints.size(); ++j)
    for (const int face : {joints[j].a, joints[j].b})
      jointsOf[place(face)].push_back(static_cast<int>(j));
}

void regularPlan::look(int face, const placingSurface& surface) {
  faceState& state = faces[place(face)];
  const MVector area = areaOf(points, face);
  state.area = area.length();
  state.normal = area.normal();
  state.isCollapsed = state.area * meanBefore < kCollapsed * areasBefore[place(face)] * meanArea;
  state.facing = facingOf(centreOf(face), state, surface);
  state.isWrong = state.facing < 0.0;
}

/// Well off the surface a centre may lie as near to one side of a hollow as to the other, and who
/// measures the result finds either: the worst of what lies next to it counts.
double regularPlan::facingOf(const MPoint& centre, const faceState& state,
                             const placingSurface& surface) {
  constexpr double kWellOff = 0.1, kNextTo = 1e-3;
  const double size = std::sqrt(state.area);
  MPoint nearest;
  MVector facing;
  if (!surface.nearest(centre, nearest, facing)) return 1.0;
  double worst = facing * state.normal;
  if (centre.distanceTo(nearest) < kWellOff * size) return worst;
  for (unsigned int k = 0; k < 6; ++k) {
    MPoint beside = centre;
    beside[k / 2] += (k % 2 == 0 ? kNextTo : -kNextTo) * size;
    if (surface.nearest(beside, nearest, facing)) worst = std::min(worst, facing * state.normal);
  }
  return worst;
}

void regularPlan::lookAtAll(const placingSurface& surface) {
  meanArea = 0.0;
  for (int f = 0; f < static_cast<int>(faces.size()); ++f)
    meanArea += areaOf(points, f).length() / static_cast<double>(faces.size());
  for (int f = 0; f < static_cast<int>(faces.size()); ++f) look(f, surface);
  findFolds();
}

void regularPlan::findFolds() {
  for (faceState& face : faces) face.isFolded = false;
  for (const joint& each : joints) {
    faceState &a = faces[place(each.a)], &b = faces[place(each.b)];
    if (!each.wasFolded && a.normal * b.normal < 0.0) a.isFolded = b.isFolded = true;
  }
}

placingFaults regularPlan::faults() const {
  placingFaults found;
  for (const faceState& face : faces) {
    found.wrongWay += face.isWrong ? 1 : 0;
    found.collapsed += face.isCollapsed ? 1 : 0;
  }
  for (const joint& each : joints)
    if (!each.wasFolded && faces[place(each.a)].normal * faces[place(each.b)].normal < 0.0)
      ++found.folds;
  return found;
}

/// The vertices of bad faces and so many rings around them, without those that are held.
std::vector<int> regularPlan::region(int rings) const {
  std::vector<char> isIn(facesOf.size(), 0);
  std::vector<int> front;
  const auto enter = [&](int vertex, std::vector<int>& into) {
    if (isIn[place(vertex)]) return;
    isIn[place(vertex)] = 1;
    into.push_back(vertex);
  };
  for (std::size_t f = 0; f < faces.size(); ++f)
    if (faces[f].isBad())
      for (int c = firsts[f]; c < firsts[f + 1]; ++c) enter(corners[at(c)], front);
  std::vector<int> all = front;
  for (int ring = 0; ring < rings; ++ring) {
    std::vector<int> next;
    for (const int vertex : front)
      for (const auto& [other, weight] : neighbours[place(vertex)]) enter(other, next);
    all.insert(all.end(), next.begin(), next.end());
    front = std::move(next);
  }
  all.erase(std::remove_if(all.begin(), all.end(), [this](int v) { return held[place(v)] != 0; }),
            all.end());
  std::sort(all.begin(), all.end());
  return all;
}

void regularPlan::relax(const std::vector<int>& vertices, int passes) {
  for (int pass = 0; pass < passes; ++pass)
    for (const int vertex : vertices) {
      MVector sum;
      double weights = 0.0;
      for (const auto& [other, weight] : neighbours[place(vertex)]) {
        sum += MVector(points[at(other)]) * weight;
        weights += weight;
      }
      if (weights > 0.0) points[at(vertex)] = MPoint(sum / weights);
    }
}

MVector regularPlan::normalAt(int vertex) const {
  MVector sum;
  for (const int face : facesOf[place(vertex)]) sum += areaOf(points, face);
  return sum.normal();
}

void regularPlan::putOn(const std::vector<int>& vertices, const placingSurface& surface) {
  std::vector<MPoint> found;
  found.reserve(vertices.size());
  for (const int vertex : vertices) {
    const MPoint& point = points[at(vertex)];
    const MVector normal = normalAt(vertex);
    MPoint nearest = point, ahead;
    MVector facing;
    const bool isThere = surface.nearest(point, nearest, facing);
    if (isThere && facing * normal <= 0.0 &&
        surface.along(point, normal, 8.0 * point.distanceTo(nearest), ahead, facing) &&
        facing * normal > 0.0)
      nearest = ahead;
    found.push_back(nearest);
  }
  for (std::size_t i = 0; i < vertices.size(); ++i) points[at(vertices[i])] = found[i];
}

placingFaults regularPlan::run(const placingSurface& surface, MPointArray& places) {
  points = places;
  lookAtAll(surface);
  placingFaults best = faults();
  for (int round = 0; round < kRounds && best.all() > 0 && !surface.isStopped(); ++round) {
    const std::vector<int> loose = region(1 + round / 4);
    if (loose.empty()) break;
    if (round % 2 == 0) {
      relax(loose, kMembranePasses);
      putOn(loose, surface);
    }
    for (int pass = 0; pass < kSpreadPasses; ++pass) {
      relax(loose, 1);
      putOn(loose, surface);
    }
    lookAtAll(surface);
    const placingFaults now = faults();
    if (now.all() >= best.all()) continue;
    best = now;
    places = points;
  }
  if (best.all() > 0) settle(surface, best, places);
  return best;
}

/// How badly the faces at a vertex have come out; 0 when they are all right.
double regularPlan::badnessAt(int vertex, const placingSurface& surface) {
  double sum = 0.0;
  for (const int face : facesOf[place(vertex)]) {
    look(face, surface);
    const faceState& state = faces[place(face)];
    if (state.isWrong) sum += 1.0 - state.facing;
    if (state.isCollapsed) sum += 1.0;
  }
  for (const int face : facesOf[place(vertex)])
    for (const int j : jointsOf[place(face)]) {
      const joint& each = joints[place(j)];
      const double turn = faces[place(each.a)].normal * faces[place(each.b)].normal;
      if (!each.wasFolded && turn < 0.0) sum += 1.0 - turn;
    }
  return sum;
}

/// Puts a vertex where the faces at it come out best.
void regularPlan::lookAround(int vertex, const placingSurface& surface) {
  const double before = badnessAt(vertex, surface);
  if (before <= 0.0) return;
  MVector sum;
  double reach = 0.0;
  for (const auto& [other, weight] : neighbours[place(vertex)]) {
    const MPoint& there = points[at(other)];
    sum += MVector(there);
    reach += there.distanceTo(points[at(vertex)]);
  }
  const double count = static_cast<double>(neighbours[place(vertex)].size());
  if (count <= 0.0) return;
  const MPoint middle(sum / count), old = points[at(vertex)];
  reach /= count;
  MPoint bestPlace = old;
  double least = before;
  const auto consider = [&](const MPoint& wanted) {
    MPoint found;
    MVector facing;
    if (!surface.nearest(wanted, found, facing)) return;
    points[at(vertex)] = found;
    const double now = badnessAt(vertex, surface);
    if (now >= least) return;
    least = now;
    bestPlace = found;
  };
  consider(middle);
  for (const double share : {0.3, 0.8, 1.6})
    for (int x = -1; x <= 1; ++x)
      for (int y = -1; y <= 1; ++y)
        for (int z = -1; z <= 1; ++z)
          if ((x != 0 || y != 0 || z != 0) && least > 0.0) {
            const MVector way = MVector(x, y, z).normal() * (share * reach);
            consider(old + way);
            consider(middle + way);
          }
  points[at(vertex)] = bestPlace;
  badnessAt(vertex, surface);
}

void regularPlan::settle(const placingSurface& surface, placingFaults& best, MPointArray& places) {
  constexpr int kSweeps = 60;
  points = places;
  lookAtAll(surface);
  for (int sweep = 0; sweep < kSweeps && best.all() > 0 && !surface.isStopped(); ++sweep) {
    const int rings = sweep % 3;
    for (const int vertex : region(rings)) lookAround(vertex, surface);
    lookAtAll(surface);
    const placingFaults now = faults();
    if (now.all() < best.all()) {
      best = now;
      places = points;
    }
    if (rings < 2) continue;
    // Nobody alone finds a better place: all around it make room.
    const std::vector<int> around = region(2 + sweep / 3);
    relax(around, 1 + sweep / 6);
    putOn(around, surface);
    lookAtAll(surface);
  }
}
