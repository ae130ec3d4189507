#include "host/ops/topology/bevel_corners.h"

#include <algorithm>
#include <cmath>

#include "host/base/cancel_poll.h"

namespace host::ops {
namespace {

using math::Vec3;

constexpr double kLeastSine = 0.2;  // edges that meet more sharply would send a corner far away

}  // namespace

BevelCorners::BevelCorners(const Mesh& mesh, std::span<const EdgeId> edges,
                           const BevelEdgesOptions& options, const math::Matrix4& inverse)
    : mesh_(mesh),
      adjacency_(mesh_.adjacency()),
      options_(options),
      inverse_(inverse),
      isPlain_(math::isIdentity(options.space)),
      isBevelled_(flagsOf(edges, mesh.edgeCount())) {
  std::vector<VertexId> ends;
  for (const EdgeId e : edges) {
    pollCancel(e);
    ends.push_back(mesh_.edge(e).a);
    ends.push_back(mesh_.edge(e).b);
  }
  for (const VertexId v : sortedIds(ends)) {
    pollCancel(v);
    fans_.emplace_back(v, vertexFan(mesh_, v));
  }
  for (const auto& [v, fan] : fans_)
    if (!fan.isManifold)
      for (const EdgeId e : adjacency_.vertexEdges(v)) isBevelled_[at(e)] = 0;
  for (const EdgeId e : edges) {
    pollCancel(e);
    if (isBevelled(e) && canBevel(e))
      edges_.push_back(e);
    else
      isBevelled_[at(e)] = 0;
  }
}

void BevelCorners::place(mesh::MeshRebuilder& rebuilder, const BevelEdgesOptions& trial) {
  rebuilder_ = &rebuilder;
  shortest_ = shortestEdge();
  offset_ = offsetOf(trial);
  roundness_ = trial.roundness;
  for (auto& [v, fan] : fans_) {
    pollCancel(v);
    placeVertex(v, fan);
  }
  replaceEdges();
  rebuilder_ = nullptr;
}

double BevelCorners::offsetOf(const BevelEdgesOptions& options) const {
  return options.offsetAsFraction ? options.offset * 0.5 * shortest_ : options.offset;
}

std::vector<math::Vec3f> BevelCorners::placesFor(const BevelEdgesOptions& options) const {
  const double offset = offsetOf(options);
  std::vector<math::Vec3f> places;
  places.reserve(recipes_.size());
  auto patch = patches_.begin();
  while (places.size() < recipes_.size()) {
    const Recipe& recipe = recipes_[places.size()];
    if (recipe.kind != Recipe::Kind::Patch) {
      places.push_back(cook(recipe, places, offset, options.roundness));
      continue;
    }
    const std::vector<math::Vec3f> inside = cookPatch(*patch++, places, options.roundness);
    places.insert(places.end(), inside.begin(), inside.end());
  }
  return places;
}

std::vector<FaceId> BevelCorners::touchedFaces() const {
  std::vector<FaceId> faces;
  corners_.forEach([&](std::int64_t corner, const Range&) {
    faces.push_back(adjacency_.cornerFace(static_cast<CornerId>(corner)));
  });
  return sortedIds(faces);
}

BevelCorners::Range BevelCorners::stored(std::span<const VertexId> vertices) {
  const Range range{pool_.size(), vertices.size()};
  pool_.insert(pool_.end(), vertices.begin(), vertices.end());
  return range;
}

Vec3 BevelCorners::pointOf(VertexId v) const {
  return isPlain_ ? mesh_.point(v) : math::transformPoint(mesh_.point(v), options_.space);
}

Vec3 BevelCorners::placeOf(VertexId v, std::span<const math::Vec3f> places) const {
  if (v < mesh_.vertexCount()) return pointOf(v);
  const Vec3 p(places[at(v - mesh_.vertexCount())]);
  return isPlain_ ? p : math::transformPoint(p, options_.space);
}

VertexId BevelCorners::add(const Recipe& recipe) {
  recipes_.push_back(recipe);
  places_.push_back(cook(recipe, places_, offset_, roundness_));
  return rebuilder_->addVertex(places_.back());
}

math::Vec3f BevelCorners::toObject(const Vec3& p) const {
  return (isPlain_ ? p : math::transformPoint(p, inverse_)).toFloat();
}

math::Vec3f BevelCorners::cook(const Recipe& recipe, std::span<const math::Vec3f> places,
                               double offset, double roundness) const {
  if (recipe.kind == Recipe::Kind::Sector) {
    Vec3 sum;
    for (int i = 0; i < recipe.wayCount; ++i) {
      const Way& way = recipe.ways[at(i)];
      sum += way.direction * std::min(offset / way.sine, way.most);
    }
    return toObject(recipe.base + sum / std::max(recipe.wayCount, 1));
  }
  if (recipe.kind == Recipe::Kind::Profile)
    return toObject(arcOf(recipe, places).at(recipe.share, roundness));
  const Vec3 from = placeOf(recipe.from, places);
  return toObject(from + (recipe.base - from) * recipe.share);
}

BevelArc BevelCorners::arcOf(const Recipe& profile, std::span<const math::Vec3f> places) const {
  const Vec3 from = placeOf(profile.from, places), to = placeOf(profile.to, places);
  const double shift = math::dot((from + to) * 0.5 - profile.base, profile.along);
  return {from, to, profile.base + profile.along * shift};
}

std::vector<math::Vec3f> BevelCorners::cookPatch(const Patch& patch,
                                                 std::span<const math::Vec3f> places,
                                                 double roundness) const {
  std::vector<BevelArc> arcs;
  for (const Recipe& side : patch.sides) arcs.push_back(arcOf(side, places));
  std::vector<math::Vec3f> inside;
  for (const Vec3& p : patch.shape.places(arcs, roundness)) inside.push_back(toObject(p));
  return inside;
}

bool BevelCorners::canBevel(EdgeId e) const {
  const auto corners = adjacency_.edgeCorners(e);
  return corners.size() == 2 && mesh_.cornerVertex(corners[0]) != mesh_.cornerVertex(corners[1]) &&
         adjacency_.cornerFace(corners[0]) != adjacency_.cornerFace(corners[1]);
}

double BevelCorners::lengthOf(EdgeId e) const {
  return math::distance(pointOf(mesh_.edge(e).a), pointOf(mesh_.edge(e).b));
}

double BevelCorners::shortestEdge() const {
  double shortest = HUGE_VAL;
  for (const auto& [v, fan] : fans_) {
    if (!hasBevelAt(v)) continue;
    const Vec3 p = pointOf(v);
    for (const EdgeId e : adjacency_.vertexEdges(v))
      shortest = std::min(shortest, math::lengthSquared(pointOf(mesh_.edge(e).other(v)) - p));
  }
  return std::sqrt(shortest);
}

Vec3 BevelCorners::along(VertexId v, EdgeId e) const {
  return math::normalized(pointOf(mesh_.edge(e).other(v)) - pointOf(v));
}

bool BevelCorners::hasBevelAt(VertexId v) const {
  const auto edges = adjacency_.vertexEdges(v);
  return std::any_of(edges.begin(), edges.end(), [this](EdgeId e) { return isBevelled(e); });
}

// How far from v the corner slides along an edge so that it is `offset` away from the bevelled edge
// beside it.
BevelCorners::Way BevelCorners::slide(VertexId v, EdgeId edge, EdgeId bevelled) const {
  const Vec3 u = along(v, edge);
  const double sine = std::max(math::length(math::cross(u, along(v, bevelled))), kLeastSine);
  if (!options_.autoFit) return {u, sine};
  const bool slidesAtBothEnds = hasBevelAt(mesh_.edge(edge).other(v));
  return {u, sine, lengthOf(edge) * (slidesAtBothEnds ? 0.5 : 1.0)};
}

// The way to the place that is `offset` away from two bevelled edges of one face.
BevelCorners::Way BevelCorners::mitre(VertexId v, EdgeId e, EdgeId f) const {
  const Vec3 a = along(v, e), b = along(v, f), sum = a + b;
  const double sine = math::length(math::cross(a, b)), length = math::length(sum);
  if (std::atan2(sine, math::dot(a, b)) > options_.miteringAngle) return {math::normalized(sum), 1};
  const double most = 0.5 * std::min(lengthOf(e), lengthOf(f)) * std::numbers::sqrt2;
  const bool isEnding = options_.autoFit && length > 0;
  return {sum, std::max(sine, kLeastSine), isEnding ? most / length : HUGE_VAL};
}

// The way of a sector's corner: edges[i] and edges[j] of the fan bound it, those between are left
// as they are.
BevelCorners::Recipe BevelCorners::sector(VertexId v, const VertexFan& fan, std::size_t i,
                                          std::size_t j) const {
  const bool isBoundedBefore = isBevelled(fan.edges[i]), isBoundedAfter = isBevelled(fan.edges[j]);
  Recipe recipe;
  recipe.base = pointOf(v);
  const auto go = [&](const Way& way) { recipe.ways[at(recipe.wayCount++)] = way; };
  if (isBoundedBefore && isBoundedAfter && j == i + 1) {
    go(mitre(v, fan.edges[i], fan.edges[j]));
    return recipe;
  }
  if (isBoundedBefore) go(slide(v, fan.edges[i + 1], fan.edges[i]));
  if (isBoundedAfter) go(slide(v, fan.edges[j - 1], fan.edges[j]));
  return recipe;
}

BevelCorners::Recipe BevelCorners::alongEdge(VertexId v, EdgeId edge, EdgeId bevelled) const {
  Recipe recipe;
  recipe.base = pointOf(v);
  recipe.ways[0] = slide(v, edge, bevelled);
  recipe.wayCount = 1;
  return recipe;
}

void BevelCorners::placeVertex(VertexId v, VertexFan& fan) {
  std::vector<std::size_t> bounds;  // positions of bevelled edges in the fan
  const std::size_t edgeCount = fan.edges.size() - (fan.isClosed ? 1 : 0);
  for (std::size_t i = 0; i < edgeCount; ++i)
    if (isBevelled(fan.edges[i])) bounds.push_back(i);
  if (bounds.empty()) return;
  if (fan.isClosed) {
    const std::size_t turn = bounds.front();
    turnFan(fan, turn);
    for (std::size_t& i : bounds) i -= turn;
    if (bounds.size() == 1) return placeEnd(v, fan);
    bounds.push_back(fan.edges.size() - 1);
  } else {
    // The border ends bound the first and last sector without being bevelled.
    bounds.insert(bounds.begin(), 0);
    bounds.push_back(fan.edges.size() - 1);
  }
  placeSectors(v, fan, bounds);
}

void BevelCorners::placeSectors(VertexId v, const VertexFan& fan,
                                std::span<const std::size_t> bounds) {
  std::vector<VertexId> sectors;
  for (std::size_t s = 0; s + 1 < bounds.size(); ++s) {
    const std::size_t i = bounds[s], j = bounds[s + 1];
    sectors.push_back(add(sector(v, fan, i, j)));
    const Range range = stored({&sectors.back(), 1});
    for (std::size_t k = i; k < j; ++k) corners_[fan.corners[k]] = range;
    for (std::size_t k = i; k <= j; ++k)
      if (!isBevelled(fan.edges[k])) edgeEnds_[endKey(fan.edges[k], v)] = sectors.back();
  }
  const std::size_t count = sectors.size();
  std::vector<VertexId> cap, sharedProfile;
  // Where strips meet their arcs stand across their edges; where one goes on in another, its arc
  // lies in the plane between them, which holds the vertex.
  std::vector<Vec3> edges;
  for (const std::size_t i : bounds.first(count))
    edges.push_back(count >= 3 ? along(v, fan.edges[i]) : Vec3());
  for (std::size_t s = 0; s < count; ++s) {
    // The profile at the edge between the sector before and this one leads from this one to the
    // one before.
    const bool isOpenStart = !fan.isClosed && s == 0;
    if (!isOpenStart) {
      const bool isSecondOfTwo = count == 2 && fan.isClosed && s == 1;
      std::vector<VertexId> profile =
          isSecondOfTwo ? std::vector<VertexId>(sharedProfile.rbegin(), sharedProfile.rend())
                        : makeProfile(sectors[s], sectors[(s + count - 1) % count], v, edges[s]);
      profiles_[endKey(fan.edges[bounds[s]], v)] = stored(profile);
      cap.insert(cap.end(), profile.rbegin() + 1, profile.rend() - 1);
      sharedProfile = std::move(profile);
    }
    cap.push_back(sectors[s]);
  }
  // A ridge leads through the vertex, so there is no gap.
  if (count < 3 || !options_.chamfer) return;
  if (fan.isClosed && options_.subdivideNgons && options_.fillNgons && options_.segments > 1)
    return fillGap(v, sectors, edges, std::move(cap));
  caps_.push_back({v, std::move(cap)});
}

// `cap` begins after the last sector's corner; `edges` are those before the sectors.
void BevelCorners::fillGap(VertexId v, std::span<const VertexId> sectors,
                           std::span<const Vec3> edges, std::vector<VertexId> cap) {
  std::rotate(cap.begin(), cap.begin() + options_.segments - 1, cap.end());
  const std::size_t count = sectors.size();
  Patch patch{BevelPatch(static_cast<int>(count), options_.segments), {}};
  for (std::size_t s = 0; s < count; ++s) {
    Recipe side;
    side.kind = Recipe::Kind::Profile;
    side.base = pointOf(v);
    side.along = edges[(s + 1) % count];
    side.from = sectors[s];
    side.to = sectors[(s + 1) % count];
    patch.sides.push_back(side);
  }
  const auto firstInside = static_cast<VertexId>(at(mesh_.vertexCount()) + recipes_.size());
  for (const math::Vec3f& p : cookPatch(patch, places_, roundness_)) {
    recipes_.emplace_back().kind = Recipe::Kind::Patch;
    places_.push_back(p);
    rebuilder_->addVertex(p);
  }
  for (std::vector<VertexId>& loop : patch.shape.faces(cap, firstInside))
    caps_.push_back({v, std::move(loop)});
  patches_.push_back(std::move(patch));
}

// A vertex in a closed fan with one bevelled edge, the fan's first.
void BevelCorners::placeEnd(VertexId v, const VertexFan& fan) {
  const std::size_t m = fan.corners.size();
  const EdgeId edge = fan.edges.front();
  if (m == 2) {
    const std::vector<VertexId> point(at(options_.segments) + 1, v);
    profiles_[endKey(edge, v)] = stored(point);
    return;
  }
  const VertexId first = add(alongEdge(v, fan.edges[1], edge));
  const VertexId last = add(alongEdge(v, fan.edges[m - 1], edge));
  std::vector<VertexId> profile = makeProfile(first, last, v);
  profiles_[endKey(edge, v)] = stored(profile);
  corners_[fan.corners.front()] = stored({&first, 1});
  corners_[fan.corners.back()] = stored({&last, 1});
  edgeEnds_[endKey(fan.edges[1], v)] = first;
  edgeEnds_[endKey(fan.edges[m - 1], v)] = last;
  std::reverse(profile.begin(), profile.end());
  if (m == 3) {
    corners_[fan.corners[1]] = stored(profile);
    return;
  }
  if (!options_.chamfer) {
    // The ridge ends in the vertex; the old edges beside it go on from there.
    const auto half = static_cast<std::ptrdiff_t>(profile.size() / 2);
    corners_[fan.corners[m - 2]] = stored({profile.data(), static_cast<std::size_t>(half) + 1});
    corners_[fan.corners[1]] =
        stored({profile.data() + half, profile.size() - static_cast<std::size_t>(half)});
    return;
  }
  corners_[fan.corners[1]] = stored(std::vector<VertexId>{v, first});
  corners_[fan.corners[m - 2]] = stored(std::vector<VertexId>{last, v});
  rebuilder_->inheritEdge(v, first, fan.edges[1]);
  rebuilder_->inheritEdge(v, last, fan.edges[m - 1]);
  std::vector<VertexId> cap{v};
  cap.insert(cap.end(), profile.begin(), profile.end());
  caps_.push_back({v, cap});
}

// Vertices from one corner to another around the old one.
std::vector<VertexId> BevelCorners::makeProfile(VertexId from, VertexId to, VertexId corner,
                                                const Vec3& along) {
  if (!options_.chamfer) return makeRidge(from, to, corner);
  std::vector<VertexId> profile{from};
  Recipe recipe;
  recipe.kind = Recipe::Kind::Profile;
  recipe.base = pointOf(corner);
  recipe.along = along;
  recipe.from = from;
  recipe.to = to;
  for (int i = 1; i < options_.segments; ++i) {
    recipe.share = static_cast<double>(i) / options_.segments;
    profile.push_back(add(recipe));
  }
  profile.push_back(to);
  return profile;
}

// Vertices along the old faces, by way of the old corner. What lies between a sector's corner and
// the old one serves the profiles on both sides of it.
std::vector<VertexId> BevelCorners::makeRidge(VertexId from, VertexId to, VertexId corner) {
  const int steps = options_.segments / 2;
  const auto wayFrom = [&](VertexId start) {
    if (!ridges_.find(start)) {
      std::vector<VertexId> way{start};
      Recipe recipe;
      recipe.kind = Recipe::Kind::Ridge;
      recipe.base = pointOf(corner);
      recipe.from = start;
      for (int i = 1; i < steps; ++i) {
        recipe.share = static_cast<double>(i) / steps;
        way.push_back(add(recipe));
      }
      ridges_[start] = stored(way);
    }
    const auto way = listAt(ridges_, start);
    return std::vector<VertexId>(way.begin(), way.end());
  };
  std::vector<VertexId> profile = wayFrom(from);
  profile.push_back(corner);
  const std::vector<VertexId> back = wayFrom(to);
  profile.insert(profile.end(), back.rbegin(), back.rend());
  return profile;
}

void BevelCorners::replaceEdges() {
  std::vector<EdgeId> moved;
  edgeEnds_.forEach(
      [&](std::int64_t key, VertexId) { moved.push_back(static_cast<EdgeId>(key >> 32)); });
  for (const EdgeId e : sortedIds(moved)) {
    mesh::EdgeVertices ends = mesh_.edge(e);
    const VertexId *a = edgeEnds_.find(endKey(e, ends.a)), *b = edgeEnds_.find(endKey(e, ends.b));
    if (a) ends.a = *a;
    if (b) ends.b = *b;
    rebuilder_->replaceEdge(e, ends.a, ends.b);
  }
}

}  // namespace host::ops
