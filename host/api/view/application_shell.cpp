#include <maya/M3dView.h>

#include "host/api/core/access.h"
#include "host/api/view/app_window.h"
#include "host/cmd/session.h"

using namespace host;

MNativeWindowHdl M3dView::applicationShell(MStatus* status) {
  const auto* window = cmd::currentSession().findService<api::ApplicationWindow>();
  const bool exists = window && window->shell;
  api::setStatus(status, exists ? MStatus::kSuccess : MStatus::kFailure);
  return exists ? window->shell : nullptr;
}
