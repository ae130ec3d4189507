#include "host/ops/smooth/smooth_mesh.h"

#include <array>
#include <cmath>
#include <thread>

#include "host/base/cancel.h"
#include "host/mesh/provenance.h"
#include "host/ops/smooth/catmull_clark.h"
#include "host/ops/smooth/smooth_topology.h"

namespace host::ops {
namespace {

constexpr Index kParallelCorners = 100'000;  // fewer are done before a thread starts
constexpr float kFullCrease = 10;            // and more: infinitely sharp

float sharpnessOfCrease(float crease) {
  return crease >= kFullCrease ? kInfinitelySharp : crease;
}
float nextCrease(float crease) {
  return crease >= kFullCrease ? crease : std::max(0.0F, crease - 1);
}

// A UV set seen as a mesh: its points, and an edge for each pair of UVs that a mesh edge has on its
// sides.
struct UvComplex {
  std::vector<Index> cornerEdges;
  std::vector<mesh::EdgeVertices> edges;
  std::vector<EdgeId> edgeParents;
};

class Smoother {
 public:
  Smoother(const Mesh& mesh, std::vector<std::uint8_t> isDivided, const SmoothOptions& options)
      : mesh_(mesh),
        isDivided_(std::move(isDivided)),
        options_(options),
        rootEdges_(mesh.edgeCount()) {
    mesh_.setLockedNormals({});
    pinVerticesOfSeveralFans();
  }

  /// One division. @return false when it was asked to stop, with nothing worth keeping
  bool step() {
    // Points and the rest do not need each other.
    std::vector<math::Vec3f> points;
    SmoothTopology next;
    Mesh result = mesh_;
    const auto divideTheRest = [&] {
      next = divideTopology(mesh_, isDivided_, rootEdges_);
      for (int s = 0; s < mesh_.uvSetCount(); ++s)
        result.setUvSet(s, dividedUvs(mesh_.uvSet(s), next));
    };
    if (mesh_.cornerCount() < kParallelCorners) {
      points = movedPoints();
      divideTheRest();
    } else {
      std::thread other([&] { points = movedPoints(); });
      divideTheRest();
      other.join();
    }
    if (isCancelled()) return false;
    dropUndivided(points, next);
    result.setPoints(std::move(points));
    if (mesh_.colorSetCount() > 0) divideColors(result, next);
    if (isCancelled()) return false;
    carryEdgesAndFaces(result, next);
    rootEdges_ = next.rootEdges;
    std::vector<std::uint8_t> isDivided;
    isDivided.reserve(next.faceParents.size());
    for (const FaceId parent : next.faceParents) isDivided.push_back(isDivided_[at(parent)]);
    isDivided_ = std::move(isDivided);
    isPinned_.resize(at(next.vertexCount), 0);
    result.setTopology(std::move(next.topology));
    if (isCancelled()) return false;
    if (mesh::ProvenanceTrail::isFollowed())
      mesh::ProvenanceTrail::note(mesh_, result, provenanceOf(next));
    mesh_ = std::move(result);
    return true;
  }

  [[nodiscard]] mesh::Provenance provenanceOf(const SmoothTopology& next) const {
    mesh::Provenance result;
    for (const FaceId parent : next.faceParents) result.faces.add(parent);
    for (const EdgeId parent : next.edgeParents) result.edges.add(parent);
    result.vertices.addRun(0, mesh_.vertexCount());
    result.vertices.addSame(kNone, next.vertexCount - mesh_.vertexCount());
    return result;
  }

  Mesh finish() {
    if (!options_.propagateHardness) mesh_.setEdgeSmooth({});
    return std::move(mesh_);
  }
  [[nodiscard]] const std::vector<std::uint8_t>& isDivided() const { return isDivided_; }

 private:
  // Where separate fans of faces meet in a vertex, no rule says how it should move. Later steps
  // cannot make new ones.
  void pinVerticesOfSeveralFans() {
    const auto& topology = mesh_.topology();
    isPinned_.assign(at(mesh_.vertexCount()), 0);
    std::vector<Index> fans(isPinned_.size(), 0);
    JoinedSets joined(topology.cornerVertices.size());
    std::vector<std::array<CornerId, 2>> seen(topology.edges.size(), {kNone, kNone});
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      if (isDivided_[at(f)] == 0) continue;
      const CornerId first = mesh_.firstCorner(f), end = mesh_.firstCorner(f + 1);
      for (CornerId c = first; c < end; ++c) {
        ++fans[at(mesh_.cornerVertex(c))];
        const EdgeId e = mesh_.cornerEdge(c);
        const CornerId after = c + 1 < end ? c + 1 : first;
        const bool isForward = mesh_.edge(e).a == mesh_.cornerVertex(c);
        const std::array<CornerId, 2> here{isForward ? c : after, isForward ? after : c};
        for (std::size_t k = 0; k < 2; ++k)
          if (seen[at(e)][k] != kNone && joined.join(seen[at(e)][k], here[k]))
            --fans[at(mesh_.cornerVertex(here[k]))];
        seen[at(e)] = here;
      }
    }
    for (std::size_t v = 0; v < fans.size(); ++v) isPinned_[v] = fans[v] > 1 ? 1 : 0;
  }

  // Listed and other faces at each edge.
  struct Uses {
    std::uint8_t listed = 0, others = 0;  // 3 stands for more, too
    static void count(std::uint8_t& uses) {
      uses = static_cast<std::uint8_t>(uses < 3 ? uses + 1 : 3);
    }
  };
  [[nodiscard]] std::vector<Uses> edgeUses() const {
    PerElement<EdgeId, Uses> uses(mesh_.edgeCount());
    for (FaceId f = 0; f < mesh_.faceCount(); ++f)
      for (const EdgeId e : mesh_.faceEdges(f))
        Uses::count(isDivided_[at(f)] != 0 ? uses[e].listed : uses[e].others);
    return uses;
  }

  [[nodiscard]] float sharpnessOf(EdgeId e) const {
    if (options_.keepHardEdges && !mesh_.isEdgeSmooth(e)) return kInfinitelySharp;
    return sharpnessOfCrease(mesh_.edgeCrease(e));
  }

  [[nodiscard]] bool hasSharpEdges() const {
    return !mesh_.creases().edges.empty() ||
           (options_.keepHardEdges && !mesh_.edgeSmooth().empty());
  }

  // The old points, one an edge and one a face.
  [[nodiscard]] std::vector<math::Vec3f> movedPoints() const {
    SubdivisionChannel channel;
    const auto& topology = mesh_.topology();
    channel.faceOffsets = topology.faceOffsets;
    channel.cornerPoints = topology.cornerVertices;
    channel.cornerEdges = topology.cornerEdges;
    channel.isDivided = isDivided_;
    channel.edges = topology.edges;
    channel.weight = options_.continuity;
    channel.isPinned = isPinned_;
    const std::vector<Uses> uses = edgeUses();
    for (EdgeId e = 0; e < mesh_.edgeCount(); ++e) {
      const Uses& use = uses[e];
      if (use.listed == 0 || use.listed == 2) continue;
      const bool stays = use.others > 0 ? options_.keepSelectionBorder : options_.keepBorder;
      if (stays) channel.isPinned[at(mesh_.edge(e).a)] = channel.isPinned[at(mesh_.edge(e).b)] = 1;
    }
    if (hasSharpEdges()) {
      channel.edgeSharpness.reserve(topology.edges.size());
      for (EdgeId e = 0; e < mesh_.edgeCount(); ++e)
        channel.edgeSharpness.push_back(sharpnessOf(e));
    }
    if (!mesh_.creases().vertices.empty())
      for (const float crease : mesh_.creases().vertices)
        channel.pointSharpness.push_back(sharpnessOfCrease(crease));
    return catmullClarkPoints<math::Vec3f>(mesh_.points(), channel);
  }

  // Closes the gaps of edges and faces that are not divided.
  void dropUndivided(std::vector<math::Vec3f>& points, const SmoothTopology& next) const {
    if (points.size() == at(next.vertexCount)) return;
    const std::size_t edges = at(mesh_.vertexCount()), faces = edges + next.edgeVertices.size();
    std::size_t kept = edges;
    for (std::size_t e = 0; e < next.edgeVertices.size(); ++e)
      if (next.edgeVertices[e] != kNone) points[kept++] = points[edges + e];
    for (std::size_t f = 0; f < next.faceVertices.size(); ++f)
      if (next.faceVertices[f] != kNone) points[kept++] = points[faces + f];
    points.resize(kept);
  }

  [[nodiscard]] UvComplex complexOf(const mesh::UvSet& set, const SmoothTopology& next) const {
    UvComplex complex;
    complex.cornerEdges.assign(at(mesh_.cornerCount()), kNone);
    complex.edges.reserve(at(mesh_.edgeCount()));
    complex.edgeParents.reserve(at(mesh_.edgeCount()));
    PerElement<EdgeId, EdgeId> newest(mesh_.edgeCount(), kNone), older;
    older.reserve(at(mesh_.edgeCount()));
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      const CornerId first = mesh_.firstCorner(f), end = mesh_.firstCorner(f + 1);
      if (set.cornerIds[first] < 0) continue;
      for (CornerId c = first; c < end; ++c) {
        const EdgeId e = mesh_.cornerEdge(c);
        if (next.isEdgeDivided[at(e)] == 0) continue;
        const bool isForward = mesh_.edge(e).a == mesh_.cornerVertex(c);
        const UvId here = set.cornerIds[c], after = set.cornerIds[c + 1 < end ? c + 1 : first];
        // Edges of the channel join points of the channel.
        const mesh::EdgeVertices ends{VertexId(Index(isForward ? here : after)),
                                      VertexId(Index(isForward ? after : here))};
        EdgeId found = newest[e];
        while (found != kNone && !(complex.edges[at(found)] == ends)) found = older[at(found)];
        if (found == kNone) {
          found = static_cast<EdgeId>(complex.edges.size());
          complex.edges.push_back(ends);
          complex.edgeParents.push_back(e);
          older.push_back(newest[e]);
          newest[e] = found;
        }
        complex.cornerEdges[c] = found;
      }
    }
    return complex;
  }

  mesh::UvSet dividedUvs(const mesh::UvSet& set, const SmoothTopology& next) const {
    mesh::UvSet result;
    result.name = set.name;
    result.points = set.points;
    if (set.cornerIds.empty()) return result;
    const UvComplex complex = complexOf(set, next);
    result.points = placedUvs(set, complex);
    const std::size_t oldCount = set.points.size();
    std::size_t kept = oldCount + complex.edges.size();
    const std::size_t firstFace = kept;
    PerElement<FaceId, UvId> faceUvs(mesh_.faceCount(), kNone);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      if (isDivided_[at(f)] == 0 || set.cornerIds[mesh_.firstCorner(f)] < 0) continue;
      faceUvs[f] = static_cast<UvId>(kept);
      result.points[kept++] = result.points[firstFace + at(f)];
    }
    result.points.resize(kept);
    result.cornerIds.reserve(next.topology.cornerVertices.size());
    forEachSmoothCorner(mesh_, isDivided_, next.isEdgeDivided,
                        [&](const SmoothCorner& corner, bool) {
                          UvId id = faceUvs[corner.face];
                          if (corner.kind == SmoothCorner::Kind::Corner)
                            id = set.cornerIds[corner.corner];
                          if (corner.kind == SmoothCorner::Kind::Edge) {
                            const EdgeId edge = complex.cornerEdges[corner.corner];
                            id = edge == kNone ? kNone : static_cast<UvId>(oldCount) + edge;
                          }
                          result.cornerIds.push_back(id);
                        });
    return result;
  }

  [[nodiscard]] std::vector<math::Vec2f> placedUvs(const mesh::UvSet& set,
                                                   const UvComplex& complex) const {
    SubdivisionChannel channel;
    const bool isSmooth =
        options_.smoothUVs && options_.mapBorders != SmoothOptions::MapBorders::KeepAll;
    channel.faceOffsets = mesh_.topology().faceOffsets;
    channel.cornerPoints = set.cornerIds;
    channel.cornerEdges = complex.cornerEdges;
    channel.isDivided = isDivided_;
    channel.edges = complex.edges;
    channel.weight = isSmooth ? options_.continuity : 0;
    channel.isPinned.assign(set.points.size(), 0);
    if (!mesh_.creases().vertices.empty()) {
      channel.pointSharpness.assign(set.points.size(), 0);
      for (CornerId c = 0; c < mesh_.cornerCount(); ++c)
        if (const UvId id = set.cornerIds[c]; id >= 0)
          channel.pointSharpness[at(id)] =
              sharpnessOfCrease(mesh_.vertexCrease(mesh_.cornerVertex(c)));
    }
    if (hasSharpEdges()) {
      channel.edgeSharpness.reserve(complex.edges.size());
      for (const EdgeId parent : complex.edgeParents)
        channel.edgeSharpness.push_back(sharpnessOf(parent));
    }
    std::vector<Uses> uses(complex.edges.size());
    for (FaceId f = 0; f < mesh_.faceCount(); ++f)
      for (CornerId c = mesh_.firstCorner(f); c < mesh_.firstCorner(f + 1); ++c)
        if (const EdgeId e = complex.cornerEdges[c]; e != kNone)
          Uses::count(isDivided_[at(f)] != 0 ? uses[e].listed : uses[e].others);
    for (std::size_t e = 0; e < complex.edges.size(); ++e) {
      if (uses[e].listed == 2) continue;
      const bool stays =
          uses[e].others > 0 || options_.mapBorders == SmoothOptions::MapBorders::Keep;
      if (stays)
        channel.isPinned[at(complex.edges[e].a)] = channel.isPinned[at(complex.edges[e].b)] = 1;
    }
    return catmullClarkPoints<math::Vec2f>(set.points, channel);
  }

  void divideColors(Mesh& result, const SmoothTopology& next) const {
    mesh::CornerSources sources;
    std::vector<mesh::CornerWeight> mean;
    forEachSmoothCorner(
        mesh_, isDivided_, next.isEdgeDivided, [&](const SmoothCorner& corner, bool) {
          const CornerId first = mesh_.firstCorner(corner.face),
                         end = mesh_.firstCorner(corner.face + 1);
          if (corner.kind == SmoothCorner::Kind::Corner) return sources.add(corner.corner);
          mean.clear();
          if (corner.kind == SmoothCorner::Kind::Edge) {
            mean.push_back({corner.corner, 0.5});
            mean.push_back({corner.corner + 1 < end ? corner.corner + 1 : first, 0.5});
          } else {
            for (CornerId c = first; c < end; ++c) mean.push_back({c, 1.0 / (end - first)});
          }
          sources.add(mean);
        });
    for (int s = 0; s < mesh_.colorSetCount(); ++s)
      result.setColorSet(s, mesh::carryColorSet(mesh_.colorSet(s), next.topology, sources));
  }

  void carryEdgesAndFaces(Mesh& result, const SmoothTopology& next) const {
    if (!mesh_.edgeSmooth().empty()) {
      std::vector<std::uint8_t> flags;
      flags.reserve(next.edgeParents.size());
      for (const EdgeId parent : next.edgeParents)
        flags.push_back(parent == kNone || mesh_.isEdgeSmooth(parent) ? 1 : 0);
      result.setEdgeSmooth(std::move(flags));
    }
    mesh::Creases creases;
    if (!mesh_.creases().edges.empty())
      for (const EdgeId parent : next.edgeParents) {
        const bool isDivided = parent != kNone && next.isEdgeDivided[at(parent)] != 0;
        const float crease = parent == kNone ? 0 : mesh_.edgeCrease(parent);
        creases.edges.push_back(isDivided ? nextCrease(crease) : crease);
      }
    if (!mesh_.creases().vertices.empty()) {
      creases.vertices = mesh_.creases().vertices;
      std::vector<std::uint8_t> isMoved(creases.vertices.size(), 0);
      for (FaceId f = 0; f < mesh_.faceCount(); ++f)
        for (const VertexId v : mesh_.faceVertices(f)) isMoved[at(v)] |= isDivided_[at(f)];
      for (std::size_t v = 0; v < isMoved.size(); ++v)
        if (isMoved[v] != 0) creases.vertices[v] = nextCrease(creases.vertices[v]);
      creases.vertices.resize(at(next.vertexCount), 0);
    }
    result.setCreases(std::move(creases));
    if (mesh_.invisibleFaces().empty()) return;
    const std::vector<std::uint8_t> isHidden = flagsOf(mesh_.invisibleFaces(), mesh_.faceCount());
    std::vector<FaceId> hidden;
    for (std::size_t f = 0; f < next.faceParents.size(); ++f)
      if (isHidden[at(next.faceParents[f])] != 0) hidden.push_back(static_cast<FaceId>(f));
    result.setInvisibleFaces(std::move(hidden));
  }

  Mesh mesh_;
  std::vector<std::uint8_t> isDivided_;
  SmoothOptions options_;
  Index rootEdges_;
  std::vector<std::uint8_t> isPinned_;
};

}  // namespace

Result<SmoothResult> smoothMesh(Mesh& mesh, std::span<const FaceId> faces,
                                const SmoothOptions& options) {
  constexpr int kMostDivisions = 8;
  constexpr double kMostCorners = 4e8;
  HOST_TRY(checkIds("face", faces, mesh.faceCount()));
  if (options.divisions < 0 || options.divisions > kMostDivisions)
    return fail(ErrorKind::BadArgument, "The number of divisions must be 0 to {}, not {}",
                kMostDivisions, options.divisions);
  if (!std::isfinite(options.continuity) || options.continuity < 0 || options.continuity > 1)
    return fail(ErrorKind::BadArgument, "The continuity must be 0 to 1, not {}",
                options.continuity);
  double corners = 0;
  const std::vector<FaceId> ids = sortedIds(faces);
  for (const FaceId f : ids) corners += mesh.faceSize(f);
  if (corners * std::pow(4.0, options.divisions) > kMostCorners)
    return fail("{} divisions of {} faces would make too many faces", options.divisions,
                ids.size());

  SmoothResult result;
  if (ids.empty() || options.divisions == 0) {
    result.faces = ids;
    return result;
  }
  Smoother smoother(mesh, flagsOf(ids, mesh.faceCount()), options);
  LongWork work("Smoothing", static_cast<std::size_t>(std::pow(4, options.divisions)));
  for (int i = 0; i < options.divisions; ++i) {
    if (!smoother.step()) return cancelled();
    work.advance(static_cast<std::size_t>(3 * std::pow(4, i)));  // a step costs four of the last
  }
  for (std::size_t f = 0; f < smoother.isDivided().size(); ++f)
    if (smoother.isDivided()[f] != 0) result.faces.push_back(static_cast<FaceId>(f));
  mesh = smoother.finish();
  return result;
}

}  // namespace host::ops
