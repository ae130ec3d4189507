#include "host/api/session/host_session.h"

#include "host/api/node/node_copies.h"
#include "host/api/plugin/loader.h"
#include "host/api/session/api_state.h"
#include "host/api/view/locator_draw.h"
#include "host/base/assert.h"
#include "host/builtins/register.h"

namespace host::api {

ApiState& apiState() {
  cmd::Session& session = cmd::currentSession();
  HOST_ASSERT(session.plugInState, "make the session by makeHostSession to use the API");
  return static_cast<ApiState&>(*session.plugInState);
}

std::unique_ptr<cmd::Session> makeHostSession() {
  auto session = builtins::makeSession();
  session->plugInState = std::make_unique<ApiState>();
  installPluginLoader(*session);
  installLocatorDrawing(*session);
  installNodeCopies(*session);
  return session;
}

}  // namespace host::api
