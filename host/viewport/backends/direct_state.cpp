#include "host/viewport/backends/direct_state.h"

#include "host/viewport/backends/gl_api.h"

namespace host::viewport {

namespace {

void enable(GLenum what, bool on) {
  if (on)
    glEnable(what);
  else
    glDisable(what);
}

}  // namespace

void setDirectState(const DirectBlend& blend) {
  enable(GL_BLEND, blend.isOn);
  glBlendFuncSeparate(blend.source, blend.destination, blend.alphaSource, blend.alphaDestination);
  glBlendEquationSeparate(blend.operation, blend.alphaOperation);
  glBlendColor(blend.factor[0], blend.factor[1], blend.factor[2], blend.factor[3]);
  const auto mask = [&](int i) { return static_cast<GLboolean>(blend.writes[i] ? 1 : 0); };
  glColorMask(mask(0), mask(1), mask(2), mask(3));
}

void setDirectState(const DirectRaster& raster) {
  glPolygonMode(GL_FRONT_AND_BACK, raster.fills ? GL_FILL : GL_LINE);
  enable(GL_CULL_FACE, raster.cullsFront || raster.cullsBack);
  if (raster.cullsFront || raster.cullsBack) glCullFace(raster.cullsFront ? GL_FRONT : GL_BACK);
  glFrontFace(raster.frontIsCounterClockwise ? GL_CCW : GL_CW);
  enable(GL_POLYGON_OFFSET_FILL, raster.bias != 0 || raster.slopeBias != 0);
  glPolygonOffset(raster.slopeBias, raster.bias);
  enable(GL_LINE_SMOOTH, raster.smoothsLines);
}

void setDirectState(const DirectDepth& depth) {
  enable(GL_DEPTH_TEST, depth.isOn);
  glDepthMask(static_cast<GLboolean>(depth.writes ? 1 : 0));
  glDepthFunc(depth.compare);
}

}  // namespace host::viewport
