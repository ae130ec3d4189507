#include "host/ops/primitives/helix.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "host/ops/primitives/lathe.h"

namespace host::ops {
namespace {

/// The middle line and the two directions of the section at it.
struct Frame {
  Vec3 middle, out, along, up;
};

Frame frameAt(const HelixOptions& o, double turn) {
  const double angle = 2 * std::numbers::pi * turn * (o.isCounterClockwise ? -1 : 1);
  const double around = o.isCounterClockwise ? -1 : 1;
  Frame frame;
  frame.out = {std::cos(angle), 0, std::sin(angle)};
  frame.middle = frame.out * (0.5 * o.width) + Vec3{0, o.height * (turn / o.coils - 0.5), 0};
  const double rise = o.height / o.coils;
  frame.along = math::normalized(Vec3{-std::sin(angle) * around, 0, std::cos(angle) * around} *
                                     (std::numbers::pi * o.width) +
                                 Vec3{0, rise, 0});
  frame.up = math::cross(frame.along, frame.out);
  return frame;
}

/// A ring of the tube: its distance along the middle line from there on, and how wide it is.
struct Ring {
  Frame frame;
  double shift = 0, radius = 1;
  bool isRim = false;
};

std::vector<Ring> ringsOf(const HelixOptions& o, int sections) {
  std::vector<Ring> rings;
  const auto capRing = [&](double turn, int k, double side) {
    const double t = double(k) / o.subdivisionsCaps, angle = 0.5 * std::numbers::pi * t;
    rings.push_back({frameAt(o, turn), o.roundCap ? side * o.radius * std::cos(angle) : 0,
                     o.roundCap ? o.radius * std::sin(angle) : o.radius * t, false});
  };
  for (int k = 1; k < o.subdivisionsCaps; ++k) capRing(0, k, -1);
  for (int j = 0; j <= sections; ++j)
    rings.push_back({frameAt(o, o.coils * j / sections), 0, o.radius, j == 0 || j == sections});
  for (int k = o.subdivisionsCaps - 1; k >= 1; --k) capRing(o.coils, k, 1);
  return rings;
}

struct UvLayout {
  double u1, v0, v1, capU, lowV, highV, capRadius;
};

UvLayout uvLayout(const HelixOptions& o) {
  const double around = 2 * std::numbers::pi * o.radius, r = o.radius;
  const double length = std::hypot(std::numbers::pi * o.width * o.coils, o.height);
  const double tall = length + 4 * r;
  double su = 1, sv = 1;
  if (o.createUVs == 2) su = 1 / around, sv = 1 / tall;
  if (o.createUVs == 3) su = sv = 1 / std::max(around, tall);
  return {around * su,         2 * r * sv, (2 * r + length) * sv,
          0.5 * around * su,   r * sv,     (3 * r + length) * sv,
          r * std::min(su, sv)};
}

class HelixMaker {
 public:
  explicit HelixMaker(const HelixOptions& options)
      : o_(options),
        sections_(std::max(1, static_cast<int>(std::lround(o_.coils * o_.subdivisionsCoil)))),
        sx_(o_.subdivisionsAxis),
        rings_(ringsOf(o_, sections_)) {}

  Mesh make() && {
    addPoints();
    if (o_.createUVs != 0) addUvs();
    addEdges();
    addFaces();
    return std::move(builder_).finish(o_.axis);
  }

 private:
  [[nodiscard]] Index ringCount() const { return static_cast<Index>(rings_.size()); }
  [[nodiscard]] bool hasPoles() const { return o_.subdivisionsCaps > 0; }
  [[nodiscard]] VertexId lowPole() const { return ringCount() * sx_; }

  void addPoints() {
    for (const Ring& ring : rings_)
      for (int i = 0; i < sx_; ++i) {
        const double angle = -2 * std::numbers::pi * (i + 1) / sx_;
        builder_.addPoint(ring.frame.middle + ring.frame.along * ring.shift +
                          (ring.frame.out * std::cos(angle) - ring.frame.up * std::sin(angle)) *
                              ring.radius);
      }
    if (!hasPoles()) return;
    const double shift = o_.roundCap ? o_.radius : 0;
    for (const bool isTop : {false, true}) {
      const Frame frame = frameAt(o_, isTop ? o_.coils : 0);
      builder_.addPoint(frame.middle + frame.along * (isTop ? shift : -shift));
    }
  }

  void addUvs() {
    const UvLayout layout = uvLayout(o_);
    const int caps = std::max(o_.subdivisionsCaps, 1);
    for (int k = 1; k <= caps; ++k)
      low_.push_back(
          addUvCircle(builder_, sx_, layout.capU, layout.lowV, layout.capRadius * k / caps, false));
    for (int j = 0; j <= sections_; ++j)
      side_.push_back(addUvLine(builder_, sx_, 0, layout.u1,
                                layout.v0 + (layout.v1 - layout.v0) * j / sections_));
    for (int k = caps; k >= 1; --k)
      high_.push_back(
          addUvCircle(builder_, sx_, layout.capU, layout.highV, layout.capRadius * k / caps, true));
    if (!hasPoles()) return;
    lowPoleUv_ = builder_.addUv(layout.capU, layout.lowV);
    highPoleUv_ = builder_.addUv(layout.capU, layout.highV);
  }

  void addEdges() {
    for (Index j = 0; j < ringCount(); ++j)
      for (int i = 0; i < sx_; ++i)
        builder_.addEdge(j * sx_ + i, j * sx_ + (i + 1) % sx_,
                         !rings_[at(j)].isRim || (o_.roundCap && hasPoles()));
    for (Index j = 0; j + 1 < ringCount(); ++j)
      for (int i = 0; i < sx_; ++i) builder_.addEdge(j * sx_ + i, (j + 1) * sx_ + i, true);
    if (!hasPoles()) return;
    for (int i = 0; i < sx_; ++i) builder_.addEdge(lowPole(), i, true);
    for (int i = 0; i < sx_; ++i)
      builder_.addEdge((ringCount() - 1) * sx_ + i, lowPole() + 1, true);
  }

  void addFaces() {
    addBands(low_, 0);
    const Index caps = std::max(o_.subdivisionsCaps, 1) - 1;
    addBands(side_, caps, sections_);
    addBands(high_, caps + sections_);
    addEnd(0, low_.empty() ? UvRow{} : low_.front(), false);
    addEnd(ringCount() - 1, high_.empty() ? UvRow{} : high_.back(), true);
  }
  void addBands(const std::vector<UvRow>& rows, Index first) {
    addBands(rows, first, std::max(o_.subdivisionsCaps, 1) - 1);
  }
  void addBands(const std::vector<UvRow>& rows, Index first, int count) {
    for (int j = 0; j < count; ++j)
      for (int i = 0; i < sx_; ++i) {
        const Index a = (first + j) * sx_, b = a + sx_, right = (i + 1) % sx_;
        if (rows.empty()) {
          builder_.addFace({a + i, a + right, b + right, b + i}, {});
          continue;
        }
        const UvRow &low = rows[at(j)], &high = rows[at(j + 1)];
        builder_.addFace(
            {a + i, a + right, b + right, b + i},
            {low.at(i, sx_), low.at(i + 1, sx_), high.at(i + 1, sx_), high.at(i, sx_)});
      }
  }
  void addEnd(Index ring, const UvRow& row, bool isTop) {
    const bool hasUvs = o_.createUVs != 0;
    if (!hasPoles()) {
      std::vector<VertexId> vertices;
      std::vector<UvId> uvs;
      for (int k = 0; k < sx_; ++k) {
        const int i = isTop ? k : sx_ - 1 - k;
        vertices.push_back(ring * sx_ + i);
        if (hasUvs) uvs.push_back(row.at(i, sx_));
      }
      builder_.addFace(vertices, uvs);
      return;
    }
    for (int i = 0; i < sx_; ++i) {
      const int right = (i + 1) % sx_;
      const VertexId a = ring * sx_ + (isTop ? i : right), b = ring * sx_ + (isTop ? right : i);
      const VertexId pole = lowPole() + (isTop ? 1 : 0);
      if (hasUvs)
        builder_.addFace({a, b, pole},
                         {row.at(isTop ? i : i + 1, sx_), row.at(isTop ? i + 1 : i, sx_),
                          isTop ? highPoleUv_ : lowPoleUv_});
      else
        builder_.addFace({a, b, pole}, {});
    }
  }

  const HelixOptions& o_;
  int sections_, sx_;
  std::vector<Ring> rings_;
  std::vector<UvRow> low_, side_, high_;
  UvId lowPoleUv_ = kNone, highPoleUv_ = kNone;
  PrimitiveBuilder builder_;
};

Result<void> checkHelix(const HelixOptions& o) {
  HOST_TRY(checkSize("The helix's coils", o.coils));
  HOST_TRY(checkSize("The helix's width", o.width));
  HOST_TRY(checkSize("The helix's radius", o.radius));
  if (!std::isfinite(o.height) || o.height < 0)
    return fail(ErrorKind::BadArgument, "The helix's height must not be negative, not {}",
                o.height);
  HOST_TRY(checkSubdivisions("Subdivisions around the tube", o.subdivisionsAxis, 3));
  HOST_TRY(checkSubdivisions("Subdivisions along a coil", o.subdivisionsCoil, 1));
  HOST_TRY(checkSubdivisions("Subdivisions of the caps", o.subdivisionsCaps, 0));
  HOST_TRY(checkFaceCount(double(o.subdivisionsAxis) *
                          (o.coils * o.subdivisionsCoil + 2.0 * o.subdivisionsCaps + 2)));
  HOST_TRY(checkAxis(o.axis));
  if (o.createUVs < 0 || o.createUVs > 3)
    return fail(ErrorKind::BadArgument, "createUVs of a helix must be 0 to 3, not {}", o.createUVs);
  return {};
}

}  // namespace

Result<Mesh> makeHelix(const HelixOptions& options) {
  HOST_TRY(checkHelix(options));
  return HelixMaker(options).make();
}

}  // namespace host::ops
