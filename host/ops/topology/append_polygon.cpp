#include "host/ops/topology/append_polygon.h"

#include <algorithm>
#include <set>

#include "host/math/frame.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/rebuild.h"
#include "host/ops/uv/uv_ids.h"

namespace host::ops {
namespace {

// How many border edges the loop walks in the direction of the face that is there, less those
// against it.
int walksWithNeighbours(const Mesh& mesh, std::span<const VertexId> loop) {
  int balance = 0;
  for (std::size_t i = 0; i < loop.size(); ++i) {
    const VertexId a = loop[i], b = loop[(i + 1) % loop.size()];
    if (a >= mesh.vertexCount() || b >= mesh.vertexCount()) continue;
    const EdgeId e = mesh.adjacency().findEdge(a, b);
    if (e == kNone || !mesh.adjacency().isBorderEdge(e)) continue;
    balance += mesh.cornerVertex(mesh.adjacency().edgeCorners(e)[0]) == a ? 1 : -1;
  }
  return balance;
}

Result<void> checkCorners(const Mesh& mesh, std::span<const PolygonCorner> corners) {
  if (corners.size() < 3)
    return fail(ErrorKind::BadArgument, "A polygon needs at least 3 corners, not {}",
                corners.size());
  std::set<VertexId> seen;
  for (const PolygonCorner& corner : corners) {
    if (const auto* point = std::get_if<math::Vec3>(&corner)) {
      if (!math::isFinite(*point))
        return fail(ErrorKind::BadArgument, "A polygon's points must be finite");
      continue;
    }
    const VertexId v = std::get<VertexId>(corner);
    HOST_TRY(checkIds("vertex", std::span(&v, 1), mesh.vertexCount()));
    if (!seen.insert(v).second)
      return fail(ErrorKind::BadArgument, "Vertex {} appears twice in the polygon", v);
  }
  return {};
}

// A border from one of its corners on, against the faces at its side, until it meets a vertex
// again.
class BorderTracer {
 public:
  explicit BorderTracer(const Mesh& mesh) : mesh_(mesh), isUsed_(at(mesh.edgeCount()), 0) {}

  // The loop that closes the border through an edge; empty when it was closed before or does not
  // come round.
  std::vector<VertexId> loopThrough(EdgeId start) {
    std::vector<VertexId> loop;
    std::vector<EdgeId> edges;
    EdgeId e = start;
    while (e != kNone && isUsed_[at(e)] == 0) {
      isUsed_[at(e)] = 1;
      const VertexId from = endOf(e);  // the face walks startOf -> endOf; the border goes back
      // A vertex met again closes a piece of its own.
      const auto again = std::find(loop.begin(), loop.end(), from);
      if (again != loop.end()) {
        for (std::size_t i = 0; i < edges.size(); ++i)
          if (static_cast<std::ptrdiff_t>(i) < again - loop.begin()) isUsed_[at(edges[i])] = 0;
        isUsed_[at(e)] = 0;
        return {again, loop.end()};
      }
      loop.push_back(from);
      edges.push_back(e);
      e = nextFrom(startOf(e), start);
      if (e == start) return loop;
    }
    for (const EdgeId edge : edges) isUsed_[at(edge)] = 1;
    return {};
  }
  [[nodiscard]] bool isUsed(EdgeId e) const { return isUsed_[at(e)] != 0; }

 private:
  [[nodiscard]] CornerId walk(EdgeId e) const { return mesh_.adjacency().edgeCorners(e)[0]; }
  [[nodiscard]] VertexId startOf(EdgeId e) const { return mesh_.cornerVertex(walk(e)); }
  [[nodiscard]] VertexId endOf(EdgeId e) const { return mesh_.edge(e).other(startOf(e)); }
  [[nodiscard]] EdgeId nextFrom(VertexId v, EdgeId start) const {
    for (const EdgeId e : mesh_.adjacency().vertexEdges(v))
      if (mesh_.adjacency().isBorderEdge(e) && endOf(e) == v && (isUsed_[at(e)] == 0 || e == start))
        return e;
    return kNone;
  }

  const Mesh& mesh_;
  std::vector<std::uint8_t> isUsed_;
};

}  // namespace

Result<AppendPolygonResult> appendPolygon(Mesh& mesh, std::span<const PolygonCorner> corners) {
  HOST_TRY(checkCorners(mesh, corners));
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  AppendPolygonResult result;
  std::vector<VertexId> loop;
  for (const PolygonCorner& corner : corners) {
    if (const auto* point = std::get_if<math::Vec3>(&corner)) {
      loop.push_back(rebuilder.addVertex(point->toFloat()));
      result.vertices.push_back(loop.back());
    } else {
      loop.push_back(std::get<VertexId>(corner));
    }
  }
  if (walksWithNeighbours(mesh, loop) > 0) std::reverse(loop.begin() + 1, loop.end());
  rebuilder.copyFaces(0, mesh.faceCount());
  rebuilder.beginFace();
  for (const VertexId v : loop) rebuilder.addCorner(v);
  result.face = rebuilder.endFace();
  mesh = rebuilder.finish().mesh;
  return result;
}

Result<Mesh> createPolygon(std::span<const math::Vec3> points) {
  if (points.size() < 3)
    return fail(ErrorKind::BadArgument, "A polygon needs at least 3 corners, not {}",
                points.size());
  std::vector<math::Vec3f> stored;
  std::vector<VertexId> loop;
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (!math::isFinite(points[i]))
      return fail(ErrorKind::BadArgument, "A polygon's points must be finite");
    stored.push_back(points[i].toFloat());
    loop.push_back(static_cast<VertexId>(i));
  }
  const std::vector<Index> counts{static_cast<Index>(points.size())};
  auto mesh = mesh::buildMesh(std::move(stored), counts, loop);
  if (!mesh) return failWith(std::move(mesh).error());
  mesh->setEdgeSmooth(std::vector<std::uint8_t>(points.size(), 0));
  mesh::UvSet& set = mesh->editUvSet(0);
  for (const mesh::Vec2f& uv : polygonUvs(points)) set.points.push_back(uv);
  set.cornerIds = copyIds<UvId>(loop);
  return mesh;
}

std::vector<mesh::Vec2f> polygonUvs(std::span<const math::Vec3> points) {
  math::Vec3 area;
  for (std::size_t i = 0; i < points.size(); ++i)
    area += math::cross(points[i] - points[0], points[(i + 1) % points.size()] - points[0]);
  // Seen from the side that it faces; x of the view is as near to x as it can be.
  const math::Frame view = math::frameFromNormal(points[0], area, {1, 0, 0});
  double lowU = 0, lowV = 0, highU = 0, highV = 0;
  std::vector<math::Vec3> flat;
  for (const math::Vec3& p : points) {
    flat.push_back(view.toLocal(p));
    lowU = std::min(lowU, flat.back().x), highU = std::max(highU, flat.back().x);
    lowV = std::min(lowV, flat.back().y), highV = std::max(highV, flat.back().y);
  }
  const double size = std::max(highU - lowU, highV - lowV), scale = size > 0 ? 1 / size : 0;
  std::vector<mesh::Vec2f> uvs;
  for (const math::Vec3& p : flat)
    uvs.push_back(
        {static_cast<float>((p.x - lowU) * scale), static_cast<float>((p.y - lowV) * scale)});
  return uvs;
}

void normalizeFaceUvs(Mesh& mesh, int uvSet, FaceId face) {
  std::vector<math::Vec3> points;
  for (const VertexId v : mesh.faceVertices(face)) points.emplace_back(mesh.points()[at(v)]);
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  std::vector<UvId>& ids = writableCornerIds(set, mesh.cornerCount());
  const std::vector<mesh::Vec2f> uvs = polygonUvs(points);
  for (std::size_t i = 0; i < uvs.size(); ++i) {
    ids[at(mesh.firstCorner(face)) + i] = static_cast<UvId>(set.points.size());
    set.points.push_back(uvs[i]);
  }
}

Result<std::vector<FaceId>> closeBorders(Mesh& mesh, std::span<const EdgeId> edges) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  BorderTracer tracer(mesh);
  std::vector<std::vector<VertexId>> loops;
  for (const EdgeId e : sortedIds(edges)) {
    if (!mesh.adjacency().isBorderEdge(e)) continue;
    while (!tracer.isUsed(e)) {
      std::vector<VertexId> loop = tracer.loopThrough(e);
      if (loop.size() < 3) break;
      loops.push_back(std::move(loop));
    }
  }
  if (loops.empty()) return fail("None of the edges lies on a border that can be closed");
  mesh::MeshRebuilder rebuilder(mesh);
  rebuilder.keepAllVertices();
  rebuilder.copyFaces(0, mesh.faceCount());
  std::vector<FaceId> faces;
  for (const auto& loop : loops) {
    rebuilder.beginFace();
    for (const VertexId v : loop) rebuilder.addCorner(v);
    faces.push_back(rebuilder.endFace());
  }
  mesh = rebuilder.finish().mesh;
  return faces;
}

}  // namespace host::ops
