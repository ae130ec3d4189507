#include "host/api/session/exiting.h"

#include <maya/MSceneMessage.h>

#include "host/api/session/api_state.h"

namespace host::api {

void tellExiting() {
  Callbacks* all = apiState().callbacks.get();
  if (!all) return;
  Happening happening;
  happening.message = MSceneMessage::kMayaExiting;
  all->fire(CallbackKind::Scene, happening);
}

}  // namespace host::api
