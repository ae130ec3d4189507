#include "host/ops/uv/report.h"

#include <algorithm>
#include <numbers>

#include "host/base/cancel.h"
#include "host/ops/uv/report_triangles.h"

namespace host::ops {
namespace {

using flat::Point;

/// Values with weights: their mean, and what a part of the weight stays below.
class Weighed {
 public:
  void add(double value, double weight) {
    values_.emplace_back(value, weight);
    sum_ += value * weight;
    weights_ += weight;
  }
  [[nodiscard]] double mean() const { return weights_ > 0 ? sum_ / weights_ : 0; }
  [[nodiscard]] double below(double part) {
    std::sort(values_.begin(), values_.end());
    double reached = 0;
    for (const auto& [value, weight] : values_)
      if ((reached += weight) >= part * weights_) return value;
    return values_.empty() ? 0 : values_.back().first;
  }

 private:
  std::vector<std::pair<double, double>> values_;
  double sum_ = 0, weights_ = 0;
};

template <class Vector, class Dot, class Length>
double angleBetween(const Vector& a, const Vector& b, Dot dot, Length length) {
  return std::acos(std::clamp(dot(a, b) / (length(a) * length(b)), -1.0, 1.0));
}

/// The mean error of a triangle's angles, degrees.
double angleError(const mesh::Mesh& mesh, const mesh::UvSet& set, const UvTriangle& t) {
  double error = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    const CornerId a = t.corners[k], b = t.corners[(k + 1) % 3], c = t.corners[(k + 2) % 3];
    const Point o = uvPoint(set, a);
    const mesh::Vec3 p = mesh.point(mesh.cornerVertex(a));
    const double inUv = angleBetween(
        uvPoint(set, b) - o, uvPoint(set, c) - o, [](Point x, Point y) { return flat::dot(x, y); },
        [](Point x) { return flat::length(x); });
    const double onSurface = angleBetween(
        mesh.point(mesh.cornerVertex(b)) - p, mesh.point(mesh.cornerVertex(c)) - p,
        [](const mesh::Vec3& x, const mesh::Vec3& y) { return math::dot(x, y); },
        [](const mesh::Vec3& x) { return math::length(x); });
    error += std::abs(inUv - onSurface) / 3;
  }
  return error * 180 / std::numbers::pi;
}

/// Flips, mirrored charts and all means of stretch.
void measureStretch(const mesh::Mesh& mesh, const mesh::UvSet& set, const UvTriangles& triangles,
                    UvReport& report) {
  std::vector<double> sign(at(triangles.charts), 0), grown(sign), shrunk(sign);
  for (const UvTriangle& t : triangles.all) sign[at(t.chart)] += t.signedUv;
  report.mirrored = static_cast<Index>(std::ranges::count_if(sign, [](double s) { return s < 0; }));
  const double uv = triangles.uv == 0 ? 1e-300 : triangles.uv;
  const double scale = std::sqrt(uv / triangles.surface);
  double allGrown = 0, allShrunk = 0, lengths = 0, upright = 0, measured = 0;
  Weighed conformal, angle, area;
  for (const UvTriangle& t : triangles.all) {
    if (t.isCollapsed) {
      ++report.collapsed;
      continue;
    }
    const bool isFlipped = t.signedUv * sign[at(t.chart)] < 0;
    report.flipped += isFlipped;
    const double squares = t.s1 * t.s1 + t.s2 * t.s2;
    const double inverses = 1 / (t.s1 * t.s1) + 1 / (t.s2 * t.s2);
    measured += t.surface;
    allGrown += t.surface * squares;
    allShrunk += t.surface * inverses;
    grown[at(t.chart)] += t.surface * squares;
    shrunk[at(t.chart)] += t.surface * inverses;
    if (t.signedUv * sign[at(t.chart)] > 0) {
      lengths += t.surface * inverses / 2;
      upright += t.surface;
      report.greatestStretch = std::max(report.greatestStretch, scale / t.s2);
    }
    const double ratio = std::abs(t.signedUv) / t.surface / (uv / triangles.surface);
    conformal.add(t.s1 / t.s2, t.surface);
    area.add(std::max(ratio, 1 / ratio), t.surface);
    angle.add(angleError(mesh, set, t), t.surface);
  }
  if (measured == 0) return;
  double byChart = 0;
  for (std::size_t c = 0; c < grown.size(); ++c) byChart += 2 * std::sqrt(grown[c] * shrunk[c]);
  report.lengthStretch = upright > 0 ? std::sqrt(lengths / upright) * scale : 0;
  report.symmetricDirichlet = 2 * std::sqrt(allGrown * allShrunk) / measured;
  report.symmetricDirichletByChart = byChart / measured;
  report.conformal = conformal.mean();
  report.conformal99 = conformal.below(0.99);
  report.angle = angle.mean();
  report.angle99 = angle.below(0.99);
  report.area = area.mean();
  report.area99 = area.below(0.99);
  report.density = std::sqrt(triangles.uv / triangles.surface);
}

Result<void> checkNumbers(const mesh::Mesh& mesh, const mesh::UvSet& set) {
  for (std::size_t c = 0; c < set.cornerIds.size(); ++c) {
    if (set.cornerIds[c] == kNone) continue;
    const mesh::Vec2f& p = set.points[at(set.cornerIds[c])];
    if (!std::isfinite(p.u) || !std::isfinite(p.v))
      return fail(ErrorKind::BadArgument, "UV {} is not a number.", set.cornerIds[c]);
    const VertexId v = mesh.cornerVertex(static_cast<CornerId>(c));
    if (!math::isFinite(mesh.point(v))) return fail("Vertex {} is not at a place.", v);
  }
  return {};
}

}  // namespace

Result<UvReport> uvReport(const mesh::Mesh& mesh, int uvSet, const UvReportOptions& options) {
  if (uvSet < 0 || uvSet >= mesh.uvSetCount())
    return fail(ErrorKind::NotFound, "There is no UV set {}.", uvSet);
  if (options.mapSize < 0 || options.mapSize > 16384)
    return fail(ErrorKind::BadArgument, "The size of the map must be from 0 to 16384 pixels.");
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  HOST_TRY(checkNumbers(mesh, set));
  const LongWork work("Measuring UVs");
  const UvTriangles triangles = uvTriangles(mesh, uvSet);
  UvReport report;
  report.faces = mesh.faceCount();
  report.triangles = static_cast<Index>(triangles.all.size());
  report.charts = triangles.charts;
  report.withoutArea = triangles.withoutArea;
  report.facesWithoutUvs = triangles.facesWithoutUvs;
  report.uvArea = triangles.uv;
  report.surfaceArea = triangles.surface;
  if (triangles.all.empty()) return report;
  measureStretch(mesh, set, triangles, report);
  if (isCancelled()) return cancelled();
  if (options.findsOverlaps) {
    const UvOverlaps overlaps = uvOverlaps(set, triangles);
    report.overlapping = overlaps.triangles;
    report.overlapPairs = overlaps.pairs;
    report.isOverlapPartial = overlaps.isPartial;
    report.overlapArea = triangles.uv > 0 ? overlaps.area / triangles.uv : 0;
  }
  if (isCancelled()) return cancelled();
  for (const UvTriangle& t : triangles.all) {
    bool isIn = true;
    for (const CornerId c : t.corners) {
      const Point p = uvPoint(set, c);
      isIn = isIn && std::min(p.x, p.y) >= -1e-6 && std::max(p.x, p.y) <= 1 + 1e-6;
    }
    if (isIn) report.inSquare += std::abs(t.signedUv);
  }
  report.inSquare = triangles.uv > 0 ? report.inSquare / triangles.uv : 0;
  if (options.mapSize > 0) {
    const UvCoverage coverage = uvCoverage(set, triangles, options.mapSize);
    report.coverage = coverage.covered;
    report.gapPixels = coverage.gapPixels;
  }
  return report;
}

std::string uvReportJson(const UvReport& r, const std::string& label) {
  std::string name;
  for (const char c : label) {
    if (c == '"' || c == '\\') name += '\\';
    if (static_cast<unsigned char>(c) < 0x20)
      name += fmt::format("\\u{:04x}", static_cast<int>(c));
    else
      name += c;
  }
  return fmt::format(
      "{{\"label\":\"{}\",\"faces\":{},\"tris\":{},\"charts\":{},\"faces_without_uvs\":{},"
      "\"l2_stretch\":{:.9g},\"linf_stretch\":{:.9g},\"sym_dirichlet\":{:.9g},\"sd_chart\":{:.9g},"
      "\"qc_mean\":{:.9g},\"qc_p99\":{:.9g},\"angle_mean\":{:.9g},\"angle_p99\":{:.9g},"
      "\"area_mean\":{:.9g},\"area_p99\":{:.9g},\"flipped\":{},\"mirrored\":{},\"collapsed\":{},"
      "\"degen3d\":{},\"overlap_tris\":{},\"overlap_pairs\":{},\"overlap_area\":{:.9g},"
      "\"density\":{:.9g},\"coverage\":{:.9g},\"in_square\":{:.9g},\"min_gap_px\":{}{}}}",
      name, r.faces, r.triangles, r.charts, r.facesWithoutUvs, r.lengthStretch, r.greatestStretch,
      r.symmetricDirichlet, r.symmetricDirichletByChart, r.conformal, r.conformal99, r.angle,
      r.angle99, r.area, r.area99, r.flipped, r.mirrored, r.collapsed, r.withoutArea, r.overlapping,
      r.overlapPairs, r.overlapArea, r.density, r.coverage, r.inSquare, r.gapPixels,
      r.isOverlapPartial ? ",\"overlap_partial\":true" : "");
}

std::vector<float> faceStretch(const mesh::Mesh& mesh, int uvSet) {
  PerElement<FaceId, double> uv(mesh.faceCount(), 0), surface(uv);
  const UvTriangles triangles = uvTriangles(mesh, uvSet);
  for (const UvTriangle& t : triangles.all) {
    uv[t.face] += std::abs(t.signedUv);
    surface[at(t.face)] += t.surface;
  }
  std::vector<float> stretch(uv.size(), 0);
  const double whole = triangles.uv > 0 ? triangles.surface / triangles.uv : 1;
  for (std::size_t f = 0; f < uv.size(); ++f)
    if (surface[f] > 0)
      stretch[f] =
          static_cast<float>(std::clamp(std::log2(uv[f] / surface[f] * whole), -10.0, 10.0));
  return stretch;
}

}  // namespace host::ops
