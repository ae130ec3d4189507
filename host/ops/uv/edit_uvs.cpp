#include "host/ops/uv/edit_uvs.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <unordered_map>

#include "host/ops/uv/uv_ids.h"

namespace host::ops {

namespace {

using mesh::Mesh;
using mesh::UvSet;
using mesh::Vec2f;

/// Numbers in [-1, 1) that depend on seed, UV and count alone.
class Chance {
 public:
  Chance(std::int64_t seed, UvId uv)
      : state_(static_cast<std::uint64_t>(seed) * 0x9E3779B97F4A7C15u +
               static_cast<std::uint64_t>(uv)) {}
  double next() {
    std::uint64_t x = state_ += 0x9E3779B97F4A7C15u;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9u;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBu;
    return static_cast<double>((x ^ (x >> 31)) >> 11) * 0x1p-52 - 1;
  }

 private:
  std::uint64_t state_;
};

/// Scales and shifts so that one box becomes another.
struct BoxMap {
  double scaleU = 1, scaleV = 1, fromU = 0, fromV = 0, toU = 0, toV = 0;
  [[nodiscard]] Vec2f apply(const Vec2f& uv) const {
    return {static_cast<float>((uv.u - fromU) * scaleU + toU),
            static_cast<float>((uv.v - fromV) * scaleV + toV)};
  }
};

BoxMap intoSquare(const UvBox& box, const NormalizeUvsOptions& options) {
  BoxMap map;
  map.fromU = box.centerU();
  map.fromV = box.centerV();
  map.toU = 0.5 + (options.centersOnTile ? std::floor(map.fromU) : 0);
  map.toV = 0.5 + (options.centersOnTile ? std::floor(map.fromV) : 0);
  const bool isU = options.direction != UvDirection::V, isV = options.direction != UvDirection::U;
  const auto fill = [](double extent) { return extent > 0 ? 1 / extent : 1; };
  map.scaleU = isU ? fill(box.width()) : 1;
  map.scaleV = isV ? fill(box.height()) : 1;
  if (options.keepsRatio) {
    const double extent = !isV   ? box.width()
                          : !isU ? box.height()
                                 : std::max(box.width(), box.height());
    map.scaleU = map.scaleV = fill(extent);
  }
  // A direction that is left alone keeps its middle.
  if (!isU) map.toU = map.fromU;
  if (!isV) map.toV = map.fromV;
  return map;
}

/// A UV at a vertex.
struct Use {
  VertexId vertex = kNone;
  UvId uv = kNone;
  friend auto operator<=>(const Use&, const Use&) = default;
};

void apply(UvSet& set, std::span<const UvId> uvs, const BoxMap& map) {
  for (const UvId uv : uvs) set.points[at(uv)] = map.apply(set.points[at(uv)]);
}

}  // namespace

void transformUvs(UvSet& set, std::span<const UvId> uvs, const UvTransform& transform) {
  for (const UvId uv : uvs) {
    UvTransform own = transform;
    if (transform.random != 0) {
      Chance chance(transform.seed, uv);
      const auto share = [&] { return 1 + transform.random * 0.5 * chance.next(); };
      own.shiftU *= share();
      own.shiftV *= share();
      own.angle *= share();
      own.scaleU = 1 + (own.scaleU - 1) * share();
      own.scaleV = 1 + (own.scaleV - 1) * share();
    }
    Vec2f& place = set.points[at(uv)];
    const double u = (place.u - own.pivotU) * own.scaleU, v = (place.v - own.pivotV) * own.scaleV;
    const double c = own.angle == 0 ? 1 : std::cos(own.angle);
    const double s = own.angle == 0 ? 0 : std::sin(own.angle);
    place = {static_cast<float>(c * u - s * v / own.ratio + own.pivotU + own.shiftU),
             static_cast<float>(s * u * own.ratio + c * v + own.pivotV + own.shiftV)};
  }
}

void normalizeUvs(Mesh& mesh, int uvSet, std::span<const FaceId> faces,
                  const NormalizeUvsOptions& options) {
  if (options.isCollective) {
    const std::vector<UvId> uvs = uvsOfFaces(mesh, uvSet, faces);
    if (uvs.empty()) return;
    UvSet& set = mesh.editUvSet(uvSet);
    apply(set, uvs, intoSquare(uvBox(set, uvs), options));
    return;
  }
  unshareUvs(mesh, uvSet, faces);
  if (mesh.uvSet(uvSet).cornerIds.empty()) return;
  UvSet& set = mesh.editUvSet(uvSet);
  for (const FaceId f : faces) {
    const std::span<const UvId> uvs(set.cornerIds.data() + mesh.firstCorner(f),
                                    at(mesh.faceSize(f)));
    if (uvs.front() != kNone) apply(set, uvs, intoSquare(uvBox(set, uvs), options));
  }
}

void flipUvs(Mesh& mesh, int uvSet, std::span<const FaceId> faces, const FlipUvsOptions& options) {
  const std::vector<UvId> uvs = uvsOfFaces(mesh, uvSet, faces);
  if (uvs.empty()) return;
  UvSet& set = mesh.editUvSet(uvSet);
  const UvBox box = uvBox(set, uvs);
  const double low = !options.isLocal ? 0 : options.isVertical ? box.minV : box.minU;
  const double high = !options.isLocal ? 1 : options.isVertical ? box.maxV : box.maxU;
  for (const UvId uv : uvs) {
    Vec2f& place = set.points[at(uv)];
    float& x = options.isVertical ? place.v : place.u;
    x = static_cast<float>(low + high - x);
  }
}

void unitizeUvs(Mesh& mesh, int uvSet, std::span<const FaceId> faces) {
  if (faces.empty()) return;
  const std::vector<UvId> before = uvsOfFaces(mesh, uvSet, faces);
  UvSet& set = mesh.editUvSet(uvSet);
  std::vector<UvId>& ids = writableCornerIds(set, mesh.cornerCount());
  constexpr Vec2f kSquare[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  constexpr Vec2f kTriangle[] = {{0, 0}, {1, 0}, {0, 1}};
  for (const FaceId f : faces) {
    const Index size = mesh.faceSize(f);
    for (Index i = 0; i < size; ++i) {
      const double angle = 2 * std::numbers::pi * (i + 0.5) / size - std::numbers::pi * 0.5;
      const Vec2f round{static_cast<float>(0.5 + 0.5 * std::sin(angle)),
                        static_cast<float>(0.5 - 0.5 * std::cos(angle))};
      set.points.push_back(size == 4 ? kSquare[i] : size == 3 ? kTriangle[i] : round);
      ids[at(mesh.firstCorner(f) + i)] = static_cast<UvId>(set.points.size()) - 1;
    }
  }
  dropUnusedUvs(set, before);
}

Index mergeUvs(Mesh& mesh, int uvSet, std::span<const UvId> uvs, double distance) {
  const UvSet& set = mesh.uvSet(uvSet);
  std::vector<std::uint8_t> isWanted(set.points.size(), 0);
  for (const UvId uv : uvs) isWanted[at(uv)] = 1;
  std::vector<Use> uses;
  for (std::size_t c = 0; c < set.cornerIds.size(); ++c)
    if (set.cornerIds[c] != kNone && isWanted[at(set.cornerIds[c])])
      uses.push_back({mesh.cornerVertex(static_cast<CornerId>(c)), set.cornerIds[c]});
  std::ranges::sort(uses);
  uses.erase(std::unique(uses.begin(), uses.end()), uses.end());

  std::vector<UvId> root(set.points.size());
  std::iota(root.begin(), root.end(), 0);
  const auto find = [&](UvId uv) {
    while (root[at(uv)] != uv) uv = root[at(uv)] = root[at(root[at(uv)])];
    return uv;
  };
  std::vector<Use> run;
  for (std::size_t i = 0; i < uses.size();) {
    std::size_t end = i;
    while (end < uses.size() && uses[end].vertex == uses[i].vertex) ++end;
    // By u: only neighbours within the distance are compared.
    run.assign(uses.begin() + static_cast<std::ptrdiff_t>(i),
               uses.begin() + static_cast<std::ptrdiff_t>(end));
    std::ranges::stable_sort(run, {}, [&](const Use& use) { return set.points[at(use.uv)].u; });
    for (std::size_t a = 0; a < run.size(); ++a)
      for (std::size_t b = a + 1; b < run.size(); ++b) {
        const Vec2f p = set.points[at(run[a].uv)], q = set.points[at(run[b].uv)];
        if (double{q.u} - p.u > distance) break;
        if (std::hypot(double{q.u} - p.u, double{q.v} - p.v) > distance) continue;
        const UvId x = find(run[a].uv), y = find(run[b].uv);
        root[at(std::max(x, y))] = std::min(x, y);
      }
    i = end;
  }
  struct Middle {
    double u = 0, v = 0;
    Index count = 0;
  };
  std::unordered_map<UvId, Middle> middles;
  std::vector<UvId> gone;
  for (std::size_t uv = 0; uv < root.size(); ++uv)
    if (find(static_cast<UvId>(uv)) != static_cast<UvId>(uv)) gone.push_back(static_cast<UvId>(uv));
  if (gone.empty()) return 0;
  const auto add = [&](UvId uv) {
    Middle& middle = middles[find(uv)];
    middle.u += set.points[at(uv)].u;
    middle.v += set.points[at(uv)].v;
    ++middle.count;
  };
  for (const UvId uv : gone) {
    if (!middles.contains(find(uv))) add(find(uv));
    add(uv);
  }
  UvSet& edited = mesh.editUvSet(uvSet);
  for (const auto& [uv, middle] : middles)
    edited.points[at(uv)] = {static_cast<float>(middle.u / middle.count),
                             static_cast<float>(middle.v / middle.count)};
  for (UvId& uv : edited.cornerIds)
    if (uv != kNone) uv = find(uv);
  dropUnusedUvs(edited, gone);
  return static_cast<Index>(gone.size());
}

void copyUvs(Mesh& mesh, int from, int to) {
  if (from == to) return;
  UvSet copied = mesh.uvSet(from);
  copied.name = mesh.uvSet(to).name;
  mesh.setUvSet(to, std::move(copied));
}

void copyUvsOfFaces(Mesh& mesh, int from, int to, std::span<const FaceId> faces) {
  if (from == to) return;
  if (static_cast<Index>(faces.size()) == mesh.faceCount()) return copyUvs(mesh, from, to);
  const UvSet source = mesh.uvSet(from);
  const std::vector<UvId> before = uvsOfFaces(mesh, to, faces);
  UvSet& set = mesh.editUvSet(to);
  std::vector<UvId>& ids = writableCornerIds(set, mesh.cornerCount());
  std::unordered_map<UvId, UvId> copied;
  for (const FaceId f : faces)
    for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c) {
      const UvId old = source.cornerIds.empty() ? kNone : source.cornerIds[c];
      if (old == kNone) {
        ids[at(c)] = kNone;
        continue;
      }
      const auto [entry, isNew] = copied.try_emplace(old, static_cast<UvId>(set.points.size()));
      if (isNew) set.points.push_back(source.points[at(old)]);
      ids[at(c)] = entry->second;
    }
  dropUnusedUvs(set, before);
}

}  // namespace host::ops
