#include "host/ops/topology/bevel_edges.h"

#include <array>
#include <cmath>
#include <numeric>

#include "host/math/frame.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"
#include "host/mesh/shells.h"
#include "host/ops/topology/bevel_corners.h"
#include "host/ops/topology/soft_edges.h"
#include "host/ops/topology/weld.h"

namespace host::ops {
namespace {

using math::Vec3;

// Vertices nearer than this fraction of the offset came together; a bevel that is small all over
// is none of the tolerance's business.
constexpr double kWeldedShare = 0.01;

/// Where a new corner's data comes from: corners of one face, or of the two at an edge.
struct Blend {
  std::array<mesh::CornerWeight, 6> parts;
  std::size_t count = 0;

  void add(CornerId corner, double weight) { parts[count++] = {corner, weight}; }
  void add(const Blend& other, double weight) {
    for (std::size_t i = 0; i < other.count; ++i)
      add(other.parts[i].corner, other.parts[i].weight * weight);
  }
  [[nodiscard]] std::span<const mesh::CornerWeight> span() const { return {parts.data(), count}; }
};
Blend only(CornerId corner) {
  Blend blend;
  blend.add(corner, 1);
  return blend;
}
Blend mixed(const Blend& a, const Blend& b, double t) {
  Blend blend;
  blend.add(a, 1 - t);
  blend.add(b, t);
  return blend;
}

struct LoopPlace {
  VertexId vertex = kNone;
  Blend blend;
};

/// Builds the faces of a bevel around the vertices that BevelCorners places.
class Beveller {
 public:
  Beveller(const Mesh& mesh, BevelCorners& corners, const BevelEdgesOptions& options)
      : mesh_(mesh),
        adjacency_(mesh.adjacency()),
        corners_(corners),
        options_(options),
        rebuilder_(mesh_) {
    rebuilder_.keepAllVertices();
  }

  BevelEdgesResult run(Mesh& mesh) {
    corners_.place(rebuilder_);
    BevelEdgesResult result;
    buildFaces();
    for (const EdgeId e : corners_.edges()) buildStrip(e, result.strips);
    if (options_.fillNgons) buildCaps(result.caps);
    mesh::Rebuilt rebuilt = rebuilder_.finish({.dropUnusedVertices = true});
    firstNewVertex_ = 0;
    for (VertexId v = mesh_.vertexCount(); v-- > 0 && firstNewVertex_ == 0;)
      firstNewVertex_ = rebuilt.vertexMap[at(v)] + 1;
    rebuilt.vertexMap.resize(at(mesh_.vertexCount()));
    result.maps.vertices = std::move(rebuilt.vertexMap);
    result.maps.edges = std::move(rebuilt.edgeMap);
    result.maps.faces.resize(at(mesh_.faceCount()));
    std::iota(result.maps.faces.begin(), result.maps.faces.end(), 0);
    mesh = std::move(rebuilt.mesh);
    return result;
  }
  /// New vertices come last; the first one's id.
  [[nodiscard]] VertexId firstNewVertex() const { return firstNewVertex_; }

 private:
  // The face's data at a place near one of its corners: the place in terms of the two edges there.
  [[nodiscard]] Blend blendAt(CornerId c, VertexId vertex) const {
    const CornerId next = adjacency_.nextCorner(c), previous = adjacency_.previousCorner(c);
    const Vec3 p = corners_.placeOf(mesh_.cornerVertex(c)), d = corners_.placeOf(vertex) - p;
    const Vec3 a = corners_.placeOf(mesh_.cornerVertex(next)) - p,
               b = corners_.placeOf(mesh_.cornerVertex(previous)) - p;
    const double aa = math::dot(a, a), bb = math::dot(b, b), ab = math::dot(a, b);
    const double da = math::dot(d, a), db = math::dot(d, b), determinant = aa * bb - ab * ab;
    double s = 0, t = 0;
    if (determinant > 1e-9 * aa * bb) {
      s = (da * bb - db * ab) / determinant;
      t = (db * aa - da * ab) / determinant;
    } else if (aa > 0) {
      s = da / aa;
    }
    Blend blend;
    blend.add(c, 1 - s - t);
    blend.add(next, s);
    blend.add(previous, t);
    return blend;
  }

  void buildFaces() {
    FaceId next = 0;
    for (const FaceId f : corners_.touchedFaces()) {
      rebuilder_.copyFaces(next, f);
      next = f + 1;
      rebuilder_.beginFace(f);
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        const auto moved = corners_.atCorner(c);
        if (moved.empty()) rebuilder_.addCorner(mesh_.cornerVertex(c), c);
        for (const VertexId v : moved) {
          if (v < mesh_.vertexCount())
            rebuilder_.addCorner(v, c);
          else
            rebuilder_.addCorner(v, blendAt(c, v).span());
        }
      }
      rebuilder_.endFace();
    }
    rebuilder_.copyFaces(next, mesh_.faceCount());
  }

  [[nodiscard]] bool isSeam(EdgeId e) const {
    for (int s = 0; s < mesh_.uvSetCount(); ++s)
      if (mesh::isUvSeam(mesh_, s, e)) return true;
    return false;
  }

  void addLoop(std::span<const LoopPlace> loop, FaceId source, std::vector<FaceId>& faces) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < loop.size(); ++i)
      count += loop[i].vertex != loop[(i + 1) % loop.size()].vertex ? 1 : 0;
    if (count < 3) return;
    rebuilder_.beginFace(source);
    for (std::size_t i = 0; i < loop.size(); ++i)
      if (loop[i].vertex != loop[(i + 1) % loop.size()].vertex)
        rebuilder_.addCorner(loop[i].vertex, loop[i].blend.span());
    faces.push_back(rebuilder_.endFace());
  }

  /// One end of a strip: the corners there of the faces on both sides, and the profile from the
  /// side of the face that walks the edge forwards.
  struct End {
    CornerId near, far;
    std::span<const VertexId> profile;
    bool isReversed;

    [[nodiscard]] VertexId vertex(std::size_t i) const {
      return isReversed ? profile[profile.size() - 1 - i] : profile[i];
    }
  };

  // The data at a fraction t of the way across. A ridge parts the two sides.
  [[nodiscard]] Blend blendAcross(const End& end, double t, bool isFarHalf, bool isSplit) const {
    const std::size_t last = end.profile.size() - 1;
    const auto nearBlend = [&] { return blendAt(end.near, end.vertex(0)); };
    const auto farBlend = [&] { return blendAt(end.far, end.vertex(last)); };
    if (!options_.chamfer)
      return isFarHalf ? mixed(only(end.far), farBlend(), 2 * t - 1)
                       : mixed(nearBlend(), only(end.near), 2 * t);
    if (t == 0) return nearBlend();
    return mixed(nearBlend(), isSplit ? only(end.near) : farBlend(), t);
  }

  void buildStrip(EdgeId e, std::vector<FaceId>& faces) {
    const auto walks = adjacency_.edgeCorners(e);
    const bool isFirstForward = mesh_.cornerVertex(walks[0]) == mesh_.edge(e).a;
    const CornerId out = walks[isFirstForward ? 0 : 1], back = walks[isFirstForward ? 1 : 0];
    const auto [v, w] = mesh_.edge(e);
    // At its other end the edge's sides are the other way round.
    const End atV{out, adjacency_.nextCorner(back), corners_.profile(e, v), false};
    const End atW{adjacency_.nextCorner(out), back, corners_.profile(e, w), true};
    const bool isSplit = isSeam(e);
    const auto n = atV.profile.size() - 1;
    for (std::size_t j = 0; j < n; ++j) {
      const double t0 = static_cast<double>(j) / static_cast<double>(n),
                   t1 = static_cast<double>(j + 1) / static_cast<double>(n);
      const bool isFarHalf = 2 * j >= n;
      const std::array<LoopPlace, 4> loop{
          {{atV.vertex(j), blendAcross(atV, t0, isFarHalf, isSplit)},
           {atV.vertex(j + 1), blendAcross(atV, t1, isFarHalf, isSplit)},
           {atW.vertex(j + 1), blendAcross(atW, t1, isFarHalf, isSplit)},
           {atW.vertex(j), blendAcross(atW, t0, isFarHalf, isSplit)}}};
      addLoop(loop, kNone, faces);
    }
  }

  void buildCaps(std::vector<FaceId>& faces) {
    for (const BevelCorners::Cap& cap : corners_.caps()) {
      const CornerId c = adjacency_.vertexCorners(cap.vertex)[0];
      std::vector<LoopPlace> loop;
      for (const VertexId v : cap.loop)
        loop.push_back({v, v < mesh_.vertexCount() ? only(c) : blendAt(c, v)});
      addLoop(loop, kNone, faces);
    }
  }

  Mesh mesh_;
  const mesh::Adjacency& adjacency_;
  BevelCorners& corners_;
  const BevelEdgesOptions& options_;
  mesh::MeshRebuilder rebuilder_;
  VertexId firstNewVertex_ = 0;
};

// Welds new vertices that the bevel drew together along an edge.
void weldNewVertices(Mesh& mesh, VertexId firstNew, const math::Matrix4& space, double tolerance,
                     BevelEdgesResult& result) {
  JoinedSets joined(at(mesh.vertexCount() - firstNew));
  bool isAny = false;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const auto [a, b] = mesh.edge(e);
    if (a < firstNew || b < firstNew) continue;
    const Vec3 p = math::transformPoint(mesh.point(a), space),
               q = math::transformPoint(mesh.point(b), space);
    if (math::distance(p, q) >= tolerance) continue;
    joined.join(a - firstNew, b - firstNew);
    isAny = true;
  }
  if (!isAny) return;
  std::vector<VertexId> targets(at(mesh.vertexCount()));
  std::iota(targets.begin(), targets.end(), 0);
  for (VertexId v = firstNew; v < mesh.vertexCount(); ++v)
    targets[at(v)] = firstNew + joined.lowest(v - firstNew);
  const EditMaps welded = weldVertices(mesh, targets);
  const auto follow = [](std::vector<Index>& ids, const std::vector<Index>& map) {
    for (Index& id : ids)
      if (id != kNone) id = map[at(id)];
  };
  follow(result.maps.vertices, welded.vertices);
  follow(result.maps.edges, welded.edges);
  follow(result.maps.faces, welded.faces);
  for (auto* faces : {&result.strips, &result.caps}) {
    follow(*faces, welded.faces);
    std::erase(*faces, kNone);
  }
}

// Gives faces UVs of their own, as they look along their normals, about the middle of those they
// have and at the scale of the mesh.
void projectUvs(Mesh& mesh, std::span<const FaceId> faces) {
  for (int s = 0; s < mesh.uvSetCount(); ++s) {
    if (mesh.uvSet(s).cornerIds.empty()) continue;
    mesh::UvSet& set = mesh.editUvSet(s);
    const auto uvAt = [&](CornerId c) { return set.points[at(set.cornerIds[at(c)])]; };
    double area = 0, uvArea = 0;
    for (FaceId f = 0; f < mesh.faceCount(); ++f) {
      const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
      if (set.cornerIds[at(first)] < 0) continue;
      double twice = 0;
      for (CornerId c = first; c < end; ++c) {
        const auto a = uvAt(c), b = uvAt(c + 1 < end ? c + 1 : first);
        twice += static_cast<double>(a.u) * b.v - static_cast<double>(b.u) * a.v;
      }
      uvArea += 0.5 * std::abs(twice);
      area += mesh::faceArea(mesh, f);
    }
    const double scale = area > 0 && uvArea > 0 ? std::sqrt(uvArea / area) : 1;
    for (const FaceId f : faces) {
      const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
      if (set.cornerIds[at(first)] < 0) continue;
      double u = 0, v = 0;
      for (CornerId c = first; c < end; ++c) {
        u += static_cast<double>(uvAt(c).u) / (end - first);
        v += static_cast<double>(uvAt(c).v) / (end - first);
      }
      const math::Frame frame = math::frameFromNormal(
          mesh::faceCenter(mesh, f), mesh::faceAreaVector(mesh, f),
          mesh.point(mesh.cornerVertex(first + 1)) - mesh.point(mesh.cornerVertex(first)));
      for (CornerId c = first; c < end; ++c) {
        const Vec3 p = frame.toLocal(mesh.point(mesh.cornerVertex(c)));
        set.cornerIds[at(c)] = static_cast<UvId>(set.points.size());
        set.points.push_back(
            {static_cast<float>(u + p.x * scale), static_cast<float>(v + p.y * scale)});
      }
    }
  }
}

void softenNewEdges(Mesh& mesh, const BevelEdgesResult& result, double angle) {
  std::vector<EdgeId> edges;
  for (const auto* faces : {&result.strips, &result.caps})
    for (const FaceId f : *faces)
      edges.insert(edges.end(), mesh.faceEdges(f).begin(), mesh.faceEdges(f).end());
  softenSides(mesh, sidesOfEdges(mesh, sortedIds(edges)), angle);
}

Result<math::Matrix4> checkOptions(const BevelEdgesOptions& options) {
  constexpr int kMostSegments = 1000;
  if (options.segments < 1 || options.segments > kMostSegments)
    return fail(ErrorKind::BadArgument, "The number of segments must be 1 to {}, not {}",
                kMostSegments, options.segments);
  for (const double value : {options.offset, options.roundness, options.smoothingAngle,
                             options.mergeTolerance, options.miteringAngle})
    if (!std::isfinite(value)) return fail(ErrorKind::BadArgument, "Bevel needs finite numbers");
  if (options.offset < 0)
    return fail(ErrorKind::BadArgument, "The bevel's offset must be 0 or more, not {}",
                options.offset);
  const auto inverse = math::inverse(options.space);
  if (!inverse) return fail("The object is scaled to nothing; bevel has no space to work in");
  return *inverse;
}

}  // namespace

Result<BevelEdgesResult> bevelEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                    const BevelEdgesOptions& asked) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  const auto inverse = checkOptions(asked);
  if (!inverse) return failWith(inverse.error());
  BevelEdgesOptions options = asked;
  if (!options.chamfer) options.segments += options.segments % 2;
  const Mesh before = mesh;
  BevelCorners corners(before, sortedIds(edges), options, *inverse);
  if (corners.edges().empty())
    return fail("None of the edges can be bevelled: they need two faces wound alike");
  Beveller beveller(before, corners, options);
  BevelEdgesResult result = beveller.run(mesh);
  if (options.mergeVertices)
    weldNewVertices(mesh, beveller.firstNewVertex(), options.space,
                    std::min(options.mergeTolerance, kWeldedShare * corners.offset()), result);
  if (options.uvAssignment == BevelEdgesOptions::UvAssignment::PlanarPerFace) {
    projectUvs(mesh, result.strips);
    projectUvs(mesh, result.caps);
  }
  softenNewEdges(mesh, result, options.smoothingAngle);
  return result;
}

}  // namespace host::ops
