#include "quaddraw/screenIndex.h"

#include <maya/M3dView.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr int kCellPixels = 32;
constexpr double kFarthest = 10000.0;  // pixels

// Pixels as the view itself counts them.
short toPixel(double value) {
  constexpr double kLimit = std::numeric_limits<short>::max();
  return static_cast<short>(std::lround(std::min(std::max(value, -kLimit), kLimit)));
}

bool isNumber(const MPoint& point) {
  return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

}  // namespace

viewSight::viewSight(const M3dView& view) {
  MMatrix toCamera, projection;
  view.modelViewMatrix(toCamera);
  view.projectionMatrix(projection);
  toClip = toCamera * projection;
  M3dView port = view;
  width = port.portWidth();
  height = port.portHeight();
}

int screenIndex::cellOf(int pixel) const {
  return pixel >= 0 ? pixel / kCellPixels : -((kCellPixels - 1 - pixel) / kCellPixels);
}

unsigned int screenIndex::build(const std::vector<drawCandidate>& candidates,
                                const viewSight& sight) {
  all = candidates;
  entries.clear();
  unsigned int lost = 0;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (!isNumber(all[i].place)) {
      ++lost;
      continue;
    }
    // Points on the near clipping plane, where the first of a drawing are laid, count too.
    const MPoint clip = all[i].place * sight.toClip;
    if (!(clip.w > 0.0)) continue;
    const entry made{static_cast<int>(i), toPixel((clip.x / clip.w + 1.0) * 0.5 * sight.width),
                     toPixel((clip.y / clip.w + 1.0) * 0.5 * sight.height)};
    if (std::fabs(made.x) > kFarthest * 2.0 || std::fabs(made.y) > kFarthest * 2.0) continue;
    entries.push_back(made);
  }
  columns = rows = 0;
  firstOfCell.assign(1, 0);
  if (entries.empty()) return lost;
  int highX = std::numeric_limits<int>::min(), highY = highX;
  lowX = lowY = std::numeric_limits<int>::max();
  for (const entry& e : entries) {
    lowX = std::min(lowX, cellOf(e.x));
    lowY = std::min(lowY, cellOf(e.y));
    highX = std::max(highX, cellOf(e.x));
    highY = std::max(highY, cellOf(e.y));
  }
  columns = highX - lowX + 1;
  rows = highY - lowY + 1;
  const auto cell = [this](const entry& e) {
    return (cellOf(e.y) - lowY) * columns + cellOf(e.x) - lowX;
  };
  std::stable_sort(entries.begin(), entries.end(),
                   [&](const entry& a, const entry& b) { return cell(a) < cell(b); });
  firstOfCell.assign(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows) + 1, 0);
  for (const entry& e : entries) ++firstOfCell[static_cast<std::size_t>(cell(e)) + 1];
  for (std::size_t i = 1; i < firstOfCell.size(); ++i) firstOfCell[i] += firstOfCell[i - 1];
  return lost;
}

bool screenIndex::counts(int candidate, const MVector* ray) const {
  const drawCandidate& c = all[static_cast<std::size_t>(candidate)];
  return !ray || !c.isBorder || c.normal * *ray <= 0.0;
}

void screenIndex::consider(const entry& at, int x, int y, unsigned int count, const MVector* ray,
                           std::vector<found>& best) const {
  const double dx = at.x - x, dy = at.y - y;
  const found now{at.candidate, std::sqrt(dx * dx + dy * dy)};
  const auto isNearer = [](const found& a, const found& b) {
    return a.distance < b.distance || (a.distance == b.distance && a.candidate < b.candidate);
  };
  if (!(now.distance < kFarthest)) return;
  if (best.size() == count && !isNearer(now, best.back())) return;
  if (!counts(at.candidate, ray)) return;
  best.insert(std::upper_bound(best.begin(), best.end(), now, isNearer), now);
  if (best.size() > count) best.pop_back();
}

std::vector<screenIndex::found> screenIndex::nearestOfAll(int x, int y, unsigned int count,
                                                          const MVector* ray) const {
  std::vector<found> best;
  for (const entry& e : entries) consider(e, x, y, count, ray, best);
  return best;
}

std::vector<screenIndex::found> screenIndex::nearest(int x, int y, unsigned int count,
                                                     const MVector* ray) const {
  std::vector<found> best;
  if (entries.empty() || count == 0) return best;
  const int cx = cellOf(x) - lowX, cy = cellOf(y) - lowY;
  const auto visit = [&](int column, int row) {
    if (column < 0 || row < 0 || column >= columns || row >= rows) return;
    const auto cell = static_cast<std::size_t>(row * columns + column);
    for (int i = firstOfCell[cell]; i < firstOfCell[cell + 1]; ++i)
      consider(entries[static_cast<std::size_t>(i)], x, y, count, ray, best);
  };
  // Rings of cells around the pixel: the next one is at least so many pixels away. The rings before
  // the first that meets the cells are passed over.
  const int start = std::max({0, -cx, cx - (columns - 1), -cy, cy - (rows - 1)});
  const int last = std::max(
      {std::abs(cx), std::abs(cx - (columns - 1)), std::abs(cy), std::abs(cy - (rows - 1))});
  for (int ring = start; ring <= last; ++ring) {
    const double atLeast = (ring - 1) * static_cast<double>(kCellPixels);
    if (best.size() == count && best.back().distance < atLeast) break;
    if (atLeast > kFarthest) break;
    const int fromRow = std::max(cy - ring, 0), toRow = std::min(cy + ring, rows - 1);
    for (int row = fromRow; row <= toRow; ++row) {
      if (row == cy - ring || row == cy + ring) {
        for (int column = std::max(cx - ring, 0); column <= std::min(cx + ring, columns - 1);
             ++column)
          visit(column, row);
      } else {
        visit(cx - ring, row);
        if (ring > 0) visit(cx + ring, row);
      }
    }
  }
  return best;
}
