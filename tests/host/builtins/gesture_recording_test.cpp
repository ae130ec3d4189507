// Recordings: what is done again on the same scene gives the same document.
#include <doctest/doctest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/base/messages.h"
#include "host/builtins/register.h"
#include "host/cmd/loop.h"
#include "host/workspace/workspace.h"

using namespace host;

namespace {

const std::string kFile = QXMT_BINARY_DIR "/recorded.gesture";

std::unique_ptr<cmd::Session> plainScene() {
  auto session = builtins::makeSession();
  REQUIRE(
      session->executeLine("polyPlane -n plane -w 4 -h 4 -sx 4 -sy 4; select -cl; "
                           "doMenuComponentSelection(\"plane\", \"vertex\")"));
  return session;
}

void run(cmd::Session& session, const std::string& mel) {
  const auto done = session.executeLine(mel);
  CAPTURE(mel);
  REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
}

std::string textOf(const std::string& file) {
  std::ifstream stream(file);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}
std::string fileText() {
  return textOf(kFile);
}

/// All that a scene file holds but the uuids, which are drawn by chance, with what is selected and
/// hilited. A document's own hash goes by where its nodes lie in memory.
std::string contentOf(cmd::Session& session) {
  const std::string file = QXMT_BINARY_DIR "/recorded.ma";
  run(session, "file -rename \"" + file + "\"; file -f -save");
  std::istringstream lines(textOf(file));
  std::string text;
  for (std::string line; std::getline(lines, line);)
    if (line.find("//Last modified") != 0 && line.find("rename -uid") == std::string::npos)
      text += line + "\n";
  for (const scene::SelectionList* list :
       {&session.document().selection(), &session.document().hilite()})
    for (const std::string& name : list->names()) text += name + " ";
  return text;
}

/// What hands and scripts do between them, a line each.
const std::vector<std::string> kWork = {
    "viewGesture -port 700 500 -press 200 100 -drag 400 300 -release 420 300 modelPanel1",
    "setToolTo moveSuperContext",
    "viewGesture -button 2 -press 300 200 -drag 310.5 205 -drag 333 222; "
    "viewGesture -release 333 222; polyCube -n cube; print 1",
    "viewGesture -alt 1 -press 10 10 -drag 200 60 -release 200 60 modelPanel4",
    "select -r plane.f[3]; polyExtrudeFacet -ltz 1",
    "undo",
    "redo",
    "viewGesture -key \"Escape\" -hover 30 30",
    "setToolTo RotateSuperContext; viewGesture -button 2 -press 300 200 -drag 340 200 -release 340 "
    "200",
};

}  // namespace

TEST_CASE("a line of commands is recorded as it is, one that makes input by its input") {
  const auto session = plainScene();
  run(*session, "viewGesture -record \"" + kFile + "\"");
  for (const std::string& line : kWork) run(*session, line);
  run(*session, "viewGesture -stopRecording");
  const std::string text = fileText();
  CHECK(text.find("line polyCube") == std::string::npos);  // its line made input itself
  CHECK(text.find("line setToolTo moveSuperContext") != std::string::npos);
  CHECK(text.find("tool RotateSuperContext") != std::string::npos);
}

TEST_CASE("replay: bit for bit on the same scene, as far as one likes, and again") {
  std::string after;
  {
    const auto session = plainScene();
    run(*session, "viewGesture -record \"" + kFile + "\"");
    for (std::size_t i = 0; i < kWork.size(); ++i)
      if (i != 2) run(*session, kWork[i]);  // the line that also makes a cube is no recording's
    run(*session, "viewGesture -stopRecording");
    after = contentOf(*session);
  }
  const auto recording = tools::parseRecording(fileText());
  REQUIRE(recording);
  {
    const auto session = plainScene();
    REQUIRE(workspace::workspaceOf(*session).recordings.play(*recording, recording->steps.size()));
    CHECK(contentOf(*session) == after);
    while (session->undo().canUndo()) REQUIRE(session->undo().undo());
  }
  {
    const auto session = plainScene();
    run(*session, "viewGesture -play \"" + kFile + "\"");
    CHECK(contentOf(*session) == after);
    CHECK_FALSE(session->document().dagPath("cube"));
  }
  {
    const auto session = plainScene();
    REQUIRE(workspace::workspaceOf(*session).recordings.play(*recording,
                                                             tools::stepsUntil(*recording, 4)));
    CHECK(session->executeLine("size(`ls -sl -fl`)")->toInt().value() > 0);
    CHECK(workspace::workspaceOf(*session).toolbox.currentName() == "selectSuperContext");
  }
}

TEST_CASE("timers are called in a replay when they were in the recording") {
  std::vector<double> calls[2];
  for (const int round : {0, 1}) {
    const auto session = plainScene();
    session->loop().timers().add(0.1, [&](double now, double) { calls[round].push_back(now); });
    if (round == 0) {
      // A clock of the wall, which never comes at the right time.
      double clock = 50;
      session->loop().setClock([&clock] { return clock; });
      run(*session, "viewGesture -record \"" + kFile + "\"");
      for (const double passed : {0.07, 0.09, 0.31, 0.02}) {
        clock += passed;
        session->loop().step();
        run(*session, "viewGesture -hover 10 10");
      }
      run(*session, "viewGesture -wait 0.25; viewGesture -stopRecording");
    } else {
      run(*session, "viewGesture -play \"" + kFile + "\"");
    }
  }
  CHECK(calls[0].size() == 4);
  CHECK(calls[0] == calls[1]);
}

TEST_CASE("recordings that can't begin, end or be played say why") {
  const auto session = plainScene();
  const auto errorOf = [&](const std::string& mel) {
    const MessageCapture said;
    CHECK_FALSE(session->executeLine(mel));
    return said.text(MessageKind::Error);
  };
  CHECK(errorOf("viewGesture -stopRecording").find("Nothing is being recorded") !=
        std::string::npos);
  CHECK(errorOf("viewGesture -play \"/no/such/file\"").find("can't be read") != std::string::npos);
  CHECK(errorOf("viewGesture -record \"x\" -press 1 1").find("stand alone") != std::string::npos);
  run(*session, "viewGesture -record \"/no/such/folder/file\"");
  CHECK(errorOf("viewGesture -record \"x\"").find("stop it first") != std::string::npos);
  CHECK(errorOf("viewGesture -play \"x\"").find("under way") != std::string::npos);
  CHECK(errorOf("viewGesture -stopRecording").find("the recording goes on") != std::string::npos);
}

TEST_CASE("a recording that doesn't fit the scene changes nothing") {
  const auto other = plainScene();
  tools::Recording recording = workspace::workspaceOf(*other).recordings.ofNow();
  recording.cameras[0].name = "nobody";
  const std::uint64_t before = other->document().hash();
  CHECK(workspace::workspaceOf(*other)
            .recordings.play(recording, 0)
            .error()
            .message.find("'nobody'") != std::string::npos);
  CHECK(other->document().hash() == before);
}
