#include "commands/dropSpace.h"

#include <maya/MPointArray.h>

MVector dropSpace::down() const {
  MVector direction;
  direction[axis] = -1.0;
  return isWorld ? direction : direction * toWorld;
}

double dropSpace::lowest(const MPointArray& worldPoints) const {
  double base = 0.0;
  for (unsigned int i = 0; i < worldPoints.length(); ++i) {
    const double height = enter(worldPoints[i])[axis];
    if (i == 0 || height < base) base = height;
  }
  return base;
}

MPoint dropSpace::land(const MPoint& worldPoint, const MPoint* fellOn, double base) const {
  MPoint point = enter(worldPoint);
  const double offset = point[axis] - base;
  if (fellOn)
    point = enter(*fellOn);
  else
    point[axis] = 0.0;
  point[axis] += offset;
  return leave(point);
}
