#include "tests/toolkit/toolkit_session.h"

toolkitSession::toolkitSession() : session(host::api::makeHostSession()) {
  session->interpreter().setScriptPath({QXMT_SOURCE_DIR "/scripts"});
  const host::MessageCapture quiet;
  const auto loaded =
      session->executeLine("loadPlugin \"" QXMT_BINARY_DIR "/lib/qxModelingToolkit.so\"");
  REQUIRE_MESSAGE(loaded.has_value(), (loaded ? std::string() : loaded.error().message));
}
