// Progress displays, computations and files, as a plug-in's long work uses them.
#include <maya/MComputation.h>
#include <maya/MFileIO.h>
#include <maya/MFileObject.h>
#include <maya/MGlobal.h>
#include <maya/MProgressWindow.h>

#include <cstdio>
#include <fstream>

#include "host/base/cancel.h"
#include "host/base/messages.h"
#include "tests/host/api/api_scene.h"

TEST_CASE_FIXTURE(ApiScene, "progress: one job at a time has the display, and stays in its range") {
  CHECK_FALSE(MProgressWindow::setProgress(3));
  CHECK_FALSE(MProgressWindow::startProgress());
  REQUIRE(MProgressWindow::reserve());
  CHECK_FALSE(MProgressWindow::reserve());
  CHECK(MProgressWindow::setProgressRange(10, 20));
  CHECK(MProgressWindow::setTitle("Unfolding"));
  CHECK(MProgressWindow::setProgressStatus("half"));
  CHECK(MProgressWindow::setInterruptable(true));
  CHECK(MProgressWindow::startProgress());
  CHECK(MProgressWindow::setProgress(15));
  CHECK(MProgressWindow::advanceProgress(2));
  CHECK(MProgressWindow::progress() == 17);
  CHECK(MProgressWindow::advanceProgress(50));
  CHECK(MProgressWindow::progress() == 20);
  CHECK_FALSE(MProgressWindow::setProgressRange(5, 4));
  CHECK((MProgressWindow::progressMin() == 10 && MProgressWindow::progressMax() == 20));
  CHECK(MProgressWindow::setProgressMax(12));
  CHECK(MProgressWindow::progress() == 12);
  CHECK((MProgressWindow::title() == "Unfolding" && MProgressWindow::progressStatus() == "half"));
  CHECK(MProgressWindow::isInterruptable());
  CHECK_FALSE(MProgressWindow::isCancelled());
  CHECK(MProgressWindow::endProgress());
  CHECK_FALSE(MProgressWindow::endProgress());
  REQUIRE(MProgressWindow::reserve());
  CHECK((MProgressWindow::title() == "" && MProgressWindow::progressMax() == 100));
  CHECK(MProgressWindow::endProgress());
}

TEST_CASE_FIXTURE(ApiScene, "a computation hears that the user wants it to stop, and ends once") {
  MComputation work, other;
  work.beginComputation(true, true);
  work.setProgressRange(0, 3);
  work.setProgressStatus("Relaxing UVs");
  CHECK_FALSE(work.isInterruptRequested());
  work.setProgress(1);
  host::requestCancel();
  CHECK(work.isInterruptRequested());
  host::clearCancel();
  CHECK_FALSE(work.isInterruptRequested());
  other.beginComputation();  // the newer one has the display; the older goes on unseen
  work.setProgress(2);
  work.endComputation();
  other.setProgress(50);
  other.endComputation();
  other.endComputation();
}

TEST_CASE_FIXTURE(ApiScene, "scene files: saving marks as saved, parts are exported and imported") {
  const host::MessageCapture quiet;
  const MString whole = QXMT_BINARY_DIR "/work whole.ma", part = QXMT_BINARY_DIR "/work_part.ma";
  std::remove(whole.asChar());
  run("polyCube -n box; polyCube -n other; setAttr box.tx 4;");
  CHECK_FALSE(MFileIO::save());  // it has no name yet
  REQUIRE(MFileIO::saveAs(whole, "mayaAscii"));
  CHECK(MFileIO::currentFile() == whole);
  CHECK(text("file -q -modified") == "0");
  run("setAttr box.tx 5");
  CHECK_FALSE(MFileIO::newFile(false));  // what is not saved is not thrown away unasked
  REQUIRE(MFileIO::save());
  run("select -r other");
  REQUIRE(MFileIO::exportSelected(part, "mayaAscii"));
  CHECK(MFileIO::currentFile() == whole);
  REQUIRE(MFileIO::newFile(true));
  CHECK(MFileIO::currentFile() != whole);
  REQUIRE(MFileIO::importFile(part, nullptr, false, "lib"));
  CHECK(text("objExists \"lib:other\"") == "1");
  CHECK(text("objExists \"lib:box\"") == "0");
  REQUIRE(MFileIO::open(whole, nullptr, true));
  CHECK(text("getAttr box.tx") == "5");
  CHECK_FALSE(MFileIO::open(QXMT_BINARY_DIR "/no_such_scene.ma", nullptr, true));
  CHECK_FALSE(MFileIO::saveAs(QXMT_BINARY_DIR "/no_such_folder/scene.ma", "mayaAscii", true));
  CHECK(MFileIO::currentFile() == whole);

  MFileObject file;
  CHECK_FALSE(file.exists());
  file.setRawFullName(whole);
  CHECK(file.exists());
  CHECK(file.rawName() == "work whole.ma");
  file.setRawName("work_part.ma");
  CHECK((file.exists() && file.resolvedFullName() == part));
  file.setRawName("none.ma");
  CHECK_FALSE(file.exists());
}
