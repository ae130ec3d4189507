// Building the arrangement: triangles, trees, what meets what, and the pieces.
#include "host/ops/boolean/arrangement.h"

#include <algorithm>

#include "host/base/cancel_poll.h"
#include "host/mesh/triangulate.h"
#include "host/ops/boolean/face_triangles.h"
#include "host/ops/boolean/planar_split.h"

namespace host::ops {

namespace {
/// Rounds of a plain loop that one with exact numbers counts for, a power of two.
constexpr std::size_t kExactWork = 16;
}  // namespace

Result<void> Arrangement::build(const mesh::Mesh& united, FaceId secondFrom) {
  mesh_ = &united;
  secondFrom_ = secondFrom;
  HOST_TRY(points_.setVertices(united.points()));
  firstTriangle_.assign(at(united.faceCount()), kNone);
  isSplit_.assign(at(united.faceCount()), 0);
  buildTrees();
  findContacts();
  shareAcrossFlat();
  for (std::size_t i = 0; i < cutTriangles_.size(); ++i) {
    pollCancel(kExactWork * i);
    crossLines(cutTriangles_[i]);
  }
  splitFaces();
  return {};
}

math::Box Arrangement::boxOf(FaceId face) const {
  math::Box box;
  for (const VertexId v : mesh_->faceVertices(face)) box.add(points_.near(points_.ofVertex(v)));
  return box;
}

math::Box Arrangement::boxOf(const FaceTriangle& triangle) const {
  math::Box box;
  for (const PointId p : triangle.points) box.add(points_.near(p));
  return box;
}

void Arrangement::buildTrees() {
  for (int side = 0; side < 2; ++side) {
    std::vector<Index> faces;
    std::vector<math::Box> boxes;
    for (FaceId f = firstFace(side); f < endFace(side); ++f) {
      pollCancel(at(f));
      faces.push_back(f);
      boxes.push_back(boxOf(f));
    }
    trees_[side] = BoxTree(std::move(faces), boxes);
  }
}

void Arrangement::findContacts() {
  for (FaceId f = 0; f < secondFrom_; ++f) {
    pollCancel(kExactWork * at(f));
    std::vector<FaceId> others;
    trees_[1].forEachAt(boxOf(f), [&](FaceId other) { others.push_back(other); });
    std::sort(others.begin(), others.end());
    for (const FaceId other : others) {
      const auto [first, end] = trianglesOf(f);
      const auto [otherFirst, otherEnd] = trianglesOf(other);
      for (Index t = first; t < end; ++t)
        for (Index u = otherFirst; u < otherEnd; ++u)
          if (boxOf(triangle(t)).intersects(boxOf(triangle(u)))) meet(t, u);
    }
  }
}

std::pair<Index, Index> Arrangement::trianglesOf(FaceId face) {
  Index& first = firstTriangle_[at(face)];
  if (first == kNone) {
    first = static_cast<Index>(triangles_.size());
    const CornerId corner = mesh_->firstCorner(face);
    for (const mesh::LoopTriangle& t : exactTriangles(points_, *mesh_, face))
      addTriangle(face, corner + t[0], corner + t[1], corner + t[2]);
  }
  return {first, first + mesh_->faceSize(face) - 2};
}

void Arrangement::addTriangle(FaceId face, CornerId a, CornerId b, CornerId c) {
  FaceTriangle triangle{.face = face, .corners = {a, b, c}};
  for (std::size_t i = 0; i < 3; ++i)
    triangle.points[i] = points_.ofVertex(mesh_->cornerVertex(triangle.corners[i]));
  const auto& p = triangle.points;
  const GridVector n = gridNormal(points_.grid(p[0]), points_.grid(p[1]), points_.grid(p[2]));
  const auto size = [&](std::size_t i) { return n[i] < 0 ? -n[i] : n[i]; };
  std::size_t axis = 0;
  for (std::size_t i = 1; i < 3; ++i)
    if (size(i) > size(axis)) axis = i;
  triangle.axis = static_cast<int>(axis);
  triangle.isTurned = n[axis] < 0;
  triangle.isFlat = n[axis] == 0;
  triangles_.push_back(triangle);
}

Arrangement::Cuts& Arrangement::cutsOf(Index triangle) {
  const auto [place, isNew] = cuts_.try_emplace(triangle);
  if (isNew) cutTriangles_.push_back(triangle);
  return place->second;
}

void Arrangement::markContact(PointId p) {
  if (at(p) >= isContactPoint_.size()) isContactPoint_.resize(2 * at(p) + 16, 0);
  isContactPoint_[at(p)] = 1;
}

const std::vector<Index>& Arrangement::coplanar(Index triangle) const {
  static const std::vector<Index> kNothing;
  const auto found = cuts_.find(triangle);
  return found == cuts_.end() ? kNothing : found->second.coplanar;
}

const std::vector<PointId>* Arrangement::pointsBetween(PointId a, PointId b) const {
  const auto found = edgePoints_.find(pairKey(a, b));
  return found == edgePoints_.end() ? nullptr : &found->second;
}

std::pair<Index, Index> Arrangement::piecesOf(FaceId face) const {
  const auto found = piecesOf_.find(face);
  return found == piecesOf_.end() ? std::pair<Index, Index>{0, 0} : found->second;
}

/// A triangle without area has no inside to split; what is on one of its edges is on the others.
void Arrangement::shareAcrossFlat() {
  std::vector<std::array<PointId, 3>> flat;  // the ends, and the point between them
  for (const FaceTriangle& triangle : triangles_) {
    if (!triangle.isFlat) continue;
    for (std::size_t i = 0; i < 3; ++i) {
      const PointId middle = triangle.points[i], a = triangle.points[(i + 1) % 3],
                    b = triangle.points[(i + 2) % 3];
      if (a != middle && b != middle && a != b && points_.isBetween(middle, a, b))
        flat.push_back({a, b, middle});
    }
  }
  const auto copyOf = [&](PointId a, PointId b) {
    const PointList* list = pointsBetween(a, b);
    return list ? *list : PointList{};
  };
  for (bool changed = true; changed;) {
    changed = false;
    const auto add = [&](PointId p, PointId a, PointId b) {
      PointList& list = edgePoints_[pairKey(a, b)];
      if (std::find(list.begin(), list.end(), p) != list.end()) return;
      list.push_back(p);
      markContact(p);
      changed = true;
    };
    for (const auto& [a, b, middle] : flat) {
      add(middle, a, b);
      for (const PointId end : {a, b}) {
        for (const PointId p : copyOf(end, middle)) add(p, a, b);
        for (const PointId p : copyOf(a, b))
          if (p != middle && points_.isBetween(p, end, middle)) add(p, end, middle);
      }
    }
  }
}

void Arrangement::splitFaces() {
  for (FaceId f = 0; f < mesh_->faceCount(); ++f) {
    pollCancel(kExactWork * at(f));
    const auto vertices = mesh_->faceVertices(f);
    bool splits = false;
    if (!edgePoints_.empty())
      for (std::size_t i = 0; i < vertices.size() && !splits; ++i)
        splits = pointsBetween(points_.ofVertex(vertices[i]),
                               points_.ofVertex(vertices[(i + 1) % vertices.size()])) != nullptr;
    if (!splits && firstTriangle_[at(f)] == kNone) continue;
    const auto [first, end] = trianglesOf(f);
    for (Index t = first; t < end && !splits; ++t) {
      const auto& p = triangle(t).points;
      const auto cuts = cuts_.find(t);
      splits = cuts != cuts_.end() && !(cuts->second.lines.empty() && cuts->second.points.empty());
      for (std::size_t i = 0; i < 3 && !splits; ++i)
        splits = pointsBetween(p[i], p[(i + 1) % 3]) != nullptr;
    }
    if (!splits) continue;
    isSplit_[at(f)] = 1;
    const auto begin = static_cast<Index>(pieces_.size());
    for (Index t = first; t < end; ++t)
      if (!triangle(t).isFlat) splitTriangle(t);
    piecesOf_[f] = {begin, static_cast<Index>(pieces_.size())};
  }
}

void Arrangement::splitTriangle(Index index) {
  const FaceTriangle& triangle = triangles_[at(index)];
  PlanarSplit split{
      .corners = triangle.points, .axis = triangle.axis, .isTurned = triangle.isTurned};
  for (std::size_t i = 0; i < 3; ++i)
    if (const PointList* list = pointsBetween(triangle.points[i], triangle.points[(i + 1) % 3]))
      split.points.insert(split.points.end(), list->begin(), list->end());
  if (const auto cuts = cuts_.find(index); cuts != cuts_.end()) {
    const PointList& points = cuts->second.points;
    split.points.insert(split.points.end(), points.begin(), points.end());
    for (const Line& line : cuts->second.lines) {
      const Segment& segment = segments_[at(line.segment)];
      split.points.push_back(segment.a);
      split.points.push_back(segment.b);
      split.points.insert(split.points.end(), segment.between.begin(), segment.between.end());
      split.lines.push_back({segment.a, segment.b});
    }
  }
  const PlanarPieces pieces = splitPlanar(points_, split);
  for (const auto& points : pieces.triangles) pieces_.push_back({points, index});
  for (const auto& [a, b] : pieces.lines) contactEdges_.insert(pairKey(a, b));
}

}  // namespace host::ops
