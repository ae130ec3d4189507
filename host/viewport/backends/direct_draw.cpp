#include "host/viewport/backends/direct_draw.h"

#include "host/viewport/backends/gl_api.h"

namespace host::viewport {

void setDirectColor(const Rgba& color) {
  glColor4f(color.r, color.g, color.b, color.a);
}

void setDirectViewport(int x, int y, int width, int height) {
  glViewport(x, y, width, height);
}

void setDirectView(const Matrix4& modelView, const Matrix4& projection) {
  glMatrixMode(GL_PROJECTION);
  glLoadMatrixd(&projection.m[0][0]);
  glMatrixMode(GL_MODELVIEW);
  glLoadMatrixd(&modelView.m[0][0]);
}

void setDirectMaterial(const Rgba& color, const Rgba& specular, float shininess) {
  const float diffuse[] = {color.r, color.g, color.b, color.a};
  const float ambient[] = {color.r * 0.3f, color.g * 0.3f, color.b * 0.3f, color.a};
  const float shine[] = {specular.r, specular.g, specular.b, 1};
  glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambient);
  glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuse);
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, shine);
  glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, shininess);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);
  glPushMatrix();
  glLoadIdentity();
  const float fromViewer[] = {0.2f, 0.4f, 1, 0};
  glLightfv(GL_LIGHT0, GL_POSITION, fromViewer);
  glPopMatrix();
  glEnable(GL_NORMALIZE);
  glEnable(GL_LIGHTING);
  glEnable(GL_LIGHT0);
}

void setDirectCulling(bool isOn, bool cullsFront) {
  if (!isOn) return glDisable(GL_CULL_FACE);
  glEnable(GL_CULL_FACE);
  glCullFace(cullsFront ? GL_FRONT : GL_BACK);
}

void beginDirectOverlay() {
  glDisable(GL_DEPTH_TEST);
}

void beginDirectXor(bool stippled, bool depthTested, float lineWidth, const Rgba& color) {
  constexpr GLushort kDashes = 0x0F0F;
  glPushAttrib(GL_ALL_ATTRIB_BITS);
  glEnable(GL_COLOR_LOGIC_OP);
  glLogicOp(GL_XOR);
  glLineWidth(lineWidth > 0 ? lineWidth : 1);
  if (!depthTested) glDisable(GL_DEPTH_TEST);
  if (stippled) {
    glEnable(GL_LINE_STIPPLE);
    glLineStipple(1, kDashes);
  }
  setDirectColor(color);
}

void endDirectXor() {
  glPopAttrib();
}

void beginDirectSelect(std::span<std::uint32_t> buffer) {
  glSelectBuffer(static_cast<GLsizei>(buffer.size()), buffer.data());
  glRenderMode(GL_SELECT);
  glInitNames();
}

int endDirectSelect() {
  return glRenderMode(GL_RENDER);
}
void initDirectNames() {
  glInitNames();
}
void loadDirectName(std::uint32_t name) {
  glLoadName(name);
}
void pushDirectName(std::uint32_t name) {
  glPushName(name);
}
void popDirectName() {
  glPopName();
}

}  // namespace host::viewport
