#include "uv/edgeWays.h"

#include <maya/MDoubleArray.h>
#include <maya/MPoint.h>
#include <maya/MUintArray.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

constexpr int kNone = -1;
constexpr double kFar = std::numeric_limits<double>::infinity();

std::size_t at(int index) {
  return static_cast<std::size_t>(index);
}

/// Edges with a crease value, which subdivision keeps sharp.
std::vector<int> creasedEdges(const MFnMesh& mesh) {
  MUintArray ids;
  MDoubleArray values;
  std::vector<int> creased;
  if (mesh.getCreaseEdges(ids, values) != MS::kSuccess) return creased;
  for (unsigned int i = 0; i < ids.length() && i < values.length(); ++i)
    if (values[i] > 0.0) creased.push_back(static_cast<int>(ids[i]));
  std::sort(creased.begin(), creased.end());
  return creased;
}

}  // namespace

bool edgeWays::isLater(const front& a, const front& b) {
  return a.cost != b.cost ? a.cost > b.cost : a.vertex > b.vertex;
}

void edgeWays::clear() {
  walk.reset();
  points = nullptr;
  frontier.clear();
}

bool edgeWays::begin(const pickedComponent& from, measure howIn) {
  if (!from.isHit() || !from.mesh.isValid()) {
    clear();
    return false;
  }
  const MMatrix matrix = from.mesh.inclusiveMatrix();
  if (isBegun() && how == howIn && origin.isSame(from) && matrix == toWorld) return true;
  clear();
  MStatus status;
  auto opened = std::make_unique<reader>(from.mesh, status);
  if (status != MS::kSuccess) return false;
  const float* raw = opened->mesh.getRawPoints(&status);
  const MIntArray starts = verticesOf(from);
  if (status != MS::kSuccess || starts.length() == 0 || from.kind == kFaceKind) return false;
  if (howIn == kCreases) opened->creased = creasedEdges(opened->mesh);
  origin = from;
  how = howIn;
  toWorld = matrix;
  walk = std::move(opened);
  points = raw;
  const std::size_t count = at(walk->mesh.numVertices());
  costs.assign(count, kFar);
  arrivals.assign(count, kNone);
  isDone.assign(count, 0);
  for (unsigned int i = 0; i < starts.length(); ++i) start(starts[i]);
  return true;
}

void edgeWays::start(int vertex) {
  costs[at(vertex)] = 0.0;
  frontier.push_back({0.0, vertex});
  std::push_heap(frontier.begin(), frontier.end(), isLater);
}

bool edgeWays::isSettled(int vertex) const {
  return isDone[at(vertex)] != 0;
}

MPoint edgeWays::place(int vertex) const {
  const float* p = points + 3 * at(vertex);
  return MPoint(p[0], p[1], p[2]) * toWorld;
}

/// How much of a crease an edge is, 0 to 1: the bend of its faces, a right angle for the whole; a
/// half more on hard edges; borders, edges of many faces and creased edges whole.
double edgeWays::sharpness(int edge) {
  int before = 0;
  MIntArray faces;
  if (walk->edge.setIndex(edge, before) != MS::kSuccess) return 0.0;
  walk->edge.getConnectedFaces(faces);
  if (faces.length() != 2) return 1.0;
  if (std::binary_search(walk->creased.begin(), walk->creased.end(), edge)) return 1.0;
  MVector a, b;
  walk->mesh.getPolygonNormal(faces[0], a);
  walk->mesh.getPolygonNormal(faces[1], b);
  constexpr double kRightAngle = 1.5707963267948966, kHard = 0.5;
  return std::min(1.0, a.angle(b) / kRightAngle + (walk->mesh.isEdgeSmooth(edge) ? 0.0 : kHard));
}

double edgeWays::edgeCost(int edge, int a, int b) {
  constexpr double kMostSaved = 11.0;
  const double length = place(a).distanceTo(place(b));
  return how == kShortest ? length : length / (1.0 + kMostSaved * sharpness(edge));
}

void edgeWays::reach(int vertex, int overEdge, double cost) {
  if (!(cost < costs[at(vertex)])) return;
  costs[at(vertex)] = cost;
  arrivals[at(vertex)] = overEdge;
  frontier.push_back({cost, vertex});
  std::push_heap(frontier.begin(), frontier.end(), isLater);
}

/// Takes the cheapest vertex of the front, whose cost is final, and reaches on from it.
void edgeWays::settleNext() {
  std::pop_heap(frontier.begin(), frontier.end(), isLater);
  const front now = frontier.back();
  frontier.pop_back();
  if (isSettled(now.vertex)) return;  // it was reached for less since
  isDone[at(now.vertex)] = 1;
  int before = 0;
  if (walk->vertex.setIndex(now.vertex, before) != MS::kSuccess) return;
  walk->vertex.getConnectedEdges(around);
  for (unsigned int i = 0; i < around.length(); ++i) {
    int other = kNone;
    if (walk->vertex.getOppositeVertex(other, around[i]) != MS::kSuccess) continue;
    if (!isSettled(other))
      reach(other, around[i], now.cost + edgeCost(around[i], now.vertex, other));
  }
}

bool edgeWays::grow(unsigned int vertices) {
  if (!isBegun()) return false;
  for (unsigned int i = 0; i < vertices && !frontier.empty(); ++i) settleNext();
  return !frontier.empty();
}

MIntArray edgeWays::wayTo(const pickedComponent& to) {
  MIntArray edges;
  if (!isBegun() || !to.isHit() || !(to.mesh == origin.mesh)) return edges;
  const MIntArray ends = verticesOf(to);
  if (ends.length() == 0 || to.kind == kFaceKind) return edges;
  for (unsigned int i = 0; i < ends.length(); ++i)
    while (!isSettled(ends[i]) && !frontier.empty()) settleNext();
  int end = ends[0];
  for (unsigned int i = 1; i < ends.length(); ++i)
    if (costs[at(ends[i])] < costs[at(end)]) end = ends[i];
  if (!isSettled(end)) return edges;
  if (to.kind == kEdgeKind) edges.append(to.index);
  while (arrivals[at(end)] != kNone) {
    const int edge = arrivals[at(end)];
    edges.append(edge);
    int before = 0, next = kNone;
    walk->vertex.setIndex(end, before);
    if (walk->vertex.getOppositeVertex(next, edge) != MS::kSuccess) break;
    end = next;
  }
  const bool isSameEdge = to.kind == kEdgeKind && to.index == origin.index;
  if (origin.kind == kEdgeKind && !isSameEdge) edges.append(origin.index);
  return edges;
}
