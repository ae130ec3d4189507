#include "host/ops/topology/bevel_edges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <optional>

#include "host/mesh/provenance.h"
#include "host/ops/topology/bevel_corners.h"
#include "host/ops/topology/bevel_faces.h"
#include "host/ops/topology/bevel_uvs.h"
#include "host/ops/topology/bevel_weld.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {
namespace {

/// Meshes that were placed before. Once nobody else holds one any more its arrays are written
/// again, so that a drag costs what moves: of two in turn, the earlier one has been let go of when
/// the next is wanted. One that is still held is copied by being written.
class PlacedMeshes {
 public:
  /// A mesh with the base's faces whose new points and UVs are anywhere.
  Mesh& next(const Mesh& base) {
    turn_ = (turn_ + 1) % meshes_.size();
    Mesh& mesh = meshes_[turn_];
    if (!mesh.sharesTopologyWith(base)) mesh = base;
    // An array that the base does without is none that has come to say the same.
    if (base.edgeSmooth().empty() && !mesh.edgeSmooth().empty()) mesh.setEdgeSmooth({});
    return mesh;
  }

 private:
  std::array<Mesh, 2> meshes_;
  std::size_t turn_ = 0;
};

}  // namespace

/// What is the same however wide the bevel is.
struct BevelPlan::Data {
  Data(const Mesh& mesh, std::span<const EdgeId> edges, const BevelEdgesOptions& optionsIn,
       const math::Matrix4& inverse)
      : options(optionsIn), before(mesh), corners(mesh, edges, optionsIn, inverse) {}

  BevelEdgesOptions options;
  Mesh before;
  BevelCorners corners;
  BevelledMesh built;
  std::unique_ptr<BevelUvs> uvs;
  std::vector<EdgeSides> softened;                    // edges of new faces
  std::vector<mesh::EdgeVertices> newEdges;           // edges that join new vertices
  std::optional<mesh::Provenance> origin;             // of the built mesh, if followed
  mutable std::shared_ptr<const WeldedBevel> welded;  // the last that came together
  mutable PlacedMeshes open, closed;
};

namespace {

using math::Vec3;

// Vertices nearer than this fraction of the offset came together; a bevel that is small all over
// is none of the tolerance's business.
constexpr double kWeldedShare = 0.01;

Result<math::Matrix4> checkOptions(const BevelEdgesOptions& options) {
  constexpr int kMostSegments = 1000;
  if (options.segments < 1 || options.segments > kMostSegments)
    return fail(ErrorKind::BadArgument, "The number of segments must be 1 to {}, not {}",
                kMostSegments, options.segments);
  for (const double value : {options.offset, options.roundness, options.smoothingAngle,
                             options.mergeTolerance, options.miteringAngle})
    if (!std::isfinite(value)) return fail(ErrorKind::BadArgument, "Bevel needs finite numbers");
  if (options.offset < 0)
    return fail(ErrorKind::BadArgument, "The bevel's offset must be 0 or more, not {}",
                options.offset);
  const auto inverse = math::inverse(options.space);
  if (!inverse) return fail("The object is scaled to nothing; bevel has no space to work in");
  return *inverse;
}

bool isSameSpace(const math::Matrix4& a, const math::Matrix4& b) {
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      if (a[row][column] != b[row][column]) return false;
  return true;
}

/// Without a chamfer there is a ridge in the middle.
BevelEdgesOptions evened(BevelEdgesOptions options) {
  if (!options.chamfer) options.segments += options.segments % 2;
  return options;
}

/// Whether corners blend more than UVs, which are the only ones that are blended anew.
bool hasMoreToBlend(const Mesh& mesh) {
  bool hasMore = !mesh.lockedNormals().locked.empty();
  for (int s = 0; s < mesh.colorSetCount(); ++s)
    hasMore = hasMore || !mesh.colorSet(s).cornerIds.empty();
  return hasMore;
}

/// Which UVs corners share shows where the bevel is neither closed nor at the end of its edges.
BevelEdgesOptions trialOf(const Mesh& mesh, const BevelEdgesOptions& options) {
  BevelEdgesOptions trial = options;
  if (hasMoreToBlend(mesh)) return trial;
  trial.offsetAsFraction = true;
  trial.offset = trial.roundness = 0.5;
  return trial;
}

// A template, since what it fills is the plan's own.
template <class Data>
void build(Data& data) {
  data.built =
      buildBevel(data.before, data.corners, data.options, trialOf(data.before, data.options));
  BevelledMesh& built = data.built;
  data.uvs = std::make_unique<BevelUvs>(
      data.before, built,
      data.options.uvAssignment == BevelEdgesOptions::UvAssignment::PlanarPerFace);
  for (EdgeId e = 0; e < built.mesh.edgeCount(); ++e)
    if (const auto ends = built.mesh.edge(e); ends.a >= built.firstNew && ends.b >= built.firstNew)
      data.newEdges.push_back(ends);
  data.softened = sidesOfNewFaces(built.mesh, built.result);
}

/// Moves the new points and UVs of a mesh with the faces that were built.
template <class Data>
void placeOpen(const Data& data, const BevelEdgesOptions& options, Mesh& mesh) {
  const std::vector<math::Vec3f> places = data.corners.placesFor(options);
  const auto points = mesh.editPoints();
  for (std::size_t i = 0; i < places.size(); ++i)
    if (data.built.added[i] != kNone) points[at(data.built.added[i])] = places[i];
  data.uvs->place(data.before, data.built, data.corners, places, mesh);
}

template <class Data>
std::vector<Index> joinedIn(const Data& data, const BevelEdgesOptions& options, const Mesh& mesh) {
  if (!options.mergeVertices) return {};
  return joinedVertices(
      mesh, data.built.firstNew, data.newEdges, options.space,
      std::min(options.mergeTolerance, kWeldedShare * data.corners.offsetOf(options)));
}

/// How a mesh comes of the one that was bevelled; nothing while nobody follows.
class OriginScope {
 public:
  explicit OriginScope(const Mesh& before) {
    if (mesh::ProvenanceTrail::isFollowed()) trail_.emplace(before);
  }
  [[nodiscard]] std::optional<mesh::Provenance> of(const Mesh& made) const {
    return trail_ ? trail_->to(made) : std::nullopt;
  }

 private:
  std::optional<mesh::ProvenanceTrail> trail_;
};

/// Tells who follows now of what was built in an earlier evaluation.
void tellOrigin(const Mesh& before, const Mesh& made,
                const std::optional<mesh::Provenance>& origin) {
  if (origin && mesh::ProvenanceTrail::isFollowed())
    mesh::ProvenanceTrail::note(before, made, *origin);
}

Result<math::Matrix4> check(const Mesh& mesh, std::span<const EdgeId> edges,
                            const BevelEdgesOptions& options) {
  HOST_TRY(checkIds("edge", edges, mesh.edgeCount()));
  return checkOptions(options);
}

Result<void> checkAnyIsLeft(const BevelCorners& corners) {
  if (!corners.edges().empty()) return {};
  return fail("None of the edges can be bevelled: they need two faces wound alike");
}

}  // namespace

Result<BevelPlan> BevelPlan::make(const Mesh& mesh, std::span<const EdgeId> edges,
                                  const BevelEdgesOptions& options) {
  const auto inverse = check(mesh, edges, options);
  if (!inverse) return failWith(inverse.error());
  const auto data = std::make_shared<Data>(mesh, sortedIds(edges), evened(options), *inverse);
  HOST_TRY(checkAnyIsLeft(data->corners));
  const OriginScope origin(mesh);
  build(*data);
  data->origin = origin.of(data->built.mesh);
  BevelPlan plan;
  plan.data_ = data;
  return plan;
}

bool BevelPlan::hasTopologyOf(const BevelEdgesOptions& asked) const {
  if (!data_) return false;
  const BevelEdgesOptions options = evened(asked), &own = data_->options;
  const bool isSameFaces =
      options.segments == own.segments && options.autoFit == own.autoFit &&
      options.fillNgons == own.fillNgons && options.subdivideNgons == own.subdivideNgons &&
      options.miteringAngle == own.miteringAngle && options.uvAssignment == own.uvAssignment &&
      options.chamfer == own.chamfer && isSameSpace(options.space, own.space);
  const bool isSamePlace = options.offset == own.offset &&
                           options.offsetAsFraction == own.offsetAsFraction &&
                           options.roundness == own.roundness;
  return isSameFaces && (isSamePlace || !hasMoreToBlend(data_->before));
}

Result<BevelPlan::Placed> BevelPlan::place(const BevelEdgesOptions& asked) const {
  if (const auto checked = checkOptions(asked); !checked) return failWith(checked.error());
  if (!hasTopologyOf(asked)) return fail("The bevel's topology has changed; plan it again");
  const Data& data = *data_;
  const BevelEdgesOptions options = evened(asked);
  Mesh& open = data.open.next(data.built.mesh);
  placeOpen(data, options, open);
  std::vector<Index> targets = joinedIn(data, options, open);
  if (targets.empty()) {
    softenSides(open, data.softened, options.smoothingAngle, nullptr, &data.built.mesh);
    tellOrigin(data.before, open, data.origin);
    return Placed{open, {data_, &data.built.result}};
  }
  if (!data.welded || data.welded->targets != targets) {
    const OriginScope origin(data.before);
    tellOrigin(data.before, open, data.origin);
    const auto made = weldBevel(data.built, *data.uvs, open, std::move(targets));
    made->origin = origin.of(made->mesh);
    data.welded = made;
  }
  Mesh& closed = data.closed.next(data.welded->mesh);
  data.welded->follow(open, closed);
  softenSides(closed, data.welded->softened, options.smoothingAngle, nullptr, &data.welded->mesh);
  tellOrigin(data.before, closed, data.welded->origin);
  return Placed{closed, data.welded->result};
}

Result<BevelEdgesResult> bevelEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                    const BevelEdgesOptions& options) {
  const auto inverse = check(mesh, edges, options);
  if (!inverse) return failWith(inverse.error());
  BevelPlan::Data data(mesh, sortedIds(edges), evened(options), *inverse);
  HOST_TRY(checkAnyIsLeft(data.corners));
  build(data);
  mesh = data.built.mesh;
  placeOpen(data, data.options, mesh);
  std::vector<Index> targets = joinedIn(data, data.options, mesh);
  if (targets.empty()) {
    softenSides(mesh, data.softened, data.options.smoothingAngle);
    return std::move(data.built.result);
  }
  const auto welded = weldBevel(data.built, *data.uvs, mesh, std::move(targets));
  mesh = welded->mesh;
  softenSides(mesh, welded->softened, data.options.smoothingAngle);
  return *welded->result;
}

}  // namespace host::ops
