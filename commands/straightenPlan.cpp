#include "commands/straightenPlan.h"

#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>

#include "shared/numeric/planeFit.h"

namespace {

void restoreKept(MPoint& point, const MPoint& before, int keepAxes) {
  if (keepAxes == kKeepX || keepAxes == kKeepXY || keepAxes == kKeepXZ) point.x = before.x;
  if (keepAxes == kKeepY || keepAxes == kKeepXY || keepAxes == kKeepYZ) point.y = before.y;
  if (keepAxes == kKeepZ || keepAxes == kKeepXZ || keepAxes == kKeepYZ) point.z = before.z;
}

}  // namespace

void straightenRun(MPointArray& positions, unsigned int start, unsigned int count, int keepAxes) {
  if (count == 0) return;
  const MPoint endA = farthestFrom(meanPoint(positions, start, count), positions, start, count);
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
