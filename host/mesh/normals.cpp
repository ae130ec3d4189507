#include "host/mesh/normals.h"

#include <algorithm>
#include <cmath>

#include "host/base/parallel.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/normals_at.h"

namespace host::mesh {

namespace {

constexpr std::size_t kGrain = 20'000;
double angleBetween(const Vec3& a, const Vec3& b) {
  return std::atan2(length(cross(a, b)), dot(a, b));
}

/// Unit, or zero for what is no direction: rounding noise, overflow, NaN.
Vec3 unitOrZero(const Vec3& a) {
  const double l = length(a);
  return l > 0 && std::isfinite(l) ? a / l : Vec3{};
}

/// Walks the fans around vertices and hands out their corners' normals. One per thread: it keeps
/// scratch space.
class FanNormals {
 public:
  /// @param faceNormals of all faces; none: they are computed where they are wanted
  FanNormals(const Mesh& mesh, std::span<const Vec3f> faceNormals)
      : mesh_(mesh), adjacency_(mesh.adjacency()), faceNormals_(faceNormals) {}

  /// Calls `put(corner, normal)` for each corner at a vertex. @return the sum over all of them
  template <class Put>
  Vec3 atVertex(VertexId v, const Put& put) {
    const std::span<const CornerId> corners = adjacency_.vertexCorners(v);
    done_.assign(corners.size(), 0);
    weighted_.clear();
    Vec3 all;
    for (CornerId c : corners) {
      weighted_.push_back(Vec3(normalOf(adjacency_.cornerFace(c))) * angle(c));
      all += weighted_.back();
    }
    for (std::size_t i = 0; i < corners.size(); ++i) {
      if (done_[i]) continue;
      const Vec3 sum = gatherFan(corners, i);
      Vec3 normal = unitOrZero(sum);
      if (normal == Vec3{}) normal = unitOrZero(all);
      if (normal == Vec3{}) normal = {0, 1, 0};
      for (std::size_t k : fan_) put(corners[k], normal.toFloat());
    }
    return all;
  }

 private:
  double angle(CornerId c) const { return cornerAngle(mesh_, adjacency_, c); }
  Vec3f normalOf(FaceId face) const {
    return faceNormals_.empty() ? faceNormal(mesh_, face).toFloat() : faceNormals_[at(face)];
  }

  Vec3 gatherFan(std::span<const CornerId> corners, std::size_t start) {
    fan_.clear();
    Vec3 sum;
    const auto take = [&](CornerId c) {
      const auto k =
          static_cast<std::size_t>(std::ranges::lower_bound(corners, c) - corners.begin());
      if (done_[k]) return false;
      done_[k] = 1;
      fan_.push_back(k);
      sum += weighted_[k];
      return true;
    };
    take(corners[start]);
    CornerId c = corners[start];
    while ((c = acrossOutgoing(c)) != kNone && take(c)) {
    }
    c = corners[start];
    while ((c = acrossIncoming(c)) != kNone && take(c)) {
    }
    return sum;
  }

  /// The corner at the same vertex over the edge that leaves it, -1 where the fan ends.
  CornerId acrossOutgoing(CornerId c) const {
    const CornerId t = smoothTwin(c);
    return t == kNone ? kNone : adjacency_.nextCorner(t);
  }
  CornerId acrossIncoming(CornerId c) const { return smoothTwin(adjacency_.previousCorner(c)); }

  CornerId smoothTwin(CornerId c) const {
    if (!mesh_.isEdgeSmooth(mesh_.cornerEdge(c))) return kNone;
    const CornerId t = adjacency_.twin(c);
    return t == kNone || mesh_.cornerVertex(t) == mesh_.cornerVertex(c) ? kNone : t;
  }

  const Mesh& mesh_;
  const Adjacency& adjacency_;
  std::span<const Vec3f> faceNormals_;
  std::vector<std::uint8_t> done_;
  std::vector<Vec3> weighted_;
  std::vector<std::size_t> fan_;
};

}  // namespace

Vec3 faceAreaVector(const Mesh& mesh, FaceId face) {
  const auto loop = mesh.faceVertices(face);
  const std::span<const Vec3f> points = mesh.points();
  const Vec3 origin(points[at(loop[0])]);
  Vec3 sum;
  Vec3 previous = Vec3(points[at(loop[1])]) - origin;
  for (std::size_t i = 2; i < loop.size(); ++i) {
    const Vec3 current = Vec3(points[at(loop[i])]) - origin;
    sum += cross(previous, current);
    previous = current;
  }
  return sum;
}

Vec3 faceNormal(const Mesh& mesh, FaceId face) {
  return unitOrZero(faceAreaVector(mesh, face));
}

double faceArea(const Mesh& mesh, FaceId face) {
  return 0.5 * length(faceAreaVector(mesh, face));
}

Vec3 faceCenter(const Mesh& mesh, FaceId face) {
  const auto loop = mesh.faceVertices(face);
  Vec3 sum;
  for (VertexId v : loop) sum += mesh.point(v);
  return sum / static_cast<double>(loop.size());
}

std::vector<Vec3f> computeFaceNormals(const Mesh& mesh) {
  std::vector<Vec3f> normals(at(mesh.faceCount()));
  parallelFor(normals.size(), kGrain, [&](std::size_t begin, std::size_t end) {
    for (std::size_t f = begin; f < end; ++f)
      normals[f] = faceNormal(mesh, static_cast<FaceId>(f)).toFloat();
  });
  return normals;
}

double cornerAngle(const Mesh& mesh, const Adjacency& adjacency, CornerId corner) {
  const Vec3 here = mesh.point(mesh.cornerVertex(corner));
  const auto way = [&](auto step) {
    Vec3 along;
    for (CornerId c = step(corner); c != corner && along == Vec3{}; c = step(c))
      along = mesh.point(mesh.cornerVertex(c)) - here;
    return along;
  };
  return angleBetween(way([&](CornerId c) { return adjacency.nextCorner(c); }),
                      way([&](CornerId c) { return adjacency.previousCorner(c); }));
}

std::vector<Vec3f> computeCornerNormals(const Mesh& mesh) {
  const std::vector<Vec3f> faceNormals = computeFaceNormals(mesh);
  std::vector<Vec3f> normals(at(mesh.cornerCount()));
  (void)mesh.adjacency();  // built here, so that the threads don't wait for each other
  parallelFor(at(mesh.vertexCount()), kGrain, [&](std::size_t begin, std::size_t end) {
    FanNormals fans(mesh, faceNormals);
    const auto put = [&](CornerId c, const Vec3f& normal) { normals[at(c)] = normal; };
    for (std::size_t v = begin; v < end; ++v) fans.atVertex(static_cast<VertexId>(v), put);
  });
  return normals;
}

void computeNormalsAt(const Mesh& mesh, std::span<const VertexId> vertices, NormalsAt& out) {
  out.corners.clear();
  out.cornerNormals.clear();
  out.vertexNormals.clear();
  const LockedNormals& locked = mesh.lockedNormals();
  FanNormals fans(mesh, {});
  const auto put = [&](CornerId c, const Vec3f& normal) {
    out.corners.push_back(c);
    out.cornerNormals.push_back(mesh.isNormalLocked(c) ? locked.normals[at(c)] : normal);
  };
  for (const VertexId v : vertices)
    out.vertexNormals.push_back(unitOrZero(fans.atVertex(v, put)).toFloat());
}

Vec3 vertexNormal(const Mesh& mesh, VertexId vertex) {
  const Adjacency& adjacency = mesh.adjacency();
  Vec3 sum;
  for (CornerId c : adjacency.vertexCorners(vertex))
    sum += faceNormal(mesh, adjacency.cornerFace(c)) * cornerAngle(mesh, adjacency, c);
  return unitOrZero(sum);
}

std::vector<Vec3f> computeVertexNormals(const Mesh& mesh) {
  const std::vector<Vec3f> faceNormals = computeFaceNormals(mesh);
  const Adjacency& adjacency = mesh.adjacency();
  std::vector<Vec3f> normals(at(mesh.vertexCount()));
  parallelFor(normals.size(), kGrain, [&](std::size_t begin, std::size_t end) {
    for (std::size_t v = begin; v < end; ++v) {
      Vec3 sum;
      for (CornerId c : adjacency.vertexCorners(static_cast<VertexId>(v)))
        sum += Vec3(faceNormals[at(adjacency.cornerFace(c))]) * cornerAngle(mesh, adjacency, c);
      normals[v] = unitOrZero(sum).toFloat();
    }
  });
  return normals;
}

}  // namespace host::mesh
