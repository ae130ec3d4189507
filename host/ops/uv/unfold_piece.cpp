#include "host/ops/uv/unfold_piece.h"

#include <algorithm>
#include <cmath>

#include "host/mesh/adjacency.h"
#include "host/mesh/triangulate.h"

namespace host::ops {
namespace {

constexpr VertexId kSeveral = -2;

/// A face's area is nothing when rounding of its points could make as much of it.
bool hasArea(const mesh::Mesh& mesh, FaceId f) {
  const auto vertices = mesh.faceVertices(f);
  const mesh::Vec3 origin = mesh.point(vertices[0]);
  mesh::Vec3 sum;
  double longest = 0;
  for (std::size_t k = 1; k + 1 < vertices.size(); ++k) {
    const mesh::Vec3 p = mesh.point(vertices[k]) - origin;
    const mesh::Vec3 q = mesh.point(vertices[k + 1]) - origin;
    sum += math::cross(p, q);
    longest = std::max({longest, math::lengthSquared(p), math::lengthSquared(q)});
  }
  return math::length(sum) > 1e-12 * longest;
}

/// Whether so many triangles are flatter than UVs can tell apart at the size of the piece that
/// rounding is sure to turn some over.
bool isTooFine(const flat::Piece& piece) {
  double area = 0;
  for (const flat::Triangle& t : piece.triangles) {
    const math::Vec3 &a = piece.points[at(t[0])], &b = piece.points[at(t[1])];
    area += 0.5 * math::length(math::cross(b - a, piece.points[at(t[2])] - a));
  }
  // Half the distance of floats next to each other, at the size of the piece.
  const double least = 0x1p-25 * std::sqrt(area);
  std::size_t count = 0;
  for (const flat::Triangle& t : piece.triangles) {
    const math::Vec3 &a = piece.points[at(t[0])], &b = piece.points[at(t[1])],
                     &c = piece.points[at(t[2])];
    const double longest =
        std::max({math::length(b - a), math::length(c - b), math::length(a - c)});
    count += math::length(math::cross(b - a, c - a)) < least * longest;
  }
  constexpr std::size_t kSure = 200;  // a few may come out upright by luck
  return count > kSure;
}

}  // namespace

PieceMaker::PieceMaker(const mesh::Mesh& mesh, int uvSet)
    : mesh_(mesh),
      uvSet_(uvSet),
      topology_(uvTopology(mesh, uvSet)),
      twins_(uvTwins(mesh, uvSet)),
      localOf_(mesh.uvSet(uvSet).points.size(), kNone),
      vertexOf_(mesh.uvSet(uvSet).points.size(), kNone) {
  const std::vector<UvId>& ids = mesh.uvSet(uvSet).cornerIds;
  for (std::size_t c = 0; c < ids.size(); ++c) {
    if (ids[c] == kNone) continue;
    VertexId& vertex = vertexOf_[at(ids[c])];
    const VertexId mine = mesh.cornerVertex(static_cast<CornerId>(c));
    vertex = vertex == kNone || vertex == mine ? mine : kSeveral;
  }
  for (Index s = 0; s < topology_.shellCount; ++s) {
    Index local = 0;
    for (const UvId uv : topology_.uvs.of(s)) localOf_[at(uv)] = local++;
  }
}

Result<void> PieceMaker::checkFaces(Index shell) const {
  const mesh::Adjacency& adjacency = mesh_.adjacency();
  for (const FaceId f : topology_.faces.of(shell)) {
    if (!hasArea(mesh_, f)) return fail("face {} has no area", f);
    for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
      const CornerId twin = twins_[at(c)];
      const UvId uv = mesh_.cornerUv(uvSet_, c);
      if (vertexOf_[at(uv)] == kSeveral) return fail("UV {} is used at several vertices", uv);
      if (uv == mesh_.cornerUv(uvSet_, adjacency.nextCorner(c)))
        return fail("edge {} has one UV at both ends", mesh_.cornerEdge(c));
      if (twin == kUvManyFaces)
        return fail("more than two faces meet at edge {}", mesh_.cornerEdge(c));
      if (twin >= 0 && mesh_.cornerVertex(twin) == mesh_.cornerVertex(c))
        return fail("faces {} and {} are wound against each other",
                    std::min(f, adjacency.cornerFace(twin)),
                    std::max(f, adjacency.cornerFace(twin)));
    }
  }
  for (const UvId uv : topology_.uvs.of(shell)) {
    if (!math::isFinite(mesh_.point(vertexOf_[at(uv)])))
      return fail("vertex {} is not at a place", vertexOf_[at(uv)]);
    const mesh::Vec2f p = mesh_.uvSet(uvSet_).points[at(uv)];
    if (!std::isfinite(p.u) || !std::isfinite(p.v))
      return fail(ErrorKind::BadArgument, "UV {} is not a number", uv);
  }
  return {};
}

Result<void> PieceMaker::addBorder(Index shell, flat::Piece& piece) const {
  const mesh::Adjacency& adjacency = mesh_.adjacency();
  std::vector<Index>& next = piece.border.next;
  std::vector<Index>& previous = piece.border.previous;
  next.assign(piece.points.size(), kNone);
  previous.assign(piece.points.size(), kNone);
  Index corners = 0, borderEdges = 0, faces = 0;
  for (const FaceId f : topology_.faces.of(shell)) {
    ++faces;
    for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
      ++corners;
      if (twins_[at(c)] != kUvBorder) continue;
      ++borderEdges;
      const UvId uv = mesh_.cornerUv(uvSet_, c);
      const Index from = localOf_[at(uv)];
      const Index to = localOf_[at(mesh_.cornerUv(uvSet_, adjacency.nextCorner(c)))];
      if (next[at(from)] != kNone) return fail("several fans of faces meet at UV {}", uv);
      next[at(from)] = to;
      previous[at(to)] = from;
    }
  }
  if (borderEdges == 0) return fail("it is closed; cut it open along some edges first");
  Index loops = 0;
  std::vector<std::uint8_t> isDone(next.size(), 0);
  for (std::size_t first = 0; first < next.size(); ++first) {
    if (next[first] == kNone || isDone[first]) continue;
    ++loops;
    for (Index v = static_cast<Index>(first); v != kNone && !isDone[at(v)]; v = next[at(v)])
      isDone[at(v)] = 1;
  }
  const Index edges = borderEdges + (corners - borderEdges) / 2;
  const Index euler = static_cast<Index>(piece.points.size()) - edges + faces;
  if (euler > 2 - loops) return fail("several fans of faces meet at one of its UVs");
  if (euler < 2 - loops) return fail("it has a handle; cut that open first");
  return {};
}

Result<ShellPiece> PieceMaker::make(Index shell) {
  const auto name = [&](const Error& why) {
    return fail("The UV shell of face {} was left as it was: {}.", topology_.faces.of(shell)[0],
                why.message);
  };
  if (auto checked = checkFaces(shell); !checked) return name(checked.error());
  ShellPiece out;
  const mesh::UvSet& set = mesh_.uvSet(uvSet_);
  for (const UvId uv : topology_.uvs.of(shell)) {
    out.uvs.push_back(uv);
    out.piece.points.push_back(mesh_.point(vertexOf_[at(uv)]));
    // A UV that is no number says nothing of where the shell is to be.
    const mesh::Vec2f& place = set.points[at(uv)];
    const bool isNumber = std::isfinite(place.u) && std::isfinite(place.v);
    out.x.push_back(isNumber ? flat::Point{place.u, place.v} : flat::Point{});
  }
  std::vector<mesh::LoopTriangle> triangles;
  std::vector<mesh::Vec3> loop;
  for (const FaceId f : topology_.faces.of(shell)) {
    const CornerId first = mesh_.firstCorner(f);
    const auto local = [&](Index k) { return localOf_[at(mesh_.cornerUv(uvSet_, first + k))]; };
    loop.clear();
    for (const VertexId v : mesh_.faceVertices(f)) loop.push_back(mesh_.point(v));
    mesh::Vec3 normal;
    for (std::size_t k = 1; k + 1 < loop.size(); ++k)
      normal += math::cross(loop[k] - loop[0], loop[k + 1] - loop[0]);
    triangles.clear();
    mesh::triangulateLoop(loop, normal, triangles);
    if (loop.size() == 4)
      out.piece.quads.push_back(
          {local(0), local(1), local(2), local(3), static_cast<Index>(out.piece.triangles.size())});
    for (const mesh::LoopTriangle& t : triangles)
      out.piece.triangles.push_back({local(t[0]), local(t[1]), local(t[2])});
  }
  if (auto added = addBorder(shell, out.piece); !added) return name(added.error());
  if (isTooFine(out.piece))
    return name(Error{ErrorKind::Failed, "its triangles are too small for UVs to tell apart"});
  return out;
}

}  // namespace host::ops
