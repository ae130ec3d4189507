#include "host/ops/topology/bevel_edges.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "host/ops/topology/bevel_corners.h"
#include "host/ops/topology/bevel_faces.h"
#include "host/ops/topology/bevel_uvs.h"
#include "host/ops/topology/bevel_weld.h"
#include "host/ops/topology/soft_edges.h"

namespace host::ops {

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
  mutable std::shared_ptr<const WeldedBevel> welded;  // the last that came together
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

/// @return what the weld made of the result; null when there was nothing to weld
template <class Data>
std::shared_ptr<const BevelEdgesResult> placeBevel(const Data& data,
                                                   const BevelEdgesOptions& options, Mesh& mesh) {
  const BevelledMesh& built = data.built;
  const std::vector<math::Vec3f> places = data.corners.placesFor(options);
  mesh = built.mesh;
  const auto points = mesh.editPoints();
  for (std::size_t i = 0; i < places.size(); ++i)
    if (built.added[i] != kNone) points[at(built.added[i])] = places[i];
  data.uvs->place(data.before, built, data.corners, places, mesh);
  std::vector<Index> targets;
  if (options.mergeVertices)
    targets = joinedVertices(
        mesh, built.firstNew, data.newEdges, options.space,
        std::min(options.mergeTolerance, kWeldedShare * data.corners.offsetOf(options)));
  if (targets.empty()) {
    softenSides(mesh, data.softened, options.smoothingAngle);
    return nullptr;
  }
  if (data.welded && data.welded->targets == targets && data.welded->keepsUvsOf(mesh)) {
    mesh = data.welded->placedAs(mesh, built.firstNew);
  } else {
    data.welded = weldBevel(built, std::move(mesh), std::move(targets));
    mesh = data.welded->mesh;
  }
  softenSides(mesh, data.welded->softened, options.smoothingAngle);
  return data.welded->result;
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
  build(*data);
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
  Placed placed;
  placed.result = placeBevel(*data_, evened(asked), placed.mesh);
  if (!placed.result) placed.result = {data_, &data_->built.result};
  return placed;
}

Result<BevelEdgesResult> bevelEdges(Mesh& mesh, std::span<const EdgeId> edges,
                                    const BevelEdgesOptions& options) {
  const auto inverse = check(mesh, edges, options);
  if (!inverse) return failWith(inverse.error());
  BevelPlan::Data data(mesh, sortedIds(edges), evened(options), *inverse);
  HOST_TRY(checkAnyIsLeft(data.corners));
  build(data);
  if (const auto welded = placeBevel(data, data.options, mesh)) return *welded;
  return std::move(data.built.result);
}

}  // namespace host::ops
