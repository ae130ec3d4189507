#include "host/ops/topology/bevel_edges.h"

#include <array>
#include <cmath>
#include <numeric>
#include <unordered_map>

#include "host/base/assert.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/mesh/shells.h"
#include "host/ops/topology/soft_edges.h"
#include "host/ops/topology/vertex_fan.h"

namespace host::ops {
namespace {

using math::Vec3;

constexpr double kLeastSine = 0.2;  // edges that meet more sharply would send a corner far away

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

class Beveller {
 public:
  Beveller(const Mesh& mesh, std::span<const EdgeId> edges, const BevelEdgesOptions& options,
           const math::Matrix4& inverse)
      : mesh_(mesh),
        options_(options),
        inverse_(inverse),
        rebuilder_(mesh_),
        isBevelled_(flagsOf(edges, mesh.edgeCount())),
        edges_(sortedIds(edges)) {
    rebuilder_.keepAllVertices();
  }

  bool findFans() {
    const std::vector<EdgeId> listed = std::move(edges_);
    edges_.clear();
    std::vector<VertexId> ends;
    for (const EdgeId e : listed) {
      ends.push_back(mesh_.edge(e).a);
      ends.push_back(mesh_.edge(e).b);
    }
    for (const VertexId v : sortedIds(ends)) fans_.emplace_back(v, vertexFan(mesh_, v));
    for (const auto& [v, fan] : fans_)
      if (!fan.isManifold)
        for (const EdgeId e : mesh_.adjacency().vertexEdges(v)) isBevelled_[at(e)] = 0;
    for (const EdgeId e : listed) {
      if (isBevelled_[at(e)] != 0 && canBevel(e))
        edges_.push_back(e);
      else
        isBevelled_[at(e)] = 0;
    }
    return !edges_.empty();
  }

  BevelEdgesResult run(Mesh& mesh) {
    offset_ = options_.offsetAsFraction ? options_.offset * 0.5 * shortestEdge() : options_.offset;
    for (auto& [v, fan] : fans_) placeVertex(v, fan);
    replaceEdges();
    BevelEdgesResult result;
    buildFaces();
    buildStrips(result);
    buildCaps(result);
    mesh::Rebuilt rebuilt = rebuilder_.finish({.dropUnusedVertices = true});
    rebuilt.vertexMap.resize(at(mesh_.vertexCount()));
    result.maps.vertices = std::move(rebuilt.vertexMap);
    result.maps.edges = std::move(rebuilt.edgeMap);
    result.maps.faces.resize(at(mesh_.faceCount()));
    std::iota(result.maps.faces.begin(), result.maps.faces.end(), 0);
    mesh = std::move(rebuilt.mesh);
    std::vector<EdgeId> edges;
    for (FaceId f = mesh_.faceCount(); f < mesh.faceCount(); ++f)
      edges.insert(edges.end(), mesh.faceEdges(f).begin(), mesh.faceEdges(f).end());
    const auto done = softenEdges(mesh, sortedIds(edges), options_.smoothingAngle);
    HOST_ASSERT(done.has_value(), "check the smoothing angle before bevelling");
    return result;
  }

 private:
  using Blend = std::vector<mesh::CornerWeight>;

  [[nodiscard]] Vec3 pointOf(VertexId v) const {
    return math::transformPoint(mesh_.point(v), options_.space);
  }
  [[nodiscard]] double lengthOf(EdgeId e) const {
    return math::distance(pointOf(mesh_.edge(e).a), pointOf(mesh_.edge(e).b));
  }
  [[nodiscard]] Vec3 along(VertexId v, EdgeId e) const {
    return math::normalized(pointOf(mesh_.edge(e).other(v)) - pointOf(v));
  }
  [[nodiscard]] CornerId nextCorner(CornerId c) const {
    const FaceId f = mesh_.adjacency().cornerFace(c);
    return c + 1 < mesh_.firstCorner(f + 1) ? c + 1 : mesh_.firstCorner(f);
  }
  [[nodiscard]] CornerId previousCorner(CornerId c) const {
    const FaceId f = mesh_.adjacency().cornerFace(c);
    return c > mesh_.firstCorner(f) ? c - 1 : mesh_.firstCorner(f + 1) - 1;
  }

  [[nodiscard]] bool canBevel(EdgeId e) const {
    const auto corners = mesh_.adjacency().edgeCorners(e);
    return corners.size() == 2 && mesh_.cornerVertex(corners[0]) != mesh_.cornerVertex(corners[1]);
  }

  [[nodiscard]] double shortestEdge() const {
    double shortest = HUGE_VAL;
    for (const EdgeId e : edges_)
      for (const VertexId v : {mesh_.edge(e).a, mesh_.edge(e).b})
        for (const EdgeId g : mesh_.adjacency().vertexEdges(v))
          shortest = std::min(shortest, lengthOf(g));
    return shortest;
  }

  // How far from v the corner slides along an edge so that it is `offset` away from the bevelled
  // edge beside it.
  [[nodiscard]] Vec3 slide(VertexId v, EdgeId edge, EdgeId bevelled) const {
    const Vec3 u = along(v, edge);
    const double sine = std::max(math::length(math::cross(u, along(v, bevelled))), kLeastSine);
    const VertexId other = mesh_.edge(edge).other(v);
    const bool slidesAtBothEnds = hasBevelAt(other);
    return u * std::min(offset_ / sine, lengthOf(edge) * (slidesAtBothEnds ? 0.5 : 1.0));
  }
  [[nodiscard]] bool hasBevelAt(VertexId v) const {
    const auto edges = mesh_.adjacency().vertexEdges(v);
    return std::any_of(edges.begin(), edges.end(),
                       [&](EdgeId e) { return isBevelled_[at(e)] != 0; });
  }
  // The way to the place that is `offset` away from two bevelled edges of one face.
  [[nodiscard]] Vec3 mitre(VertexId v, EdgeId e, EdgeId f) const {
    const Vec3 a = along(v, e), b = along(v, f);
    const double sine = math::length(math::cross(a, b));
    const double most = 0.5 * std::min(lengthOf(e), lengthOf(f)) * std::numbers::sqrt2;
    Vec3 way = (a + b) * (offset_ / std::max(sine, kLeastSine));
    if (const double length = math::length(way); length > most) way *= most / length;
    return way;
  }

  // The way of a sector's corner: edges[i] and edges[j] of the fan bound it, those between are left
  // as they are.
  [[nodiscard]] Vec3 sectorWay(VertexId v, const VertexFan& fan, std::size_t i,
                               std::size_t j) const {
    const bool isBoundedBefore = isBevelled_[at(fan.edges[i])] != 0,
               isBoundedAfter = isBevelled_[at(fan.edges[j])] != 0;
    if (isBoundedBefore && isBoundedAfter && j == i + 1)
      return mitre(v, fan.edges[i], fan.edges[j]);
    Vec3 sum;
    int count = 0;
    if (isBoundedBefore) {
      sum += slide(v, fan.edges[i + 1], fan.edges[i]);
      ++count;
    }
    if (isBoundedAfter) {
      sum += slide(v, fan.edges[j - 1], fan.edges[j]);
      ++count;
    }
    return sum / std::max(count, 1);
  }

  VertexId addVertexAt(const Vec3& p) {
    return rebuilder_.addVertex(math::transformPoint(p, inverse_).toFloat());
  }

  void setCorner(CornerId c, VertexId vertex) { cornerVertices_[c] = {vertex}; }

  void placeVertex(VertexId v, VertexFan& fan) {
    std::vector<std::size_t> bounds;  // positions of bevelled edges in the fan
    const std::size_t edgeCount = fan.edges.size() - (fan.isClosed ? 1 : 0);
    for (std::size_t i = 0; i < edgeCount; ++i)
      if (isBevelled_[at(fan.edges[i])] != 0) bounds.push_back(i);
    if (bounds.empty()) return;
    if (fan.isClosed) {
      const std::size_t turn = bounds.front();
      turnFan(fan, turn);
      for (std::size_t& i : bounds) i -= turn;
      if (bounds.size() == 1) return placeEnd(v, fan);
      bounds.push_back(fan.edges.size() - 1);
    } else {
      // The border ends bound the first and last sector without being bevelled.
      bounds.insert(bounds.begin(), 0);
      bounds.push_back(fan.edges.size() - 1);
    }
    std::vector<VertexId> sectors;
    for (std::size_t s = 0; s + 1 < bounds.size(); ++s) {
      const std::size_t i = bounds[s], j = bounds[s + 1];
      sectors.push_back(addVertexAt(pointOf(v) + sectorWay(v, fan, i, j)));
      for (std::size_t k = i; k < j; ++k) setCorner(fan.corners[k], sectors.back());
      for (std::size_t k = i; k <= j; ++k)
        if (isBevelled_[at(fan.edges[k])] == 0) edgeEnds_[endKey(fan.edges[k], v)] = sectors.back();
    }
    const std::size_t count = sectors.size();
    std::vector<VertexId> cap;
    for (std::size_t s = 0; s < count; ++s) {
      // The profile at the edge between the sector before and this one leads from this one to the
      // one before.
      const bool isOpenStart = !fan.isClosed && s == 0;
      const std::size_t before = (s + count - 1) % count;
      if (!isOpenStart) {
        const EdgeId edge = fan.edges[bounds[s]];
        if (count == 2 && fan.isClosed && s == 1) {
          std::vector<VertexId> shared = profiles_[endKey(fan.edges[bounds[0]], v)];
          std::reverse(shared.begin(), shared.end());
          profiles_[endKey(edge, v)] = shared;
        } else {
          profiles_[endKey(edge, v)] = makeProfile(sectors[s], sectors[before], v);
        }
        const auto& profile = profiles_[endKey(edge, v)];
        cap.insert(cap.end(), profile.rbegin() + 1, profile.rend() - 1);
      }
      cap.push_back(sectors[s]);
    }
    if (count >= 3) caps_.push_back({v, cap});
  }

  // A vertex in a closed fan with one bevelled edge, the fan's first.
  void placeEnd(VertexId v, const VertexFan& fan) {
    const std::size_t m = fan.corners.size();
    const EdgeId edge = fan.edges.front();
    if (m == 2) {
      profiles_[endKey(edge, v)].assign(at(options_.segments) + 1, v);
      return;
    }
    const VertexId first = addVertexAt(pointOf(v) + slide(v, fan.edges[1], edge));
    const VertexId last = addVertexAt(pointOf(v) + slide(v, fan.edges[m - 1], edge));
    const auto profile = profiles_[endKey(edge, v)] = makeProfile(first, last, v);
    setCorner(fan.corners.front(), first);
    setCorner(fan.corners.back(), last);
    edgeEnds_[endKey(fan.edges[1], v)] = first;
    edgeEnds_[endKey(fan.edges[m - 1], v)] = last;
    if (m == 3) {
      cornerVertices_[fan.corners[1]].assign(profile.rbegin(), profile.rend());
      return;
    }
    cornerVertices_[fan.corners[1]] = {v, first};
    cornerVertices_[fan.corners[m - 2]] = {last, v};
    rebuilder_.inheritEdge(v, first, fan.edges[1]);
    rebuilder_.inheritEdge(v, last, fan.edges[m - 1]);
    std::vector<VertexId> cap{v};
    cap.insert(cap.end(), profile.rbegin(), profile.rend());
    caps_.push_back({v, cap});
  }

  // Vertices from one corner to another on an arc that leaves along both faces (a rational
  // quadratic curve).
  std::vector<VertexId> makeProfile(VertexId from, VertexId to, VertexId corner) {
    std::vector<VertexId> profile{from};
    const Vec3 a = placeOf(from), b = placeOf(to), c = pointOf(corner);
    const double cosine = math::dot(math::normalized(a - c), math::normalized(b - c));
    const double weight = std::sqrt(std::max(0.0, 0.5 * (1 - cosine)));
    for (int i = 1; i < options_.segments; ++i) {
      const double t = static_cast<double>(i) / options_.segments, s = 1 - t;
      const double sum = s * s + 2 * s * t * weight + t * t;
      const Vec3 arc = (a * (s * s) + c * (2 * s * t * weight) + b * (t * t)) / sum;
      const Vec3 flat = a * s + b * t;
      profile.push_back(addVertexAt(flat + (arc - flat) * options_.roundness));
    }
    profile.push_back(to);
    return profile;
  }
  [[nodiscard]] Vec3 placeOf(VertexId v) const {
    return v < mesh_.vertexCount()
               ? pointOf(v)
               : math::transformPoint(Vec3(rebuilder_.point(v)), options_.space);
  }

  static std::uint64_t endKey(EdgeId e, VertexId v) {
    return static_cast<std::uint64_t>(e) << 32 | static_cast<std::uint32_t>(v);
  }

  void replaceEdges() {
    std::vector<EdgeId> moved;
    for (const auto& entry : edgeEnds_) moved.push_back(static_cast<EdgeId>(entry.first >> 32));
    for (const EdgeId e : sortedIds(moved)) {
      mesh::EdgeVertices ends = mesh_.edge(e);
      const auto a = edgeEnds_.find(endKey(e, ends.a)), b = edgeEnds_.find(endKey(e, ends.b));
      if (a != edgeEnds_.end()) ends.a = a->second;
      if (b != edgeEnds_.end()) ends.b = b->second;
      rebuilder_.replaceEdge(e, ends.a, ends.b);
    }
  }

  // The face's data at a place near one of its corners: the place in terms of the two edges there.
  [[nodiscard]] Blend blendAt(CornerId c, VertexId vertex) const {
    const Vec3 p = pointOf(mesh_.cornerVertex(c)), d = placeOf(vertex) - p;
    const Vec3 a = pointOf(mesh_.cornerVertex(nextCorner(c))) - p,
               b = pointOf(mesh_.cornerVertex(previousCorner(c))) - p;
    const double aa = math::dot(a, a), bb = math::dot(b, b), ab = math::dot(a, b);
    const double da = math::dot(d, a), db = math::dot(d, b), determinant = aa * bb - ab * ab;
    double s = 0, t = 0;
    if (determinant > 1e-9 * aa * bb) {
      s = (da * bb - db * ab) / determinant;
      t = (db * aa - da * ab) / determinant;
    } else if (aa > 0) {
      s = da / aa;
    }
    return {{c, 1 - s - t}, {nextCorner(c), s}, {previousCorner(c), t}};
  }
  static Blend mixed(const Blend& a, const Blend& b, double t) {
    Blend blend;
    for (const mesh::CornerWeight& part : a) blend.push_back({part.corner, part.weight * (1 - t)});
    for (const mesh::CornerWeight& part : b) blend.push_back({part.corner, part.weight * t});
    return blend;
  }

  void buildFaces() {
    std::vector<FaceId> touched;
    for (const auto& entry : cornerVertices_)
      touched.push_back(mesh_.adjacency().cornerFace(entry.first));
    FaceId next = 0;
    for (const FaceId f : sortedIds(touched)) {
      rebuilder_.copyFaces(next, f);
      next = f + 1;
      rebuilder_.beginFace(f);
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        const auto moved = cornerVertices_.find(c);
        if (moved == cornerVertices_.end()) {
          rebuilder_.addCorner(mesh_.cornerVertex(c), c);
          continue;
        }
        for (const VertexId v : moved->second) {
          if (v < mesh_.vertexCount())
            rebuilder_.addCorner(v, c);
          else
            rebuilder_.addCorner(v, blendAt(c, v));
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

  void addLoop(const std::vector<std::pair<VertexId, Blend>>& loop, std::vector<FaceId>& faces) {
    std::vector<std::size_t> kept;
    for (std::size_t i = 0; i < loop.size(); ++i)
      if (loop[i].first != loop[(i + 1) % loop.size()].first) kept.push_back(i);
    if (kept.size() < 3) return;
    rebuilder_.beginFace();
    for (const std::size_t i : kept) rebuilder_.addCorner(loop[i].first, loop[i].second);
    faces.push_back(rebuilder_.endFace());
  }

  void buildStrips(BevelEdgesResult& result) {
    for (const EdgeId e : edges_) {
      const auto corners = mesh_.adjacency().edgeCorners(e);
      const bool isFirstForward = mesh_.cornerVertex(corners[0]) == mesh_.edge(e).a;
      const CornerId out = corners[isFirstForward ? 0 : 1], back = corners[isFirstForward ? 1 : 0];
      const auto [v, w] = mesh_.edge(e);
      const auto& atV = profiles_[endKey(e, v)];
      auto atW = profiles_[endKey(e, w)];
      std::reverse(atW.begin(),
                   atW.end());  // at its other end the edge's sides are the other way round
      const bool isSplit = isSeam(e);
      // From the side of the face that walks v to w (t = 0) to the other one.
      const auto sideBlend = [&](CornerId near, CornerId far, VertexId nearVertex,
                                 VertexId farVertex, double t) {
        const Blend here = blendAt(near, nearVertex);
        return mixed(here, isSplit ? Blend{{near, 1.0}} : blendAt(far, farVertex), t);
      };
      for (int j = 0; j < options_.segments; ++j) {
        const double t0 = static_cast<double>(j) / options_.segments,
                     t1 = static_cast<double>(j + 1) / options_.segments;
        const auto blendV = [&](double t) {
          return sideBlend(out, nextCorner(back), atV.front(), atV.back(), t);
        };
        const auto blendW = [&](double t) {
          return sideBlend(nextCorner(out), back, atW.front(), atW.back(), t);
        };
        addLoop({{atV[at(j)], blendV(t0)},
                 {atV[at(j + 1)], blendV(t1)},
                 {atW[at(j + 1)], blendW(t1)},
                 {atW[at(j)], blendW(t0)}},
                result.strips);
      }
    }
  }

  void buildCaps(BevelEdgesResult& result) {
    for (const Cap& cap : caps_) {
      const CornerId c = mesh_.adjacency().vertexCorners(cap.vertex)[0];
      std::vector<std::pair<VertexId, Blend>> loop;
      for (const VertexId v : cap.loop)
        loop.emplace_back(v, v < mesh_.vertexCount() ? Blend{{c, 1.0}} : blendAt(c, v));
      addLoop(loop, result.caps);
    }
  }

  struct Cap {
    VertexId vertex;
    std::vector<VertexId> loop;
  };

  Mesh mesh_;
  const BevelEdgesOptions& options_;
  math::Matrix4 inverse_;
  mesh::MeshRebuilder rebuilder_;
  std::vector<std::uint8_t> isBevelled_;
  std::vector<EdgeId> edges_;
  std::vector<std::pair<VertexId, VertexFan>> fans_;
  double offset_ = 0;
  std::unordered_map<CornerId, std::vector<VertexId>>
      cornerVertices_;                                    // what replaces a corner, in loop order
  std::unordered_map<std::uint64_t, VertexId> edgeEnds_;  // where an edge ends that was moved
  std::unordered_map<std::uint64_t, std::vector<VertexId>>
      profiles_;  // across a bevelled edge at its end
  std::vector<Cap> caps_;
};

}  // namespace

Result<BevelEdgesResult> bevelEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                    const BevelEdgesOptions& options) {
  constexpr int kMostSegments = 1000;
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  if (options.segments < 1 || options.segments > kMostSegments)
    return fail("The number of segments must be 1 to {}, not {}", kMostSegments, options.segments);
  for (const double value : {options.offset, options.roundness, options.smoothingAngle})
    if (!std::isfinite(value)) return fail("Bevel needs finite numbers");
  if (options.offset < 0)
    return fail("The bevel's offset must be 0 or more, not {}", options.offset);
  const auto inverse = math::inverse(options.space);
  if (!inverse) return fail("The object is scaled to nothing; bevel has no space to work in");
  Beveller beveller(mesh, edges, options, *inverse);
  if (!beveller.findFans())
    return fail("None of the edges can be bevelled: they need two faces wound alike");
  return beveller.run(mesh);
}

}  // namespace host::ops
