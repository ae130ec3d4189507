#include "commands/straightenPlan.h"

#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

namespace {

MPoint meanOf(const MPointArray& positions, unsigned int start, unsigned int count) {
  MVector sum;
  for (unsigned int i = start; i < start + count; ++i) sum += MVector(positions[i]);
  return MPoint(sum / static_cast<double>(count));
}

/// The run's point farthest from `from`; the origin when no point is any distance away.
MPoint farthestFrom(const MPoint& from, const MPointArray& positions, unsigned int start, unsigned int count) {
  MPoint best;
  double bestDistance = 0.0;
  for (unsigned int i = start; i < start + count; ++i) {
    const double distance = from.distanceTo(positions[i]);
    if (distance > bestDistance) {
      bestDistance = distance;
      best = positions[i];
    }
  }
  return best;
}

void restoreKept(MPoint& point, const MPoint& before, int keepAxes) {
  if (keepAxes == kKeepX || keepAxes == kKeepXY || keepAxes == kKeepXZ) point.x = before.x;
  if (keepAxes == kKeepY || keepAxes == kKeepXY || keepAxes == kKeepYZ) point.y = before.y;
  if (keepAxes == kKeepZ || keepAxes == kKeepXZ || keepAxes == kKeepYZ) point.z = before.z;
}

}  // namespace

void straightenRun(MPointArray& positions, unsigned int start, unsigned int count, int keepAxes) {
  if (count == 0) return;
  const MPoint endA = farthestFrom(meanOf(positions, start, count), positions, start, count);
  const MPoint endB = farthestFrom(endA, positions, start, count);
  const MVector direction = endA - endB;
  const double lengthSquared = direction * direction;
  if (lengthSquared == 0.0) return;
  for (unsigned int i = start; i < start + count; ++i) {
    const MPoint before = positions[i];
    MPoint projected = endA + direction * (((before - endA) * direction) / lengthSquared);
    restoreKept(projected, before, keepAxes);
    positions[i] = projected;
  }
}
