#include "host/mesh/shells.h"

#include <algorithm>
#include <numeric>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"

namespace host::mesh {

namespace {

/// Disjoint sets with path halving; the lowest member stands for its set.
class DisjointSets {
 public:
  explicit DisjointSets(Index count) : parent_(at(count)) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }
  Index find(Index i) {
    while (parent_[at(i)] != i) {
      parent_[at(i)] = parent_[at(parent_[at(i)])];
      i = parent_[at(i)];
    }
    return i;
  }
  void join(Index a, Index b) {
    a = find(a);
    b = find(b);
    if (a != b) parent_[at(std::max(a, b))] = std::min(a, b);
  }

 private:
  std::vector<Index> parent_;
};

/// Links all corners of each face by the key at the corner (vertex, edge or UV id), then numbers
/// the faces' sets.
template <class Key>
Index numberFaces(const Mesh& mesh, const std::vector<Key>& cornerKeys, Index keyCount,
                  std::vector<Index>& ofFace) {
  DisjointSets sets(keyCount);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    const Index key = cornerKeys[at(mesh.firstCorner(f))];
    if (key == kNone) continue;
    for (CornerId c = mesh.firstCorner(f) + 1; c < mesh.firstCorner(f + 1); ++c)
      sets.join(key, cornerKeys[at(c)]);
  }
  std::vector<Index> number(at(keyCount), kNone);
  Index count = 0;
  ofFace.assign(at(mesh.faceCount()), kNone);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    const Index key = cornerKeys[at(mesh.firstCorner(f))];
    if (key == kNone) continue;
    Index& shell = number[at(sets.find(key))];
    if (shell == kNone) shell = count++;
    ofFace[at(f)] = shell;
  }
  return count;
}

}  // namespace

std::vector<std::vector<FaceId>> Shells::faces() const {
  std::vector<Index> sizes(at(count), 0);
  for (Index shell : ofFace) ++sizes[at(shell)];
  std::vector<std::vector<FaceId>> lists(at(count));
  for (std::size_t s = 0; s < lists.size(); ++s) lists[s].reserve(at(sizes[s]));
  for (std::size_t f = 0; f < ofFace.size(); ++f)
    lists[at(ofFace[f])].push_back(static_cast<FaceId>(f));
  return lists;
}

Shells findShells(const Mesh& mesh, ShellLink link) {
  Shells shells;
  shells.count =
      link == ShellLink::Vertices
          ? numberFaces(mesh, mesh.topology().cornerVertices, mesh.vertexCount(), shells.ofFace)
          : numberFaces(mesh, mesh.topology().cornerEdges, mesh.edgeCount(), shells.ofFace);
  return shells;
}

std::vector<FaceId> connectedFaces(const Mesh& mesh, std::span<const FaceId> seeds,
                                   ShellLink link) {
  const Adjacency& adjacency = mesh.adjacency();
  PerElement<FaceId, std::uint8_t> isMet(mesh.faceCount(), 0);
  std::vector<FaceId> faces;
  const auto meet = [&](std::span<const FaceId> found) {
    for (FaceId f : found)
      if (!isMet[f]) {
        isMet[f] = 1;
        faces.push_back(f);
      }
  };
  meet(seeds);
  for (std::size_t i = 0; i < faces.size(); ++i) {
    pollCancel(i);
    if (link == ShellLink::Vertices)
      for (VertexId v : mesh.faceVertices(faces[i])) meet(adjacency.vertexFaces(v));
    else
      for (EdgeId e : mesh.faceEdges(faces[i])) meet(adjacency.edgeFaces(e));
  }
  std::ranges::sort(faces);
  return faces;
}

UvShells findUvShells(const Mesh& mesh, int uvSet) {
  UvShells shells;
  const UvSet& set = mesh.uvSet(uvSet);
  shells.ofUv.assign(set.points.size(), kNone);
  shells.ofFace.assign(at(mesh.faceCount()), kNone);
  if (set.cornerIds.empty()) return shells;
  shells.count =
      numberFaces(mesh, set.cornerIds, static_cast<Index>(set.points.size()), shells.ofFace);
  for (FaceId f = 0; f < mesh.faceCount(); ++f)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      if (const UvId id = set.cornerIds[c]; id != kNone) shells.ofUv[at(id)] = shells.ofFace[at(f)];
  return shells;
}

namespace {

std::vector<Index> shellsNamed(const std::vector<Index>& shellOf, Index count, IdView ids) {
  std::vector<std::uint8_t> isNamed(at(count), 0);
  for (const Index id : ids)
    if (id >= 0 && at(id) < shellOf.size())
      if (const Index shell = shellOf[at(id)]; shell != kNone) isNamed[at(shell)] = 1;
  std::vector<Index> named;
  for (Index s = 0; s < count; ++s)
    if (isNamed[at(s)]) named.push_back(s);
  return named;
}

}  // namespace

std::vector<Index> shellsOfUvs(const UvShells& shells, std::span<const UvId> uvs) {
  return shellsNamed(shells.ofUv, shells.count, uvs);
}

std::vector<Index> shellsOfFaces(const UvShells& shells, std::span<const FaceId> faces) {
  return shellsNamed(shells.ofFace, shells.count, faces);
}

std::vector<UvId> connectedUvs(const Mesh& mesh, int uvSet, std::span<const UvId> seeds) {
  const UvSet& set = mesh.uvSet(uvSet);
  std::vector<std::uint8_t> isIn(set.points.size(), 0);
  for (const UvId uv : seeds)
    if (uv >= 0 && at(uv) < isIn.size()) isIn[at(uv)] = 1;
  PerElement<FaceId, std::uint8_t> isSeen(mesh.faceCount(), 0);
  std::vector<FaceId> queue;
  const Adjacency& adjacency = mesh.adjacency();
  const auto idOf = [&](CornerId c) { return set.cornerIds[c]; };
  const auto visit = [&](FaceId f) {
    if (isSeen[f]) return;
    isSeen[f] = 1;
    queue.push_back(f);
  };
  // UVs lie at one vertex nearly always: the faces around it are looked at, and whole passes find
  // those elsewhere that use a UV all the same.
  for (bool isNew = !set.cornerIds.empty(); isNew;) {
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      if (isSeen[f]) continue;
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
        if (idOf(c) != kNone && isIn[at(idOf(c))]) {
          visit(f);
          break;
        }
    }
    isNew = !queue.empty();
    while (!queue.empty()) {
      const FaceId f = queue.back();
      queue.pop_back();
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        if (idOf(c) == kNone) continue;
        isIn[at(idOf(c))] = 1;
        for (const CornerId other : adjacency.vertexCorners(mesh.cornerVertex(c)))
          if (idOf(other) == idOf(c)) visit(adjacency.cornerFace(other));
      }
    }
  }
  std::vector<UvId> uvs;
  for (std::size_t uv = 0; uv < isIn.size(); ++uv)
    if (isIn[uv]) uvs.push_back(static_cast<UvId>(uv));
  return uvs;
}

bool isUvSeam(const Mesh& mesh, int uvSet, EdgeId edge) {
  const std::vector<UvId>& ids = mesh.uvSet(uvSet).cornerIds;
  if (ids.empty()) return false;
  const Adjacency& adjacency = mesh.adjacency();
  const VertexId a = mesh.edge(edge).a;
  UvId atA = kNone, atB = kNone;
  bool isFirst = true;
  for (CornerId c : adjacency.edgeCorners(edge)) {
    UvId first = ids[at(c)], second = ids[at(adjacency.nextCorner(c))];
    if (mesh.cornerVertex(c) != a) std::swap(first, second);
    if (!isFirst && (first != atA || second != atB)) return true;
    atA = first;
    atB = second;
    isFirst = false;
  }
  return false;
}

std::vector<EdgeId> uvBorderEdges(const Mesh& mesh, int uvSet) {
  std::vector<EdgeId> edges;
  const std::vector<UvId>& ids = mesh.uvSet(uvSet).cornerIds;
  if (ids.empty()) return edges;
  const Adjacency& adjacency = mesh.adjacency();
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    pollCancel(e);
    const auto corners = adjacency.edgeCorners(e);
    const bool isBorder = corners.size() == 1 && ids[at(corners[0])] != kNone;
    if (isBorder || isUvSeam(mesh, uvSet, e)) edges.push_back(e);
  }
  return edges;
}

}  // namespace host::mesh
