#include "host/ops/topology/face_joiner.h"

#include <utility>

#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"

namespace host::ops {
namespace {

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

}  // namespace

FaceJoiner::FaceJoiner(const Mesh& mesh)
    : mesh_(mesh),
      next_(at(mesh.cornerCount())),
      previous_(at(mesh.cornerCount())),
      faces_(at(mesh.faceCount())),
      isRemoved_(at(mesh.vertexCount()), 0) {
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
    for (CornerId c = first; c < end; ++c) link(c, c + 1 < end ? c + 1 : first);
  }
}

void FaceJoiner::link(CornerId corner, CornerId next) {
  next_[at(corner)] = next;
  previous_[at(next)] = corner;
}

VertexId FaceJoiner::vertexOf(CornerId corner) const {
  return mesh_.cornerVertex(corner);
}

// The two corners that walk an edge in opposite directions, if these are all that is left of it.
bool FaceJoiner::findWalks(EdgeId edge, Walks& walks) const {
  const auto corners = mesh_.adjacency().edgeCorners(edge);
  if (corners.size() != 2) return false;
  walks = {corners[0], corners[1]};
  if (!isAlive(walks.a) || !isAlive(walks.b)) return false;
  const mesh::EdgeVertices ends = mesh_.edge(edge);
  const auto walksEdge = [&](CornerId c) {
    return ends.has(vertexOf(c)) && vertexOf(next_[at(c)]) == ends.other(vertexOf(c));
  };
  return walksEdge(walks.a) && walksEdge(walks.b) && vertexOf(walks.a) != vertexOf(walks.b);
}

bool FaceJoiner::isSpike(const Walks& walks) const {
  return next_[at(walks.a)] == walks.b || next_[at(walks.b)] == walks.a;
}

// Takes both walks of an edge out of the loops and joins what is left end to end.
void FaceJoiner::removeWalks(const Walks& walks) {
  const CornerId beforeA = previous_[at(walks.a)], afterA = next_[at(walks.a)];
  const CornerId beforeB = previous_[at(walks.b)], afterB = next_[at(walks.b)];
  if (beforeA != walks.b) link(beforeA, afterB);
  if (beforeB != walks.a) link(beforeB, afterA);
  next_[at(walks.a)] = next_[at(walks.b)] = kNone;
}

bool FaceJoiner::removeEdge(EdgeId edge) {
  Walks walks;
  if (!findWalks(edge, walks)) return false;
  const FaceId f = mesh_.adjacency().cornerFace(walks.a), g = mesh_.adjacency().cornerFace(walks.b);
  const bool isJoin = faces_.lowest(f) != faces_.lowest(g);
  if (!isJoin && !isSpike(walks)) return false;
  const CornerId beforeA = previous_[at(walks.a)], beforeB = previous_[at(walks.b)];
  removeWalks(walks);
  if (isJoin) faces_.join(f, g);
  if (isAlive(beforeA)) removeSpikesFrom(beforeA);
  if (isAlive(beforeB)) removeSpikesFrom(beforeB);
  return true;
}

// A join can leave an edge walked forth and back at once; it dangles and goes, and so may the one
// behind it.
void FaceJoiner::removeSpikesFrom(CornerId corner) {
  while (isAlive(corner)) {
    const CornerId next = next_[at(corner)];
    const EdgeId edge = mesh_.cornerEdge(corner);
    Walks walks;
    if (mesh_.cornerEdge(next) != edge || !findWalks(edge, walks)) return;
    const CornerId before = previous_[at(corner)];
    removeWalks(walks);
    corner = before;
  }
}

std::vector<CornerId> FaceJoiner::cornersLeftAt(VertexId vertex) const {
  std::vector<CornerId> corners;
  for (const CornerId c : mesh_.adjacency().vertexCorners(vertex))
    if (isAlive(c)) corners.push_back(c);
  return corners;
}

Index FaceJoiner::loopSize(CornerId corner, Index limit) const {
  Index size = 0;
  CornerId c = corner;
  do {
    ++size;
    c = next_[at(c)];
  } while (c != corner && size < limit);
  return size;
}

bool FaceJoiner::areNeighbours(VertexId a, VertexId b) const {
  for (const auto& [from, to] : {std::pair(a, b), std::pair(b, a)})
    for (const CornerId c : mesh_.adjacency().vertexCorners(from))
      if (isAlive(c) && vertexOf(next_[at(c)]) == to) return true;
  return false;
}

bool FaceJoiner::removeWingedVertex(VertexId vertex) {
  const std::vector<CornerId> corners = cornersLeftAt(vertex);
  if (corners.empty() || corners.size() > 2) return false;
  const VertexId a = vertexOf(previous_[at(corners[0])]), b = vertexOf(next_[at(corners[0])]);
  if (a == b || areNeighbours(a, b)) return false;
  for (const CornerId c : corners) {
    const VertexId before = vertexOf(previous_[at(c)]), after = vertexOf(next_[at(c)]);
    if (!((before == a && after == b) || (before == b && after == a)) || loopSize(c, 4) < 4)
      return false;
  }
  for (const CornerId c : corners) bypass(c);
  isRemoved_[at(vertex)] = 1;
  return true;
}

// The edge that closes the gap takes after the sharper of the two that it replaces.
void FaceJoiner::bypass(CornerId corner) {
  const CornerId before = previous_[at(corner)], after = next_[at(corner)];
  const EdgeId e = edgeOf(before), f = edgeOf(corner);
  const auto isSharper = [this](EdgeId x, EdgeId y) {
    if (mesh_.edgeCrease(x) != mesh_.edgeCrease(y))
      return mesh_.edgeCrease(x) > mesh_.edgeCrease(y);
    return !mesh_.isEdgeSmooth(x) && mesh_.isEdgeSmooth(y);
  };
  edgeSource_[before] = isSharper(f, e) ? f : e;
  link(before, after);
  next_[at(corner)] = kNone;
}

// The edge that a corner walks, or the one that a closed gap takes after.
EdgeId FaceJoiner::edgeOf(CornerId corner) const {
  const auto source = edgeSource_.find(corner);
  return source != edgeSource_.end() ? source->second : mesh_.cornerEdge(corner);
}

void FaceJoiner::cutVertex(VertexId vertex) {
  for (const CornerId c : cornersLeftAt(vertex))
    if (isAlive(c)) bypass(c);
  isRemoved_[at(vertex)] = 1;
}

EditMaps FaceJoiner::finish(Mesh& mesh) {
  EditMaps maps;
  maps.faces.assign(at(mesh_.faceCount()), kNone);
  mesh::MeshRebuilder rebuilder(mesh_);
  std::vector<CornerId> start(at(mesh_.faceCount()), kNone);
  for (FaceId f = mesh_.faceCount() - 1; f >= 0; --f)
    for (CornerId c = mesh_.firstCorner(f + 1) - 1; c >= mesh_.firstCorner(f); --c)
      if (isAlive(c)) start[at(faces_.lowest(f))] = c;
  std::vector<VertexId> newIds(at(mesh_.vertexCount()), kNone);
  for (VertexId v = 0; v < mesh_.vertexCount(); ++v)
    if (isRemoved_[at(v)] == 0) newIds[at(v)] = rebuilder.keepVertex(v);
  std::vector<LoopCorner> loop;
  for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
    if (start[at(f)] == kNone) continue;
    loop.clear();
    CornerId c = start[at(f)];
    do {
      loop.push_back({newIds[at(vertexOf(c))], c});
      c = next_[at(c)];
    } while (c != start[at(f)]);
    if (hasCuts()) removeSpikes(loop);
    if (loop.size() < 3) continue;
    rebuilder.beginFace(f);
    for (const LoopCorner& corner : loop) rebuilder.addCorner(corner.vertex, corner.source);
    maps.faces[at(f)] = rebuilder.endFace();
  }
  for (const auto& [corner, source] : edgeSource_)
    if (isAlive(corner))
      rebuilder.inheritEdge(newIds[at(vertexOf(corner))], newIds[at(vertexOf(next_[at(corner)]))],
                            source);
  for (FaceId f = 0; f < mesh_.faceCount(); ++f)
    maps.faces[at(f)] = maps.faces[at(faces_.lowest(f))];
  mesh::Rebuilt rebuilt = rebuilder.finish({.dropUnusedVertices = true});
  maps.vertices.assign(at(mesh_.vertexCount()), kNone);
  for (std::size_t v = 0; v < newIds.size(); ++v)
    if (newIds[v] != kNone) maps.vertices[v] = rebuilt.vertexMap[at(newIds[v])];
  maps.edges = std::move(rebuilt.edgeMap);
  mesh = std::move(rebuilt.mesh);
  return maps;
}

}  // namespace host::ops
