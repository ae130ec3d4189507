#include "host/ops/topology/bevel_faces.h"

#include <numeric>

#include "host/base/cancel_poll.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"
#include "host/mesh/shells.h"

namespace host::ops {
namespace {

using math::Vec3;

/// Adds the corners of a face as they count at a place near one of its corners: the place in terms
/// of the two edges there.
void addPlace(const Mesh& mesh, const BevelCorners& corners, CornerId c, VertexId vertex,
              std::span<const math::Vec3f> places, double weight, BevelBlend& blend) {
  const mesh::Adjacency& adjacency = mesh.adjacency();
  const CornerId next = adjacency.nextCorner(c), previous = adjacency.previousCorner(c);
  const auto place = [&](VertexId v) { return corners.placeOf(v, places); };
  const Vec3 p = place(mesh.cornerVertex(c)), d = place(vertex) - p;
  const Vec3 a = place(mesh.cornerVertex(next)) - p, b = place(mesh.cornerVertex(previous)) - p;
  const double aa = math::dot(a, a), bb = math::dot(b, b), ab = math::dot(a, b);
  const double da = math::dot(d, a), db = math::dot(d, b), determinant = aa * bb - ab * ab;
  double s = 0, t = 0;
  if (determinant > 1e-9 * aa * bb) {
    s = (da * bb - db * ab) / determinant;
    t = (db * aa - da * ab) / determinant;
  } else if (aa > 0) {
    s = da / aa;
  }
  blend.add(c, (1 - s - t) * weight);
  blend.add(next, s * weight);
  blend.add(previous, t * weight);
}

struct LoopPlace {
  VertexId vertex = kNone;
  BevelCornerSource source;
};

class Beveller {
 public:
  Beveller(const Mesh& before, BevelCorners& corners, const BevelEdgesOptions& options)
      : mesh_(before),
        adjacency_(before.adjacency()),
        corners_(corners),
        options_(options),
        rebuilder_(before) {
    rebuilder_.keepAllVertices();
  }

  BevelledMesh run(const BevelEdgesOptions& trial) {
    corners_.place(rebuilder_, trial);
    BevelEdgesResult result;
    buildFaces();
    for (const EdgeId e : corners_.edges()) buildStrip(e, result.strips);
    if (options_.fillNgons) buildCaps(result.caps);
    mesh::Rebuilt rebuilt = rebuilder_.finish({.dropUnusedVertices = true});
    BevelledMesh built;
    for (VertexId v = mesh_.vertexCount(); v-- > 0 && built.firstNew == 0;)
      built.firstNew = rebuilt.vertexMap[v] + 1;
    built.added.assign(rebuilt.vertexMap.begin() + mesh_.vertexCount(), rebuilt.vertexMap.end());
    rebuilt.vertexMap.resize(at(mesh_.vertexCount()));
    result.maps.vertices = std::move(rebuilt.vertexMap);
    result.maps.edges = std::move(rebuilt.edgeMap);
    result.maps.faces.resize(at(mesh_.faceCount()));
    std::iota(result.maps.faces.begin(), result.maps.faces.end(), 0);
    built.result = std::move(result);
    built.mesh = std::move(rebuilt.mesh);
    for (const Listed& listed : listed_)
      built.corners.push_back({built.mesh.firstCorner(listed.face) + listed.place, listed.source});
    return built;
  }

 private:
  /// A corner that blends, by its face and its place there.
  struct Listed {
    FaceId face;
    Index place;
    BevelCornerSource source;
  };

  void addCorner(FaceId face, Index place, VertexId vertex, const BevelCornerSource& source) {
    rebuilder_.addCorner(vertex, bevelBlend(mesh_, corners_, source, corners_.places()).span());
    if (source.firstAt != kNone || source.second != kNone) listed_.push_back({face, place, source});
  }

  void buildFaces() {
    FaceId next = 0;
    for (const FaceId f : corners_.touchedFaces()) {
      pollCancel(f);
      rebuilder_.copyFaces(next, f);
      next = f + 1;
      rebuilder_.beginFace(f);
      Index place = 0;
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        const auto moved = corners_.atCorner(c);
        if (moved.empty()) addCorner(f, place++, mesh_.cornerVertex(c), {.first = c});
        for (const VertexId v : moved)
          addCorner(f, place++, v, {.first = c, .firstAt = v < mesh_.vertexCount() ? kNone : v});
      }
      rebuilder_.endFace();
    }
    rebuilder_.copyFaces(next, mesh_.faceCount());
    nextFace_ = mesh_.faceCount();
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
    Index place = 0;
    for (std::size_t i = 0; i < loop.size(); ++i)
      if (loop[i].vertex != loop[(i + 1) % loop.size()].vertex)
        addCorner(nextFace_, place++, loop[i].vertex, loop[i].source);
    faces.push_back(rebuilder_.endFace());
    ++nextFace_;
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
  [[nodiscard]] BevelCornerSource sourceAcross(const End& end, double t, bool isFarHalf,
                                               bool isSplit) const {
    const VertexId nearest = end.vertex(0), farthest = end.vertex(end.profile.size() - 1);
    if (!options_.chamfer)
      return isFarHalf ? BevelCornerSource{end.far, kNone, end.far, farthest, 2 * t - 1}
                       : BevelCornerSource{end.near, nearest, end.near, kNone, 2 * t};
    if (t == 0) return {.first = end.near, .firstAt = nearest};
    if (isSplit) return {end.near, nearest, end.near, kNone, t};
    if (t == 1) return {.first = end.far, .firstAt = farthest};
    return {end.near, nearest, end.far, farthest, t};
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
    const FaceId largest = largestFace(walks);
    const auto n = atV.profile.size() - 1;
    for (std::size_t j = 0; j < n; ++j) {
      const double t0 = static_cast<double>(j) / static_cast<double>(n),
                   t1 = static_cast<double>(j + 1) / static_cast<double>(n);
      const bool isFarHalf = 2 * j >= n;
      const std::array<LoopPlace, 4> loop{
          {{atV.vertex(j), sourceAcross(atV, t0, isFarHalf, isSplit)},
           {atV.vertex(j + 1), sourceAcross(atV, t1, isFarHalf, isSplit)},
           {atW.vertex(j + 1), sourceAcross(atW, t1, isFarHalf, isSplit)},
           {atW.vertex(j), sourceAcross(atW, t0, isFarHalf, isSplit)}}};
      addLoop(loop, largest, faces);
    }
  }

  /// The one of the faces at some corners with the most area: what new faces between them are a
  /// piece of.
  [[nodiscard]] FaceId largestFace(std::span<const CornerId> corners) const {
    FaceId largest = kNone;
    double most = -1;
    for (const CornerId c : corners) {
      const FaceId face = adjacency_.cornerFace(c);
      const double area = mesh::faceArea(mesh_, face);
      if (area <= most) continue;
      most = area;
      largest = face;
    }
    return largest;
  }

  void buildCaps(std::vector<FaceId>& faces) {
    for (const BevelCorners::Cap& cap : corners_.caps()) {
      const CornerId c = adjacency_.vertexCorners(cap.vertex)[0];
      std::vector<LoopPlace> loop;
      for (const VertexId v : cap.loop)
        loop.push_back({v, {.first = c, .firstAt = v < mesh_.vertexCount() ? kNone : v}});
      addLoop(loop, largestFace(adjacency_.vertexCorners(cap.vertex)), faces);
    }
  }

  const Mesh& mesh_;
  const mesh::Adjacency& adjacency_;
  BevelCorners& corners_;
  const BevelEdgesOptions& options_;
  mesh::MeshRebuilder rebuilder_;
  FaceId nextFace_ = 0;
  std::vector<Listed> listed_;
};

}  // namespace

BevelBlend bevelBlend(const Mesh& before, const BevelCorners& corners,
                      const BevelCornerSource& source, std::span<const math::Vec3f> places) {
  BevelBlend blend;
  const auto add = [&](CornerId corner, VertexId vertex, double weight) {
    if (vertex == kNone)
      blend.add(corner, weight);
    else
      addPlace(before, corners, corner, vertex, places, weight, blend);
  };
  add(source.first, source.firstAt, source.second == kNone ? 1 : 1 - source.share);
  if (source.second != kNone) add(source.second, source.secondAt, source.share);
  return blend;
}

BevelledMesh buildBevel(const Mesh& before, BevelCorners& corners, const BevelEdgesOptions& options,
                        const BevelEdgesOptions& trial) {
  return Beveller(before, corners, options).run(trial);
}

}  // namespace host::ops
