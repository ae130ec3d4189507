#include "host/ops/uv/transfer_attributes.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <vector>

#include "host/base/cancel_poll.h"
#include "host/base/parallel.h"
#include "host/mesh/adjacency.h"
#include "host/ops/query/uv_place.h"
#include "host/ops/uv/uv_ids.h"
#include "host/spatial/accelerator.h"

namespace host::ops {

namespace {

using math::Vec3;
using mesh::Mesh;
using mesh::Vec2f;

/// Answers where on the source a point of the target, in its object space, is.
class Sampler {
 public:
  Sampler(const Mesh& target, const Mesh& source, const TransferAttributesOptions& options)
      : target_(target), source_(source), options_(options) {}

  Result<void> prepare() {
    if (options_.space == TransferSpace::Component) return {};
    if (source_.faceCount() == 0) return fail("the source has no faces to take attributes from");
    if (options_.space == TransferSpace::Surface) {
      surface_ = spatial::Accelerator::of(source_);
      if (options_.search == TransferSearch::AlongNormal) surface_->buildForRays();
      surface_->buildForPoints();
      normals_ = target_.cornerNormals();
      return {};
    }
    auto from = findUvSet(source_, options_.sourceUvSpace);
    if (!from) return failWith(from.error());
    auto to = findUvSet(target_, options_.targetUvSpace);
    if (!to) return failWith(to.error());
    targetSpace_ = *to;
    flat_ = flattened(*from);
    if (!flat_) return fail("the source has no UVs in '{}'", source_.uvSet(*from).name);
    surface_ = spatial::Accelerator::of(*flat_);
    surface_->buildForPoints();
    return {};
  }

  /// The place on the source for a corner; nothing where there is none.
  [[nodiscard]] std::optional<FacePlace> placeFor(CornerId corner, const Vec3& point) const {
    if (options_.space == TransferSpace::Uv) return atUv(corner);
    const Vec3 there = math::transformPoint(point, options_.toSource);
    if (options_.search == TransferSearch::AlongNormal)
      if (const auto hit = alongNormal(corner, there)) return placeOf(*hit);
    const auto closest = surface_->closestPoint(there);
    if (!closest) return std::nullopt;
    return placeOf(*closest);
  }

 private:
  static FacePlace placeOf(const spatial::SurfacePoint& point) {
    return {point.corners, {1 - point.u - point.v, point.u, point.v}};
  }

  [[nodiscard]] std::optional<spatial::RayHit> alongNormal(CornerId corner,
                                                           const Vec3& there) const {
    const Vec3 normal(normals_[at(corner)]);
    const Vec3 direction = math::normalized(math::transformNormal(normal, options_.toSource));
    if (math::lengthSquared(direction) == 0) return std::nullopt;
    spatial::RayOptions both;
    both.bothDirections = true;
    return surface_->closestHit({there, direction}, both);
  }

  [[nodiscard]] std::optional<FacePlace> atUv(CornerId corner) const {
    const UvId uv = target_.cornerUv(targetSpace_, corner);
    if (uv == kNone) return std::nullopt;
    const Vec2f& place = target_.uvSet(targetSpace_).points[at(uv)];
    const auto closest = surface_->closestPoint({place.u, place.v, 0});
    if (!closest) return std::nullopt;
    FacePlace found = placeOf(*closest);
    for (CornerId& c : found.corners) c = sourceCorner_[at(c)];
    return found;
  }

  /// The source's faces laid out by their UVs.
  std::optional<Mesh> flattened(int set) {
    std::vector<math::Vec3f> points;
    for (const Vec2f& uv : source_.uvSet(set).points) points.push_back({uv.u, uv.v, 0});
    std::vector<Index> counts;
    std::vector<VertexId> corners;
    for (FaceId f = 0; f < source_.faceCount(); ++f) {
      pollCancel(f);
      const CornerId first = source_.firstCorner(f);
      std::vector<VertexId> loop;
      for (CornerId c = first; c < source_.firstCorner(f + 1); ++c)
        loop.push_back(Index(source_.cornerUv(set, c)));  // UVs are the vertices of it
      const auto isRepeat = [&](std::size_t i) { return loop[i] == loop[(i + 1) % loop.size()]; };
      bool isSound = loop.front() != kNone;
      for (std::size_t i = 0; i < loop.size(); ++i) isSound = isSound && !isRepeat(i);
      if (!isSound) continue;
      counts.push_back(static_cast<Index>(loop.size()));
      corners.insert(corners.end(), loop.begin(), loop.end());
      for (CornerId c = first; c < source_.firstCorner(f + 1); ++c) sourceCorner_.push_back(c);
    }
    if (counts.empty()) return std::nullopt;
    auto built = mesh::buildMesh(std::move(points), counts, corners);
    if (!built) return std::nullopt;
    return *std::move(built);
  }

  const Mesh& target_;
  const Mesh& source_;
  const TransferAttributesOptions& options_;
  std::shared_ptr<const spatial::Accelerator> surface_;
  std::span<const math::Vec3f> normals_;
  std::optional<Mesh> flat_;
  std::vector<CornerId> sourceCorner_;  // a corner of the flat mesh
  int targetSpace_ = 0;
};

class Transfer {
 public:
  Transfer(Mesh& target, const Mesh& source, const TransferAttributesOptions& options)
      : target_(target),
        source_(source),
        options_(options),
        before_(target),
        sampler_(before_, source, options) {}

  Result<void> run() {
    HOST_TRY(sampler_.prepare());
    const auto uvSets = uvSetPairs();
    if (!uvSets) return failWith(uvSets.error());
    const auto colorSets = colorSetPairs();
    if (!colorSets) return failWith(colorSets.error());
    if (options_.space == TransferSpace::Component) HOST_TRY(checkCounts());
    samplePlaces();
    if (options_.positions) movePoints();
    for (const auto& [from, to] : *uvSets) takeUvs(from, to);
    for (const auto& [from, to] : *colorSets) takeColors(from, to);
    if (options_.normals) takeNormals();
    return {};
  }

 private:
  struct SetPair {
    int from;
    std::string to;
  };

  Result<std::vector<SetPair>> uvSetPairs() const {
    std::vector<SetPair> pairs;
    if (options_.uvs == TransferSets::None) return pairs;
    if (options_.uvs == TransferSets::All) {
      for (int i = 0; i < source_.uvSetCount(); ++i) pairs.push_back({i, source_.uvSet(i).name});
      return pairs;
    }
    auto from = findUvSet(source_, options_.sourceUvSet);
    if (!from) return failWith(from.error());
    pairs.push_back({*from, options_.targetUvSet.empty()
                                ? target_.uvSet(target_.currentUvSet()).name
                                : options_.targetUvSet});
    return pairs;
  }

  Result<std::vector<SetPair>> colorSetPairs() const {
    std::vector<SetPair> pairs;
    if (options_.colors == TransferSets::None || source_.colorSetCount() == 0) return pairs;
    if (options_.colors == TransferSets::All) {
      for (int i = 0; i < source_.colorSetCount(); ++i)
        pairs.push_back({i, source_.colorSet(i).name});
      return pairs;
    }
    const int from = options_.sourceColorSet.empty()
                         ? source_.currentColorSet()
                         : source_.findColorSet(options_.sourceColorSet);
    if (from < 0)
      return fail(ErrorKind::NotFound, "the source has no colour set '{}'",
                  options_.sourceColorSet);
    pairs.push_back({from, options_.targetColorSet.empty() ? source_.colorSet(from).name
                                                           : options_.targetColorSet});
    return pairs;
  }

  Result<void> checkCounts() const {
    if (options_.positions && target_.vertexCount() != source_.vertexCount())
      return fail("the source has {} vertices and the target {}: they don't belong together",
                  source_.vertexCount(), target_.vertexCount());
    if (target_.topology().faceOffsets != source_.topology().faceOffsets)
      return fail("source and target have other faces: their components don't belong together");
    return {};
  }

  [[nodiscard]] static Vec3 middleOf(const Mesh& mesh, FaceId f) {
    Vec3 sum;
    for (const VertexId v : mesh.faceVertices(f)) sum += mesh.point(v);
    return sum / static_cast<double>(mesh.faceSize(f));
  }

  /// Where each corner takes its data, found a little inside its face, so that corners on a seam of
  /// the source look at the side that their face is on.
  void samplePlaces() {
    const bool isCornerData = options_.uvs != TransferSets::None ||
                              options_.colors != TransferSets::None || options_.normals;
    if (!isCornerData) return;
    places_.assign(at(before_.cornerCount()), std::nullopt);
    (void)before_.adjacency();
    parallelFor(at(before_.faceCount()), 500, [&](std::size_t begin, std::size_t end) {
      for (auto f = static_cast<FaceId>(begin); f < static_cast<FaceId>(end); ++f) {
        const Vec3 middle = middleOf(before_, f);
        for (CornerId c = before_.firstCorner(f); c < before_.firstCorner(f + 1); ++c) {
          if (options_.space == TransferSpace::Component) {
            places_[at(c)] = FacePlace{{c, c, c}, {1, 0, 0}};
            continue;
          }
          const Vec3 point = before_.point(before_.cornerVertex(c));
          places_[at(c)] = sampler_.placeFor(c, point + (middle - point) * 1e-3);
          if (places_[at(c)] && options_.space == TransferSpace::Surface)
            places_[at(c)] = carriedTo(*places_[at(c)], point);
        }
      }
    });
  }

  /// The place in the same triangle, or just outside of it, nearest to a point of the target.
  [[nodiscard]] FacePlace carriedTo(const FacePlace& place, const Vec3& point) const {
    const auto cornerPoint = [&](int i) {
      return source_.point(source_.cornerVertex(place.corners[at(i)]));
    };
    const Vec3 a = cornerPoint(0), ab = cornerPoint(1) - a, ac = cornerPoint(2) - a;
    const Vec3 ap = math::transformPoint(point, options_.toSource) - a;
    const Vec3 normal = math::cross(ab, ac);
    const double area = math::lengthSquared(normal);
    if (!(area > 0)) return place;
    const double v = math::dot(math::cross(ap, ac), normal) / area;
    const double w = math::dot(math::cross(ab, ap), normal) / area;
    // Far outside, the point found first says more than the plane of its triangle.
    constexpr double kJustOutside = 0.01;
    if (v < -kJustOutside || w < -kJustOutside || v + w > 1 + kJustOutside) return place;
    const auto snapped = [](double x) { return std::abs(x) < 1e-6 ? 0.0 : x; };
    FacePlace carried = place;
    carried.weights = {snapped(1 - v - w), snapped(v), snapped(w)};
    return carried;
  }

  void movePoints() {
    std::vector<math::Vec3f> points(before_.points().begin(), before_.points().end());
    const mesh::Adjacency& adjacency = before_.adjacency();
    for (VertexId v = 0; v < before_.vertexCount(); ++v) {
      pollCancel(v);
      Vec3 there;
      if (options_.space == TransferSpace::Component) {
        there = source_.point(v);
      } else {
        const auto corners = adjacency.vertexCorners(v);
        if (corners.empty()) continue;
        const auto place = sampler_.placeFor(corners.front(), before_.point(v));
        if (!place) continue;
        there = pointAt(source_, *place);
      }
      points[at(v)] = math::transformPoint(there, options_.fromSource).toFloat();
    }
    target_.setPoints(std::move(points));
  }

  void takeUvs(int from, const std::string& name) {
    int to = target_.findUvSet(name);
    if (to < 0) to = target_.addUvSet({name, {}, {}});
    if (options_.space == TransferSpace::Component && !options_.flipsU && !options_.flipsV) {
      mesh::UvSet copied = source_.uvSet(from);
      copied.name = name;
      target_.setUvSet(to, std::move(copied));
      return;
    }
    mesh::UvSet taken{name, {}, std::vector<UvId>(at(target_.cornerCount()), kNone)};
    std::vector<std::optional<Vec2f>> uvs(places_.size());
    for (FaceId f = 0; f < target_.faceCount(); ++f) {
      pollCancel(f);
      bool isWhole = true;
      const CornerId first = target_.firstCorner(f), end = target_.firstCorner(f + 1);
      for (CornerId c = first; c < end; ++c) {
        if (places_[at(c)]) uvs[at(c)] = uvAt(source_, from, *places_[at(c)]);
        isWhole = isWhole && uvs[at(c)].has_value();
      }
      for (CornerId c = first; c < end && !isWhole; ++c) uvs[at(c)].reset();
    }
    for (std::optional<Vec2f>& uv : uvs) {
      if (!uv) continue;
      if (options_.flipsU) uv->u = 1 - uv->u;
      if (options_.flipsV) uv->v = 1 - uv->v;
    }
    weld(uvs, taken);
    target_.setUvSet(to, std::move(taken));
  }

  /// Corners at one vertex whose UVs are the same but for rounding share one.
  void weld(const std::vector<std::optional<Vec2f>>& uvs, mesh::UvSet& set) const {
    const mesh::Adjacency& adjacency = before_.adjacency();
    for (VertexId v = 0; v < before_.vertexCount(); ++v) {
      pollCancel(v);
      const std::size_t first = set.points.size();
      for (const CornerId c : adjacency.vertexCorners(v)) {
        if (!uvs[at(c)]) continue;
        const Vec2f& uv = *uvs[at(c)];
        const auto known =
            std::find_if(set.points.begin() + static_cast<std::ptrdiff_t>(first), set.points.end(),
                         [&](const Vec2f& p) {
                           return std::abs(p.u - uv.u) < 1e-4f && std::abs(p.v - uv.v) < 1e-4f;
                         });
        set.cornerIds[c] = static_cast<UvId>(known - set.points.begin());
        if (known == set.points.end()) set.points.push_back(uv);
      }
    }
  }

  void takeColors(int from, const std::string& name) {
    int to = target_.findColorSet(name);
    const mesh::ColorSet& source = source_.colorSet(from);
    mesh::ColorSet taken{name, source.representation, source.clamped, {}, {}};
    taken.cornerIds.assign(at(target_.cornerCount()), kNone);
    for (std::size_t c = 0; c < places_.size() && !source.cornerIds.empty(); ++c) {
      pollCancel(c);
      if (!places_[c]) continue;
      double sum[4] = {0, 0, 0, 0}, weight = 0;
      for (std::size_t i = 0; i < 3; ++i) {
        const Index id = source.cornerIds[places_[c]->corners[i]];
        if (id == kNone || places_[c]->weights[i] == 0) continue;
        const mesh::Color4f& color = source.colors[at(id)];
        const float parts[4] = {color.r, color.g, color.b, color.a};
        for (int k = 0; k < 4; ++k) sum[k] += places_[c]->weights[i] * parts[k];
        weight += places_[c]->weights[i];
      }
      if (!(weight > 0)) continue;
      taken.cornerIds[c] = static_cast<Index>(taken.colors.size());
      const auto part = [&](int k) { return static_cast<float>(sum[k] / weight); };
      taken.colors.push_back({part(0), part(1), part(2), part(3)});
    }
    if (!options_.keepsColorBorders) blendColors(taken);
    if (to < 0)
      target_.addColorSet(std::move(taken));
    else
      target_.setColorSet(to, std::move(taken));
  }

  /// Gives all corners at a vertex the mean of their colours.
  void blendColors(mesh::ColorSet& set) const {
    const mesh::Adjacency& adjacency = before_.adjacency();
    std::vector<mesh::Color4f> colors;
    for (VertexId v = 0; v < before_.vertexCount(); ++v) {
      double sum[4] = {0, 0, 0, 0};
      int count = 0;
      for (const CornerId c : adjacency.vertexCorners(v)) {
        if (set.cornerIds[c] == kNone) continue;
        const mesh::Color4f& color = set.colors[at(set.cornerIds[c])];
        const float parts[4] = {color.r, color.g, color.b, color.a};
        for (int k = 0; k < 4; ++k) sum[k] += parts[k];
        ++count;
      }
      if (count == 0) continue;
      const auto part = [&](int k) { return static_cast<float>(sum[k] / count); };
      for (const CornerId c : adjacency.vertexCorners(v))
        if (set.cornerIds[c] != kNone) set.cornerIds[c] = static_cast<Index>(colors.size());
      colors.push_back({part(0), part(1), part(2), part(3)});
    }
    set.colors = std::move(colors);
  }

  void takeNormals() {
    const auto normals = source_.cornerNormals();
    mesh::LockedNormals locked;
    locked.normals.assign(places_.size(), {});
    locked.locked.assign(places_.size(), 0);
    for (std::size_t c = 0; c < places_.size(); ++c) {
      pollCancel(c);
      if (!places_[c]) continue;
      Vec3 sum;
      for (std::size_t i = 0; i < 3; ++i)
        sum += places_[c]->weights[i] * Vec3(normals[at(places_[c]->corners[i])]);
      // A normal's way back is the inverse of the way there, as for the plane it stands on.
      const Vec3 own = math::normalized(math::transformNormal(sum, options_.fromSource));
      if (math::lengthSquared(own) == 0) continue;
      locked.normals[c] = own.toFloat();
      locked.locked[c] = 1;
    }
    target_.setLockedNormals(std::move(locked));
  }

  Mesh& target_;
  const Mesh& source_;
  const TransferAttributesOptions& options_;
  const Mesh before_;
  Sampler sampler_;
  std::vector<std::optional<FacePlace>> places_;  // a corner of the target
};

}  // namespace

Result<void> transferAttributes(Mesh& target, const Mesh& source,
                                const TransferAttributesOptions& options) {
  return Transfer(target, source, options).run();
}

Result<void> copyByTopology(Mesh& target, const Mesh& source,
                            const CopyByTopologyOptions& options) {
  const auto& own = target.topology().faceOffsets;
  const auto& other = source.topology().faceOffsets;
  const auto [a, b] = std::mismatch(own.begin(), own.end(), other.begin(), other.end());
  if (a != own.end() || b != other.end())
    return fail("the meshes have other faces, from face {} on", a - own.begin() - 1);
  if (options.points && target.vertexCount() != source.vertexCount())
    return fail("the meshes have {} and {} vertices", target.vertexCount(), source.vertexCount());
  if (options.points) target.setPoints({source.points().begin(), source.points().end()});
  if (options.uvSets) {
    const std::string current = target.uvSet(target.currentUvSet()).name;
    while (target.uvSetCount() > source.uvSetCount()) target.removeUvSet(target.uvSetCount() - 1);
    for (int i = 0; i < source.uvSetCount(); ++i) {
      if (i < target.uvSetCount())
        target.setUvSet(i, source.uvSet(i));
      else
        target.addUvSet(source.uvSet(i));
    }
    const int kept = target.findUvSet(current);
    target.setCurrentUvSet(kept >= 0 ? kept : source.currentUvSet());
  }
  if (options.colors) {
    while (target.colorSetCount() > 0) target.removeColorSet(target.colorSetCount() - 1);
    for (int i = 0; i < source.colorSetCount(); ++i) target.addColorSet(source.colorSet(i));
    target.setCurrentColorSet(source.currentColorSet());
  }
  return {};
}

}  // namespace host::ops
