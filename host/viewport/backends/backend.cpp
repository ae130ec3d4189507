#include "host/viewport/backends/backend.h"

namespace host::viewport {

Result<Image> renderImage(Backend& backend, const FrameSettings& settings, const DrawList& list) {
  HOST_TRY(backend.beginFrame(settings));
  backend.draw(list);
  backend.endFrame();
  return backend.readPixels();
}

}  // namespace host::viewport
