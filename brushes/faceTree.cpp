#include "brushes/faceTree.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr std::size_t kFacesPerLeaf = 4;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Spreads ten bits so that two free ones follow each.
std::uint32_t spread(std::uint32_t v) {
  v = (v | v << 16) & 0x030000FFU;
  v = (v | v << 8) & 0x0300F00FU;
  v = (v | v << 4) & 0x030C30C3U;
  return (v | v << 2) & 0x09249249U;
}

bool isFinite(const float* p) {
  return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

struct bounds {
  float low[3] = {kInfinity, kInfinity, kInfinity};
  float high[3] = {-kInfinity, -kInfinity, -kInfinity};
  void add(const float* p) {
    if (!isFinite(p)) return;
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], p[k]);
      high[k] = std::max(high[k], p[k]);
    }
  }
};

bounds boundsOf(const faceArrays& mesh, int face) {
  bounds all;
  const auto begin = static_cast<std::size_t>(mesh.offsets[static_cast<std::size_t>(face)]);
  const auto end = static_cast<std::size_t>(mesh.offsets[static_cast<std::size_t>(face) + 1]);
  for (std::size_t c = begin; c < end; ++c) all.add(mesh.point(mesh.corners[c]));
  return all;
}

std::uint32_t codeOf(const bounds& face, const bounds& all) {
  std::uint32_t code = 0;
  for (int k = 0; k < 3; ++k) {
    const float size = all.high[k] - all.low[k];
    const float middle = 0.5F * (face.low[k] + face.high[k]);
    const float share = size > 0.0F ? (middle - all.low[k]) / size : 0.0F;
    const float cell = std::clamp(share * 1024.0F, 0.0F, 1023.0F);
    code |= spread(cell >= 0.0F ? static_cast<std::uint32_t>(cell) : 0U) << k;
  }
  return code;
}

/// A ray as the walk needs it.
struct ray {
  double origin[3], direction[3], inverse[3];
};

/// Where a ray enters a box, or infinity when it passes or enters behind `limit`.
double entry(const ray& along, const float* low, const float* high, double limit) {
  double from = 0.0, to = limit;
  for (int k = 0; k < 3; ++k) {
    if (along.direction[k] == 0.0) {
      if (along.origin[k] < low[k] || along.origin[k] > high[k]) return HUGE_VAL;
      continue;
    }
    double in = (low[k] - along.origin[k]) * along.inverse[k];
    double out = (high[k] - along.origin[k]) * along.inverse[k];
    if (in > out) std::swap(in, out);
    from = std::max(from, in);
    to = std::min(to, out);
  }
  constexpr double kSlack = 1e-7;
  return from <= to * (1.0 + kSlack) ? from : HUGE_VAL;
}

void cross(const double* a, const double* b, double* out) {
  out[0] = a[1] * b[2] - a[2] * b[1];
  out[1] = a[2] * b[0] - a[0] * b[2];
  out[2] = a[0] * b[1] - a[1] * b[0];
}
double dot(const double* a, const double* b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/// Moeller and Trumbore 1997, with a little room at the edges so that no ray slips between two
/// triangles. @return whether it is met before `limit`, which then becomes the distance
bool meets(const ray& along, const float* a, const float* b, const float* c, double& limit) {
  double first[3], second[3], away[3], p[3], q[3];
  for (int k = 0; k < 3; ++k) {
    first[k] = static_cast<double>(b[k]) - a[k];
    second[k] = static_cast<double>(c[k]) - a[k];
    away[k] = along.origin[k] - a[k];
  }
  cross(along.direction, second, p);
  const double size = dot(first, p);
  if (size == 0.0 || !std::isfinite(size)) return false;
  constexpr double kRoom = 1e-9;
  const double u = dot(away, p) / size;
  if (!(u >= -kRoom && u <= 1.0 + kRoom)) return false;
  cross(away, first, q);
  const double v = dot(along.direction, q) / size;
  if (!(v >= -kRoom && u + v <= 1.0 + kRoom)) return false;
  const double t = dot(second, q) / size;
  if (!(t >= 0.0 && t < limit)) return false;
  limit = t;
  return true;
}

}  // namespace

void faceTree::range(std::size_t leafNode, std::size_t& begin, std::size_t& end) const {
  const std::size_t leaf = leafNode - (leafCount - 1);
  begin = order.size() * leaf / leafCount;
  end = order.size() * (leaf + 1) / leafCount;
}

std::size_t faceTree::leafOf(int face) const {
  const auto place = static_cast<std::size_t>(places[static_cast<std::size_t>(face)]);
  std::size_t leaf = place * leafCount / order.size();
  // The bounds of the leaves are rounded down: the guess may be one off.
  while (order.size() * (leaf + 1) / leafCount <= place) ++leaf;
  while (order.size() * leaf / leafCount > place) --leaf;
  return leaf + leafCount - 1;
}

faceTree::box faceTree::boxOfLeaf(const faceArrays& mesh, std::size_t leafNode) const {
  std::size_t begin = 0, end = 0;
  range(leafNode, begin, end);
  bounds all;
  for (std::size_t i = begin; i < end; ++i) {
    const bounds one = boundsOf(mesh, order[i]);
    all.add(one.low);
    all.add(one.high);
  }
  box made;
  std::copy(all.low, all.low + 3, made.low);
  std::copy(all.high, all.high + 3, made.high);
  return made;
}

void faceTree::build(const faceArrays& mesh) {
  struct key {
    std::uint32_t code;
    int face;
  };
  const auto count = static_cast<std::size_t>(std::max(mesh.faceCount(), 0));
  bounds all;
  for (int v = 0; v < mesh.vertexCount(); ++v) all.add(mesh.point(v));
  std::vector<key> keys(count);
  for (std::size_t f = 0; f < count; ++f)
    keys[f] = {codeOf(boundsOf(mesh, static_cast<int>(f)), all), static_cast<int>(f)};
  std::sort(keys.begin(), keys.end(), [](const key& a, const key& b) {
    return a.code != b.code ? a.code < b.code : a.face < b.face;
  });
  order.resize(count);
  places.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    order[i] = keys[i].face;
    places[static_cast<std::size_t>(keys[i].face)] = static_cast<int>(i);
  }
  leafCount = 1;
  while (leafCount * kFacesPerLeaf < count) leafCount *= 2;
  boxes.resize(2 * leafCount - 1);
  marked.assign(boxes.size(), 0);
  for (std::size_t node = leafCount - 1; node < boxes.size(); ++node)
    boxes[node] = boxOfLeaf(mesh, node);
  const auto join = [this](std::size_t node) {
    const box &left = boxes[2 * node + 1], &right = boxes[2 * node + 2];
    for (int k = 0; k < 3; ++k) {
      boxes[node].low[k] = std::min(left.low[k], right.low[k]);
      boxes[node].high[k] = std::max(left.high[k], right.high[k]);
    }
  };
  for (std::size_t node = leafCount - 1; node-- > 0;) join(node);
}

void faceTree::mend(const faceArrays& mesh, const std::vector<int>& faces) {
  if (!isBuilt() || order.empty()) return;
  dirty.clear();
  for (const int face : faces) {
    const std::size_t leaf = leafOf(face);
    if (marked[leaf]) continue;
    marked[leaf] = 1;
    dirty.push_back(leaf);
  }
  for (const std::size_t leaf : dirty) {
    boxes[leaf] = boxOfLeaf(mesh, leaf);
    marked[leaf] = 0;
  }
  // Level by level: all marked nodes of a level are done before their parents.
  std::vector<std::size_t> level;
  level.swap(dirty);
  while (!level.empty() && level.front() != 0) {
    std::vector<std::size_t> above;
    for (const std::size_t node : level) {
      const std::size_t parent = (node - 1) / 2;
      if (marked[parent]) continue;
      marked[parent] = 1;
      above.push_back(parent);
    }
    for (const std::size_t node : above) {
      marked[node] = 0;
      const box &left = boxes[2 * node + 1], &right = boxes[2 * node + 2];
      for (int k = 0; k < 3; ++k) {
        boxes[node].low[k] = std::min(left.low[k], right.low[k]);
        boxes[node].high[k] = std::max(left.high[k], right.high[k]);
      }
    }
    level.swap(above);
  }
}

faceHit faceTree::cast(const faceArrays& mesh, const double* origin,
                       const double* direction) const {
  faceHit hit;
  if (!isBuilt() || order.empty()) return hit;
  ray along;
  for (int k = 0; k < 3; ++k) {
    along.origin[k] = origin[k];
    along.direction[k] = direction[k];
    along.inverse[k] = 1.0 / direction[k];
  }
  double limit = HUGE_VAL;
  struct visit {
    std::size_t node;
    double from;
  };
  visit open[96];
  int count = 0;
  open[count++] = {0, entry(along, boxes[0].low, boxes[0].high, limit)};
  while (count > 0) {
    const visit here = open[--count];
    if (!(here.from < limit)) continue;
    if (!isLeaf(here.node)) {
      const std::size_t left = 2 * here.node + 1;
      const double a = entry(along, boxes[left].low, boxes[left].high, limit);
      const double b = entry(along, boxes[left + 1].low, boxes[left + 1].high, limit);
      // The nearer one is looked at first.
      if (a > b) {
        if (a < limit) open[count++] = {left, a};
        if (b < limit) open[count++] = {left + 1, b};
      } else {
        if (b < limit) open[count++] = {left + 1, b};
        if (a < limit) open[count++] = {left, a};
      }
      continue;
    }
    std::size_t begin = 0, end = 0;
    range(here.node, begin, end);
    for (std::size_t i = begin; i < end; ++i) {
      const auto face = static_cast<std::size_t>(order[i]);
      const auto first = static_cast<std::size_t>(mesh.offsets[face]);
      const auto last = static_cast<std::size_t>(mesh.offsets[face + 1]);
      for (std::size_t c = first + 2; c < last; ++c) {
        const int ids[3] = {mesh.corners[first], mesh.corners[c - 1], mesh.corners[c]};
        if (!meets(along, mesh.point(ids[0]), mesh.point(ids[1]), mesh.point(ids[2]), limit))
          continue;
        hit.face = order[i];
        hit.triangle = {{ids[0], ids[1], ids[2]}};
        hit.distance = limit;
      }
    }
  }
  return hit;
}

void faceTree::facesInBox(const double* low, const double* high, std::vector<int>& faces) const {
  if (!isBuilt() || order.empty()) return;
  const auto isApart = [&](const box& one) {
    if (one.isEmpty()) return true;
    for (int k = 0; k < 3; ++k)
      if (one.low[k] > high[k] || one.high[k] < low[k]) return true;
    return false;
  };
  std::vector<std::size_t> open{0};
  while (!open.empty()) {
    const std::size_t node = open.back();
    open.pop_back();
    if (isApart(boxes[node])) continue;
    if (isLeaf(node)) {
      std::size_t begin = 0, end = 0;
      range(node, begin, end);
      faces.insert(faces.end(), order.begin() + static_cast<std::ptrdiff_t>(begin),
                   order.begin() + static_cast<std::ptrdiff_t>(end));
      continue;
    }
    open.push_back(2 * node + 2);
    open.push_back(2 * node + 1);
  }
}

std::size_t faceTree::bytes() const {
  return order.size() * sizeof(int) + places.size() * sizeof(int) + boxes.size() * sizeof(box) +
         marked.size();
}
