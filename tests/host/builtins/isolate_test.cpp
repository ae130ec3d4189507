#include <doctest/doctest.h>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/workspace/workspace.h"

using namespace host;

namespace {

std::vector<std::string> shown(cmd::Session& session, const char* panel) {
  const auto scene =
      workspace::gatherView(session.document(), *workspace::workspaceOf(session).views.find(panel));
  REQUIRE(scene);
  std::vector<std::string> names;
  for (const viewport::RenderMesh& mesh : scene->meshes)
    names.push_back(mesh.name.substr(1, mesh.name.find('|', 1) - 1));
  return names;
}

}  // namespace

TEST_CASE("a panel that isolates shows its objects and what hangs under them; others show all") {
  using Names = std::vector<std::string>;
  const auto session = builtins::makeSession();
  const auto run = [&](const char* mel) { REQUIRE(session->executeLine(mel)); };
  run("polyCube -n one; polyCube -n two; polyCube -n three; group -n above three; select one; "
      "isolateSelect -s 1 modelPanel4");
  CHECK(shown(*session, "modelPanel4") == Names{"one"});
  CHECK(shown(*session, "modelPanel1").size() == 3);
  run("isolateSelect -ado \"above\" modelPanel4");
  CHECK(shown(*session, "modelPanel4") == Names{"one", "above"});
  run("delete one");
  CHECK(shown(*session, "modelPanel4") == Names{"above"});
  run("undo");
  CHECK(shown(*session, "modelPanel4") == Names{"one", "above"});
  run("select -cl; isolateSelect -ls modelPanel4");
  CHECK(shown(*session, "modelPanel4").empty());
  run("isolateSelect -s 0 modelPanel4");
  CHECK(shown(*session, "modelPanel4").size() == 3);
}
