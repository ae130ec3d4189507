#pragma once

#include "brushes/pointBrush.h"
#include "brushes/vertexSlots.h"

/// What the sculpting modes do with the vertices of a dab, as moves in world space. What a stroke
/// does in all goes with its way, not with how many dabs it was cut into.
namespace sculptPlan {

/// How fast a mode comes to its end: how often a full dab goes by on a way of one radius.
constexpr double kRelaxRate = 4.0, kFlattenRate = 5.0, kPinchRate = 1.5;
/// How high a stroke at full strength pushes, in radii on a way of one radius.
constexpr double kPushRate = 0.4;

/// The share of the way to a goal that a dab goes, 0 to 1: dabs of a way of some length come to the
/// same share of it, however many they are.
double amountOf(const brushDab& dab, double rate);

/// The region's average normal by its weights, unit, on the side of `outward`, which it is where
/// there is none.
MVector averageNormal(const brushSurface& surface, const dabRegion& region, const MVector& outward);

/// Pushes along the average normal, or pulls with a negative height.
/// @param height cm, of a weight of 1
void push(const brushSurface& surface, const dabRegion& region, const MVector& outward,
          double height, dabMoves& moves);

/// Moves towards the plane through the region that lies across its average normal; away from it
/// with a negative amount.
void flatten(const brushSurface& surface, const dabRegion& region, const MVector& outward,
             double amount, dabMoves& moves);

/// Draws together along the surface, towards the line through `centre` along `direction`, or
/// towards the centre when that is zero; spreads with a negative amount.
void pinch(const brushSurface& surface, const dabRegion& region, const MPoint& centre,
           const MVector& normal, const MVector& direction, double amount, dabMoves& moves);

/// Moves each vertex towards the mean of its neighbours, some rounds one after another; a border
/// keeps to itself, and where it has a corner (one face, or three border neighbours and more)
/// stays.
/// @param amount share of the way a round, 0 to 1
/// @param slots scratch
void relax(const brushSurface& surface, const dabRegion& region, double amount, int rounds,
           vertexSlots& slots, dabMoves& moves);

}  // namespace sculptPlan
