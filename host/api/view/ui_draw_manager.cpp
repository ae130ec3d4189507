#include <maya/M3dView.h>
#include <maya/MUIDrawManager.h>

#include <algorithm>
#include <cmath>

#include "host/api/view/draw_pen.h"

using namespace host;
using api::addShape;
using api::penOf;
using api::ShapePoints;
using api::toVec3;
using math::Vec3;
using Shape = viewport::Primitive;

namespace {

/// A run of points as its outline or as the area about `center`.
void addRun(api::DrawRep& pen, const Vec3& center, const ShapePoints& run, bool isClosed,
            bool filled, bool isScreen) {
  if (filled)
    addShape(pen, Shape::Triangles, api::fanOf(center, run, isClosed), isScreen);
  else
    addShape(pen, Shape::Lines, api::segmentsOf(run, isClosed), isScreen);
}

const api::PlaneFrame& screenFrame() {
  static const api::PlaneFrame frame = [] {
    api::PlaneFrame made(Vec3{0, 0, 1});
    made.x = {1, 0, 0};
    made.y = {0, 1, 0};
    return made;
  }();
  return frame;
}

void addArc(api::DrawRep& pen, const Vec3& center, const api::PlaneFrame& frame, const Vec3& start,
            const Vec3& end, double radius, bool filled, bool isScreen) {
  const double from = api::angleIn(frame, start);
  double sweep = api::angleIn(frame, end) - from;
  if (sweep <= 0) sweep += 2 * std::numbers::pi;
  addRun(pen, center, api::arcPoints(center, frame, radius, from, sweep), false, filled, isScreen);
}

ShapePoints pointsOf(const MPointArray& array) {
  ShapePoints points;
  points.reserve(array.length());
  for (const MPoint& p : array) points.push_back(toVec3(p));
  return points;
}

void addPositive(float& field, float value) {
  if (std::isfinite(value) && value > 0) field = value;
}

}  // namespace

namespace MHWRender {

MUIDrawManager::~MUIDrawManager() = default;

void MUIDrawManager::beginDrawable() {
  // Every drawable begins with the default pen, as if it were the first.
  api::DrawRep& pen = penOf(*this);
  const api::DrawRep fresh;
  pen.color = fresh.color;
  pen.pointSize = fresh.pointSize;
  pen.lineWidth = fresh.lineWidth;
  pen.fontHeight = fresh.fontHeight;
  pen.lineStyle = fresh.lineStyle;
  pen.paintStyle = fresh.paintStyle;
  pen.priority = fresh.priority;
  pen.isOpen = pen.list != nullptr;
}
void MUIDrawManager::beginDrawable(Selectability, unsigned int) {
  beginDrawable();
}
void MUIDrawManager::endDrawable() {
  penOf(*this).isOpen = false;
  penOf(*this).isXray = false;
}
void MUIDrawManager::beginDrawInXray() {
  penOf(*this).isXray = true;
}
void MUIDrawManager::endDrawInXray() {
  penOf(*this).isXray = false;
}

void MUIDrawManager::setColor(const MColor& color) {
  penOf(*this).color = api::toRgba(color);
}
void MUIDrawManager::setColorIndex(short index) {
  penOf(*this).color = api::toRgba(
      M3dView::active3dView().colorAtIndex(static_cast<unsigned int>(std::max<short>(index, 0))));
}
void MUIDrawManager::setPointSize(float value) {
  addPositive(penOf(*this).pointSize, value);
}
void MUIDrawManager::setLineWidth(float value) {
  addPositive(penOf(*this).lineWidth, value);
}
void MUIDrawManager::setLineStyle(LineStyle style) {
  penOf(*this).lineStyle = style;
}
void MUIDrawManager::setLineStyle(unsigned int, unsigned short pattern) {
  // Two stipples stand for all patterns: long runs of set bits are dashes, short ones dots.
  const bool hasLongRun = (pattern & (pattern >> 1) & (pattern >> 2)) != 0;
  penOf(*this).lineStyle = pattern == 0xFFFF ? kSolid : hasLongRun ? kDashed : kDotted;
}
void MUIDrawManager::setPaintStyle(PaintStyle style) {
  penOf(*this).paintStyle = style;
}
void MUIDrawManager::setDepthPriority(unsigned int priority) {
  penOf(*this).priority = static_cast<int>(priority);
}

void MUIDrawManager::point(const MPoint& point) {
  addShape(penOf(*this), Shape::Points, {toVec3(point)}, false);
}
void MUIDrawManager::point2d(const MPoint& point) {
  addShape(penOf(*this), Shape::Points, {toVec3(point)}, true);
}
void MUIDrawManager::points(const MPointArray& points, bool draw2D) {
  addShape(penOf(*this), Shape::Points, pointsOf(points), draw2D);
}
void MUIDrawManager::line(const MPoint& startPoint, const MPoint& endPoint) {
  addShape(penOf(*this), Shape::Lines, {toVec3(startPoint), toVec3(endPoint)}, false);
}
void MUIDrawManager::line2d(const MPoint& startPoint, const MPoint& endPoint) {
  addShape(penOf(*this), Shape::Lines, {toVec3(startPoint), toVec3(endPoint)}, true);
}
void MUIDrawManager::lineList(const MPointArray& points, bool draw2D) {
  ShapePoints lines = pointsOf(points);
  lines.resize(lines.size() / 2 * 2);
  addShape(penOf(*this), Shape::Lines, lines, draw2D);
}
void MUIDrawManager::lineStrip(const MPointArray& points, bool draw2D) {
  addShape(penOf(*this), Shape::Lines, api::segmentsOf(pointsOf(points), false), draw2D);
}

void MUIDrawManager::sphere(const MPoint& center, double radius, bool filled) {
  api::DrawRep& pen = penOf(*this);
  const Vec3 middle = toVec3(center);
  if (filled) {
    const ShapePoints triangles = api::sphereTriangles(middle, radius);
    std::vector<math::Vec3f> normals;
    for (const Vec3& p : triangles) {
      const Vec3 n = math::normalized(p - middle);
      normals.push_back(
          {static_cast<float>(n.x), static_cast<float>(n.y), static_cast<float>(n.z)});
    }
    return addShape(pen, Shape::Triangles, triangles, false, std::move(normals));
  }
  for (const Vec3& normal : {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}})
    addRun(pen, middle, api::arcPoints(middle, api::PlaneFrame(normal), radius, 0), false, false,
           false);
}
void MUIDrawManager::circle(const MPoint& center, const MVector& normal, double radius,
                            bool filled) {
  const Vec3 middle = toVec3(center);
  addRun(penOf(*this), middle, api::arcPoints(middle, api::PlaneFrame(toVec3(normal)), radius, 0),
         false, filled, false);
}
void MUIDrawManager::circle2d(const MPoint& center, double radius, bool filled) {
  const Vec3 middle = toVec3(center);
  addRun(penOf(*this), middle, api::arcPoints(middle, screenFrame(), radius, 0), false, filled,
         true);
}
void MUIDrawManager::arc(const MPoint& center, const MVector& start, const MVector& end,
                         const MVector& normal, double radius, bool filled) {
  addArc(penOf(*this), toVec3(center), api::PlaneFrame(toVec3(normal)), toVec3(start), toVec3(end),
         radius, filled, false);
}
void MUIDrawManager::arc2d(const MPoint& center, const MVector& start, const MVector& end,
                           double radius, bool filled) {
  addArc(penOf(*this), toVec3(center), screenFrame(), toVec3(start), toVec3(end), radius, filled,
         true);
}

void MUIDrawManager::rect(const MPoint& center, const MVector& up, const MVector& normal,
                          double scaleX, double scaleY, bool filled) {
  const Vec3 middle = toVec3(center), y = math::normalized(toVec3(up));
  const Vec3 x = math::normalized(math::cross(y, toVec3(normal))) * scaleX;
  const Vec3 high = y * scaleY;
  addRun(penOf(*this), middle,
         {middle - x - high, middle + x - high, middle + x + high, middle - x + high}, true, filled,
         false);
}
void MUIDrawManager::rect2d(const MPoint& center, const MVector& up, double scaleX, double scaleY,
                            bool filled) {
  const Vec3 middle = toVec3(center), y = math::normalized(toVec3(up));
  const Vec3 x = Vec3{y.y, -y.x, 0} * scaleX;
  const Vec3 high = y * scaleY;
  addRun(penOf(*this), middle,
         {middle - x - high, middle + x - high, middle + x + high, middle - x + high}, true, filled,
         true);
}
void MUIDrawManager::quad(const MPoint& point1, const MPoint& point2, const MPoint& point3,
                          const MPoint& point4, bool filled) {
  const ShapePoints run{toVec3(point1), toVec3(point2), toVec3(point3), toVec3(point4)};
  if (filled)
    return addShape(penOf(*this), Shape::Triangles,
                    {run[0], run[1], run[2], run[0], run[2], run[3]}, false);
  addRun(penOf(*this), run[0], run, true, false, false);
}
void MUIDrawManager::box(const MPoint& center, const MVector& up, const MVector& right,
                         double scaleX, double scaleY, double scaleZ, bool filled) {
  const Vec3 middle = toVec3(center), y = math::normalized(toVec3(up)),
             x = math::normalized(toVec3(right));
  const Vec3 z = math::cross(x, y);
  const auto corner = [&](unsigned bits) {
    return middle + x * (bits & 1 ? scaleX : -scaleX) + y * (bits & 2 ? scaleY : -scaleY) +
           z * (bits & 4 ? scaleZ : -scaleZ);
  };
  ShapePoints points;
  if (filled) {
    static constexpr unsigned kSides[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                              {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
    for (const auto& side : kSides)
      for (const unsigned i : {0u, 1u, 2u, 0u, 2u, 3u}) points.push_back(corner(side[i]));
  } else {
    for (unsigned from = 0; from < 8; ++from)
      for (const unsigned axis : {1u, 2u, 4u})
        if (!(from & axis)) points.insert(points.end(), {corner(from), corner(from | axis)});
  }
  addShape(penOf(*this), filled ? Shape::Triangles : Shape::Lines, points, false);
}
void MUIDrawManager::cone(const MPoint& base, const MVector& direction, double radius,
                          double height, bool filled) {
  const Vec3 middle = toVec3(base);
  const api::PlaneFrame frame(toVec3(direction));
  const Vec3 tip = middle + frame.normal * height;
  const ShapePoints rim = api::arcPoints(middle, frame, radius, 0);
  api::DrawRep& pen = penOf(*this);
  addRun(pen, middle, rim, false, filled, false);
  if (filled) return addRun(pen, tip, rim, false, true, false);
  ShapePoints sides;
  for (std::size_t i = 0; i + 1 < rim.size(); i += rim.size() / 8)
    sides.insert(sides.end(), {tip, rim[i]});
  addShape(pen, Shape::Lines, sides, false);
}

}  // namespace MHWRender
