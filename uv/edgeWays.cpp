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

double square(double value) {
  return value * value;
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
  links = nullptr;
  points = nullptr;
  frontier.clear();
}

bool edgeWays::begin(const pickedComponent& from, measure howIn, edgeGraph& graph) {
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
  graph.begin(from.mesh);
  if (!graph.finish()) return false;
  if (howIn == kCreases) opened->creased = creasedEdges(opened->mesh);
  origin = from;
  how = howIn;
  toWorld = matrix;
  walk = std::move(opened);
  links = &graph;
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

double edgeWays::length(int a, int b) const {
  const float *p = points + 3 * at(a), *q = points + 3 * at(b);
  const double x = double{q[0]} - p[0], y = double{q[1]} - p[1], z = double{q[2]} - p[2];
  const auto& m = toWorld.matrix;
  return std::sqrt(square(x * m[0][0] + y * m[1][0] + z * m[2][0]) +
                   square(x * m[0][1] + y * m[1][1] + z * m[2][1]) +
                   square(x * m[0][2] + y * m[1][2] + z * m[2][2]));
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
  return how == kShortest ? length(a, b) : length(a, b) / (1.0 + kMostSaved * sharpness(edge));
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
  for (const edgeGraph::link* to = links->begin(now.vertex); to != links->end(now.vertex); ++to)
    if (!isSettled(to->vertex))
      reach(to->vertex, to->edge, now.cost + edgeCost(to->edge, now.vertex, to->vertex));
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
    const auto leads = [edge](const edgeGraph::link& link) { return link.edge == edge; };
    const edgeGraph::link* back = std::find_if(links->begin(end), links->end(end), leads);
    if (back == links->end(end)) break;
    end = back->vertex;
  }
  const bool isSameEdge = to.kind == kEdgeKind && to.index == origin.index;
  if (origin.kind == kEdgeKind && !isSameEdge) edges.append(origin.index);
  return edges;
}
