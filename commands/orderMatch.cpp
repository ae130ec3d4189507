#include "commands/orderMatch.h"

#include <utility>

#include "shared/mesh/polygonGraph.h"

namespace {

/// One attempt: both meshes are walked together from a pair of corners until they are done or
/// differ.
class pairedWalk {
 public:
  pairedWalk(const polygonGraph& first, const polygonGraph& second)
      : a(first),
        b(second),
        partner(static_cast<std::size_t>(a.vertexCount()), -1),
        back(static_cast<std::size_t>(b.vertexCount()), -1),
        cornerPartner(static_cast<std::size_t>(a.faceCount()), -1) {}

  bool run(int cornerA, int cornerB) {
    open.push_back({cornerA, cornerB});
    while (!open.empty()) {
      const auto [ca, cb] = open.back();
      open.pop_back();
      if (!pairFaces(ca, cb)) return false;
    }
    return true;
  }

  const std::vector<int>& vertices() const { return partner; }

 private:
  bool pairFaces(int ca, int cb) {
    const int face = a.faceOf(ca), count = a.size(face);
    if (count != b.size(b.faceOf(cb))) return false;
    // A face that was paired before must have been paired the same way round.
    int& known = cornerPartner[static_cast<std::size_t>(face)];
    const int toFirst = (a.firstCorner(face) - ca + count) % count;
    const int firstPartner = b.turn(cb, toFirst);
    if (known >= 0) return known == firstPartner;
    known = firstPartner;
    for (int k = 0; k < count; ++k)
      if (!pairCorners(a.turn(ca, k), b.turn(cb, k))) return false;
    return true;
  }

  bool pairCorners(int ca, int cb) {
    int& there = partner[static_cast<std::size_t>(a.vertexAt(ca))];
    int& here = back[static_cast<std::size_t>(b.vertexAt(cb))];
    if (there < 0 && here < 0) {
      there = b.vertexAt(cb);
      here = a.vertexAt(ca);
    }
    if (there != b.vertexAt(cb) || here != a.vertexAt(ca)) return false;
    const int nextA = a.across(ca), nextB = b.across(cb);
    if ((nextA < 0) != (nextB < 0)) return false;
    if (nextA >= 0) open.push_back({nextA, nextB});
    return true;
  }

  const polygonGraph& a;
  const polygonGraph& b;
  std::vector<int> partner, back, cornerPartner;
  std::vector<std::pair<int, int>> open;
};

double squaredDistances(const std::vector<int>& partner, const MPointArray& pointsA,
                        const MPointArray& pointsB) {
  double sum = 0.0;
  for (std::size_t v = 0; v < partner.size(); ++v) {
    if (partner[v] < 0) continue;
    const MVector d =
        pointsB[static_cast<unsigned int>(partner[v])] - pointsA[static_cast<unsigned int>(v)];
    sum += d * d;
  }
  return sum;
}

}  // namespace

bool matchOrder(const polygonGraph& a, const MPointArray& pointsA, int faceA, const polygonGraph& b,
                const MPointArray& pointsB, int faceB, std::vector<int>& partner) {
  std::vector<int> best;
  double bestSum = 0.0;
  for (int turn = 0; turn < b.size(faceB); ++turn) {
    pairedWalk walk(a, b);
    if (!walk.run(a.firstCorner(faceA), b.firstCorner(faceB) + turn)) continue;
    const double sum = squaredDistances(walk.vertices(), pointsA, pointsB);
    if (!best.empty() && sum >= bestSum) continue;
    best = walk.vertices();
    bestSum = sum;
  }
  if (best.empty()) return false;
  for (std::size_t v = 0; v < best.size(); ++v)
    if (best[v] >= 0) partner[v] = best[v];
  return true;
}
