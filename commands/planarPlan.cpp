#include "commands/planarPlan.h"

#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MVector.h>
#include <maya/MVectorArray.h>

#include "shared/numeric/planeFit.h"

namespace {
/// A mean of unit normals shorter than this has cancelled out: its direction is rounding.
constexpr double kCancelled = 1e-9;
}  // namespace

MVector sumOf(const MVectorArray& vectors) {
  MVector sum;
  for (unsigned int i = 0; i < vectors.length(); ++i) sum += vectors[i];
  return sum;
}

MVector meanVector(const MVectorArray& vectors) {
  return vectors.length() == 0 ? MVector() : sumOf(vectors) / static_cast<double>(vectors.length());
}

bool flattenRun(MPointArray& positions, unsigned int start, unsigned int count,
                const MVector& normal) {
  if (count == 0) return true;
  MVector n = normal;
  if (n.length() > kCancelled)
    n.normalize();
  else if (!bestFitNormal(positions, start, count, n))
    return false;
  const MPoint centre = meanPoint(positions, start, count);
  for (unsigned int i = start; i < start + count; ++i)
    positions[i] = positions[i] - n * ((positions[i] - centre) * n);
  return true;
}
