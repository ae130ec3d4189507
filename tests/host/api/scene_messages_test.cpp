// What plug-ins hear of files being read, written and refused.
#include <maya/MFileIO.h>
#include <maya/MMessage.h>
#include <maya/MSceneMessage.h>

#include <cstdlib>
#include <filesystem>

#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

namespace {

struct Heard {
  std::string text;
  bool mayGoOn = true;
};

struct Listener {
  Heard* heard;
  char letter;
};

void hear(void* data) {
  const auto* listener = static_cast<Listener*>(data);
  listener->heard->text += listener->letter;
  if (MFileIO::isOpeningFile()) listener->heard->text += '+';
}
void ask(bool* mayGoOn, void* data) {
  *mayGoOn = static_cast<Heard*>(data)->mayGoOn;
}

}  // namespace

TEST_CASE("scene messages: every station of opening, importing, saving and emptying, in order") {
  const host::MessageCapture quiet;
  ApiScene scene;
  Heard heard;
  std::vector<Listener> listeners;
  listeners.reserve(12);
  const std::pair<MSceneMessage::Message, char> kMessages[] = {
      {MSceneMessage::kBeforeNew, 'n'},      {MSceneMessage::kAfterNew, 'N'},
      {MSceneMessage::kBeforeOpen, 'o'},     {MSceneMessage::kAfterOpen, 'O'},
      {MSceneMessage::kBeforeImport, 'i'},   {MSceneMessage::kAfterImport, 'I'},
      {MSceneMessage::kBeforeSave, 's'},     {MSceneMessage::kAfterSave, 'S'},
      {MSceneMessage::kBeforeExport, 'e'},   {MSceneMessage::kAfterExport, 'E'},
      {MSceneMessage::kBeforeFileRead, 'r'}, {MSceneMessage::kAfterFileRead, 'R'}};
  MCallbackIdArray ids;
  for (const auto& [message, letter] : kMessages) {
    listeners.push_back({&heard, letter});
    ids.append(MSceneMessage::addCallback(message, hear, &listeners.back()));
  }
  const auto said = [&] { return std::exchange(heard.text, {}); };
  const std::filesystem::path folder = std::filesystem::path(QXMT_BINARY_DIR) / "scene_messages";
  std::filesystem::create_directories(folder);
  const std::string first = (folder / "first.ma").string(), part = (folder / "part.ma").string();

  scene.run("polyCube -n box");
  CHECK(MFileIO::saveAs(first.c_str(), "mayaAscii") == MStatus::kSuccess);
  CHECK(said() == "sS");
  CHECK(MFileIO::exportAll(part.c_str(), "mayaAscii") == MStatus::kSuccess);
  CHECK(said() == "eE");
  CHECK(MFileIO::newFile(true) == MStatus::kSuccess);
  CHECK(said() == "nN");
  CHECK(MFileIO::open(first.c_str(), nullptr, true) == MStatus::kSuccess);
  CHECK(said() == "o+r+R+O+");
  CHECK(MFileIO::currentFile() == MString(first.c_str()));
  CHECK(MFileIO::fileType() == MString("mayaAscii"));
  CHECK(MFileIO::importFile(part.c_str()) == MStatus::kSuccess);
  CHECK(said() == "irRI");
  CHECK(scene.run("objExists part_box").toInt().value_or(0) == 1);
  CHECK_FALSE(MFileIO::isReadingFile());

  const MCallbackId check =
      MSceneMessage::addCheckCallback(MSceneMessage::kBeforeNewCheck, ask, &heard);
  heard.mayGoOn = false;
  CHECK(MFileIO::newFile(true) != MStatus::kSuccess);
  CHECK(said().empty());
  CHECK(scene.run("objExists box").toInt().value_or(0) == 1);
  MMessage::removeCallback(check);
  MMessage::removeCallbacks(ids);
}

TEST_CASE(
    "scene files: opening one loads the plug-ins it asks for; without them its nodes are kept") {
  const host::MessageCapture quiet;
  const std::filesystem::path folder = std::filesystem::path(QXMT_BINARY_DIR) / "scene_messages";
  std::filesystem::create_directories(folder);
  const std::string file = (folder / "sum.ma").string(), again = (folder / "again.ma").string();
  ::setenv("MAYA_PLUG_IN_PATH", QXMT_BINARY_DIR "/test_plugins", 1);
  std::string value;
  {
    ApiScene scene;
    scene.run("loadPlugin node_plugin; createNode sumNode -n total; createNode boxLocator -n flag");
    scene.run("setAttr flag.visibility 0; setAttr total.inputs[0] 2; setAttr total.inputs[7] 5");
    value = scene.text("file -rename \"" + file + "\"; file -save; getAttr total.sum");
  }
  ::unsetenv("MAYA_PLUG_IN_PATH");
  {
    ApiScene scene;
    scene.run("file -f -open \"" + file + "\"; file -rename \"" + again + "\"; file -save");
    CHECK(scene.text("nodeType total") == "unknown");
    CHECK(scene.text("unknownNode -q -rcn flag") == "boxLocator");
  }
  ::setenv("MAYA_PLUG_IN_PATH", QXMT_BINARY_DIR "/test_plugins", 1);
  ApiScene scene;
  scene.run("file -f -open \"" + again + "\"");
  CHECK(scene.text("nodeType total") == "sumNode");
  CHECK(value == "7");
  CHECK(scene.text("getAttr total.sum") == value);
  CHECK(scene.text("getAttr flag.visibility") == "0");
  ::unsetenv("MAYA_PLUG_IN_PATH");
}
