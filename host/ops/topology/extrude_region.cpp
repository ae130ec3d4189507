#include "host/ops/topology/extrude_region.h"

#include <algorithm>

#include "host/base/cancel_poll.h"

namespace host::ops {
namespace {

using math::Vec3;

// Two rim edges that meet this sharply would send an offset corner to infinity.
constexpr double kLeastMitre = 0.1;

}  // namespace

ExtrudeRegions::ExtrudeRegions(const Mesh& mesh, std::vector<FaceId> faces, bool keepFacesTogether,
                               const math::Matrix4& space)
    : faces_(std::move(faces)) {
  joinFaces(mesh, keepFacesTogether);
  collectCopies(mesh, space);
  std::vector<Vec3> normals;
  normals.reserve(faces_.size());
  for (std::size_t i = 0; i < faces_.size(); ++i) {
    pollCancel(i);
    const auto loop = copiesOfFace(i);
    const Vec3 origin = copies_[at(loop[0])].point;
    Vec3 area;
    for (std::size_t k = 1; k + 1 < loop.size(); ++k)
      area +=
          math::cross(copies_[at(loop[k])].point - origin, copies_[at(loop[k + 1])].point - origin);
    normals.push_back(math::normalized(area));
    regions_[at(regionOf_[i])].normal += area;
  }
  findOutwards(normals);
  collectRim(mesh, keepFacesTogether, normals);
  findWholePieces(mesh);
}

void ExtrudeRegions::findWholePieces(const Mesh& mesh) {
  constexpr Index kBetween = -2;  // edges that faces of two regions share belong to neither
  PerElement<EdgeId, Index> regionAtEdge(mesh.edgeCount(), kNone);
  std::vector<std::uint8_t> isWhole(regions_.size(), 1), hasRim(regions_.size(), 0);
  for (std::size_t i = 0; i < faces_.size(); ++i)
    for (const EdgeId e : mesh.faceEdges(faces_[i])) {
      Index& region = regionAtEdge[e];
      if (region != kNone && region != regionOf_[i]) {
        isWhole[at(regionOf_[i])] = 0;
        if (region != kBetween) isWhole[at(region)] = 0;
        region = kBetween;
      } else {
        region = regionOf_[i];
      }
    }
  const std::vector<std::uint8_t> isListed = flagsOf(faces_, mesh.faceCount());
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    pollCancel(f);
    if (isListed[at(f)] != 0) continue;
    for (const EdgeId e : mesh.faceEdges(f))
      if (const Index region = regionAtEdge[e]; region >= 0) isWhole[at(region)] = 0;
  }
  for (const RimEdge& rim : rim_) hasRim[at(copies_[at(rim.a)].region)] = 1;
  for (std::size_t i = 0; i < faces_.size(); ++i)
    if (isWhole[at(regionOf_[i])] != 0 && hasRim[at(regionOf_[i])] != 0)
      wholePieces_.push_back(faces_[i]);
}

void ExtrudeRegions::findOutwards(std::span<const Vec3> normals) {
  // The point m that comes nearest to m . n = 1 for all normals n there: (sum of n n^T) m = sum of
  // n.
  struct Sums {
    double xx = 0, xy = 0, xz = 0, yy = 0, yz = 0, zz = 0;
    int count = 0;
  };
  constexpr double kLongest = 4, kFlat = 1e-9;
  std::vector<Sums> sums(copies_.size());
  for (std::size_t i = 0; i < faces_.size(); ++i)
    for (const Index copy : copiesOfFace(i)) {
      const Vec3& n = normals[i];
      Sums& s = sums[at(copy)];
      copies_[at(copy)].outwards += n;
      s.xx += n.x * n.x, s.xy += n.x * n.y, s.xz += n.x * n.z;
      s.yy += n.y * n.y, s.yz += n.y * n.z, s.zz += n.z * n.z;
      ++s.count;
    }
  for (std::size_t i = 0; i < copies_.size(); ++i) {
    pollCancel(i);
    Vec3& outwards = copies_[i].outwards;
    const Sums& s = sums[i];
    const Vec3 mean = math::normalized(outwards);
    copies_[i].normal = mean;
    if (math::length(outwards) >= s.count * (1 - kFlat) || mean == Vec3()) {
      outwards = mean;
      continue;
    }
    // A little along the mean keeps directions still that no normal says anything about.
    constexpr double kStill = 1e-9;
    const Vec3 a(s.xx + kStill, s.xy, s.xz), b(s.xy, s.yy + kStill, s.yz),
        c(s.xz, s.yz, s.zz + kStill);
    const double determinant = math::dot(a, math::cross(b, c));
    const Vec3 right = outwards;
    Vec3 solved =
        (math::cross(b, c) * right.x + math::cross(c, a) * right.y + math::cross(a, b) * right.z) /
        determinant;
    const double length = math::length(solved);
    if (!(length <= kLongest)) solved = std::isfinite(length) ? solved * (kLongest / length) : mean;
    outwards = solved;
  }
}

void ExtrudeRegions::joinFaces(const Mesh& mesh, bool keepFacesTogether) {
  JoinedSets joined(faces_.size());
  if (keepFacesTogether) {
    PerElement<EdgeId, Index> faceAtEdge(mesh.edgeCount(), kNone);
    for (std::size_t i = 0; i < faces_.size(); ++i)
      for (const EdgeId e : mesh.faceEdges(faces_[i])) {
        if (faceAtEdge[e] != kNone) joined.join(faceAtEdge[e], static_cast<Index>(i));
        faceAtEdge[e] = static_cast<Index>(i);
      }
  }
  regionOf_.resize(faces_.size());
  for (std::size_t i = 0; i < faces_.size(); ++i) {
    pollCancel(i);
    const auto lowest = at(joined.lowest(static_cast<Index>(i)));
    if (lowest == i) {
      regionOf_[i] = static_cast<Index>(regions_.size());
      regions_.emplace_back();
    } else {
      regionOf_[i] = regionOf_[lowest];
    }
  }
}

void ExtrudeRegions::collectCopies(const Mesh& mesh, const math::Matrix4& space) {
  const bool isPlain = math::isIdentity(space);
  PerElement<VertexId, Index> newest(mesh.vertexCount(), kNone), older;
  firstCorner_.push_back(0);
  for (std::size_t i = 0; i < faces_.size(); ++i) {
    pollCancel(i);
    Region& region = regions_[at(regionOf_[i])];
    for (const VertexId v : mesh.faceVertices(faces_[i])) {
      Index copy = newest[v];
      while (copy != kNone && copies_[at(copy)].region != regionOf_[i]) copy = older[at(copy)];
      if (copy == kNone) {
        copy = static_cast<Index>(copies_.size());
        const Vec3 p = mesh.point(v);
        copies_.push_back(
            {v, regionOf_[i], isPlain ? p : math::transformPoint(p, space), {}, {}, {}, false});
        older.push_back(newest[v]);
        newest[v] = copy;
        region.centre += copies_.back().point;
        ++region.vertices;
      }
      cornerCopies_.push_back(copy);
    }
    firstCorner_.push_back(cornerCopies_.size());
  }
}

void ExtrudeRegions::collectRim(const Mesh& mesh, bool keepFacesTogether,
                                std::span<const Vec3> normals) {
  // How often the faces of a region walk an edge. Together, all that walk it are of one region.
  PerElement<EdgeId, std::uint8_t> uses(mesh.edgeCount(), 0);
  const auto count = [&](FaceId f) {
    for (const EdgeId e : mesh.faceEdges(f))
      uses[e] = static_cast<std::uint8_t>(std::min(uses[e] + 1, 2));
  };
  if (keepFacesTogether)
    for (const FaceId f : faces_) count(f);
  std::vector<Index> rimEdges(copies_.size(), 0);
  for (std::size_t i = 0; i < faces_.size(); ++i) {
    pollCancel(i);
    const FaceId f = faces_[i];
    if (!keepFacesTogether) count(f);
    const auto loop = copiesOfFace(i);
    const auto edges = mesh.faceEdges(f);
    for (std::size_t k = 0; k < loop.size(); ++k) {
      if (uses[edges[k]] != 1) continue;
      const std::size_t next = k + 1 < loop.size() ? k + 1 : 0;
      const CornerId first = mesh.firstCorner(f);
      rim_.push_back({loop[k], loop[next], first + static_cast<CornerId>(k),
                      first + static_cast<CornerId>(next), f});
      const Vec3 along = copies_[at(loop[next])].point - copies_[at(loop[k])].point;
      const Vec3 inwards = math::normalized(math::cross(normals[i], along));
      for (const Index copy : {loop[k], loop[next]}) {
        copies_[at(copy)].inset += inwards;
        ++rimEdges[at(copy)];
      }
    }
    if (!keepFacesTogether)
      for (const EdgeId e : edges) uses[e] = 0;
  }
  for (std::size_t i = 0; i < copies_.size(); ++i) {
    pollCancel(i);
    Copy& copy = copies_[i];
    copy.isOnRim = rimEdges[i] > 0;
    const double squared = math::lengthSquared(copy.inset);
    // The sum of two unit vectors, divided by one plus their cosine, reaches both lines.
    if (rimEdges[i] == 0 || squared < 1e-12)
      copy.inset = {};
    else
      copy.inset = copy.inset / std::max(squared / rimEdges[i], kLeastMitre);
  }
}

std::vector<ExtrudeMover> ExtrudeRegions::moversOf(const ExtrudePlacement& placement,
                                                   double t) const {
  Vec3 all;
  for (const Region& region : regions_) all += region.centre;
  const Vec3 pivot =
      placement.pivot.value_or(all / std::max<double>(1, static_cast<double>(copies_.size())));
  std::vector<ExtrudeMover> movers;
  movers.reserve(regions_.size());
  for (const Region& region : regions_)
    movers.emplace_back(
        placement, math::frameFromNormal(region.centre / region.vertices, region.normal), pivot, t);
  return movers;
}

}  // namespace host::ops
