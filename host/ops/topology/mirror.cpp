#include "host/ops/topology/mirror.h"

#include <cmath>
#include <numeric>

#include "host/base/cancel_poll.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/plane_cut.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {
namespace {

using math::Vec3;

class Mirrorer {
 public:
  Mirrorer(const Mesh& mesh, const MirrorOptions& options, const math::Matrix4& inverse)
      : mesh_(mesh),
        options_(options),
        inverse_(inverse),
        plane_(options.origin, options.normal),
        rebuilder_(mesh_) {}

  MirrorResult run(Mesh& mesh) {
    findBorders();
    placeCopies();
    rebuilder_.copyFaces(0, mesh_.faceCount());
    MirrorResult result;
    for (FaceId f = 0; f < mesh_.faceCount(); ++f)
      if (const FaceId copy = addCopy(f); copy != kNone) result.copies.push_back(copy);
    if (options_.join == MirrorOptions::Join::Bridge)
      for (const auto& [corner, next] : borderCorners_) addBridge(corner, next, result);
    mesh::Rebuilt rebuilt = rebuilder_.finish({.dropUnusedVertices = true});
    result.maps.vertices.assign(rebuilt.vertexMap.begin(),
                                rebuilt.vertexMap.begin() + mesh_.vertexCount());
    result.maps.edges = std::move(rebuilt.edgeMap);
    result.maps.faces.resize(at(mesh_.faceCount()));
    std::iota(result.maps.faces.begin(), result.maps.faces.end(), 0);
    mesh = std::move(rebuilt.mesh);
    detachUvs(mesh, result);
    mirrorNormals(mesh, result);
    softenJoin(mesh, result);
    return result;
  }

 private:
  [[nodiscard]] Vec3 pointOf(VertexId v) const {
    return math::transformPoint(mesh_.point(v), options_.space);
  }

  // Border edges, and the vertices of those that count as on the plane.
  void findBorders() {
    isOnPlane_.assign(at(mesh_.vertexCount()), 0);
    if (options_.join == MirrorOptions::Join::Apart) return;
    PerElement<EdgeId, Index> uses(mesh_.edgeCount(), 0);
    for (const EdgeId e : mesh_.topology().cornerEdges) ++uses[e];
    const bool takesAll = options_.join == MirrorOptions::Join::Bridge && options_.distance < 0;
    const auto isNear = [&](VertexId v) {
      return takesAll || std::abs(plane_.signedDistance(pointOf(v))) <= options_.distance;
    };
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      pollCancel(f);
      const CornerId first = mesh_.firstCorner(f), end = mesh_.firstCorner(f + 1);
      for (CornerId c = first; c < end; ++c) {
        if (uses[mesh_.cornerEdge(c)] != 1) continue;
        const CornerId next = c + 1 < end ? c + 1 : first;
        const VertexId a = mesh_.cornerVertex(c), b = mesh_.cornerVertex(next);
        if (options_.join == MirrorOptions::Join::Bridge) {
          if (isNear(a) && isNear(b)) borderCorners_.push_back({c, next});
          continue;
        }
        for (const VertexId v : {a, b}) isOnPlane_[at(v)] |= isNear(v) ? 1 : 0;
      }
    }
  }

  void placeCopies() {
    rebuilder_.keepAllVertices();
    copyOf_.resize(at(mesh_.vertexCount()));
    for (VertexId v = 0; v < mesh_.vertexCount(); ++v) {
      pollCancel(v);
      const Vec3 p = pointOf(v);
      if (isOnPlane_[at(v)] != 0) {
        rebuilder_.setPoint(v, math::transformPoint(plane_.project(p), inverse_).toFloat());
        copyOf_[at(v)] = v;
      } else {
        copyOf_[at(v)] =
            rebuilder_.addVertex(math::transformPoint(plane_.mirror(p), inverse_).toFloat(), v);
      }
    }
  }

  // The same corners the other way round, from the same first one. A face that lies in the plane
  // would only double itself.
  FaceId addCopy(FaceId f) {
    const auto loop = mesh_.faceVertices(f);
    if (std::all_of(loop.begin(), loop.end(), [this](VertexId v) { return isOnPlane_[at(v)]; }))
      return kNone;
    const auto n = static_cast<Index>(loop.size());
    rebuilder_.beginFace(f);
    for (Index k = n; k > 0; --k)
      rebuilder_.addCorner(copyOf_[at(loop[at(k % n)])], mesh_.firstCorner(f) + k % n);
    for (Index k = 0; k < n; ++k)
      rebuilder_.inheritEdge(copyOf_[at(loop[at(k)])], copyOf_[at(loop[at((k + 1) % n)])],
                             mesh_.faceEdges(f)[at(k)]);
    return rebuilder_.endFace();
  }

  void addBridge(CornerId corner, CornerId next, MirrorResult& result) {
    const VertexId a = mesh_.cornerVertex(corner), b = mesh_.cornerVertex(next);
    rebuilder_.beginFace();
    rebuilder_.addCorner(b, next);
    rebuilder_.addCorner(a, corner);
    rebuilder_.addCorner(copyOf_[at(a)], corner);
    rebuilder_.addCorner(copyOf_[at(b)], next);
    result.bridges.push_back(rebuilder_.endFace());
  }

  // Whether a vertex of the result belongs to the mirrored side alone.
  [[nodiscard]] bool isCopy(VertexId v) const { return v >= firstCopy_; }

  void detachUvs(Mesh& mesh, const MirrorResult& result) {
    firstCopy_ = 0;
    for (const VertexId v : result.maps.vertices) firstCopy_ = std::max(firstCopy_, v + 1);
    const bool flips = options_.flipUvs != MirrorOptions::FlipUvs::None;
    const CornerId end = mesh.cornerCount();
    const CornerId firstBridge =
        result.bridges.empty() ? end : mesh.firstCorner(result.bridges.front());
    const CornerId first =
        result.copies.empty() ? firstBridge : mesh.firstCorner(result.copies.front());
    for (int s = 0; s < mesh.uvSetCount(); ++s) {
      if (mesh.uvSet(s).cornerIds.empty()) continue;
      mesh::UvSet& set = mesh.editUvSet(s);
      std::vector<UvId> copies(set.points.size(), kNone);
      for (CornerId c = first; c < mesh.cornerCount(); ++c) {
        pollCancel(c);
        UvId& id = set.cornerIds[c];
        const bool isShared = !isCopy(mesh.cornerVertex(c)) && (!flips || c >= firstBridge);
        if (id < 0 || isShared) continue;
        UvId& copy = copies[at(id)];
        if (copy == kNone) {
          copy = static_cast<UvId>(set.points.size());
          math::Vec2f uv = set.points[at(id)];
          if (options_.flipUvs == MirrorOptions::FlipUvs::U) uv.u = 1 - uv.u;
          if (options_.flipUvs == MirrorOptions::FlipUvs::V) uv.v = 1 - uv.v;
          set.points.push_back(uv);
        }
        id = copy;
      }
    }
  }

  void mirrorNormals(Mesh& mesh, const MirrorResult& result) const {
    if (mesh.lockedNormals().locked.empty()) return;
    mesh::LockedNormals& locked = mesh.editLockedNormals();
    for (const FaceId f : result.copies)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        if (locked.locked[at(c)] == 0) continue;
        const Vec3 n = math::transformNormal(Vec3(locked.normals[at(c)]), options_.space);
        const Vec3 mirrored = n - plane_.normal * (2 * math::dot(n, plane_.normal));
        locked.normals[at(c)] =
            math::normalized(math::transformNormal(mirrored, inverse_)).toFloat();
      }
    for (const FaceId f : result.bridges)
      for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
        locked.locked[at(c)] = 0;
        locked.normals[at(c)] = {};
      }
  }

  void softenJoin(Mesh& mesh, const MirrorResult& result) const {
    std::vector<EdgeId> edges;
    for (const FaceId f : result.bridges)
      edges.insert(edges.end(), mesh.faceEdges(f).begin(), mesh.faceEdges(f).end());
    PerElement<VertexId, std::uint8_t> isWelded(mesh.vertexCount(), 0);
    for (std::size_t v = 0; v < isOnPlane_.size(); ++v)
      if (isOnPlane_[v] != 0 && result.maps.vertices[v] != kNone)
        isWelded[result.maps.vertices[v]] = 1;
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e)
      if (isWelded[mesh.edge(e).a] != 0 && isWelded[mesh.edge(e).b] != 0) edges.push_back(e);
    if (!edges.empty())
      softenSides(mesh, sidesOfEdges(mesh, sortedIds(edges)), options_.smoothingAngle);
  }

  Mesh mesh_;
  const MirrorOptions& options_;
  math::Matrix4 inverse_;
  math::Plane plane_;
  mesh::MeshRebuilder rebuilder_;
  std::vector<std::uint8_t> isOnPlane_;  // a vertex that is welded with its own copy
  std::vector<VertexId> copyOf_;
  std::vector<std::pair<CornerId, CornerId>> borderCorners_;  // along the border edges to bridge
  VertexId firstCopy_ = 0;
};

// Cuts the mesh and drops the faces on the side of the normal. @return false when none is left.
bool cutAway(Mesh& mesh, const MirrorOptions& options, EditMaps& maps) {
  const math::Plane plane(options.origin, options.normal);
  const auto distanceOf = [&](const Mesh& of, VertexId v) {
    return plane.signedDistance(math::transformPoint(of.point(v), options.space));
  };
  EditMaps cutMaps;
  const Mesh before = mesh;
  cutAtZero(
      mesh, [&](VertexId v) { return distanceOf(before, v); }, std::max(options.distance, 0.0),
      &cutMaps);
  std::vector<FaceId> away;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    double farthest = 0;
    for (const VertexId v : mesh.faceVertices(f))
      if (const double d = distanceOf(mesh, v); std::abs(d) > std::abs(farthest)) farthest = d;
    if (farthest > 0) away.push_back(f);
  }
  if (static_cast<Index>(away.size()) == mesh.faceCount()) return false;
  auto left = deleteFaces(mesh, away);
  if (!left) return false;
  maps = std::move(cutMaps);
  follow(maps, *left);
  return true;
}

}  // namespace

Result<MirrorResult> mirrorMesh(Mesh& mesh, const MirrorOptions& options) {
  if (!math::isFinite(options.origin) || !math::isFinite(options.normal) ||
      !std::isfinite(options.distance) || !std::isfinite(options.smoothingAngle))
    return fail(ErrorKind::BadArgument, "Mirroring needs finite numbers");
  if (math::lengthSquared(options.normal) == 0)
    return fail("The mirror plane's normal has no length");
  const auto inverse = math::inverse(options.space);
  if (!inverse) return fail("The object is scaled to nothing; it cannot be mirrored");
  Mesh half = mesh;
  EditMaps cut;
  if (options.cut && !cutAway(half, options, cut))
    return fail("The cut leaves nothing of the mesh to mirror");
  Mirrorer mirrorer(half, options, *inverse);
  MirrorResult result = mirrorer.run(half);
  if (options.cut) {
    follow(cut, result.maps);
    result.maps = std::move(cut);
  }
  mesh = std::move(half);
  return result;
}

}  // namespace host::ops
