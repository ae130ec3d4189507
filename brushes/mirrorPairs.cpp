#include "brushes/mirrorPairs.h"

#include <algorithm>

#include "brushes/brushSurface.h"

void mirrorPairs::begin(const brushSurface& surfaceIn, int axisIn, bool inWorldSpace) {
  surface = &surfaceIn;
  axis = static_cast<unsigned int>(std::clamp(axisIn, 0, 2));
  inObjectSpace = !inWorldSpace;
  reach = surface->mirrorReach();
  known.begin(surface->vertexCount());
}

MPoint mirrorPairs::mirrored(const MPoint& worldPoint) const {
  MPoint there = inObjectSpace ? worldPoint * surface->toObject() : worldPoint;
  there[axis] = -there[axis];
  return inObjectSpace ? there * surface->toWorld() : there;
}

int mirrorPairs::counterpart(int vertex) const {
  return surface->nearestVertex(mirrored(surface->worldPoint(vertex)), reach);
}

int mirrorPairs::partner(int vertex) {
  constexpr int kShift = 1;  // so that "none" can be kept too
  if (const int found = known.find(vertex); found >= 0) return found - kShift;
  int there = counterpart(vertex);
  if (there >= 0 && there != vertex && counterpart(there) != vertex) there = -1;
  known.set(vertex, there + kShift);
  if (there >= 0) known.set(there, vertex + kShift);
  return there;
}

MVector mirrorPairs::reflect(const MVector& objectVector) const {
  MVector there = inObjectSpace ? objectVector : objectVector * surface->toWorld();
  there[axis] = -there[axis];
  return inObjectSpace ? there : there * surface->toObject();
}

MVector mirrorPairs::alongPlane(const MVector& objectVector) const {
  MVector there = inObjectSpace ? objectVector : objectVector * surface->toWorld();
  there[axis] = 0.0;
  return inObjectSpace ? there : there * surface->toObject();
}
