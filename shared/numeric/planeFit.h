#pragma once

class MPoint;
class MPointArray;
class MVector;

/// Mean of entries [start, start + count), summed in order; `count` must not be 0.
MPoint meanPoint(const MPointArray& points, unsigned int start, unsigned int count);

/// The run's point farthest from `from`, the first of equally far ones; the origin when all lie on
/// `from`.
MPoint farthestFrom(const MPoint& from, const MPointArray& points, unsigned int start,
                    unsigned int count);

/// Unit normal of the plane through the run's mean that fits it best in the least-squares sense.
/// @return false when the run has no such plane: its points coincide or lie on one line
bool bestFitNormal(const MPointArray& points, unsigned int start, unsigned int count,
                   MVector& normal);
