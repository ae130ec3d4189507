#include "shared/view/viewProjector.h"

#include <maya/M3dView.h>

#include <cmath>

viewProjector::viewProjector(M3dView view, MStatus* status) {
  MStatus read = view.modelViewMatrix(toCamera);
  if (read == MS::kSuccess) read = view.projectionMatrix(toClip);
  whole = toCamera * toClip;
  width = view.portWidth();
  height = view.portHeight();
  if (status) *status = read;
}

viewPlace viewProjector::project(const MPoint& world) const {
  const MPoint clip = world * whole;
  viewPlace place;
  place.depth = -(world.x * toCamera[0][2] + world.y * toCamera[1][2] + world.z * toCamera[2][2] +
                  toCamera[3][2]);
  place.isClipped = !(clip.w > 0.0 && std::fabs(clip.z) <= clip.w);
  if (place.isClipped) return place;
  place.x = (clip.x / clip.w + 1.0) * 0.5 * width;
  place.y = (clip.y / clip.w + 1.0) * 0.5 * height;
  return place;
}

viewProjector viewProjector::from(const MMatrix& toWorld) const {
  viewProjector composed = *this;
  composed.toCamera = toWorld * toCamera;
  composed.whole = composed.toCamera * toClip;
  return composed;
}

// A projection without perspective leaves w alone.
bool viewProjector::isOrthographic() const {
  return toClip[2][3] == 0.0;
}

double viewProjector::worldPerPixel(double depth) const {
  const double tall = toClip[1][1] * height;
  return (isOrthographic() ? 2.0 : 2.0 * std::fabs(depth)) / tall;
}

void viewProjector::ray(double x, double y, MPoint& origin, MVector& direction) const {
  const MMatrix back = whole.inverse();
  const double across = 2.0 * x / width - 1.0, up = 2.0 * y / height - 1.0;
  const auto unproject = [&](double depth) {
    MPoint point = MPoint(across, up, depth) * back;
    point.cartesianize();
    return point;
  };
  origin = unproject(-1.0);
  direction = (unproject(1.0) - origin).normal();
}

MVector viewProjector::axis(unsigned int column) const {
  return MVector(toCamera[0][column], toCamera[1][column], toCamera[2][column]).normal();
}
MVector viewProjector::right() const {
  return axis(0);
}
MVector viewProjector::up() const {
  return axis(1);
}
MVector viewProjector::backward() const {
  return axis(2);
}
