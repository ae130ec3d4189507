#include "uv/markPicture.h"

#include <maya/MColor.h>

#ifdef _WIN32
#include <windows.h>
#endif
#include <GL/gl.h>

namespace markLook {

MColor seamColor() {
  return {0.0F, 0.65F, 1.0F, 1.0F};
}
MColor anchorColor() {
  return {0.0F, 1.0F, 0.0F, 1.0F};
}
MColor selectionColor() {
  return {1.0F, 0.9F, 0.1F, 1.0F};
}

}  // namespace markLook

namespace {

void expand(MBoundingBox& box, const MPointArray& points) {
  for (unsigned int i = 0; i < points.length(); ++i) box.expand(points[i]);
}

void drawGl(GLenum primitive, const MPointArray& points, const MColor& color) {
  if (points.length() == 0) return;
  glBegin(primitive);
  glColor4f(color.r, color.g, color.b, color.a);
  for (unsigned int i = 0; i < points.length(); ++i)
    glVertex3d(points[i].x, points[i].y, points[i].z);
  glEnd();
}

}  // namespace

bool meshMarks::isEmpty() const {
  return seams.length() + anchors.length() + selectedEdges.length() + selectedVertices.length() ==
         0;
}

MBoundingBox meshMarks::box() const {
  MBoundingBox all;
  for (const MPointArray* points : {&seams, &anchors, &selectedEdges, &selectedVertices})
    expand(all, *points);
  return all;
}

void drawMarksWithGl(const meshMarks& marks, const MMatrix& toView) {
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glMatrixMode(GL_MODELVIEW);
  glPushMatrix();
  glLoadMatrixd(&toView.matrix[0][0]);
  // What is shown lies on a surface: of two things at one depth it is the one to see.
  constexpr double kNearer = 2e-5;
  GLdouble range[2] = {0.0, 1.0};
  glGetDoublev(GL_DEPTH_RANGE, range);
  glDepthRange(range[0], range[1] - kNearer);
  glLineWidth(markLook::kSeamWidth);
  drawGl(GL_LINES, marks.seams, markLook::seamColor());
  glDepthRange(range[0], range[1] - 2 * kNearer);
  glLineWidth(markLook::kSelectionWidth);
  drawGl(GL_LINES, marks.selectedEdges, markLook::selectionColor());
  glEnable(GL_POINT_SMOOTH);
  glPointSize(markLook::kAnchorSize);
  drawGl(GL_POINTS, marks.anchors, markLook::anchorColor());
  glDepthRange(range[0], range[1] - 3 * kNearer);
  glPointSize(markLook::kVertexSize);
  drawGl(GL_POINTS, marks.selectedVertices, markLook::selectionColor());
  glMatrixMode(GL_MODELVIEW);
  glPopMatrix();
  glPopAttrib();
}

void drawMarksWithManager(const meshMarks& marks, MHWRender::MUIDrawManager& manager) {
  using manage = MHWRender::MUIDrawManager;
  constexpr unsigned int kOverSurfaces = 5;
  if (marks.isEmpty()) return;
  manager.beginDrawable();
  manager.setDepthPriority(kOverSurfaces);
  manager.setColor(markLook::seamColor());
  manager.setLineWidth(markLook::kSeamWidth);
  if (marks.seams.length() > 0) manager.mesh(manage::kLines, marks.seams);
  manager.setDepthPriority(kOverSurfaces + 1);
  manager.setColor(markLook::selectionColor());
  manager.setLineWidth(markLook::kSelectionWidth);
  if (marks.selectedEdges.length() > 0) manager.mesh(manage::kLines, marks.selectedEdges);
  manager.setColor(markLook::anchorColor());
  manager.setPointSize(markLook::kAnchorSize);
  if (marks.anchors.length() > 0) manager.mesh(manage::kPoints, marks.anchors);
  manager.setDepthPriority(kOverSurfaces + 2);
  manager.setColor(markLook::selectionColor());
  manager.setPointSize(markLook::kVertexSize);
  if (marks.selectedVertices.length() > 0) manager.mesh(manage::kPoints, marks.selectedVertices);
  manager.endDrawable();
}
