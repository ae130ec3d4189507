#include "host/ops/topology/face_joiner.h"

#include <utility>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"

namespace host::ops {
FaceJoiner::FaceJoiner(const Mesh& mesh)
    : mesh_(mesh),
      adjacency_(mesh_.adjacency()),
      places_(at(mesh.faceCount()), kNone),
      faces_(at(mesh.faceCount())) {}

// Lists the corners of a face with the loop it has in the mesh.
void FaceJoiner::open(FaceId face) {
  if (places_[at(face)] != kNone) return;
  places_[at(face)] = static_cast<Index>(next_.size());
  opened_.push_back(face);
  const CornerId first = mesh_.firstCorner(face), end = mesh_.firstCorner(face + 1);
  for (CornerId c = first; c < end; ++c) {
    next_.push_back(c + 1 < end ? c + 1 : first);
    previous_.push_back(c > first ? c - 1 : end - 1);
  }
}

std::size_t FaceJoiner::placeOf(CornerId c) const {
  const FaceId f = adjacency_.cornerFace(c);
  return at(places_[at(f)] + (c - mesh_.firstCorner(f)));
}

CornerId FaceJoiner::nextOf(CornerId c) const {
  return places_[at(adjacency_.cornerFace(c))] == kNone ? adjacency_.nextCorner(c)
                                                        : next_[placeOf(c)];
}

CornerId FaceJoiner::previousOf(CornerId c) const {
  return places_[at(adjacency_.cornerFace(c))] == kNone ? adjacency_.previousCorner(c)
                                                        : previous_[placeOf(c)];
}

void FaceJoiner::link(CornerId corner, CornerId next) {
  open(adjacency_.cornerFace(corner));
  open(adjacency_.cornerFace(next));
  next_[placeOf(corner)] = next;
  previous_[placeOf(next)] = corner;
}

void FaceJoiner::remove(CornerId corner) {
  open(adjacency_.cornerFace(corner));
  next_[placeOf(corner)] = kNone;
}

VertexId FaceJoiner::vertexOf(CornerId corner) const {
  return mesh_.cornerVertex(corner);
}

// The two corners that walk an edge in opposite directions, if these are all that is left of it.
bool FaceJoiner::findWalks(EdgeId edge, Walks& walks) const {
  const auto corners = adjacency_.edgeCorners(edge);
  if (corners.size() != 2) return false;
  walks = {corners[0], corners[1]};
  if (!isAlive(walks.a) || !isAlive(walks.b)) return false;
  const mesh::EdgeVertices ends = mesh_.edge(edge);
  const auto walksEdge = [&](CornerId c) {
    return ends.has(vertexOf(c)) && vertexOf(nextOf(c)) == ends.other(vertexOf(c));
  };
  return walksEdge(walks.a) && walksEdge(walks.b) && vertexOf(walks.a) != vertexOf(walks.b);
}

bool FaceJoiner::isSpike(const Walks& walks) const {
  return nextOf(walks.a) == walks.b || nextOf(walks.b) == walks.a;
}

// Takes both walks of an edge out of the loops and joins what is left end to end.
void FaceJoiner::removeWalks(const Walks& walks) {
  const CornerId beforeA = previousOf(walks.a), afterA = nextOf(walks.a);
  const CornerId beforeB = previousOf(walks.b), afterB = nextOf(walks.b);
  if (beforeA != walks.b) link(beforeA, afterB);
  if (beforeB != walks.a) link(beforeB, afterA);
  remove(walks.a);
  remove(walks.b);
}

bool FaceJoiner::removeEdge(EdgeId edge) {
  Walks walks;
  if (!findWalks(edge, walks)) return false;
  const FaceId f = adjacency_.cornerFace(walks.a), g = adjacency_.cornerFace(walks.b);
  const bool isJoin = faces_.lowest(f) != faces_.lowest(g);
  if (!isJoin && !isSpike(walks)) return false;
  const CornerId beforeA = previousOf(walks.a), beforeB = previousOf(walks.b);
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
    const CornerId next = nextOf(corner);
    const EdgeId edge = mesh_.cornerEdge(corner);
    Walks walks;
    if (mesh_.cornerEdge(next) != edge || !findWalks(edge, walks)) return;
    const CornerId before = previousOf(corner);
    removeWalks(walks);
    corner = before;
  }
}

std::vector<CornerId> FaceJoiner::cornersLeftAt(VertexId vertex) const {
  std::vector<CornerId> corners;
  for (const CornerId c : adjacency_.vertexCorners(vertex))
    if (isAlive(c)) corners.push_back(c);
  return corners;
}

Index FaceJoiner::loopSize(CornerId corner, Index limit) const {
  Index size = 0;
  CornerId c = corner;
  do {
    ++size;
    c = nextOf(c);
  } while (c != corner && size < limit);
  return size;
}

bool FaceJoiner::areNeighbours(VertexId a, VertexId b) const {
  for (const auto& [from, to] : {std::pair(a, b), std::pair(b, a)})
    for (const CornerId c : adjacency_.vertexCorners(from))
      if (isAlive(c) && vertexOf(nextOf(c)) == to) return true;
  return false;
}

bool FaceJoiner::removeWingedVertex(VertexId vertex) {
  const std::vector<CornerId> corners = cornersLeftAt(vertex);
  if (corners.empty() || corners.size() > 2) return false;
  const VertexId a = vertexOf(previousOf(corners[0])), b = vertexOf(nextOf(corners[0]));
  if (a == b || areNeighbours(a, b)) return false;
  for (const CornerId c : corners) {
    const VertexId before = vertexOf(previousOf(c)), after = vertexOf(nextOf(c));
    if (!((before == a && after == b) || (before == b && after == a)) || loopSize(c, 4) < 4)
      return false;
  }
  for (const CornerId c : corners) bypass(c);
  removed_.push_back(vertex);
  return true;
}

// The edge that closes the gap takes after the sharper of the two that it replaces.
void FaceJoiner::bypass(CornerId corner) {
  const CornerId before = previousOf(corner), after = nextOf(corner);
  const EdgeId e = edgeOf(before), f = edgeOf(corner);
  const auto isSharper = [this](EdgeId x, EdgeId y) {
    if (mesh_.edgeCrease(x) != mesh_.edgeCrease(y))
      return mesh_.edgeCrease(x) > mesh_.edgeCrease(y);
    return !mesh_.isEdgeSmooth(x) && mesh_.isEdgeSmooth(y);
  };
  edgeSource_[before] = isSharper(f, e) ? f : e;
  link(before, after);
  remove(corner);
}

// The edge that a corner walks, or the one that a closed gap takes after.
EdgeId FaceJoiner::edgeOf(CornerId corner) const {
  const auto source = edgeSource_.find(corner);
  return source != edgeSource_.end() ? source->second : mesh_.cornerEdge(corner);
}

void FaceJoiner::cutVertex(VertexId vertex) {
  for (const CornerId c : cornersLeftAt(vertex))
    if (isAlive(c)) bypass(c);
  removed_.push_back(vertex);
}

EditMaps FaceJoiner::finish(Mesh& mesh) {
  EditMaps maps;
  maps.faces.assign(at(mesh_.faceCount()), kNone);
  mesh::MeshRebuilder rebuilder(mesh_);
  rebuilder.keepAllVertices();
  for (const VertexId v : removed_) rebuilder.releaseVertex(v);
  std::sort(opened_.begin(), opened_.end());
  std::unordered_map<FaceId, CornerId> start;  // the lowest corner left of the lowest face
  for (const FaceId f : opened_)
    for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c)
      if (isAlive(c)) start.try_emplace(faces_.lowest(f), c);
  FaceId next = 0, made = 0;
  const auto copyUpTo = [&](FaceId f) {
    rebuilder.copyFaces(next, f);
    for (; next < f; ++next) maps.faces[at(next)] = made++;
  };
  std::vector<LoopCorner> loop;
  for (const FaceId f : opened_) {
    pollCancel(f);
    copyUpTo(f);
    ++next;
    const auto first = start.find(f);
    if (first == start.end()) continue;
    loop.clear();
    CornerId c = first->second;
    do {
      loop.push_back({vertexOf(c), c});
      c = nextOf(c);
    } while (c != first->second);
    if (hasCuts()) removeSpikes(loop);
    if (loop.size() < 3) continue;
    rebuilder.beginFace(f);
    for (const LoopCorner& corner : loop) rebuilder.addCorner(corner.vertex, corner.source);
    maps.faces[at(f)] = rebuilder.endFace();
    ++made;
  }
  copyUpTo(mesh_.faceCount());
  for (const auto& [corner, source] : edgeSource_)
    if (isAlive(corner)) rebuilder.inheritEdge(vertexOf(corner), vertexOf(nextOf(corner)), source);
  for (const FaceId f : opened_) maps.faces[at(f)] = maps.faces[at(faces_.lowest(f))];
  mesh::Rebuilt rebuilt = rebuilder.finish({.dropUnusedVertices = true});
  maps.vertices = std::move(rebuilt.vertexMap);
  maps.edges = std::move(rebuilt.edgeMap);
  mesh = std::move(rebuilt.mesh);
  return maps;
}

}  // namespace host::ops
