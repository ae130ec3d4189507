#include "host/ops/boolean/boolean_loops.h"

#include <algorithm>

#include "host/mesh/adjacency.h"
#include "host/ops/boolean/piece_loops.h"

namespace host::ops {

LoopComposer::LoopComposer(const Arrangement& arrangement)
    : arrangement_(arrangement),
      mesh_(arrangement.mesh()),
      isUsed_(at(mesh_.vertexCount()), 0),
      vertices_(at(mesh_.vertexCount()), kNone) {}

void LoopComposer::addWhole(FaceId face, bool turned) {
  polygons_.push_back({face, turned, {}});
  for (const VertexId v : mesh_.faceVertices(face)) isUsed_[at(v)] = 1;
}

void LoopComposer::addParts(FaceId face, const std::vector<FacePiece>& pieces, bool turned) {
  FaceMap& map = maps_[face];
  const Index size = mesh_.faceSize(face);
  const CornerId first = mesh_.firstCorner(face);
  const auto pointAt = [&](Index i) {
    return arrangement_.points().ofVertex(mesh_.cornerVertex(first + i % size));
  };
  for (Index i = 0; i < size; ++i) {
    map.corners.emplace(pointAt(i), first + i);
    if (const auto* between = arrangement_.pointsBetween(pointAt(i), pointAt(i + 1)))
      for (const PointId p : *between) map.edges.emplace(p, i);
  }
  std::vector<std::array<PointId, 3>> triangles;
  for (const FacePiece& piece : pieces) {
    triangles.push_back(piece.points);
    for (const PointId p : piece.points) map.triangles.emplace(p, piece.triangle);
  }
  for (auto& loop : joinPieces(arrangement_.points(), triangles)) {
    for (const PointId p : loop)
      if (const auto corner = map.corners.find(p); corner != map.corners.end())
        isUsed_[at(mesh_.cornerVertex(corner->second))] = 1;
    polygons_.push_back({face, turned, std::move(loop)});
  }
}

/// Takes out the points that only two edges in a straight line are left at: the other mesh's
/// triangles put them there.
void LoopComposer::removeStraight() {
  struct Place {
    std::vector<PointId> neighbours;
    std::vector<std::size_t> polygons;
    bool isCorner = false;
  };
  std::unordered_map<PointId, Place> places;
  std::vector<PointId> order;
  for (std::size_t i = 0; i < polygons_.size(); ++i) {
    const std::vector<PointId>& loop = polygons_[i].points;
    if (loop.empty()) continue;
    const FaceMap& map = mapOf(polygons_[i].source);
    for (std::size_t k = 0; k < loop.size(); ++k) {
      const auto [found, isNew] = places.try_emplace(loop[k]);
      if (isNew) order.push_back(loop[k]);
      Place& place = found->second;
      place.isCorner = place.isCorner || map.corners.contains(loop[k]);
      place.polygons.push_back(i);
      for (const PointId p :
           {loop[(k + 1) % loop.size()], loop[(k + loop.size() - 1) % loop.size()]})
        if (std::find(place.neighbours.begin(), place.neighbours.end(), p) ==
            place.neighbours.end())
          place.neighbours.push_back(p);
    }
  }
  // Whole faces have no points but their own vertices.
  std::vector<std::size_t> sizes;
  for (const Polygon& polygon : polygons_) sizes.push_back(polygon.points.size());
  const ExactPoints& points = arrangement_.points();
  constexpr double kStraight = 1024;  // grid steps, about 8 units in the last place of a float
  std::unordered_map<PointId, bool> gone;
  for (const PointId p : order) {
    const Place& place = places.at(p);
    if (place.isCorner || place.neighbours.size() != 2) continue;
    const auto isSmall = [&](std::size_t i) { return sizes[i] <= 3; };
    if (std::any_of(place.polygons.begin(), place.polygons.end(), isSmall)) continue;
    const PointId a = place.neighbours[0], b = place.neighbours[1];
    const math::Vec3 along = points.near(b) - points.near(a), to = points.near(p) - points.near(a);
    const double length = math::length(along), t = dot(to, along);
    if (t <= 0 || t >= length * length) continue;
    if (math::length(cross(along, to)) > kStraight * length) continue;
    gone[p] = true;
    for (const std::size_t i : place.polygons) --sizes[i];
    std::replace(places.at(a).neighbours.begin(), places.at(a).neighbours.end(), p, b);
    std::replace(places.at(b).neighbours.begin(), places.at(b).neighbours.end(), p, a);
  }
  for (Polygon& polygon : polygons_)
    std::erase_if(polygon.points, [&](PointId p) { return gone.contains(p); });
}

/// Keeps the vertices in use, one at each place where the meshes meet, and makes the new ones.
void LoopComposer::placeVertices(mesh::MeshRebuilder& rebuilder) {
  for (VertexId v = 0; v < mesh_.vertexCount(); ++v) {
    if (isUsed_[at(v)] == 0) continue;
    const PointId p = arrangement_.points().ofVertex(v);
    const auto met = arrangement_.isContact(p) ? shared_.find(p) : shared_.end();
    if (met != shared_.end()) {
      rebuilder.mergeVertex(v, met->second);
      vertices_[at(v)] = met->second;
      continue;
    }
    vertices_[at(v)] = rebuilder.keepVertex(v);
    if (arrangement_.isContact(p)) shared_[p] = vertices_[at(v)];
  }
  for (const Polygon& polygon : polygons_) {
    if (polygon.points.empty()) continue;
    const FaceMap& map = mapOf(polygon.source);
    for (const PointId p : polygon.points) {
      if (map.corners.contains(p) || shared_.contains(p)) continue;
      shared_[p] = rebuilder.addVertex(arrangement_.points().place(p).toFloat());
    }
  }
}

VertexId LoopComposer::vertexAt(const FaceMap& map, PointId p) const {
  const auto corner = map.corners.find(p);
  return corner == map.corners.end() ? shared_.at(p)
                                     : vertices_[at(mesh_.cornerVertex(corner->second))];
}

LoopComposer::CornerData LoopComposer::dataAt(FaceId face, const FaceMap& map, PointId p) const {
  const ExactPoints& points = arrangement_.points();
  if (const auto corner = map.corners.find(p); corner != map.corners.end())
    return {.corner = corner->second};
  const math::Vec3 place = points.near(p);
  if (const auto edge = map.edges.find(p); edge != map.edges.end()) {
    CornerId a = mesh_.firstCorner(face) + edge->second,
             b = mesh_.firstCorner(face) + (edge->second + 1) % mesh_.faceSize(face);
    // The faces at the edge are to come to the same numbers.
    if (points.ofVertex(mesh_.cornerVertex(a)) > points.ofVertex(mesh_.cornerVertex(b)))
      std::swap(a, b);
    const math::Vec3 from = points.near(points.ofVertex(mesh_.cornerVertex(a))),
                     along = points.near(points.ofVertex(mesh_.cornerVertex(b))) - from;
    const double t = std::clamp(dot(place - from, along) / dot(along, along), 0.0, 1.0);
    return {.blend = {{a, 1 - t}, {b, t}}};
  }
  const FaceTriangle& t = arrangement_.triangle(map.triangles.at(p));
  const math::Vec3 a = points.near(t.points[0]), b = points.near(t.points[1]),
                   c = points.near(t.points[2]), n = cross(b - a, c - a);
  const double area = dot(n, n);
  const double u = std::clamp(dot(cross(place - a, c - a), n) / area, 0.0, 1.0),
               v = std::clamp(dot(cross(b - a, place - a), n) / area, 0.0, 1.0 - u);
  return {.blend = {{t.corners[0], 1 - u - v}, {t.corners[1], u}, {t.corners[2], v}}};
}

bool LoopComposer::isPlain(const Polygon& polygon) const {
  if (polygon.isTurned || !polygon.points.empty()) return false;
  const auto vertices = mesh_.faceVertices(polygon.source);
  return std::none_of(vertices.begin(), vertices.end(), [&](VertexId v) {
    return arrangement_.isContact(arrangement_.points().ofVertex(v));
  });
}

/// Parts of the face's edges take after these.
void LoopComposer::inheritEdges(mesh::MeshRebuilder& rebuilder, const Polygon& polygon,
                                const FaceMap& map, const std::vector<VertexId>& vertices) {
  const CornerId first = mesh_.firstCorner(polygon.source);
  const Index size = mesh_.faceSize(polygon.source);
  const auto isOn = [&](PointId p, Index edge) {
    if (const auto corner = map.corners.find(p); corner != map.corners.end())
      return corner->second - first == edge || corner->second - first == (edge + 1) % size;
    const auto found = map.edges.find(p);
    return found != map.edges.end() && found->second == edge;
  };
  const std::size_t n = polygon.points.size();
  for (std::size_t i = 0; i < n; ++i) {
    const PointId p = polygon.points[i], q = polygon.points[(i + 1) % n];
    for (const PointId end : {p, q}) {
      const auto found = map.edges.find(end);
      if (found == map.edges.end() || !isOn(p, found->second) || !isOn(q, found->second)) continue;
      rebuilder.inheritEdge(vertices[i], vertices[(i + 1) % n],
                            mesh_.cornerEdge(first + found->second));
      break;
    }
  }
}

void LoopComposer::addListed(mesh::MeshRebuilder& rebuilder, const Polygon& polygon) {
  std::vector<VertexId> vertices;
  std::vector<CornerData> data;
  if (polygon.points.empty()) {
    const CornerId first = mesh_.firstCorner(polygon.source);
    for (Index i = 0; i < mesh_.faceSize(polygon.source); ++i) {
      const VertexId v = vertices_[at(mesh_.cornerVertex(first + i))];
      if (!vertices.empty() && vertices.back() == v) continue;
      vertices.push_back(v);
      data.push_back({.corner = first + i});
    }
    if (vertices.size() > 1 && vertices.front() == vertices.back()) {
      vertices.pop_back();
      data.pop_back();
    }
  } else {
    const FaceMap& map = mapOf(polygon.source);
    for (const PointId p : polygon.points) {
      vertices.push_back(vertexAt(map, p));
      data.push_back(dataAt(polygon.source, map, p));
    }
    inheritEdges(rebuilder, polygon, map, vertices);
  }
  if (vertices.size() < 3) return;
  rebuilder.beginFace(polygon.source);
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const std::size_t k = polygon.isTurned ? vertices.size() - 1 - i : i;
    if (data[k].blend.empty())
      rebuilder.addCorner(vertices[k], data[k].corner);
    else
      rebuilder.addCorner(vertices[k], data[k].blend);
  }
  rebuilder.endFace();
  made_.push_back({arrangement_.sideOf(polygon.source), polygon.isTurned});
}

void LoopComposer::addPolygons(mesh::MeshRebuilder& rebuilder) {
  for (std::size_t i = 0; i < polygons_.size();) {
    std::size_t end = i;
    while (end < polygons_.size() && isPlain(polygons_[end]) &&
           polygons_[end].source == polygons_[i].source + static_cast<Index>(end - i))
      ++end;
    if (end == i) {
      addListed(rebuilder, polygons_[i++]);
      continue;
    }
    rebuilder.copyFaces(polygons_[i].source, polygons_[end - 1].source + 1);
    for (; i < end; ++i) made_.push_back({arrangement_.sideOf(polygons_[i].source), false});
  }
}

mesh::Mesh LoopComposer::finish() {
  removeStraight();
  mesh::MeshRebuilder rebuilder(mesh_);
  placeVertices(rebuilder);
  addPolygons(rebuilder);
  mesh::Mesh mesh = rebuilder.finish().mesh;
  for (EdgeId e = 0; e < mesh.edgeCount(); ++e) {
    const auto faces = mesh.adjacency().edgeFaces(e);
    for (const FaceId f : faces)
      if (made_[at(f)].side != made_[at(faces[0])].side) {
        mesh.setEdgeSmooth(e, false);
        break;
      }
  }
  if (mesh.lockedNormals().normals.empty()) return mesh;
  mesh::LockedNormals& normals = mesh.editLockedNormals();
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    if (!made_[at(f)].isTurned) continue;
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
      normals.normals[at(c)] = (-math::Vec3(normals.normals[at(c)])).toFloat();
  }
  return mesh;
}

}  // namespace host::ops
