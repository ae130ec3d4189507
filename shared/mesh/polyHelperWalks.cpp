#include <maya/MItMeshEdge.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>

#include <algorithm>
#include <unordered_set>
#include <vector>

#include "shared/mesh/polyHelper.h"
#include "shared/numeric/indexArrays.h"

namespace {

constexpr int kNone = -1;

/// A way through the edges of a mesh: `edges` in walking order, closed ones without repeating the
/// first.
struct edgeRun {
  std::vector<int> edges;
  bool isClosed = false;
};

/// An edge and the side (a face of a ring, a vertex of a loop) over which a walk leaves it.
struct place {
  int edge;
  int side;
};

/// The neighbourhoods that walks ask for, through one iterator of each kind.
class neighbourhood {
 public:
  neighbourhood(const MDagPath& mesh, MStatus& status)
      : edge(mesh, MObject::kNullObj, &status), face(mesh), vertex(mesh) {}

  bool goTo(int id) {
    int before = 0;
    return edge.setIndex(id, before) == MS::kSuccess;
  }
  /// Of the edge that `goTo` went to.
  MIntArray facesOfEdge() {
    MIntArray faces;
    edge.getConnectedFaces(faces);
    return faces;
  }
  int endOfEdge(int end) { return edge.index(end); }
  MIntArray facesOf(int id) { return goTo(id) ? facesOfEdge() : MIntArray(); }
  int otherEnd(int id, int end) {
    if (!goTo(id)) return kNone;
    return endOfEdge(0) == end ? endOfEdge(1) : endOfEdge(0);
  }
  MIntArray edgesOfFace(int id) {
    MIntArray edges;
    int before = 0;
    if (face.setIndex(id, before) == MS::kSuccess) face.getEdges(edges);
    return edges;
  }
  MIntArray edgesOfVertex(int id) {
    MIntArray edges;
    int before = 0;
    if (vertex.setIndex(id, before) == MS::kSuccess) vertex.getConnectedEdges(edges);
    return edges;
  }
  int faceCountOfVertex(int id) {
    int before = 0, count = 0;
    if (vertex.setIndex(id, before) == MS::kSuccess) vertex.numConnectedFaces(count);
    return count;
  }

 private:
  MItMeshEdge edge;
  MItMeshPolygon face;
  MItMeshVertex vertex;
};

/// The place of an id among others; their number when it is not there.
unsigned int placeOf(int id, const MIntArray& ids) {
  unsigned int at = 0;
  while (at < ids.length() && ids[at] != id) ++at;
  return at;
}
bool contains(const MIntArray& ids, int id) {
  return placeOf(id, ids) < ids.length();
}

/// Across a quad to the opposite edge, and out by its other face.
place nextInRing(neighbourhood& near, const place& from) {
  if (from.side == kNone) return {kNone, kNone};
  const MIntArray around = near.edgesOfFace(from.side);
  if (around.length() != 4) return {kNone, kNone};
  const unsigned int at = placeOf(from.edge, around);
  if (at == 4) return {kNone, kNone};
  const int opposite = around[(at + 2) % 4];
  const MIntArray faces = near.facesOf(opposite);
  if (faces.length() != 2) return {opposite, kNone};
  return {opposite, faces[0] == from.side ? faces[1] : faces[0]};
}

/// Straight on at a vertex inside a surface of four faces.
place nextInLoop(neighbourhood& near, const place& from) {
  const MIntArray spokes = near.edgesOfVertex(from.side);
  if (spokes.length() != 4 || near.faceCountOfVertex(from.side) != 4) return {kNone, kNone};
  const MIntArray beside = near.facesOf(from.edge);
  int opposite = kNone;
  for (unsigned int i = 0; i < 4; ++i) {
    const MIntArray faces = near.facesOf(spokes[i]);
    if (faces.length() != 2) return {kNone, kNone};
    if (spokes[i] == from.edge || contains(beside, faces[0]) || contains(beside, faces[1]))
      continue;
    if (opposite != kNone) return {kNone, kNone};
    opposite = spokes[i];
  }
  return {opposite, opposite == kNone ? kNone : near.otherEnd(opposite, from.side)};
}

/// On along the mesh border, where it does not fork.
place nextOnBorder(neighbourhood& near, const place& from) {
  const MIntArray spokes = near.edgesOfVertex(from.side);
  int next = kNone;
  for (unsigned int i = 0; i < spokes.length(); ++i) {
    if (spokes[i] == from.edge || near.facesOf(spokes[i]).length() != 1) continue;
    if (next != kNone) return {kNone, kNone};
    next = spokes[i];
  }
  return {next, next == kNone ? kNone : near.otherEnd(next, from.side)};
}

/// Walks from an edge over one side until the walk ends or closes, then over the other. No edge is
/// met twice, also on surfaces that are no manifolds.
template <class Step>
edgeRun walkBothWays(neighbourhood& near, int start, int firstSide, int secondSide, Step step) {
  edgeRun run;
  run.edges.push_back(start);
  std::unordered_set<int> met{start};
  for (place at = step(near, {start, firstSide}); at.edge != kNone; at = step(near, at)) {
    if (at.edge == start) {
      run.isClosed = true;
      return run;
    }
    if (!met.insert(at.edge).second) break;
    run.edges.push_back(at.edge);
  }
  std::reverse(run.edges.begin(), run.edges.end());
  for (place at = step(near, {start, secondSide}); at.edge != kNone; at = step(near, at)) {
    if (!met.insert(at.edge).second) break;
    run.edges.push_back(at.edge);
  }
  return run;
}

MStatus walkRing(const MDagPath& mesh, int edge, edgeRun& run) {
  if (!mesh.isValid()) return MS::kFailure;
  MStatus status;
  neighbourhood near(mesh, status);
  if (status != MS::kSuccess) return status;
  if (!near.goTo(edge)) return MS::kInvalidParameter;
  const MIntArray faces = near.facesOfEdge();
  const bool isManifold = faces.length() == 1 || faces.length() == 2;
  run = walkBothWays(near, edge, isManifold ? faces[0] : kNone,
                     faces.length() == 2 ? faces[1] : kNone, nextInRing);
  return MS::kSuccess;
}

MStatus walkLoop(const MDagPath& mesh, int edge, edgeRun& run) {
  if (!mesh.isValid()) return MS::kFailure;
  MStatus status;
  neighbourhood near(mesh, status);
  if (status != MS::kSuccess) return status;
  if (!near.goTo(edge)) return MS::kInvalidParameter;
  const int first = near.endOfEdge(1), second = near.endOfEdge(0);
  const bool isBorder = near.facesOfEdge().length() == 1;
  run = walkBothWays(near, edge, first, second, isBorder ? nextOnBorder : nextInLoop);
  return MS::kSuccess;
}

void copyTo(const edgeRun& run, MIntArray& edges, bool* isClosed) {
  edges = toArray(run.edges);
  if (isClosed) *isClosed = run.isClosed;
}

/// The part of a run from its edge `first` to `last`. A closed run starts at `first`.
MStatus partOf(const edgeRun& run, int first, int last, MIntArray& edges) {
  const auto begin = run.edges.begin(), end = run.edges.end();
  const auto from = std::find(begin, end, first), to = std::find(begin, end, last);
  if (from == end || to == end) return MS::kFailure;
  if (run.isClosed) {
    const auto forward = to - from, backward = end - to;
    if (forward <= backward)
      for (auto at = from; at <= to; ++at) edges.append(*at);
    else {
      edges.append(first);
      for (auto at = end; at-- != to;) edges.append(*at);
    }
    return MS::kSuccess;
  }
  const bool isForward = from <= to;
  for (auto at = from; at != to; isForward ? ++at : --at) edges.append(*at);
  edges.append(last);
  return MS::kSuccess;
}

}  // namespace

MStatus polyHelper::edgeRing(const MDagPath& mesh, int edge, MIntArray& edges,
                             bool* isClosed) const {
  edges.clear();
  edgeRun run;
  const MStatus status = walkRing(mesh, edge, run);
  if (status == MS::kSuccess) copyTo(run, edges, isClosed);
  return status;
}

MStatus polyHelper::edgeLoop(const MDagPath& mesh, int edge, MIntArray& edges,
                             bool* isClosed) const {
  edges.clear();
  edgeRun run;
  const MStatus status = walkLoop(mesh, edge, run);
  if (status == MS::kSuccess) copyTo(run, edges, isClosed);
  return status;
}

MStatus polyHelper::partialEdgeRing(const MDagPath& mesh, int first, int last,
                                    MIntArray& edges) const {
  edges.clear();
  edgeRun run;
  const MStatus status = walkRing(mesh, first, run);
  return status == MS::kSuccess ? partOf(run, first, last, edges) : status;
}

MStatus polyHelper::partialEdgeLoop(const MDagPath& mesh, int first, int last,
                                    MIntArray& edges) const {
  edges.clear();
  edgeRun run;
  const MStatus status = walkLoop(mesh, first, run);
  return status == MS::kSuccess ? partOf(run, first, last, edges) : status;
}
