#include <maya/MShaderManager.h>
#include <maya/MViewport2Renderer.h>

#include "host/api/view/view_access.h"
#include "host/api/view/view_rep.h"
#include "host/cmd/session.h"

using namespace host;

namespace host::api {

template <>
MHWRender::MRenderer Access::make<MHWRender::MRenderer>(SharedRep*) {
  return {};
}

}  // namespace host::api

namespace MHWRender {

MRenderer* MRenderer::theRenderer(bool) {
  static MRenderer renderer = api::Access::make<MRenderer>(nullptr);
  return &renderer;
}

DrawAPI MRenderer::drawAPI() const {
  return kOpenGL;
}
bool MRenderer::drawAPIIsOpenGL() const {
  return true;
}
unsigned int MRenderer::drawAPIVersion() const {
  constexpr unsigned int kMajor = 3, kMinor = 2;  // the least that the views are drawn with
  return kMajor << 16 | kMinor;
}
const MShaderManager* MRenderer::getShaderManager() const {
  static const MShaderManager manager;
  return &manager;
}
MStatus MRenderer::outputTargetSize(unsigned int& width, unsigned int& height) const {
  unsigned int x = 0, y = 0;
  return M3dView::active3dView().viewport(x, y, width, height);
}
void MRenderer::setGeometryDrawDirty(const MObject& object, bool) {
  if (api::nodeOf(object)) api::scheduleViewRefresh();
}

}  // namespace MHWRender
