#include "host/ops/topology/remesh.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_set>

#include "host/base/cancel_poll.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/mesh/triangulate.h"
#include "host/ops/topology/triangle_patch.h"
#include "host/ops/uv/uv_ids.h"
#include "host/spatial/accelerator.h"

namespace host::ops {

namespace {

using math::Vec3;

std::uint64_t pairKey(Index a, Index b) {
  return (std::uint64_t{static_cast<std::uint32_t>(std::min(a, b))} << 32U) |
         static_cast<std::uint32_t>(std::max(a, b));
}

/// Whether UVs of a set end at an edge between two faces.
bool isMapBorder(const Mesh& mesh, EdgeId e) {
  const auto walks = mesh.adjacency().edgeCorners(e);
  if (walks.size() != 2) return true;
  for (int set = 0; set < mesh.uvSetCount(); ++set) {
    const CornerId a = walks[0], b = walks[1];
    const CornerId nextA = mesh.adjacency().nextCorner(a), nextB = mesh.adjacency().nextCorner(b);
    const bool isAlong = mesh.cornerVertex(a) == mesh.cornerVertex(nextB);
    if (mesh.cornerUv(set, a) != mesh.cornerUv(set, isAlong ? nextB : b)) return true;
    if (mesh.cornerUv(set, nextA) != mesh.cornerUv(set, isAlong ? b : nextB)) return true;
  }
  return false;
}

class Remesher {
 public:
  Remesher(const Mesh& mesh, std::vector<FaceId> faces, const RemeshOptions& options)
      : mesh_(mesh),
        options_(options),
        faces_(std::move(faces)),
        isListed_(flagsOf(faces_, mesh.faceCount())),
        original_(mesh::keepFaces(mesh, isListed_).mesh),
        nearest_(original_) {
    patchOf_.assign(at(mesh.vertexCount()), kNone);
    for (const FaceId f : faces_) addFace(f);
    isLocked_.assign(at(patch_.vertexCount()), 0);
    for (EdgeId e = 0; e < mesh.edgeCount(); ++e) fixEdge(e);
  }

  Result<void> run() {
    // Refused before the first split: making millions of triangles to find that out takes minutes.
    if (leastTriangles() > static_cast<double>(options_.mostTriangles)) return failForCount();
    for (int round = 0; round < options_.rounds; ++round) {
      HOST_TRY(splitLong());
      collapseShort();
      flipAll();
      relax();
    }
    // What relaxing has drawn out; nothing is to be left that is too long.
    HOST_TRY(splitLong());
    flipAll();
    return {};
  }

  std::vector<FaceId> finish(Mesh& result) {
    mesh::MeshRebuilder rebuilder(mesh_);
    rebuilder.keepAllVertices();
    std::vector<VertexId> vertices(at(patch_.vertexCount()), kNone);
    for (VertexId v = 0; v < mesh_.vertexCount(); ++v)
      if (const Index own = patchOf_[at(v)]; own != kNone) {
        vertices[at(own)] = v;
        const math::Vec3f place = patch_.point(own).toFloat();
        if (!(place == mesh_.points()[at(v)])) rebuilder.setPoint(v, place);
        rebuilder.releaseVertex(v);
      }
    const auto triangles = patch_.triangles();
    for (const auto& t : triangles)
      for (const Index v : t)
        if (vertices[at(v)] == kNone)
          vertices[at(v)] = rebuilder.addVertex(patch_.point(v).toFloat());
    for (FaceId f = 0; f < mesh_.faceCount(); ++f)
      if (isListed_[at(f)] == 0) rebuilder.copyFace(f);
    for (const auto& [edge, source] : sources_)
      if (vertices[at(edge[0])] != kNone && vertices[at(edge[1])] != kNone)
        rebuilder.inheritEdge(vertices[at(edge[0])], vertices[at(edge[1])], source);
    std::vector<FaceId> made;
    for (const auto& t : triangles) made.push_back(addTriangle(rebuilder, t, vertices));
    result = rebuilder.finish({.dropUnusedVertices = true}).mesh;
    for (int set = 0; set < result.uvSetCount(); ++set) weldUvs(result, set);
    return made;
  }

 private:
  void addFace(FaceId f) {
    const auto loop = mesh_.faceVertices(f);
    for (const VertexId v : loop)
      if (patchOf_[at(v)] == kNone) patchOf_[at(v)] = patch_.addVertex(mesh_.point(v));
    for (const auto& t : mesh::triangulateFace(mesh_, f))
      patch_.addTriangle({patchOf_[at(loop[at(t[0])])], patchOf_[at(loop[at(t[1])])],
                          patchOf_[at(loop[at(t[2])])]});
  }

  void fixEdge(EdgeId e) {
    const auto faces = mesh_.adjacency().edgeFaces(e);
    Index listed = 0;
    for (const FaceId f : faces) listed += isListed_[at(f)];
    if (listed == 0) return;
    const bool isPlain = listed == 2 && faces.size() == 2 && mesh_.adjacency().isManifoldEdge(e) &&
                         mesh_.isEdgeSmooth(e) && mesh_.edgeCrease(e) == 0 &&
                         !isMapBorder(mesh_, e);
    if (isPlain) return;
    const Index a = patchOf_[at(mesh_.edge(e).a)], b = patchOf_[at(mesh_.edge(e).b)];
    patch_.fixEdge(a, b);
    sources_[{std::min(a, b), std::max(a, b)}] = e;
    const bool isBorder = faces.size() == 1;
    if (listed == static_cast<Index>(faces.size()) && !(isBorder && options_.keepsBorders)) return;
    // Other faces hang on it.
    frozen_.insert(pairKey(a, b));
    isLocked_[at(a)] = isLocked_[at(b)] = 1;
  }

  [[nodiscard]] tl::unexpected<Error> failForCount() const {
    return fail("There would be more than {} triangles: give a greater length",
                options_.mostTriangles);
  }

  /// As many triangles as there are at least with no edge too long: an equilateral one covers most.
  [[nodiscard]] double leastTriangles() const {
    const double most = std::sqrt(3.0) / 4 * options_.longest * options_.longest;
    double area = 0;
    for (const TrianglePatch::Triangle& t : patch_.triangles())
      area += length(cross(patch_.point(t[1]) - patch_.point(t[0]),
                           patch_.point(t[2]) - patch_.point(t[0]))) /
              2;
    return area / most;
  }

  void flipAll() {
    Index done = 0;
    for (const auto& [a, b] : patch_.edges()) {
      pollCancel(done++);
      patch_.flip(a, b, options_.longest);
    }
  }

  Result<void> splitLong() {
    // Each pass halves what is too long.
    constexpr int kMostPasses = 100;
    bool changed = true;
    for (int pass = 0; changed && pass < kMostPasses; ++pass) {
      changed = false;
      Index done = 0;
      for (const auto& [a, b] : patch_.edges()) {
        pollCancel(done++);
        if (patch_.lengthOf(a, b) <= options_.longest || frozen_.contains(pairKey(a, b))) continue;
        if (!patch_.areJoined(a, b) || isHeldUp(a, b)) continue;
        const bool isFixed = patch_.isFixed(a, b);
        const Index middle = patch_.split(a, b);
        changed = true;
        if (isFixed) carrySource(a, b, middle);
        if (patch_.triangleCount() > options_.mostTriangles) return failForCount();
      }
    }
    return {};
  }

  /// Splits beside an edge that stays, and is longer, would crowd towards its ends for ever; so an
  /// edge that longer ones lead from to such an edge stays as well.
  [[nodiscard]] bool isHeldUp(Index a, Index b) const {
    if (frozen_.empty()) return false;
    constexpr std::size_t kFarthest = 64;
    std::vector<std::array<Index, 2>> way{{a, b}};
    for (std::size_t i = 0; i < way.size() && i < kFarthest; ++i) {
      const auto [from, into] = way[i];
      const double size = patch_.lengthOf(from, into);
      for (const Index c : patch_.beside(from, into))
        for (const Index end : {from, into}) {
          if (c == kNone || patch_.lengthOf(end, c) < size) continue;
          if (frozen_.contains(pairKey(end, c))) return true;
          const std::array<Index, 2> next{std::min(end, c), std::max(end, c)};
          if (patch_.lengthOf(end, c) > size && std::ranges::find(way, next) == way.end())
            way.push_back(next);
        }
    }
    return false;
  }

  /// Both halves of a fixed edge take after it.
  void carrySource(Index a, Index b, Index middle) {
    const auto found = sources_.find({std::min(a, b), std::max(a, b)});
    if (found == sources_.end()) return;
    const EdgeId source = found->second;
    sources_[{std::min(a, middle), std::max(a, middle)}] = source;
    sources_[{std::min(b, middle), std::max(b, middle)}] = source;
  }

  [[nodiscard]] bool isLocked(Index v) const {
    return at(v) < isLocked_.size() && isLocked_[at(v)] != 0;
  }

  void collapseShort() {
    const double shortest = options_.collapseShare * options_.longest;
    Index done = 0;
    for (auto [a, b] : patch_.edges()) {
      pollCancel(done++);
      if (patch_.lengthOf(a, b) >= shortest || !patch_.areJoined(a, b)) continue;
      if (patch_.fixedEdges(a) < patch_.fixedEdges(b)) std::swap(a, b);
      if (!collapse(b, a)) collapse(a, b);
    }
  }

  bool collapse(Index from, Index into) {
    if (isLocked(from)) return false;
    // A fixed run that gets shorter stays what it was.
    EdgeId source = kNone;
    Index other = kNone;
    if (patch_.fixedEdges(from) == 2)
      for (const Index v : patch_.neighbours(from))
        if (v != into && patch_.isFixed(from, v)) {
          other = v;
          const auto found = sources_.find({std::min(from, v), std::max(from, v)});
          if (found != sources_.end()) source = found->second;
        }
    if (!patch_.collapse(from, into, options_.longest)) return false;
    if (source != kNone) sources_[{std::min(other, into), std::max(other, into)}] = source;
    return true;
  }

  void relax() {
    if (options_.smoothing <= 0) return;
    std::vector<Vec3> places(at(patch_.vertexCount()));
    for (Index v = 0; v < patch_.vertexCount(); ++v) {
      pollCancel(v);
      places[at(v)] = patch_.point(v);
      const std::vector<Index> ring = patch_.neighbours(v);
      if (ring.empty() || patch_.fixedEdges(v) > 0) continue;
      Vec3 middle;
      for (const Index other : ring) middle += patch_.point(other);
      middle = middle / static_cast<double>(ring.size());
      const Vec3 normal = patch_.normalAt(v), step = middle - patch_.point(v);
      const double size = dot(normal, normal);
      const Vec3 along = size > 0 ? step - normal * (dot(step, normal) / size) : step;
      const auto found = nearest_.closestPoint(patch_.point(v) + along * options_.smoothing);
      if (found) places[at(v)] = found->point;
    }
    for (Index v = 0; v < patch_.vertexCount(); ++v) patch_.setPoint(v, places[at(v)]);
  }

  /// Weights of the corners that a place was found between, for a point on or beside them.
  static std::vector<mesh::CornerWeight> weightsOn(const Mesh& mesh,
                                                   const spatial::SurfacePoint& place,
                                                   const Vec3& p) {
    const Vec3 a = mesh.point(mesh.cornerVertex(place.corners[0])),
               b = mesh.point(mesh.cornerVertex(place.corners[1])),
               c = mesh.point(mesh.cornerVertex(place.corners[2])), n = cross(b - a, c - a);
    double u = place.u, v = place.v;
    if (const double area = dot(n, n); area > 0) {
      u = dot(cross(p - a, c - a), n) / area;
      v = dot(cross(b - a, p - a), n) / area;
    }
    double weights[3] = {1 - u - v, u, v}, sum = 0;
    for (double& weight : weights) {
      weight = weight < 1e-9 ? 0 : weight;
      sum += weight;
    }
    std::vector<mesh::CornerWeight> blend;
    for (std::size_t i = 0; i < 3; ++i)
      if (weights[i] > 0) blend.push_back({place.corners[i], weights[i] / sum});
    return blend;
  }

  /// Corners of the part are those of the whole mesh's listed faces, in order.
  [[nodiscard]] CornerId cornerInWhole(FaceId partFace, CornerId corner) const {
    return mesh_.firstCorner(faces_[at(partFace)]) + corner - original_.firstCorner(partFace);
  }

  FaceId addTriangle(mesh::MeshRebuilder& rebuilder, const TrianglePatch::Triangle& t,
                     const std::vector<VertexId>& vertices) {
    pollCancel(t[0]);
    const Vec3 middle = (patch_.point(t[0]) + patch_.point(t[1]) + patch_.point(t[2])) / 3.0;
    const auto source = nearest_.closestPoint(middle);
    rebuilder.beginFace(source ? faces_[at(source->face)] : kNone);
    for (const Index v : t) {
      const Vec3 p = patch_.point(v);
      // At a border of a map the triangle says which side is meant.
      const bool hasSides = patch_.fixedEdges(v) > 0;
      const auto place = nearest_.closestPoint(hasSides ? p + (middle - p) * 0.01 : p);
      std::vector<mesh::CornerWeight> blend;
      if (place) blend = weightsOn(original_, *place, p);
      for (mesh::CornerWeight& part : blend) part.corner = cornerInWhole(place->face, part.corner);
      rebuilder.addCorner(vertices[at(v)], blend);
    }
    return rebuilder.endFace();
  }

  /// UVs that lie on each other at one vertex become one: corners have found them one by one.
  static void weldUvs(Mesh& mesh, int index) {
    if (mesh.uvSet(index).cornerIds.empty()) return;
    mesh::UvSet& set = mesh.editUvSet(index);
    std::vector<UvId> gone;
    for (VertexId v = 0; v < mesh.vertexCount(); ++v) {
      std::vector<UvId> kept;
      for (const CornerId c : mesh.adjacency().vertexCorners(v)) {
        UvId& id = set.cornerIds[at(c)];
        if (id == kNone) continue;
        const mesh::Vec2f uv = set.points[at(id)];
        const auto same = std::find_if(kept.begin(), kept.end(), [&](UvId other) {
          const mesh::Vec2f& o = set.points[at(other)];
          return std::abs(o.u - uv.u) < 1e-5F && std::abs(o.v - uv.v) < 1e-5F;
        });
        if (same == kept.end()) {
          kept.push_back(id);
        } else if (*same != id) {
          gone.push_back(id);
          id = *same;
        }
      }
    }
    dropUnusedUvs(set, sortedIds(gone));
  }

  const Mesh& mesh_;
  const RemeshOptions& options_;
  std::vector<FaceId> faces_;
  std::vector<std::uint8_t> isListed_;
  Mesh original_;  ///< the faces alone, as they were
  spatial::Accelerator nearest_;
  TrianglePatch patch_;
  std::vector<Index> patchOf_;          ///< a vertex of the mesh: the patch's
  std::vector<std::uint8_t> isLocked_;  ///< a vertex of the patch
  std::unordered_set<std::uint64_t> frozen_;
  std::map<std::array<Index, 2>, EdgeId> sources_;  ///< of fixed edges
};

}  // namespace

Result<std::vector<FaceId>> remeshFaces(Mesh& mesh, std::span<const FaceId> faces,
                                        const RemeshOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  if (!(options.longest > 0))
    return fail(ErrorKind::BadArgument, "The longest edge must be longer than zero");
  if (!(options.collapseShare >= 0 && options.collapseShare <= 0.75))
    return fail(ErrorKind::BadArgument,
                "The share below which edges collapse must be from 0 to 0.75: halves of a split "
                "edge would collapse again");
  if (faces.empty()) return std::vector<FaceId>{};
  Remesher remesher(mesh, sortedIds(faces), options);
  HOST_TRY(remesher.run());
  Mesh result;
  std::vector<FaceId> made = remesher.finish(result);
  mesh = std::move(result);
  return made;
}

}  // namespace host::ops
