#pragma once

class MPointArray;
class MVector;

/// Why a run can't be put on a circle.
enum class circleFault { none, tooFewPoints, noPlane };

/// Spaces a run evenly on a circle, in place: entries [start, start + count) of `positions` go
/// round the circle whose centre is their mean, whose plane stands on `normal` and whose radius is
/// the largest distance of a point from the mean.
///
/// That farthest point keeps its direction; the others follow at equal steps in the order of their
/// angle about the normal, measured from it, so the result never crosses itself. Points of one
/// angle keep their order in the run. A normal that is zero or points at the farthest point is
/// replaced by that of the best-fit plane; points on one line have none. n log n.
/// @return the fault, with `positions` unchanged, for fewer than three points and where there is no
/// plane: the points coincide, or lie on one line with no normal to stand on it
circleFault circleRun(MPointArray& positions, unsigned int start, unsigned int count,
                      const MVector& normal);
