#include "host/ops/topology/move_components.h"

#include "host/base/cancel_poll.h"
#include "host/ops/topology/extrude_region.h"

namespace host::ops {
namespace {

using math::Vec3;

/// The sum of the places that were found for each vertex.
struct Places {
  explicit Places(const Mesh& mesh) : sums(at(mesh.vertexCount())), counts(sums.size(), 0) {}
  void add(VertexId v, const Vec3& p) {
    sums[at(v)] += p;
    ++counts[at(v)];
  }
  std::vector<Vec3> sums;
  std::vector<Index> counts;
};

/// Regions of vertices: single ones, or joined by edges.
class VertexRegions {
 public:
  VertexRegions(const Mesh& mesh, MovedComponents what, IdView ids, const math::Matrix4& space)
      : mesh_(mesh), space_(space), regionOf_(at(mesh.vertexCount()), kNone) {
    collect(what, ids);
    findFrames();
  }

  void place(const ExtrudePlacement& placement, Places& places) const {
    Vec3 middle;
    for (const VertexId v : vertices_) middle += pointOf(v);
    const Vec3 pivot = placement.pivot.value_or(
        middle / std::max<double>(1, static_cast<double>(vertices_.size())));
    std::vector<ExtrudeMover> movers;
    for (const Region& region : regions_)
      movers.emplace_back(placement,
                          math::frameFromNormal(region.centre / region.vertices, region.normal),
                          pivot, 1);
    for (const VertexId v : vertices_)
      places.add(v, movers[at(regionOf_[at(v)])].place(pointOf(v), {}, {},
                                                       math::normalized(normals_[at(v)])));
  }

 private:
  struct Region {
    Vec3 centre, normal;
    Index vertices = 0;
  };

  [[nodiscard]] Vec3 pointOf(VertexId v) const {
    return math::transformPoint(mesh_.point(v), space_);
  }

  void collect(MovedComponents what, IdView ids) {
    std::vector<VertexId> ends(ids.begin(), ids.end());
    JoinedSets joined(at(mesh_.vertexCount()));
    if (what == MovedComponents::Edges) {
      ends.clear();
      for (const EdgeId e : ids) {
        pollCancel(e);
        const auto [a, b] = mesh_.edge(e);
        joined.join(a, b);
        ends.insert(ends.end(), {a, b});
      }
    }
    vertices_ = sortedIds(ends);
    for (const VertexId v : vertices_) {
      pollCancel(v);
      const VertexId lowest = joined.lowest(v);
      if (lowest == v) {
        regionOf_[at(v)] = static_cast<Index>(regions_.size());
        regions_.emplace_back();
      } else {
        regionOf_[at(v)] = regionOf_[at(lowest)];
      }
    }
  }

  void findFrames() {
    normals_.resize(at(mesh_.vertexCount()));
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      pollCancel(f);
      const auto loop = mesh_.faceVertices(f);
      if (std::none_of(loop.begin(), loop.end(),
                       [&](VertexId v) { return regionOf_[at(v)] != kNone; }))
        continue;
      const Vec3 origin = pointOf(loop[0]);
      Vec3 area;
      for (std::size_t k = 1; k + 1 < loop.size(); ++k)
        area += math::cross(pointOf(loop[k]) - origin, pointOf(loop[k + 1]) - origin);
      const Vec3 normal = math::normalized(area);
      for (const VertexId v : loop)
        if (const Index region = regionOf_[at(v)]; region != kNone) {
          normals_[at(v)] += normal;
          regions_[at(region)].normal += normal;
        }
    }
    for (const VertexId v : vertices_) {
      pollCancel(v);
      Region& region = regions_[at(regionOf_[at(v)])];
      region.centre += pointOf(v);
      ++region.vertices;
    }
  }

  const Mesh& mesh_;
  const math::Matrix4& space_;
  std::vector<Index> regionOf_;  // a vertex
  std::vector<VertexId> vertices_;
  std::vector<Region> regions_;
  std::vector<Vec3> normals_;  // a vertex
};

void placeFaces(const Mesh& mesh, std::span<const FaceId> faces, const ExtrudePlacement& placement,
                Places& places) {
  const ExtrudeRegions regions(mesh, sortedIds(faces), true, placement.space);
  regions.place(placement, 1, [&](Index copy, const Vec3& p) {
    places.add(regions.copies()[at(copy)].source, p);
  });
}

}  // namespace

Result<void> moveComponents(Mesh& mesh, MovedComponents what, IdView ids,
                            const ExtrudePlacement& placement) {
  const bool isFaces = what == MovedComponents::Faces, isEdges = what == MovedComponents::Edges;
  HOST_TRY(checkIds(isFaces   ? "face"
                    : isEdges ? "edge"
                              : "vertex",
                    ids,
                    isFaces   ? mesh.faceCount()
                    : isEdges ? mesh.edgeCount()
                              : mesh.vertexCount()));
  const auto inverse = checkPlacement(placement);
  if (!inverse) return failWith(inverse.error());
  if (ids.empty()) return {};
  Places places(mesh);
  if (isFaces)
    placeFaces(mesh, viewIds<FaceId>(ids), placement, places);
  else
    VertexRegions(mesh, what, ids, placement.space).place(placement, places);
  std::vector<math::Vec3f> points(mesh.points().begin(), mesh.points().end());
  const bool isPlain = math::isIdentity(placement.space);
  for (std::size_t v = 0; v < points.size(); ++v) {
    pollCancel(v);
    if (places.counts[v] == 0) continue;
    const Vec3 p = places.sums[v] / places.counts[v];
    points[v] = (isPlain ? p : math::transformPoint(p, *inverse)).toFloat();
    if (!math::isFinite(Vec3(points[v]))) return fail("The components would end at infinity");
  }
  mesh.setPoints(std::move(points));
  return {};
}

}  // namespace host::ops
