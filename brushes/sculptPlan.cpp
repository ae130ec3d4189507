#include "brushes/sculptPlan.h"

#include <algorithm>
#include <cmath>

namespace sculptPlan {

double amountOf(const brushDab& dab, double rate) {
  const double amount = 1.0 - std::exp(-rate * dab.strength * dab.stepShare);
  return dab.invert && !dab.smooth ? -amount : amount;
}

MVector averageNormal(const brushSurface& surface, const dabRegion& region,
                      const MVector& outward) {
  MVector sum;
  for (std::size_t i = 0; i < region.vertices.size(); ++i)
    sum += surface.worldNormal(region.vertices[i]) * region.weights[i];
  const double length = sum.length();
  if (!(length > 1e-12)) return outward;
  sum /= length;
  return sum * outward < 0.0 ? -sum : sum;
}

void push(const brushSurface& surface, const dabRegion& region, const MVector& outward,
          double height, dabMoves& moves) {
  const MVector way = averageNormal(surface, region, outward) * height;
  for (std::size_t i = 0; i < moves.size(); ++i) moves[i] = way * region.weights[i];
}

void flatten(const brushSurface& surface, const dabRegion& region, const MVector& outward,
             double amount, dabMoves& moves) {
  const MVector normal = averageNormal(surface, region, outward);
  MVector middle;
  double all = 0.0;
  for (std::size_t i = 0; i < moves.size(); ++i) {
    middle += MVector(surface.worldPoint(region.vertices[i])) * region.weights[i];
    all += region.weights[i];
  }
  if (!(all > 0.0)) return;
  middle /= all;
  for (std::size_t i = 0; i < moves.size(); ++i) {
    const double height = (MVector(surface.worldPoint(region.vertices[i])) - middle) * normal;
    moves[i] = normal * (-height * amount * region.weights[i]);
  }
}

void pinch(const brushSurface& surface, const dabRegion& region, const MPoint& centre,
           const MVector& normal, const MVector& direction, double amount, dabMoves& moves) {
  for (std::size_t i = 0; i < moves.size(); ++i) {
    MVector away = surface.worldPoint(region.vertices[i]) - centre;
    away -= normal * (away * normal);
    away -= direction * (away * direction);
    moves[i] = away * (-amount * region.weights[i]);
  }
}

namespace {

/// The mean of the neighbours as they are in a round. @return false for a vertex that stays
bool neighbourMean(const brushSurface& surface, int vertex, const vertexSlots& slots,
                   const std::vector<MPoint>& places, MPoint& mean) {
  const bool onBorder = surface.isBorder(vertex);
  MVector sum;
  int count = 0;
  for (const int* next = surface.neighboursBegin(vertex); next != surface.neighboursEnd(vertex);
       ++next) {
    if (onBorder && !surface.isBorder(*next)) continue;
    const int slot = slots.find(*next);
    sum += MVector(slot >= 0 ? places[static_cast<std::size_t>(slot)] : surface.worldPoint(*next));
    ++count;
  }
  const bool isCorner = surface.facesEnd(vertex) - surface.facesBegin(vertex) == 1;
  if (count == 0 || (onBorder && (count != 2 || isCorner))) return false;
  mean = MPoint(sum / count);
  return true;
}

}  // namespace

void relax(const brushSurface& surface, const dabRegion& region, double amount, int rounds,
           vertexSlots& slots, dabMoves& moves) {
  slots.begin(surface.vertexCount());
  std::vector<MPoint> places(region.vertices.size()), next;
  for (std::size_t i = 0; i < places.size(); ++i) {
    slots.set(region.vertices[i], static_cast<int>(i));
    places[i] = surface.worldPoint(region.vertices[i]);
  }
  next = places;
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      MPoint mean;
      if (!neighbourMean(surface, region.vertices[i], slots, places, mean)) continue;
      next[i] = places[i] + (mean - places[i]) * (amount * region.weights[i]);
    }
    places.swap(next);
  }
  for (std::size_t i = 0; i < places.size(); ++i)
    moves[i] = places[i] - surface.worldPoint(region.vertices[i]);
}

}  // namespace sculptPlan
