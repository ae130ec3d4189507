#include "host/window/uv_panel.h"

#include <doctest/doctest.h>

#include <QApplication>

#include "host/api/session/host_session.h"
#include "host/base/messages.h"
#include "tests/host/window/offscreen.h"

using namespace host;

TEST_CASE("UV panel: every command of its menus runs on selected faces, as one step of undo") {
  test::offscreenApplication();
  const auto session = api::makeHostSession();
  window::Person person(*session);
  window::UvPanel panel(person);
  int count = 0;
  for (QMenu* menu : panel.findChildren<QMenu*>())
    for (QAction* action : menu->actions()) {
      if (action->isSeparator()) continue;
      CAPTURE(action->text().toStdString());
      REQUIRE(session->executeLine(
          "file -f -new; polyCube -n c -sx 2 -sy 2 -sz 2 -ch 0; select -r c.f[0:3]"));
      const auto before = session->document().hash();
      const MessageCapture said;
      action->trigger();
      CHECK(said.text(MessageKind::Error) == "");
      if (session->document().hash() == before) continue;  // nothing was pinned, nothing to sew
      REQUIRE(session->executeLine("undo"));
      CHECK(session->document().hash() == before);
      ++count;
    }
  CHECK(count > 15);
}
