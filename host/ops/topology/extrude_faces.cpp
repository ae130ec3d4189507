#include "host/ops/topology/extrude_faces.h"

#include <cmath>
#include <unordered_map>

#include "host/mesh/adjacency.h"
#include "host/mesh/normals.h"
#include "host/mesh/rebuild.h"
#include "host/ops/topology/side_faces.h"

namespace host::ops {
namespace {

using math::Vec3;

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

// Two rim edges that meet this sharply would send an offset corner to infinity.
constexpr double kLeastMitre = 0.1;

class FaceExtruder {
 public:
  FaceExtruder(const Mesh& mesh, std::vector<FaceId> faces, const ExtrudeFacesOptions& options,
               const math::Matrix4& inverse)
      : mesh_(mesh),
        faces_(std::move(faces)),
        options_(options),
        inverse_(inverse),
        rebuilder_(mesh_),
        isCap_(flagsOf(faces_, mesh.faceCount())) {}

  ExtrudeFacesResult run(Mesh& mesh) {
    findRegions();
    collectCopies();
    placeCopies();
    buildFaces();
    ExtrudeFacesResult result;
    for (FaceId f = mesh_.faceCount(); f < nextFace_; ++f) result.sides.push_back(f);
    mesh::Rebuilt rebuilt = rebuilder_.finish({.dropUnusedVertices = true});
    result.maps.vertices.assign(rebuilt.vertexMap.begin(),
                                rebuilt.vertexMap.begin() + mesh_.vertexCount());
    result.maps.edges = std::move(rebuilt.edgeMap);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) result.maps.faces.push_back(f);
    result.caps = std::move(faces_);
    mesh = std::move(rebuilt.mesh);
    finishSideFaces(mesh, result.sides, options_.smoothingAngle);
    return result;
  }

 private:
  struct Region {
    Vec3 centre, normal;  // sums until findRegions is done
    Index vertices = 0;
  };
  struct Copy {  // of a vertex, for one region
    VertexId source;
    Index region;
    Vec3 normal, inset;  // sums over the region's corners and rim edges there
    Index rimEdges = 0;
    std::vector<VertexId> rings;  // between base and cap, from the base up
  };
  struct RimEdge {
    Index a, b;  // copies, along the cap
    CornerId cornerA, cornerB;
  };

  [[nodiscard]] Vec3 pointOf(VertexId v) const {
    return math::transformPoint(mesh_.point(v), options_.space);
  }
  [[nodiscard]] CornerId nextCorner(CornerId c) const {
    const FaceId f = mesh_.adjacency().cornerFace(c);
    return c + 1 < mesh_.firstCorner(f + 1) ? c + 1 : mesh_.firstCorner(f);
  }

  void findRegions() {
    regionOf_.assign(at(mesh_.faceCount()), kNone);
    JoinedSets joined(at(mesh_.faceCount()));
    if (options_.keepFacesTogether)
      for (const FaceId f : faces_)
        for (const EdgeId e : mesh_.faceEdges(f))
          for (const FaceId g : mesh_.adjacency().edgeFaces(e))
            if (isCap_[at(g)] != 0) joined.join(f, g);
    std::unordered_map<FaceId, Index> regionOfLowest;
    for (const FaceId f : faces_)
      regionOf_[at(f)] =
          regionOfLowest.try_emplace(joined.lowest(f), static_cast<Index>(regionOfLowest.size()))
              .first->second;
    regions_.resize(regionOfLowest.size());
  }

  [[nodiscard]] bool isRim(EdgeId e, Index region) const {
    int uses = 0;
    for (const CornerId c : mesh_.adjacency().edgeCorners(e))
      uses += regionOf_[at(mesh_.adjacency().cornerFace(c))] == region ? 1 : 0;
    return uses == 1;
  }

  Vec3 normalOf(FaceId f) const {
    const auto loop = mesh_.faceVertices(f);
    const Vec3 origin = pointOf(loop[0]);
    Vec3 sum;
    for (std::size_t i = 1; i + 1 < loop.size(); ++i)
      sum += math::cross(pointOf(loop[i]) - origin, pointOf(loop[i + 1]) - origin);
    return sum;
  }

  Index copyOf(VertexId v, Index region) {
    const auto key = static_cast<std::uint64_t>(region) << 32 | static_cast<std::uint32_t>(v);
    const auto [entry, isNew] = copyIds_.try_emplace(key, static_cast<Index>(copies_.size()));
    if (isNew) {
      copies_.push_back({v, region, {}, {}, 0, {}});
      regions_[at(region)].centre += pointOf(v);
      ++regions_[at(region)].vertices;
    }
    return entry->second;
  }

  // Names a copy for each corner of the extruded faces, in the order of the corners.
  void collectCopies() {
    for (const FaceId f : faces_) {
      const Index region = regionOf_[at(f)];
      const Vec3 area = normalOf(f), normal = math::normalized(area);
      regions_[at(region)].normal += area;
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        const Index a = copyOf(mesh_.cornerVertex(c), region);
        cornerCopy_[c] = a;
        copies_[at(a)].normal += normal;
      }
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        if (!isRim(mesh_.cornerEdge(c), region)) continue;
        const RimEdge rim{cornerCopy_[c], cornerCopy_[nextCorner(c)], c, nextCorner(c)};
        const Vec3 along = pointOf(copies_[at(rim.b)].source) - pointOf(copies_[at(rim.a)].source);
        const Vec3 inwards = math::normalized(math::cross(normal, along));
        for (const Index copy : {rim.a, rim.b}) {
          copies_[at(copy)].inset += inwards;
          ++copies_[at(copy)].rimEdges;
        }
        rim_.push_back(rim);
      }
    }
  }

  // The inset that moves both rim edges at a corner by the offset.
  [[nodiscard]] Vec3 insetOf(const Copy& copy) const {
    if (copy.rimEdges == 0 || options_.offset == 0) return {};
    const double squared = math::lengthSquared(copy.inset);
    if (squared < 1e-12) return {};
    // The sum of two unit vectors, divided by one plus their cosine, reaches both lines.
    const double mitre = std::max(squared / copy.rimEdges, kLeastMitre);
    return copy.inset * (options_.offset / mitre);
  }

  void placeCopies() {
    rebuilder_.keepAllVertices();
    Vec3 all;
    for (Region& region : regions_) {
      all += region.centre;
      region.centre = region.centre / region.vertices;
    }
    const Vec3 pivot =
        options_.pivot.value_or(all / std::max<double>(1, static_cast<double>(copies_.size())));
    std::vector<ExtrudeMover> movers;
    for (const Region& region : regions_)
      movers.emplace_back(options_, math::frameFromNormal(region.centre, region.normal), pivot);
    const auto placeAt = [&](const Copy& copy, double t) {
      const Vec3 push = math::normalized(copy.normal) * options_.thickness;
      const Vec3 p = movers[at(copy.region)].place(pointOf(copy.source), insetOf(copy), push, t);
      return math::transformPoint(p, inverse_).toFloat();
    };
    for (const Copy& copy : copies_) rebuilder_.addVertex(placeAt(copy, 1), copy.source);
    for (int division = 1; division < options_.divisions; ++division)
      for (Copy& copy : copies_)
        if (copy.rimEdges > 0)
          copy.rings.push_back(rebuilder_.addVertex(
              placeAt(copy, static_cast<double>(division) / options_.divisions)));
  }

  [[nodiscard]] VertexId capVertex(Index copy) const { return mesh_.vertexCount() + copy; }
  // The vertex over a copy's source at a level: 0 the base, `divisions` the cap.
  [[nodiscard]] VertexId levelVertex(Index copy, int level) const {
    const Copy& c = copies_[at(copy)];
    if (level == 0) return c.source;
    return level == options_.divisions ? capVertex(copy) : c.rings[at(level - 1)];
  }

  void declareEdges() {
    auto rim = rim_.begin();
    for (const FaceId f : faces_) {
      for (; rim != rim_.end() && mesh_.adjacency().cornerFace(rim->cornerA) == f; ++rim) {
        for (int level = 0; level < options_.divisions; ++level) {
          for (const Index copy : {rim->a, rim->b})
            rebuilder_.declareEdge(levelVertex(copy, level), levelVertex(copy, level + 1));
          rebuilder_.declareEdge(levelVertex(rim->a, level + 1), levelVertex(rim->b, level + 1));
        }
      }
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c) {
        const VertexId a = capVertex(cornerCopy_[c]), b = capVertex(cornerCopy_[nextCorner(c)]);
        rebuilder_.declareEdge(a, b);
        rebuilder_.inheritEdge(a, b, mesh_.cornerEdge(c));
      }
    }
  }

  void buildFaces() {
    declareEdges();
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      if (isCap_[at(f)] == 0) {
        rebuilder_.copyFace(f);
        continue;
      }
      rebuilder_.beginFace(f);
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c)
        rebuilder_.addCorner(capVertex(cornerCopy_[c]), c);
      rebuilder_.endFace();
    }
    nextFace_ = mesh_.faceCount();
    for (const RimEdge& rim : rim_)
      for (int level = 0; level < options_.divisions; ++level) {
        rebuilder_.beginFace(mesh_.adjacency().cornerFace(rim.cornerA));
        rebuilder_.addCorner(levelVertex(rim.a, level), rim.cornerA);
        rebuilder_.addCorner(levelVertex(rim.b, level), rim.cornerB);
        rebuilder_.addCorner(levelVertex(rim.b, level + 1), rim.cornerB);
        rebuilder_.addCorner(levelVertex(rim.a, level + 1), rim.cornerA);
        rebuilder_.endFace();
        ++nextFace_;
      }
  }

  Mesh mesh_;
  std::vector<FaceId> faces_;
  const ExtrudeFacesOptions& options_;
  math::Matrix4 inverse_;
  mesh::MeshRebuilder rebuilder_;
  std::vector<std::uint8_t> isCap_;
  std::vector<Index> regionOf_;  // a face; -1 where it is not extruded
  std::vector<Region> regions_;
  std::vector<Copy> copies_;
  std::unordered_map<std::uint64_t, Index> copyIds_;
  std::unordered_map<CornerId, Index> cornerCopy_;
  std::vector<RimEdge> rim_;
  FaceId nextFace_ = 0;
};

Result<void> checkPlacement(const ExtrudePlacement& p) {
  constexpr int kMostDivisions = 10000;
  if (p.divisions < 1 || p.divisions > kMostDivisions)
    return fail("The number of divisions must be 1 to {}, not {}", kMostDivisions, p.divisions);
  for (const double value : {p.offset, p.thickness, p.taper, p.twist, p.smoothingAngle})
    if (!std::isfinite(value)) return fail("Extrusion needs finite numbers");
  for (const ExtrudeTransform* t : {&p.local, &p.world})
    for (const Vec3& v : {t->translate, t->rotate, t->scale})
      if (!math::isFinite(v)) return fail("Extrusion needs finite numbers");
  return {};
}

}  // namespace

Result<ExtrudeFacesResult> extrudeFaces(Mesh& mesh, std::span<const FaceId> faces,
                                        const ExtrudeFacesOptions& options) {
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  HOST_TRY(checkPlacement(options));
  const auto inverse = math::inverse(options.space);
  if (!inverse) return fail("The object is scaled to nothing; extrusion has no space to work in");
  return FaceExtruder(mesh, sortedIds(faces), options, *inverse).run(mesh);
}

}  // namespace host::ops
