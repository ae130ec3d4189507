#include "modeling/locatorPicture.h"

#include <maya/MUintArray.h>

#ifdef _WIN32
#include <windows.h>
#endif
#include <GL/gl.h>

#include <memory>

namespace locatorLook {

MColor vertexColor() {
  return {1.0F, 1.0F, 0.0F, 1.0F};
}
MColor edgeColor() {
  return {1.0F, 0.0F, 0.0F, 1.0F};
}
MColor faceColor() {
  return {0.2F, 0.2F, 1.0F, 0.8F};
}
MColor outlineColor() {
  return {0.0F, 1.0F, 0.0F, 1.0F};
}
MColor pinColor() {
  return {0.0F, 1.0F, 0.0F, 1.0F};
}
MColor weightColor(double weight) {
  const auto w = static_cast<float>(weight);
  return {1.0F - w, w, w, 1.0F};
}

}  // namespace locatorLook

namespace {

constexpr int kPatternBytes = 32 * 4;

struct patternStore {
  std::unique_ptr<unsigned char[]> bytes;
  int users = 0;
};

patternStore& pattern() {
  static patternStore store;
  return store;
}

void setColor(const MColor& color) {
  glColor4f(color.r, color.g, color.b, color.a);
}

void addVertices(const MPointArray& points) {
  for (unsigned int i = 0; i < points.length(); ++i)
    glVertex3d(points[i].x, points[i].y, points[i].z);
}

void drawComponentWithGl(const MPointArray& corners, const unsigned char* stipple) {
  if (corners.length() == 1) {
    glPointSize(locatorLook::kPointSize);
    glBegin(GL_POINTS);
    setColor(locatorLook::vertexColor());
    addVertices(corners);
    glEnd();
  } else if (corners.length() == 2) {
    glLineWidth(locatorLook::kEdgeWidth);
    glBegin(GL_LINE_LOOP);
    setColor(locatorLook::edgeColor());
    addVertices(corners);
    glEnd();
  } else {
    if (stipple) {
      glEnable(GL_POLYGON_STIPPLE);
      glPolygonStipple(stipple);
    }
    glBegin(GL_POLYGON);
    setColor(locatorLook::faceColor());
    addVertices(corners);
    glEnd();
    glDisable(GL_POLYGON_STIPPLE);
  }
}

/// What is shown lies on a surface: of two things at one depth it is the one to see.
void winOverSurfaces() {
  constexpr double kNearer = 2e-5;
  GLdouble range[2] = {0.0, 1.0};
  glGetDoublev(GL_DEPTH_RANGE, range);
  glDepthRange(range[0], range[1] - kNearer);
}

/// Attributes as they were; the blend switches around the pop are part of how the tools have always
/// drawn.
void restoreAttributes() {
  glEnable(GL_BLEND);
  glPopClientAttrib();
  glPopAttrib();
  glDisable(GL_BLEND);
}

}  // namespace

void drawWithGl(const locatorSets& sets, const unsigned char* stipple) {
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
  winOverSurfaces();
  if (sets.showsPoints()) {
    glPointSize(locatorLook::kPointSize);
    glBegin(GL_POINTS);
    for (unsigned int i = 0; i < sets.points.length(); ++i) {
      setColor(locatorLook::weightColor(sets.weights[i]));
      glVertex3d(sets.points[i].x, sets.points[i].y, sets.points[i].z);
    }
    glEnd();
  }
  if (sets.showsOutline()) {
    glLineWidth(locatorLook::kOutlineWidth);
    glBegin(GL_LINE_LOOP);
    setColor(locatorLook::outlineColor());
    addVertices(sets.outline);
    glEnd();
  }
  if (sets.showsComponent()) drawComponentWithGl(sets.component, stipple);
  restoreAttributes();
}

void drawPinsWithGl(const MPointArray& worldPoints, const MMatrix& toView) {
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
  winOverSurfaces();
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadMatrixd(&toView.matrix[0][0]);
  glEnable(GL_POINT_SMOOTH);
  glPointSize(locatorLook::kPointSize);
  glBegin(GL_POINTS);
  setColor(locatorLook::pinColor());
  addVertices(worldPoints);
  glEnd();
  glPopMatrix();
  restoreAttributes();
  glDisable(GL_POINT_SMOOTH);
}

void drawWithManager(const locatorSets& sets, MHWRender::MUIDrawManager& manager) {
  using manage = MHWRender::MUIDrawManager;
  constexpr unsigned int kOverSurfaces = 5;
  if (sets.isEmpty()) return;
  manager.beginDrawable();
  manager.setDepthPriority(kOverSurfaces);
  if (sets.showsPoints()) {
    MColorArray colors;
    for (unsigned int i = 0; i < sets.weights.length(); ++i)
      colors.append(locatorLook::weightColor(sets.weights[i]));
    manager.setPointSize(locatorLook::kPointSize);
    manager.mesh(manage::kPoints, sets.points, nullptr, &colors);
  }
  if (sets.showsOutline()) {
    manager.setColor(locatorLook::outlineColor());
    manager.setLineWidth(locatorLook::kOutlineWidth);
    manager.mesh(manage::kClosedLine, sets.outline);
  }
  if (sets.component.length() == 1) {
    manager.setColor(locatorLook::vertexColor());
    manager.setPointSize(locatorLook::kPointSize);
    manager.point(sets.component[0]);
  } else if (sets.component.length() == 2) {
    manager.setColor(locatorLook::edgeColor());
    manager.setLineWidth(locatorLook::kEdgeWidth);
    manager.line(sets.component[0], sets.component[1]);
  } else if (sets.showsComponent()) {
    MUintArray fan;
    for (unsigned int i = 2; i < sets.component.length(); ++i) {
      fan.append(0);
      fan.append(i - 1);
      fan.append(i);
    }
    MColor color = locatorLook::faceColor();
    color.a = 1.0F;  // the other way of drawing never blends it
    manager.setColor(color);
    manager.setPaintStyle(manage::kStippled);
    manager.mesh(manage::kTriangles, sets.component, nullptr, nullptr, &fan);
  }
  manager.endDrawable();
}

void drawPinsWithManager(const MPointArray& points, MHWRender::MUIDrawManager& manager) {
  constexpr unsigned int kOverSurfaces = 5;
  manager.beginDrawable();
  manager.setDepthPriority(kOverSurfaces);
  manager.setColor(locatorLook::pinColor());
  manager.setPointSize(locatorLook::kPointSize);
  for (unsigned int i = 0; i < points.length(); ++i) manager.point(points[i]);
  manager.endDrawable();
}

void facePattern::acquire() {
  patternStore& store = pattern();
  if (store.users++ > 0) return;
  store.bytes = std::make_unique<unsigned char[]>(kPatternBytes);
  for (int row = 0; row < 32; ++row)
    for (int column = 0; column < 4; ++column)
      store.bytes[static_cast<std::size_t>(row * 4 + column)] = row % 2 == 0 ? 0xAA : 0x55;
}

void facePattern::release() {
  patternStore& store = pattern();
  if (store.users > 0 && --store.users == 0) store.bytes.reset();
}

const unsigned char* facePattern::bytes() {
  return pattern().bytes.get();
}
