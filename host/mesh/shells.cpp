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
Index numberFaces(const Mesh& mesh, const std::vector<Index>& cornerKeys, Index keyCount,
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
  std::vector<std::uint8_t> isMet(at(mesh.faceCount()), 0);
  std::vector<FaceId> faces;
  const auto meet = [&](std::span<const FaceId> found) {
    for (FaceId f : found)
      if (!isMet[at(f)]) {
        isMet[at(f)] = 1;
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
      if (const UvId id = set.cornerIds[at(c)]; id != kNone)
        shells.ofUv[at(id)] = shells.ofFace[at(f)];
  return shells;
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
