#include "host/ops/topology/quadrangulate.h"

#include <array>
#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/mesh/shells.h"
#include "host/ops/topology/delete_edges.h"

namespace host::ops {
namespace {

using math::Vec3;

constexpr double kAngleSlack = 1e-5;  // angles at the limit count as within it

/// Two triangles that may become a quad, and how far the quad is from a rectangle.
struct Pair {
  double fault = 0;
  EdgeId edge = kNone;
  FaceId f = kNone, g = kNone;
};

class PairFinder {
 public:
  PairFinder(const Mesh& mesh, std::span<const FaceId> faces, const QuadrangulateOptions& options)
      : mesh_(mesh), options_(options), isListed_(flagsOf(faces, mesh.faceCount())) {}

  [[nodiscard]] std::vector<Pair> find(std::span<const FaceId> faces) const {
    std::vector<EdgeId> edges;
    for (const FaceId f : faces)
      if (mesh_.faceSize(f) == 3)
        edges.insert(edges.end(), mesh_.faceEdges(f).begin(), mesh_.faceEdges(f).end());
    std::vector<Pair> pairs;
    for (const EdgeId e : sortedIds(edges)) {
      Pair pair;
      if (mayGo(e) && measure(e, pair)) pairs.push_back(pair);
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const Pair& a, const Pair& b) { return a.fault < b.fault; });
    return pairs;
  }

 private:
  [[nodiscard]] Vec3 pointOf(VertexId v) const {
    return math::transformPoint(mesh_.point(v), options_.space);
  }

  [[nodiscard]] bool mayGo(EdgeId e) const {
    const auto faces = mesh_.adjacency().edgeFaces(e);
    if (faces.size() != 2 || !mesh_.adjacency().isManifoldEdge(e)) return false;
    if (mesh_.faceSize(faces[0]) != 3 || mesh_.faceSize(faces[1]) != 3) return false;
    if (options_.keepGroupBorder && (isListed_[at(faces[0])] == 0 || isListed_[at(faces[1])] == 0))
      return false;
    if (options_.keepHardEdges && !mesh_.isEdgeSmooth(e)) return false;
    if (mesh_.edgeCrease(e) > 0) return false;
    for (int s = 0; options_.keepTextureBorders && s < mesh_.uvSetCount(); ++s)
      if (mesh::isUvSeam(mesh_, s, e)) return false;
    return true;
  }

  bool measure(EdgeId e, Pair& pair) const {
    const auto corners = mesh_.adjacency().edgeCorners(e);
    pair.edge = e;
    pair.f = mesh_.adjacency().cornerFace(corners[0]);
    pair.g = mesh_.adjacency().cornerFace(corners[1]);
    const VertexId a = mesh_.cornerVertex(corners[0]), b = mesh_.edge(e).other(a);
    const VertexId c = mesh_.cornerVertex(mesh_.adjacency().previousCorner(corners[0]));
    const VertexId d = mesh_.cornerVertex(mesh_.adjacency().previousCorner(corners[1]));
    if (c == d) return false;
    const std::array<Vec3, 4> quad{pointOf(a), pointOf(d), pointOf(b), pointOf(c)};
    const Vec3 n = math::normalized(math::cross(quad[2] - quad[0], quad[3] - quad[0])),
               m = math::normalized(math::cross(quad[1] - quad[0], quad[2] - quad[0]));
    if (math::lengthSquared(n) == 0 || math::lengthSquared(m) == 0) return false;
    if (std::atan2(math::length(math::cross(n, m)), math::dot(n, m)) > options_.angle + kAngleSlack)
      return false;
    for (std::size_t i = 0; i < 4; ++i) {
      const Vec3 out = quad[(i + 1) % 4] - quad[i], in = quad[(i + 3) % 4] - quad[i];
      const Vec3 turn = math::cross(out, in);
      if (math::dot(turn, n + m) <= 0) return false;
      pair.fault +=
          std::abs(std::atan2(math::length(turn), math::dot(out, in)) - std::numbers::pi / 2);
    }
    return true;
  }

  const Mesh& mesh_;
  const QuadrangulateOptions& options_;
  std::vector<std::uint8_t> isListed_;
};

}  // namespace

Result<QuadrangulateResult> quadrangulate(Mesh& mesh, std::span<const FaceId> faces,
                                          const QuadrangulateOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  if (!std::isfinite(options.angle) || options.angle < 0)
    return fail(ErrorKind::BadArgument, "The angle must be 0 or more, not {}", options.angle);
  const std::vector<FaceId> ids = sortedIds(faces);
  PerElement<FaceId, std::uint8_t> isPaired(mesh.faceCount(), 0);
  std::vector<EdgeId> edges;
  std::vector<FaceId> first;
  for (const Pair& pair : PairFinder(mesh, ids, options).find(ids)) {
    if (isPaired[pair.f] != 0 || isPaired[pair.g] != 0) continue;
    isPaired[pair.f] = isPaired[pair.g] = 1;
    edges.push_back(pair.edge);
    first.push_back(pair.f);
  }
  auto joined = deleteEdges(mesh, edges);
  if (!joined) return failWith(std::move(joined).error());
  QuadrangulateResult result;
  result.maps = std::move(joined->maps);
  for (const FaceId f : first) result.quads.push_back(result.maps.faces[at(f)]);
  result.quads = sortedIds(result.quads);
  return result;
}

}  // namespace host::ops
