#include "host/builtins/uv/uv_picture.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_set>

#include "host/mesh/shells.h"
#include "host/mesh/triangulate.h"
#include "host/ops/uv/report.h"
#include "host/ops/uv/stretch_color.h"

namespace host::builtins {
namespace {

using Color = std::array<std::uint8_t, 3>;

struct Spot {
  double x, y;
};

std::uint8_t byteOf(double part) {
  return static_cast<std::uint8_t>(std::lround(255 * std::clamp(part, 0.0, 1.0)));
}

/// Colours far from each other for neighbouring numbers: hues by the golden ratio.
Color shellColor(Index shell) {
  const double hue = 6 * std::fmod(0.08 + 0.61803398875 * shell, 1.0);
  const double x = 1 - std::abs(std::fmod(hue, 2.0) - 1);
  const std::array<std::array<double, 3>, 6> sextants{
      {{1, x, 0}, {x, 1, 0}, {0, 1, x}, {0, x, 1}, {x, 0, 1}, {1, 0, x}}};
  const auto& rgb = sextants[static_cast<std::size_t>(hue) % 6];
  const double light = shell % 3 == 0 ? 0.86 : shell % 3 == 1 ? 0.72 : 0.95;
  return {byteOf(light * (0.42 + 0.58 * rgb[0])), byteOf(light * (0.42 + 0.58 * rgb[1])),
          byteOf(light * (0.42 + 0.58 * rgb[2]))};
}

/// Blends a colour over a pixel that may be transparent.
void blend(std::uint8_t* pixel, const Color& color, double cover) {
  const double under = pixel[3] / 255.0, alpha = cover + under * (1 - cover);
  if (!(alpha > 0)) return;
  for (std::size_t k = 0; k < 3; ++k)
    pixel[k] = static_cast<std::uint8_t>(
        std::lround((cover * color[k] + (1 - cover) * under * pixel[k]) / alpha));
  pixel[3] = byteOf(alpha);
}

/// How many layers over a pixel are mixed. What lies deeper is not seen, so that a stack of any
/// height costs no more than this one.
constexpr float kMostLayers = 64;

/// Cells in a row of which some are closed; finds the next open one at once.
class OpenCells {
 public:
  OpenCells() = default;
  explicit OpenCells(std::size_t count) : next_(count + 1) {
    std::iota(next_.begin(), next_.end(), std::uint32_t{0});
  }
  [[nodiscard]] bool empty() const { return next_.empty(); }
  /// The first open cell from `i` on; the count when there is none.
  [[nodiscard]] std::size_t from(std::size_t i) {
    i = std::min(i, next_.size() - 1);
    while (next_[i] != i) i = next_[i] = next_[next_[i]];
    return i;
  }
  void close(std::size_t i) { next_[i] = static_cast<std::uint32_t>(i + 1); }

 private:
  std::vector<std::uint32_t> next_;
};

class Canvas {
 public:
  Canvas(io::Image& image, const UvPictureOptions& options) : image_(image), options_(options) {}

  [[nodiscard]] Spot spot(const mesh::Vec2f& uv) const {
    return {(uv.u - options_.uMin) / (options_.uMax - options_.uMin) * image_.width,
            (options_.vMax - uv.v) / (options_.vMax - options_.vMin) * image_.height};
  }

  /// Counts, for each pixel, how many of its samples triangles of a colour cover; done() blends.
  void triangle(std::array<Spot, 3> t, const Color& color) {
    const int samples = options_.isAntialiased ? 4 : 1;
    const double top = std::min({t[0].y, t[1].y, t[2].y}),
                 bottom = std::max({t[0].y, t[1].y, t[2].y});
    if (!(bottom >= 0) || !(top <= image_.height)) return;
    const auto first = static_cast<int>(std::floor(std::max(0.0, top) * samples));
    const auto last =
        static_cast<int>(std::floor(std::min<double>(image_.height, bottom) * samples));
    if (openRows_.empty()) openRows_ = OpenCells(at(image_.height));
    for (int row = first; row <= last && row < samples * image_.height; ++row) {
      // Rows that are full take no more.
      const int open = static_cast<int>(openRows_.from(at(row / samples)));
      if (open != row / samples) {
        row = open * samples - 1;
        continue;
      }
      const double y = (row + 0.5) / samples;
      double left = 1e300, right = -1e300;
      for (std::size_t k = 0; k < 3; ++k) {
        const Spot a = t[k], b = t[(k + 1) % 3];
        if ((a.y <= y) == (b.y <= y)) continue;
        const double x = a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x);
        left = std::min(left, x);
        right = std::max(right, x);
      }
      if (left > right) continue;
      span(row / samples, std::max(0.0, left), std::min<double>(image_.width, right), color,
           samples);
    }
  }

  /// Blends what triangles covered into the picture.
  void done() {
    for (std::size_t i = 0; i < covers_.size(); ++i) {
      const Cover& cover = covers_[i];
      if (!(cover.part > 0)) continue;
      const Color color{byteOf(cover.sum[0] / cover.part), byteOf(cover.sum[1] / cover.part),
                        byteOf(cover.sum[2] / cover.part)};
      blend(image_.rgba.data() + 4 * i, color, std::min(1.0, static_cast<double>(cover.part)));
    }
    covers_.clear();
    openRows_ = {};
    openPixels_.clear();
  }

  void line(Spot a, Spot b, const Color& color, double width) {
    const double half = 0.5 * width;
    const double left = std::min(a.x, b.x) - half - 1, right = std::max(a.x, b.x) + half + 1;
    const double top = std::min(a.y, b.y) - half - 1, bottom = std::max(a.y, b.y) + half + 1;
    if (!(right >= 0) || !(bottom >= 0) || !(left < image_.width) || !(top < image_.height)) return;
    const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
    const auto firstRow = static_cast<int>(std::max(0.0, std::floor(top)));
    const auto lastRow = static_cast<int>(std::min<double>(image_.height - 1, bottom));
    for (int y = firstRow; y <= lastRow; ++y) {
      // Only the stretch of the row that the line comes near.
      double from = left, to = right;
      if (std::abs(dy) > 1e-9) {
        const double reach = (half + 1.5) * std::sqrt(square) / std::abs(dy);
        const double at = a.x + (y + 0.5 - a.y) / dy * dx;
        from = std::max(from, at - reach);
        to = std::min(to, at + reach);
      }
      const auto lastColumn = static_cast<int>(std::min<double>(image_.width - 1, to));
      for (int x = static_cast<int>(std::max(0.0, from)); x <= lastColumn; ++x) {
        const double px = x + 0.5 - a.x, py = y + 0.5 - a.y;
        const double part = square > 0 ? std::clamp((px * dx + py * dy) / square, 0.0, 1.0) : 0;
        const double distance = std::hypot(px - part * dx, py - part * dy);
        double cover = std::clamp(half + 0.5 - distance, 0.0, 1.0);
        if (!options_.isAntialiased) cover = cover >= 0.5 ? 1 : 0;
        if (cover > 0) blend(pixel(x, y), color, cover);
      }
    }
  }

 private:
  struct Cover {
    std::array<float, 3> sum{};
    float part = 0;
  };

  [[nodiscard]] std::size_t indexOf(int x, int y) const { return at(y) * at(image_.width) + at(x); }
  [[nodiscard]] std::uint8_t* pixel(int x, int y) { return image_.rgba.data() + 4 * indexOf(x, y); }

  void span(int row, double left, double right, const Color& color, int samples) {
    if (covers_.empty()) {
      covers_.resize(image_.rgba.size() / 4);
      openPixels_.resize(at(image_.height));
    }
    OpenCells& open = openPixels_[at(row)];
    if (open.empty()) open = OpenCells(at(image_.width));
    const auto next = [&](int x) { return static_cast<int>(open.from(at(x))); };
    for (int x = next(static_cast<int>(left)); x < image_.width && x < right; x = next(x + 1)) {
      double part = std::min<double>(x + 1, right) - std::max<double>(x, left);
      if (!options_.isAntialiased) part = left <= x + 0.5 && x + 0.5 < right ? 1 : 0;
      if (!(part > 0)) continue;
      Cover& cover = covers_[indexOf(x, row)];
      const auto weight = static_cast<float>(part / samples);
      for (std::size_t k = 0; k < 3; ++k)
        cover.sum[k] += weight * static_cast<float>(color[k]) / 255;
      cover.part += weight;
      if (cover.part >= kMostLayers) open.close(at(x));
    }
    if (open.from(0) == at(image_.width)) openRows_.close(at(row));
  }

  io::Image& image_;
  const UvPictureOptions& options_;
  std::vector<Cover> covers_;
  OpenCells openRows_;
  std::vector<OpenCells> openPixels_;  ///< of each row
};

void fill(Canvas& canvas, const mesh::Mesh& mesh, int uvSet, UvPictureOptions::Fill how) {
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  const mesh::UvShells shells = mesh::findUvShells(mesh, uvSet);
  std::vector<float> stretch;
  if (how == UvPictureOptions::Fill::Stretch) stretch = ops::faceStretch(mesh, uvSet);
  const mesh::Triangulation triangulation = mesh::triangulate(mesh);
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    if (shells.ofFace[at(f)] == kNone) continue;
    const Color color =
        stretch.empty() ? shellColor(shells.ofFace[at(f)]) : stretchColor(stretch[at(f)]);
    const Index first = mesh::Triangulation::firstTriangle(mesh, f);
    for (Index t = first; t < first + mesh.faceSize(f) - 2; ++t) {
      const auto& corners = triangulation.triangles[at(t)];
      const auto spot = [&](std::size_t k) {
        return canvas.spot(set.points[at(set.cornerIds[corners[k]])]);
      };
      canvas.triangle({spot(0), spot(1), spot(2)}, color);
    }
  }
  canvas.done();
}

/// Lines that were drawn, to a sixteenth of a pixel: those of stacked shells are drawn once.
class DrawnLines {
 public:
  /// Whether the line from a to b, either way, is new.
  bool add(Spot a, Spot b) {
    if (b.y < a.y || (b.y == a.y && b.x < a.x)) std::swap(a, b);
    std::uint64_t key = 1469598103934665603u;
    for (const double x : {a.x, a.y, b.x, b.y}) {
      const double place = std::clamp(16 * x, -1e15, 1e15);
      key = (key ^ static_cast<std::uint64_t>(std::llround(place))) * 1099511628211u;
      key ^= key >> 29;
    }
    return seen_.insert(key).second;
  }

 private:
  std::unordered_set<std::uint64_t> seen_;
};

void drawLines(Canvas& canvas, const mesh::Mesh& mesh, int uvSet, const Color& color,
               double width) {
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  DrawnLines drawn;
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const CornerId first = mesh.firstCorner(f), end = mesh.firstCorner(f + 1);
    if (set.cornerIds[first] == kNone) continue;
    for (CornerId c = first; c < end; ++c) {
      const CornerId next = c + 1 == end ? first : c + 1;
      const UvId a = set.cornerIds[c], b = set.cornerIds[next];
      const Spot from = canvas.spot(set.points[at(a)]), to = canvas.spot(set.points[at(b)]);
      if (std::isfinite(from.x + from.y + to.x + to.y) && drawn.add(from, to))
        canvas.line(from, to, color, width);
    }
  }
}

}  // namespace

std::array<std::uint8_t, 3> stretchColor(double stretch) {
  const mesh::Color4f color = ops::stretchColor(stretch);
  return {byteOf(color.r), byteOf(color.g), byteOf(color.b)};
}

void drawUvsOver(io::Image& image, const mesh::Mesh& mesh, int uvSet,
                 const UvPictureOptions& options) {
  if (mesh.uvSet(uvSet).cornerIds.empty()) return;
  Canvas canvas(image, options);
  if (options.fill != UvPictureOptions::Fill::None) fill(canvas, mesh, uvSet, options.fill);
  if (!options.drawsLines) return;
  // Lines over a fill are thin, so that dense meshes keep their colours.
  drawLines(canvas, mesh, uvSet, options.line,
            options.fill == UvPictureOptions::Fill::None ? 1.0 : 0.6);
}

io::Image drawUvs(const mesh::Mesh& mesh, int uvSet, const UvPictureOptions& options) {
  io::Image image{options.width, options.height, {}};
  const std::size_t pixels = at(options.width) * at(options.height);
  image.rgba.assign(4 * pixels, options.hasBackground ? 246 : 0);
  for (std::size_t i = 3; options.hasBackground && i < image.rgba.size(); i += 4)
    image.rgba[i] = 255;
  drawUvsOver(image, mesh, uvSet, options);
  return image;
}

}  // namespace host::builtins
