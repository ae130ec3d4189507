#include "host/viewport/backends/direct_draw.h"

#include "host/viewport/backends/gl_api.h"

namespace host::viewport {

void setDirectColor(const Rgba& color) {
  glColor4f(color.r, color.g, color.b, color.a);
}

void setDirectViewport(int x, int y, int width, int height) {
  glViewport(x, y, width, height);
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
