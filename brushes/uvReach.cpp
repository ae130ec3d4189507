#include "brushes/uvReach.h"

#include <maya/MFnMesh.h>
#include <maya/MPointArray.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

bool uvReach::begin(const brushSurface& surface, bool isUvObjectIn,
                    const uvTarget::content& content) {
  isUvObject = isUvObjectIn;
  pins = content.pins;
  uvsAt = corners = intLists();
  if (isUvObject) return true;
  MIntArray counts, vertices;
  const MFnMesh mesh(surface.mesh());
  if (!mesh.getVertices(counts, vertices) || counts.length() != content.counts.length())
    return false;
  std::vector<std::pair<int, int>> pairs;  // vertex and UV
  unsigned int vertex = 0, uv = 0;
  for (unsigned int face = 0; face < counts.length(); ++face) {
    corners.offsets.push_back(corners.offsets.back() + counts[face]);
    const bool isMapped = content.counts[face] == counts[face];
    if (!isMapped && content.counts[face] != 0) return false;
    for (int i = 0; i < counts[face]; ++i, ++vertex) {
      corners.values.push_back(vertices[vertex]);
      if (isMapped) pairs.emplace_back(vertices[vertex], content.ids[uv++]);
    }
  }
  std::sort(pairs.begin(), pairs.end());
  pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
  uvsAt.offsets.assign(static_cast<std::size_t>(mesh.numVertices()) + 1, 0);
  for (const auto& pair : pairs) {
    ++uvsAt.offsets[static_cast<std::size_t>(pair.first) + 1];
    uvsAt.values.push_back(pair.second);
  }
  for (std::size_t i = 1; i < uvsAt.offsets.size(); ++i) uvsAt.offsets[i] += uvsAt.offsets[i - 1];
  return true;
}

/// The frame of a shell, by one of its polygons.
void uvReach::addFrame(const brushDab& dab, const uvLayout& layout, int shell, int face,
                       uvRegion& region) const {
  if (region.frames.count(shell) != 0) return;
  const brushSurface& surface = *dab.hit.surface;
  if (isUvObject) {
    region.frames.emplace(shell, frameOfFlatMesh(surface.toObject(), dab.hit.point));
    return;
  }
  std::vector<MPoint> points;
  std::vector<double> places;
  const int* const uvs = layout.faces().begin(face);
  for (int i = 0; i < layout.faces().size(face); ++i) {
    points.push_back(surface.worldPoint(corners.begin(face)[i]));
    for (int k = 0; k < 2; ++k) places.push_back(static_cast<double>(layout.place(uvs[i])[k]));
  }
  uvFrame frame;
  if (frameOfPolygon(points, places, surface.worldFaceNormal(face), dab.hit.point, frame))
    region.frames.emplace(shell, frame);
}

void uvReach::takeVertices(const brushDab& dab, const dabRegion& found,
                           const brushSettings& settings, const uvLayout& layout,
                           uvRegion& region) const {
  const intLists& faces = layout.faces();
  const int hitFace = dab.hit.face;
  const bool isHitMapped = hitFace >= 0 && hitFace < faces.count() && faces.size(hitFace) > 0;
  const int hitShell = isHitMapped ? layout.shellOf(*faces.begin(hitFace)) : -1;
  if (isHitMapped) addFrame(dab, layout, hitShell, hitFace, region);
  std::vector<std::pair<double, int>> heavy;  // shells' frames come from their heaviest UV
  for (std::size_t i = 0; i < found.vertices.size(); ++i) {
    const int vertex = found.vertices[i];
    const int* const begin = isUvObject ? &found.vertices[i] : uvsAt.begin(vertex);
    const int* const end = isUvObject ? begin + 1 : uvsAt.end(vertex);
    for (const int* uv = begin; uv != end; ++uv) {
      const int shell = layout.shellOf(*uv);
      if (!settings.islands && hitShell >= 0 && shell != hitShell) continue;
      region.uvs.push_back(*uv);
      region.weights.push_back(found.weights[i]);
      if (shell != hitShell) heavy.emplace_back(-found.weights[i], *uv);
    }
  }
  std::sort(heavy.begin(), heavy.end());
  for (const auto& [weight, uv] : heavy)
    for (const int* face = layout.facesAtUv().begin(uv); face != layout.facesAtUv().end(uv); ++face)
      addFrame(dab, layout, layout.shellOf(uv), *face, region);
}

void uvReach::widenToShells(const uvLayout& layout, bool moves, bool keepsPins,
                            uvRegion& region) const {
  std::set<int> shells;
  for (const int uv : region.uvs) shells.insert(layout.shellOf(uv));
  region.uvs.clear();
  region.weights.clear();
  const auto isPinned = [&](int uv) {
    return keepsPins && !pins.empty() && pins[static_cast<std::size_t>(uv)] != 0;
  };
  for (const int shell : shells) {
    const int *const begin = layout.shellMembers().begin(shell), *const end =
                                                                     layout.shellMembers().end(
                                                                         shell);
    if (moves && std::any_of(begin, end, isPinned)) continue;
    region.uvs.insert(region.uvs.end(), begin, end);
  }
  region.weights.assign(region.uvs.size(), 1.0);
}

void uvReach::collect(const brushDab& dab, const brushSettings& settings, const uvLayout& layout,
                      bool moves, uvRegion& region) const {
  region = uvRegion();
  if (!dab.hit.isHit() || !(dab.radius > 0.0)) return;
  dabQuery query;
  query.centre = dab.hit.point;
  query.normal = dab.hit.normal;
  query.across = std::fabs(query.normal.x) < 0.7 ? MVector(1, 0, 0) : MVector(0, 1, 0);
  query.across = (query.across - query.normal * (query.normal * query.across)).normal();
  query.radius = dab.radius;
  query.startFace = dab.hit.face;
  query.overSurface = settings.distance == brushSettings::kSurface;
  query.islands = settings.islands;
  // The polygons of a UV object face down when its map is right way round, and are seen from above.
  query.backFaces = settings.backFaces || isUvObject;
  query.towardsViewer = dab.hit.towardsViewer;
  query.falloff = &settings.falloff;
  dabRegion found;
  dab.hit.surface->gather(query, found);
  takeVertices(dab, found, settings, layout, region);
  if (settings.wholeShells) widenToShells(layout, moves, settings.pins, region);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < region.uvs.size(); ++i) {
    const int uv = region.uvs[i];
    const bool isPinned = settings.pins && !pins.empty() && pins[static_cast<std::size_t>(uv)] != 0;
    const bool isLocked =
        settings.lockBorders && layout.isBorder(uv) && !(settings.wholeShells && moves);
    if (isPinned || isLocked || region.weights[i] <= 0.0) continue;
    region.uvs[kept] = uv;
    region.weights[kept++] = region.weights[i];
  }
  region.uvs.resize(kept);
  region.weights.resize(kept);
}

std::vector<float> uvReach::cornersOnMesh(const MDagPath& mesh, const uvLayout& layout) {
  MStatus status;
  const MFnMesh meshFn(mesh, &status);
  MIntArray counts, vertices;
  MPointArray points;
  if (!status || !meshFn.getVertices(counts, vertices) ||
      !meshFn.getPoints(points, MSpace::kWorld) ||
      static_cast<int>(counts.length()) != layout.faces().count())
    return {};
  std::vector<float> places;
  places.reserve(3 * layout.faces().values.size());
  unsigned int first = 0;
  for (int face = 0; face < layout.faces().count(); ++face) {
    const int count = counts[static_cast<unsigned int>(face)];
    const int size = layout.faces().size(face);
    if (size != 0 && size != count) return {};
    for (int i = 0; i < size; ++i) {
      const MPoint& at =
          points[static_cast<unsigned int>(vertices[first + static_cast<unsigned int>(i)])];
      for (const double number : {at.x, at.y, at.z}) places.push_back(static_cast<float>(number));
    }
    first += static_cast<unsigned int>(count);
  }
  return places;
}
