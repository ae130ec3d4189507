#include "host/api/session/host_session.h"

#include "host/api/node/node_copies.h"
#include "host/api/plugin/loader.h"
#include "host/api/view/locator_draw.h"
#include "host/builtins/register.h"

namespace host::api {

std::unique_ptr<cmd::Session> makeHostSession() {
  auto session = builtins::makeSession();
  installPluginLoader(*session);
  installLocatorDrawing(*session);
  installNodeCopies(*session);
  return session;
}

}  // namespace host::api
